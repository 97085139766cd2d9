// SPDX-License-Identifier: MIT
#include "base/field_wise_format.h"

#include <algorithm>

namespace tessaly::base {
namespace {

constexpr Day monday{std::chrono::year{2018}, std::chrono::January, std::chrono::day{1}};

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// Reads what stands between apostrophes from behind the first on; two of them are one.
std::string quotedText(std::string_view pattern, std::size_t& at) {
    std::string text;
    if (at < pattern.size() && pattern[at] == '\'') {
        ++at;
        return "'";
    }
    for (; at < pattern.size(); ++at) {
        if (pattern[at] == '\'') {
            if (at + 1 == pattern.size() || pattern[at + 1] != '\'') {
                ++at;
                break;
            }
            ++at;
        }
        text += pattern[at];
    }
    return text;
}

}  // namespace

std::optional<FieldWiseFormat> FieldWiseFormat::of(std::string_view pattern,
                                                   const FormatField& format) {
    FieldWiseFormat made;
    for (std::size_t at = 0; at < pattern.size();) {
        const char letter = pattern[at];
        if (letter == '\'') {
            made._parts.push_back({Field::literal, {quotedText(pattern, ++at)}});
        } else if (!isLetter(letter)) {
            made._parts.push_back({Field::literal, {std::string(1, letter)}});
            ++at;
        } else {
            const std::size_t end = std::min(pattern.find_first_not_of(letter, at), pattern.size());
            Part part = partOf(letter, end - at, format);
            if (part.texts.empty()) {
                return std::nullopt;
            }
            made._parts.push_back(std::move(part));
            at = end;
        }
    }
    return made;
}

FieldWiseFormat::Part FieldWiseFormat::partOf(char letter, std::size_t count,
                                              const FormatField& format) {
    const std::string pattern(count, letter);
    Part part;
    const auto add = [&](int texts, const auto& dayOf) {
        for (int i = 0; i < texts; ++i) {
            part.texts.push_back(format(pattern, dayOf(i)));
        }
    };
    // The first of January 2018 was a Monday.
    switch (letter) {
        case 'E':
        case 'c':
            part.field = Field::weekday;
            add(7, [](int i) { return addDays(monday, i - 1); });
            break;
        case 'd':
            part.field = Field::dayOfMonth;
            add(31, [](int i) { return addDays(monday, i); });
            break;
        case 'M':
        case 'L':
            part.field = Field::month;
            add(12, [](int i) { return addMonths(monday, i); });
            break;
        default: break;
    }
    return part;
}

std::string FieldWiseFormat::text(Day day) const {
    std::string text;
    for (const Part& part : _parts) {
        std::size_t place = 0;
        switch (part.field) {
            case Field::literal: break;
            case Field::weekday:
                place = std::chrono::weekday{std::chrono::sys_days{day}}.c_encoding();
                break;
            case Field::dayOfMonth: place = static_cast<unsigned>(day.day()) - 1; break;
            case Field::month: place = static_cast<unsigned>(day.month()) - 1; break;
        }
        text += part.texts[place];
    }
    return text;
}

}  // namespace tessaly::base
