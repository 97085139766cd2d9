// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "base/locale_formats.h"
#include "base/text_range.h"
#include "grammar/line_scanner.h"

namespace tessaly::grammar {

/// ` >2019-05-21`, ` <2019-05-20` or ` @2019-05-22` in a line.
struct DateTag {
    MarkKind kind = MarkKind::scheduleTag;
    base::TextRange range;         ///< with the white-space character before it, if any
    std::string dateText;          ///< "2019-05-21"
    std::optional<base::Day> day;  ///< nothing when the text names no real day (2019-02-31)
};

/// ` @done(2019-05-21 09:05 PM)` in a line.
struct DoneTag {
    base::TextRange range;  ///< with the white-space character before it, if any
    std::string dateText;
    std::string timeText;  ///< "09:05 PM"; empty when the tag has no time
    std::optional<base::Day> day;
    /// The time on a 24-hour clock: 12:30 AM is 00:30, and 14:07 PM stays 14:07.
    std::optional<base::LocalTime> time;
};

/// Date tags are found by reading the line once; ranges are UTF-16 units of the line.
class DateTags {
public:
    /// The first date tag; nothing when there is none.
    static std::optional<DateTag> findDateTag(std::string_view line);
    static std::vector<DateTag> findDateTags(std::string_view line);

    /// The line without its date tags, each with the white space before it.
    static std::string removeDateTags(std::string_view line);

    /// The first completion tag; nothing when there is none.
    static std::optional<DoneTag> findDoneTag(std::string_view line);
    static std::vector<DoneTag> findDoneTags(std::string_view line);

    /// The line without its completion tags, each with the white space before it.
    static std::string findAndRemoveDoneTag(std::string_view line);

    /// A mark of kind `doneTag`, read; `mark` is its text, the range is left empty.
    static DoneTag readDoneTag(std::string_view mark);

    /// The day of a mark that is a date tag; `mark` is its text. Nothing for no real day.
    static std::optional<base::Day> dayOf(std::string_view mark);
};

/// What is written behind a tag's date.
enum class TagTime { none, time, timeAndMarker };

/// A date as tags hold it, in ASCII digits, with "AM" or "PM", whatever the locale: "2019-05-21",
/// "2019-05-21 14:07" or "2019-05-21 02:07 PM".
std::string writeTagDate(const base::LocalTime& time, TagTime with, base::HourCycle cycle);

}  // namespace tessaly::grammar
