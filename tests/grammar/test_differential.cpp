// SPDX-License-Identifier: MIT
#include <array>
#include <random>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "grammar/line_scanner.h"
#include "grammar/pattern_oracle.h"
#include "support/sanitized.h"

using namespace tessaly::grammar;

namespace {

using Tokens = std::vector<std::string>;

/// One of each sort of piece that the grammar tells apart.
const Tokens basicTokens{"*", "1.", "[ ] ", "[x] ", "#",  "@", "> ", "2019-05-21",  "#a",
                         "(", ")",  " ",    "\t",   "\r", "é", "漢", "\xE2\x80\xA8"};

Tokens joined(const std::vector<Tokens>& lists) {
    Tokens all;
    for (const Tokens& list : lists) {
        all.insert(all.end(), list.begin(), list.end());
    }
    return all;
}

/// Every piece worth telling apart, and letters, digits and blanks of several scripts.
const Tokens allTokens = joined({
    {"*", "-", "+", ">", "<", "#", "@", "1", "2.", "3)", "[", "]", "(", ")", "{", "\"", "'"},
    {"[ ] ", "[x] ", "[>] ", "[-] ", "[\xC2\xA0] ", "* ", "- ", "# ", "> ", "#a", "@b"},
    {"/", "_", ".", "x", "é", "漢", "٣", "𝟗", "😀", "e\xCC\x81", "،", "«", "$"},
    {" ", "\t", "\r", "\v", "\f", "\xC2\x85", "\xC2\xA0", "\xE2\x80\xA8", "\xE3\x80\x80",
     "\xEF\xBB\xBF"},
    {"2019-05-21", ">2019-05-21", " <2019-02-31", "@2019-05-21", "#tag(arg", "@repeat(1/3)"},
    {"@done(", "@done(2019-05-21)", " @done(2019-05-21 09:05 PM)"},
});

void same(const std::string& line, const MarkerSettings& settings = {}) {
    const std::string patterns = testing::readByPatterns(line, settings);
    const std::string scanner = testing::readByScanner(line, settings);
    if (patterns != scanner) {
        CAPTURE(line);
        CHECK(scanner == patterns);
    }
}

// Some million lines fewer where each is a tenth as fast.
constexpr unsigned longest = tessaly::tests::isSanitized ? 4 : 5;

/// Every sequence of at most `left` tokens behind `line`.
void everySequence(const Tokens& tokens, unsigned left, const std::string& line = {}) {
    same(line);
    if (left > 0) {
        for (const std::string& token : tokens) {
            everySequence(tokens, left - 1, line + token);
        }
    }
}

std::string randomLine(std::mt19937& random, std::size_t length) {
    std::string line;
    for (std::size_t i = 0; i < length; ++i) {
        line += allTokens[random() % allTokens.size()];
    }
    return line;
}

}  // namespace

TEST_CASE("the scanner reads every short sequence of basic tokens as the patterns do") {
    everySequence(basicTokens, longest);
}

TEST_CASE(
    "the scanner reads every sequence of up to three tokens of all kinds as the patterns do") {
    everySequence(allTokens, 3);
}

TEST_CASE("the scanner reads seeded random lines as the patterns do") {
    std::mt19937 random(20190305);
    const std::array<MarkerSettings, 3> settings{{{}, {false, true, false}, {false, false, true}}};
    for (int i = 0; i < 50'000; ++i) {
        same(randomLine(random, 3 + random() % 12), settings[random() % settings.size()]);
    }
}
