// SPDX-License-Identifier: MIT
#include "base/utf8.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <simdjson.h>

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/stringpiece.h>

namespace tessaly::base {

namespace {

constexpr CodePoint broken{0xFFFD, 1};

unsigned byteAt(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

bool isContinuation(unsigned byte) {
    return (byte & 0xC0) == 0x80;
}

/// The bytes of the ASCII run that starts at `at`. Whole notes go through here, and most of most
/// notes is ASCII.
std::size_t asciiRun(std::string_view text, std::size_t at) {
    constexpr std::uint64_t highBits = 0x8080'8080'8080'8080;
    const std::size_t start = at;
    for (std::uint64_t eight; at + sizeof eight <= text.size(); at += sizeof eight) {
        std::memcpy(&eight, text.data() + at, sizeof eight);
        if ((eight & highBits) != 0) {
            break;
        }
    }
    while (at < text.size() && byteAt(text, at) < 0x80) {
        ++at;
    }
    return at - start;
}

constexpr std::size_t unitsOf(CodePoint c) {
    return c.value > 0xFFFF ? 2 : 1;
}

}  // namespace

CodePoint codePointBeyondAscii(std::string_view text, std::size_t at) {
    const unsigned lead = byteAt(text, at);
    const unsigned size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || at + size > text.size()) {
        return broken;
    }
    char32_t value = lead & (0xFFU >> (size + 1));
    for (unsigned i = 1; i < size; ++i) {
        const unsigned byte = byteAt(text, at + i);
        if (!isContinuation(byte)) {
            return broken;
        }
        value = value << 6 | (byte & 0x3F);
    }
    const bool overlong = (size == 3 && value < 0x800) || (size == 4 && value < 0x10000);
    const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
    return overlong || surrogate || value > 0x10FFFF ? broken : CodePoint{value, size};
}

CodePoint codePointBefore(std::string_view text, std::size_t end) {
    for (std::size_t size = 1; size <= 4 && size <= end; ++size) {
        const CodePoint found = codePointAt(text, end - size);
        if (found.size == size && (size > 1 || byteAt(text, end - 1) < 0x80)) {
            return found;
        }
    }
    return broken;
}

void appendUtf8(std::string& text, char32_t value) {
    if (value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
        value = 0xFFFD;
    }
    const auto put = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (value < 0x80) {
        put(value);
    } else if (value < 0x800) {
        put(0xC0 | value >> 6);
        put(0x80 | (value & 0x3F));
    } else if (value < 0x10000) {
        put(0xE0 | value >> 12);
        put(0x80 | (value >> 6 & 0x3F));
        put(0x80 | (value & 0x3F));
    } else {
        put(0xF0 | value >> 18);
        put(0x80 | (value >> 12 & 0x3F));
        put(0x80 | (value >> 6 & 0x3F));
        put(0x80 | (value & 0x3F));
    }
}

bool isAscii(std::string_view text) {
    return asciiRun(text, 0) == text.size();
}

bool isUtf8(std::string_view text) {
    return simdjson::validate_utf8(text.data(), text.size());
}

std::size_t utf16Length(std::string_view text) {
    std::size_t units = 0;
    for (std::size_t at = 0; at < text.size();) {
        if (byteAt(text, at) < 0x80) {
            const std::size_t run = asciiRun(text, at);
            units += run;
            at += run;
            continue;
        }
        const CodePoint c = codePointAt(text, at);
        units += unitsOf(c);
        at += c.size;
    }
    return units;
}

std::size_t byteOffset(std::string_view text, std::size_t units) {
    std::size_t at = 0;
    while (at < text.size() && units > 0) {
        if (byteAt(text, at) < 0x80) {
            const std::size_t run = asciiRun(text.substr(at, units), 0);
            units -= run;
            at += run;
            continue;
        }
        const CodePoint c = codePointAt(text, at);
        if (unitsOf(c) > units) {
            break;
        }
        units -= unitsOf(c);
        at += c.size;
    }
    return at;
}

std::u16string toUtf16(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        if (byteAt(text, at) < 0x80) {
            const std::string_view run = text.substr(at, asciiRun(text, at));
            result.append(run.begin(), run.end());
            at += run.size();
            continue;
        }
        const CodePoint c = codePointAt(text, at);
        if (c.value > 0xFFFF) {
            result.push_back(static_cast<char16_t>(0xD7C0 + (c.value >> 10)));
            result.push_back(static_cast<char16_t>(0xDC00 | (c.value & 0x3FF)));
        } else {
            result.push_back(static_cast<char16_t>(c.value));
        }
        at += c.size;
    }
    return result;
}

std::u32string toUtf32(std::string_view text) {
    std::u32string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const CodePoint c = codePointAt(text, at);
        result.push_back(c.value);
        at += c.size;
    }
    return result;
}

std::string toUtf8(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char32_t unit = text[at];
        const bool paired = unit >= 0xD800 && unit <= 0xDBFF && at + 1 < text.size() &&
                            text[at + 1] >= 0xDC00 && text[at + 1] <= 0xDFFF;
        if (paired) {
            appendUtf8(result, 0x10000 + ((unit - 0xD800) << 10) + (text[at + 1] - 0xDC00U));
            ++at;
        } else {
            appendUtf8(result, unit);
        }
    }
    return result;
}

std::string_view trimmedStart(std::string_view text) {
    while (!text.empty()) {
        const CodePoint c = codePointAt(text, 0);
        if (!isWhiteSpace(c.value)) {
            break;
        }
        text.remove_prefix(c.size);
    }
    return text;
}

std::string_view trimmedEnd(std::string_view text) {
    while (!text.empty()) {
        const CodePoint c = codePointBefore(text, text.size());
        if (!isWhiteSpace(c.value)) {
            break;
        }
        text.remove_suffix(c.size);
    }
    return text;
}

std::string_view trimmed(std::string_view text) {
    return trimmedStart(trimmedEnd(text));
}

std::string lowerCased(std::string_view text) {
    std::string result;
    if (isAscii(text)) {
        result.resize(text.size());
        std::transform(text.begin(), text.end(), result.begin(), [](char c) {
            return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        });
        return result;
    }
    icu::StringByteSink<std::string> sink(&result);
    UErrorCode status = U_ZERO_ERROR;
    icu::CaseMap::utf8ToLower("", 0,
                              icu::StringPiece(text.data(), static_cast<int32_t>(text.size())),
                              sink, nullptr, status);
    return U_SUCCESS(status) ? result : std::string(text);
}

}  // namespace tessaly::base
