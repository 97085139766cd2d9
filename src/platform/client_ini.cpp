// SPDX-License-Identifier: MIT
#include "platform/client_ini.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <utility>

#include "base/utf8.h"

namespace tessaly::platform {

namespace {

constexpr std::string_view hexDigits = "0123456789abcdefABCDEF";

struct Escape {
    char letter;
    char meaning;
};
constexpr std::array<Escape, 7> escapes{
    {{'a', '\a'}, {'b', '\b'}, {'f', '\f'}, {'n', '\n'}, {'r', '\r'}, {'t', '\t'}, {'v', '\v'}}};

char meaningOf(char letter) {
    for (const Escape& escape : escapes) {
        if (escape.letter == letter) {
            return escape.meaning;
        }
    }
    return letter;
}

bool isHighHalf(char32_t unit) {
    return unit >= 0xd800 && unit < 0xdc00;
}

bool isLowHalf(char32_t unit) {
    return unit >= 0xdc00 && unit < 0xe000;
}

/// Reads the value from its start to its end once.
class Unescaping {
public:
    explicit Unescaping(std::string_view value) : _rest(value) {}

    std::string text() {
        while (!_rest.empty()) {
            const char c = _rest[0];
            _rest.remove_prefix(1);
            if (c == '\\') {
                readEscape();
            } else if (c != '"') {
                _text += c;
            }
        }
        return std::move(_text);
    }

private:
    void readEscape() {
        if (const auto unit = takeUnit()) {
            base::appendUtf8(_text, wholeOf(*unit));
        } else if (!_rest.empty()) {
            _text += meaningOf(_rest[0]);
            _rest.remove_prefix(1);
        }
    }

    /// The number of "x2f", if that comes next.
    std::optional<char32_t> takeUnit() {
        if (!_rest.starts_with('x')) {
            return std::nullopt;
        }
        const std::string_view digits = _rest.substr(1, _rest.find_first_not_of(hexDigits, 1) - 1);
        std::uint32_t unit = 0;
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), unit, 16);
        if (error != std::errc()) {
            return std::nullopt;
        }
        _rest.remove_prefix(1 + digits.size());
        return unit;
    }

    /// With the second half of a pair behind it, which is taken.
    char32_t wholeOf(char32_t unit) {
        const std::string_view before = _rest;
        if (isHighHalf(unit) && _rest.starts_with('\\')) {
            _rest.remove_prefix(1);
            const auto low = takeUnit();
            if (low && isLowHalf(*low)) {
                return 0x10000 + ((unit - 0xd800) << 10) + (*low - 0xdc00);
            }
            _rest = before;
        }
        const bool isCharacter = unit <= 0x10ffff && !isHighHalf(unit) && !isLowHalf(unit);
        return isCharacter ? unit : U'�';
    }

    std::string_view _rest;
    std::string _text;
};

}  // namespace

std::vector<IniLine> iniLines(std::string_view text) {
    std::vector<IniLine> lines;
    std::string_view section;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = base::trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        const std::size_t equals = line.find('=');
        if (line.starts_with('[') && line.ends_with(']')) {
            section = line.substr(1, line.size() - 2);
        } else if (equals != line.npos && !line.starts_with(';') && !line.starts_with('#')) {
            lines.push_back({section, base::trimmed(line.substr(0, equals)),
                             base::trimmed(line.substr(equals + 1))});
        }
    }
    return lines;
}

std::string unescaped(std::string_view value) {
    return Unescaping(value).text();
}

std::string_view unquoted(std::string_view value) {
    const bool isQuoted =
        value.size() >= 2 && value[0] == value.back() && (value[0] == '"' || value[0] == '\'');
    return isQuoted ? value.substr(1, value.size() - 2) : value;
}

}  // namespace tessaly::platform
