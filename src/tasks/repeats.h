// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/day.h"
#include "base/enum_names.h"
#include "base/localisation.h"

namespace tessaly::tasks {

/// The unit in which a task repeats.
enum class RepeatInterval { day, week, month, quarter, year };

/// What a user reads for a unit, translated: "Day(s)".
std::string labelOf(RepeatInterval interval);

/// Words of the dialog in which a repeat is asked for; English, for `tr`.
inline constexpr const char* repeatCountLabel = base::N_("For the next");
inline constexpr const char* repeatExplanation = base::N_(
    "This will copy the selection to multiple notes. Delete the full line to delete all repeats.");
/// Asked before a line with a repeat tag is deleted; English, for `tr`.
inline constexpr const char* deleteRepeatsQuestion =
    base::N_("This is a repeating todo. Delete future todos too?");

/// `from` moved by `count` units in the Gregorian calendar; months, quarters (of three months) and
/// years end on the target month's last day where it has fewer. Nothing outside the years 0–9999.
std::optional<base::Day> repeatDay(base::Day from, RepeatInterval interval, int count);

/// " @repeat(2/5)" in a line: a mention as the grammar has it. Places are bytes from the line's
/// start.
struct RepeatTag {
    int index = 0;
    int count = 0;
    std::size_t start = 0;  ///< of the white-space character before it, if any
    std::size_t end = 0;
};

/// The first repeat tag with two positive numbers of at most nine digits; nothing when there is
/// none.
std::optional<RepeatTag> findRepeatTag(std::string_view line);

/// Whether a line carries "@final-repeat".
bool hasFinalRepeat(std::string_view line);

/// The line without its repeat tags and "@final-repeat", each with the white space before it.
std::string removeRepeatTags(std::string_view line);

/// Whether `other` is a later repeat of `line`: the same line but for a higher number in a repeat
/// tag of the same count. A "\r" at the end of either does not matter.
bool isLaterRepeat(std::string_view line, std::string_view other);

}  // namespace tessaly::tasks

template <>
struct tessaly::base::EnumNames<tessaly::tasks::RepeatInterval> {
    using T = tasks::RepeatInterval;
    static constexpr std::array<EnumName<T>, 5> rows{{{T::day, "day"},
                                                      {T::week, "week"},
                                                      {T::month, "month"},
                                                      {T::quarter, "quarter"},
                                                      {T::year, "year"}}};
};
