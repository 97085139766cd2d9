// SPDX-License-Identifier: MIT
#include "cli/terminal.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>
#include <string_view>
#include <unistd.h>

#include <sys/ioctl.h>

namespace tessaly::cli {

namespace {

constexpr std::size_t narrowest = 20;  // below this, cutting would leave nothing to read

std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string_view{} : std::string_view{value};
}

bool localeIsUtf8() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        std::string value{environment(name)};
        if (value.empty()) {
            continue;
        }
        std::transform(value.begin(), value.end(), value.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        return value.find("utf-8") != std::string::npos || value.find("utf8") != std::string::npos;
    }
    return false;
}

std::size_t columnsOfTerminal() {
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        return std::max<std::size_t>(size.ws_col, narrowest);
    }
    return Terminal{}.columns;
}

bool wantsColors(ColorChoice choice, bool isTerminal) {
    if (choice != ColorChoice::automatic) {
        return choice == ColorChoice::always;
    }
    return isTerminal && environment("NO_COLOR").empty() && environment("TERM") != "dumb";
}

}  // namespace

Terminal describeStandardOutput(ColorChoice colors) {
    Terminal terminal;
    terminal.isTerminal = isatty(STDOUT_FILENO) == 1;
    terminal.hasColors = wantsColors(colors, terminal.isTerminal);
    terminal.isUtf8 = localeIsUtf8();
    if (terminal.isTerminal) {
        terminal.columns = columnsOfTerminal();
    }
    return terminal;
}

}  // namespace tessaly::cli
