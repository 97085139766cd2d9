// SPDX-License-Identifier: MIT
#include "tasks/repeats.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "base/localisation.h"
#include "base/utf8.h"
#include "grammar/line_scanner.h"

namespace tessaly::tasks {

namespace {

constexpr std::string_view repeatOpener = "@repeat(";
constexpr std::string_view finalRepeat = "@final-repeat";
constexpr int lastYear = 9999;

struct Unit {
    const char* label;
    int days;
    int months;
};

/// In the order of `RepeatInterval`.
constexpr std::array<Unit, 5> units{{{base::N_("Day(s)"), 1, 0},
                                     {base::N_("Week(s)"), 7, 0},
                                     {base::N_("Month(s)"), 0, 1},
                                     {base::N_("Quarter(s)"), 0, 3},
                                     {base::N_("Year(s)"), 0, 12}}};

const Unit& unitOf(RepeatInterval interval) {
    return units.at(static_cast<std::size_t>(interval));
}

/// A positive number of at most nine digits that is all of `text`.
std::optional<int> countIn(std::string_view text) {
    constexpr std::size_t mostDigits = 9;
    int value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    const bool isNumber = error == std::errc{} && stop == end && text.size() <= mostDigits;
    return isNumber && value > 0 ? std::optional{value} : std::nullopt;
}

/// What a mention says when it is a repeat tag; the places are left empty.
std::optional<RepeatTag> readRepeatTag(std::string_view mention) {
    if (!mention.starts_with(repeatOpener) || !mention.ends_with(')')) {
        return std::nullopt;
    }
    const std::string_view argument =
        mention.substr(repeatOpener.size(), mention.size() - repeatOpener.size() - 1);
    const std::size_t slash = argument.find('/');
    if (slash == argument.npos) {
        return std::nullopt;
    }
    const auto index = countIn(argument.substr(0, slash));
    const auto count = countIn(argument.substr(slash + 1));
    return index && count ? std::optional{RepeatTag{*index, *count}} : std::nullopt;
}

std::size_t withSpaceBefore(std::string_view line, std::size_t place) {
    if (place == 0) {
        return place;
    }
    const base::CodePoint before = base::codePointBefore(line, place);
    return base::isWhiteSpace(before.value) ? place - before.size : place;
}

/// Shows each mention with the place where it starts, the white space before it included, until
/// `visit` returns true.
template <class Visit>
void eachMention(std::string_view line, Visit visit) {
    std::vector<grammar::Mark> marks;
    grammar::findMarks(line, marks);
    for (const grammar::Mark& mark : marks) {
        if (mark.kind == grammar::MarkKind::mention &&
            visit(line.substr(mark.start, mark.end - mark.start), withSpaceBefore(line, mark.start),
                  mark.end)) {
            return;
        }
    }
}

std::string_view withoutReturn(std::string_view line) {
    return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

}  // namespace

std::string labelOf(RepeatInterval interval) {
    return base::tr(unitOf(interval).label);
}

std::optional<base::Day> repeatDay(base::Day from, RepeatInterval interval, int count) {
    // More than there are from the year 0 to the last; behind it a day's year could overflow.
    constexpr std::int64_t mostDays = 366LL * (lastYear + 1);
    constexpr std::int64_t mostMonths = 12LL * (lastYear + 1);
    const Unit& unit = unitOf(interval);
    const std::int64_t days = std::int64_t{unit.days} * count;
    const std::int64_t months = std::int64_t{unit.months} * count;
    if (std::abs(days) > mostDays || std::abs(months) > mostMonths) {
        return std::nullopt;
    }
    const base::Day moved = unit.days != 0 ? base::addDays(from, static_cast<int>(days))
                                           : base::addMonths(from, static_cast<int>(months));
    const int year = static_cast<int>(moved.year());
    return year >= 0 && year <= lastYear ? std::optional{moved} : std::nullopt;
}

std::optional<RepeatTag> findRepeatTag(std::string_view line) {
    std::optional<RepeatTag> found;
    eachMention(line, [&](std::string_view mention, std::size_t start, std::size_t end) {
        found = readRepeatTag(mention);
        if (found) {
            found->start = start;
            found->end = end;
        }
        return found.has_value();
    });
    return found;
}

bool hasFinalRepeat(std::string_view line) {
    bool found = false;
    eachMention(line, [&](std::string_view mention, std::size_t, std::size_t) {
        found = mention == finalRepeat;
        return found;
    });
    return found;
}

std::string removeRepeatTags(std::string_view line) {
    std::string kept;
    std::size_t from = 0;
    eachMention(line, [&](std::string_view mention, std::size_t start, std::size_t end) {
        if (mention == finalRepeat || readRepeatTag(mention)) {
            kept += line.substr(from, start - from);
            from = end;
        }
        return false;
    });
    return kept += line.substr(from);
}

bool isLaterRepeat(std::string_view line, std::string_view other) {
    line = withoutReturn(line);
    other = withoutReturn(other);
    const auto tag = findRepeatTag(line);
    const auto later = findRepeatTag(other);
    if (!tag || !later || later->count != tag->count || later->index <= tag->index) {
        return false;
    }
    const std::size_t number = line.find('(', tag->start);
    return line.substr(0, number) == other.substr(0, other.find('(', later->start)) &&
           line.substr(tag->end) == other.substr(later->end);
}

}  // namespace tessaly::tasks
