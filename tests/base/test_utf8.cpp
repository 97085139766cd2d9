// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include <doctest/doctest.h>
#include <fmt/format.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include "base/utf8.h"

using namespace tessaly;

namespace {

/// A text as ICU reads it; where ICU finds no code point, the byte counts as U+FFFD.
struct Reading {
    bool valid = true;
    std::vector<std::size_t> borders{0};  ///< byte offsets of the code points, and the size
    std::u16string units;
};

Reading readByIcu(const std::string& text) {
    Reading reading;
    const auto size = static_cast<std::int32_t>(text.size());
    for (std::int32_t at = 0; at < size;) {
        std::int32_t next = at;
        UChar32 c = 0;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"  // ICU's macro narrows
        U8_NEXT(text.data(), next, size, c);
#pragma GCC diagnostic pop
        reading.valid = reading.valid && c >= 0;
        at = c < 0 ? at + 1 : next;
        c = c < 0 ? 0xFFFD : c;
        reading.borders.push_back(static_cast<std::size_t>(at));
        if (c > 0xFFFF) {
            reading.units += {U16_LEAD(c), U16_TRAIL(c)};
        } else {
            reading.units += static_cast<char16_t>(c);
        }
    }
    return reading;
}

std::vector<std::size_t> bordersForward(const std::string& text) {
    std::vector<std::size_t> borders{0};
    while (borders.back() < text.size()) {
        borders.push_back(borders.back() + base::codePointAt(text, borders.back()).size);
    }
    return borders;
}

std::vector<std::size_t> bordersBackward(const std::string& text) {
    std::vector<std::size_t> borders{text.size()};
    while (borders.back() > 0) {
        borders.push_back(borders.back() - base::codePointBefore(text, borders.back()).size);
    }
    std::reverse(borders.begin(), borders.end());
    return borders;
}

/// Where each UTF-16 unit of the text starts, and its end.
bool offsetsAgree(const std::string& text, const Reading& reading) {
    std::size_t unit = 0;
    for (std::size_t i = 0; i + 1 < reading.borders.size(); ++i) {
        const std::size_t width = reading.borders[i + 1] - reading.borders[i] == 4 ? 2 : 1;
        for (std::size_t end = unit + width; unit < end; ++unit) {
            if (base::byteOffset(text, unit) != reading.borders[i]) {
                return false;
            }
        }
    }
    return base::byteOffset(text, unit) == text.size() &&
           base::byteOffset(text, unit + 5) == text.size();
}

/// Empty when all functions read `text` as ICU does, else what differs.
std::string difference(const std::string& text) {
    const Reading reading = readByIcu(text);
    const char* const what = bordersForward(text) != reading.borders           ? "codePointAt"
                             : bordersBackward(text) != reading.borders        ? "codePointBefore"
                             : base::isUtf8(text) != reading.valid             ? "isUtf8"
                             : base::toUtf16(text) != reading.units            ? "toUtf16"
                             : base::utf16Length(text) != reading.units.size() ? "utf16Length"
                             : !offsetsAgree(text, reading)                    ? "byteOffset"
                             : reading.valid && base::toUtf8(base::toUtf16(text)) != text ? "toUtf8"
                                                                                          : nullptr;
    return what == nullptr ? "" : fmt::format("{} of {:?}", what, text);
}

/// All texts of up to `length` of the bytes at which decoding decides something.
std::string firstDifference(std::string text, std::size_t length) {
    static constexpr unsigned char bytes[] = {0x00, 'a',  0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF,
                                              0xC0, 0xC1, 0xC2, 0xDF, 0xE0, 0xE1, 0xEC, 0xED, 0xEE,
                                              0xEF, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5, 0xFF};
    std::string found = difference(text);
    for (std::size_t i = 0; i < std::size(bytes) && found.empty() && length > 0; ++i) {
        found = firstDifference(text + static_cast<char>(bytes[i]), length - 1);
    }
    return found;
}

}  // namespace

TEST_CASE("short texts of any bytes read as ICU reads them") {
    CHECK(firstDifference("", 4) == "");
}

TEST_CASE("runs of ASCII of any length around other characters read as ICU reads them") {
    for (const char* middle : {"é", "€", "😀", "\xFF", "\xF0\x9F\x98", "é€😀", "é12345678😀"}) {
        for (std::size_t before = 0; before < 18; ++before) {
            for (std::size_t after = 0; after < 18; ++after) {
                const auto text = std::string(before, 'x') + middle + std::string(after, 'y');
                REQUIRE(difference(text) == "");
            }
        }
    }
}

TEST_CASE("surrogates without a partner become U+FFFD") {
    struct Row {
        std::u16string utf16;
        const char* utf8;
    };
    const Row rows[] = {
        {u"a\xD83D", "a\uFFFD"},           {u"\xDE00z", "\uFFFDz"},
        {u"\xDE00\xD83D", "\uFFFD\uFFFD"}, {u"\xD83D\xD83D\xDE00", "\uFFFD😀"},
        {u"\xDBFF\xDFFF", "\U0010FFFF"},
    };
    for (const auto& row : rows) {
        CHECK(base::toUtf8(row.utf16) == row.utf8);
    }
    std::string text;
    base::appendUtf8(text, 0xD800);
    base::appendUtf8(text, 0x110000);
    CHECK(text == "\uFFFD\uFFFD");
}

TEST_CASE("white space is Unicode's") {
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
        REQUIRE(base::isWhiteSpace(c) == (u_isUWhiteSpace(static_cast<UChar32>(c)) != 0));
    }
}

TEST_CASE("trimming takes white space of any kind, and nothing else") {
    struct Row {
        const char* text;
        const char* start;
        const char* end;
        const char* both;
    };
    const Row rows[] = {
        {"", "", "", ""},
        {" \t\u00A0\u3000", "", "", ""},
        {" a b\r\n", "a b\r\n", " a b", "a b"},
        {"\u2003é\u2003", "é\u2003", "\u2003é", "é"},
        {"\u200B", "\u200B", "\u200B", "\u200B"},
        {"\x85 \xA0", "\x85 \xA0", "\x85 \xA0", "\x85 \xA0"},
    };
    for (const auto& row : rows) {
        CHECK(base::trimmedStart(row.text) == row.start);
        CHECK(base::trimmedEnd(row.text) == row.end);
        CHECK(base::trimmed(row.text) == row.both);
    }
}

TEST_CASE("lower case follows Unicode, in no country's way") {
    struct Row {
        const char* text;
        const char* lower;
    };
    const Row rows[] = {
        {"TITLE I [@`{", "title i [@`{"},
        {"ÄRGER", "ärger"},
        {"ΟΔΟΣ", "οδος"},
        {"İ", "i\u0307"},
        {"ẞ", "ß"},
        {"A\xFFÉ", "a\xFFé"},
    };
    for (const auto& row : rows) {
        CHECK(base::lowerCased(row.text) == row.lower);
    }
}
