// SPDX-License-Identifier: MIT
#include <charconv>
#include <string>

#include "app/note_address.h"
#include "base/enum_names.h"
#include "base/localisation.h"
#include "base/normalise.h"
#include "base/utf8.h"
#include "base/weekday.h"

namespace tessaly::app {
namespace {

// Words are compared composed, in lower case and without the dot of an abbreviation.
std::string comparableWord(std::string_view word) {
    std::string result = base::lowerCased(base::nfc(base::trimmed(word)));
    while (!result.empty() && result.back() == '.') {
        result.pop_back();
    }
    return result;
}

std::optional<base::Day> dayOfWord(const std::string& word, base::Day today) {
    const struct {
        std::string_view english;
        std::string users;
        int days;
    } rows[] = {{"yesterday", base::tr("yesterday"), -1},
                {"today", base::tr("today"), 0},
                {"tomorrow", base::tr("tomorrow"), 1}};
    for (const auto& row : rows) {
        if (word == row.english || word == comparableWord(row.users)) {
            return base::addDays(today, row.days);
        }
    }
    return std::nullopt;
}

// "+3d": at most four digits, so that no day leaves the years that files can name by far.
std::optional<base::Day> movedDay(std::string_view text, base::Day today) {
    if (text.size() < 3 || text.size() > 6 || (text[0] != '+' && text[0] != '-')) {
        return std::nullopt;
    }
    int count = 0;
    const char* const unit = text.data() + text.size() - 1;
    const auto [end, error] = std::from_chars(text.data() + 1, unit, count);
    if (error != std::errc{} || end != unit || count < 0) {
        return std::nullopt;
    }
    count = text[0] == '-' ? -count : count;
    switch (*unit) {
        case 'd': return base::addDays(today, count);
        case 'w': return base::addDays(today, 7 * count);
        case 'm': return base::addMonths(today, count);
        case 'y': return base::addMonths(today, 12 * count);
        default: return std::nullopt;
    }
}

bool isEnglishWeekday(const std::string& word, base::Day day) {
    const std::chrono::weekday weekday{std::chrono::sys_days{day}};
    const auto name = base::rawValue(static_cast<base::DayOfWeek>(weekday.c_encoding()));
    return word == name || word == name.substr(0, 3);
}

bool isUsersWeekday(const std::string& word, base::Day day, const base::LocaleFormats& formats) {
    return word == comparableWord(formats.day(day, "EEEE")) ||
           word == comparableWord(formats.day(day, "EEE"));
}

std::optional<base::Day> nextWeekday(const std::string& word, base::Day today,
                                     const base::LocaleFormats& formats) {
    for (int i = 1; i <= 7; ++i) {
        const base::Day day = base::addDays(today, i);
        if (isEnglishWeekday(word, day) || isUsersWeekday(word, day, formats)) {
            return day;
        }
    }
    return std::nullopt;
}

/// Whether the day and the week around it have names as files.
bool hasFileName(base::Day day) {
    return day.year() > std::chrono::year{0} && day.year() < std::chrono::year{9999};
}

}  // namespace

std::optional<base::Day> parseDay(std::string_view text, base::Day today,
                                  const base::LocaleFormats& formats) {
    const std::string word = comparableWord(text);
    if (word.empty()) {
        return std::nullopt;
    }
    auto day = base::dayFromFileText(word);
    day = day ? day : base::dayFromTagText(word);
    day = day ? day : dayOfWord(word, today);
    day = day ? day : movedDay(word, today);
    day = day ? day : nextWeekday(word, today, formats);
    return day && hasFileName(*day) ? day : std::nullopt;
}

}  // namespace tessaly::app
