// SPDX-License-Identifier: MIT
#include "cli/questions.h"

#include <charconv>
#include <cstdio>
#include <string>
#include <string_view>
#include <unistd.h>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/utf8.h"
#include "cli/help.h"
#include "cli/safe_text.h"

namespace tessaly::cli {

namespace {

constexpr std::size_t questionColumns = 78;
constexpr int trials = 3;

void print(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
}

/// Byte by byte, so that nothing behind the line is taken from whoever reads on. Nothing at the end
/// of input and after Ctrl-C.
std::optional<std::string> readLine() {
    std::string line;
    for (char c = 0; ::read(STDIN_FILENO, &c, 1) == 1;) {
        if (c == '\n') {
            return line;
        }
        line += c;
    }
    return std::nullopt;
}

std::optional<std::size_t> buttonIn(std::string_view line, std::size_t buttons) {
    const std::string_view answer = base::trimmed(line);
    std::size_t number = 0;
    const char* end = answer.data() + answer.size();
    const auto read = std::from_chars(answer.data(), end, number);
    const bool isButton = read.ec == std::errc{} && read.ptr == end && number >= 1;
    return isButton && number <= buttons ? std::optional(number - 1) : std::nullopt;
}

void printQuestion(const ports::Question& question) {
    print(wrapped(safeText(question.title), 0, questionColumns));
    if (!question.text.empty()) {
        print(wrapped(safeText(question.text), 0, questionColumns));
    }
    for (std::size_t index = 0; index < question.buttons.size(); ++index) {
        print(fmt::format("  {}  {}\n", index + 1, safeText(question.buttons[index])));
    }
}

}  // namespace

std::optional<std::size_t> askAtTerminal(const ports::Question& question) {
    const std::size_t buttons = question.buttons.size();
    const bool canAnswer = ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1;
    if (buttons != 0 && !canAnswer) {
        return std::nullopt;
    }
    printQuestion(question);
    for (int trial = 0; buttons != 0 && trial < trials; ++trial) {
        print(fmt::format(fmt::runtime(base::tr("Your answer, 1 to {}: ")), buttons));
        const auto line = readLine();
        if (!line) {
            print("\n");
            return std::nullopt;
        }
        if (const auto button = buttonIn(*line, buttons)) {
            return button;
        }
    }
    return std::nullopt;
}

}  // namespace tessaly::cli
