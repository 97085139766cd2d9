// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/day.h"
#include "base/locale_formats.h"
#include "grammar/todo.h"

namespace tessaly::tasks {

/// What the rewriting of task lines depends on.
struct RewriteSettings {
    grammar::MarkerSettings markers;
    bool isAppendCompletionLinks = true;
    bool isAppendScheduleLinks = true;
    bool isCopyScheduleGeneralNoteTodos = true;
    base::HourCycle hourCycle = base::HourCycle::twentyFour;
};

/// New forms of a task line. Lines are without "\n"; a "\r" at the end stays last, and what is
/// appended goes before it, behind blanks that stand there. A box that holds any one white-space
/// character counts as "[ ]". A line that is none of a task's or list's stays as it is. Pure; any
/// thread.

/// Whether the state actions can change the line: it begins with a marker and its blank.
bool isActionable(std::string_view line);

/// Done, with the time as a completion tag, instead of an earlier one, unless a setting keeps tags
/// away. A line that is done already loses its box: who does not want that asks first.
std::string completed(std::string_view line, const base::LocalTime& now,
                      const RewriteSettings& settings);

/// Cancelled, without completion tags. A line that is cancelled already loses its box.
std::string cancelled(std::string_view line);

/// Open again: without completion tags and with the box that its marker needs to be read as a task,
/// or none; a scheduled line also loses its schedule tags.
std::string reopened(std::string_view line, const grammar::MarkerSettings& markers);

/// Whether `scheduled` writes the day into the line: by the setting, but where no copy is made the
/// line alone can tell the day.
enum class WriteDay { no, yes };

/// Scheduled, also when it was so already, without completion tags; with `WriteDay::yes` all its
/// date tags give way to a schedule tag. A done or cancelled line stays as it is.
std::string scheduled(std::string_view line, base::Day day, WriteDay writeDay);

/// What stands for a line in the note of the day that it is scheduled to: open, with the same
/// marker, without indentation, completion tags, schedule tags, which would send it on, and "\r".
/// Its other date tags give way to a link back to `sourceDay`, the day of the line's note, where
/// links are wanted. Without a source day, that is for a line of a general note, they go and there
/// is no link.
std::string copyForDay(std::string_view line, std::optional<base::Day> sourceDay,
                       const RewriteSettings& settings);

/// The line as it is copied to the `index`th of `count` later days: open, with " @repeat(2/5)" at
/// its end, without completion, repeat, schedule and back-link tags, "@final-repeat" and "\r"; the
/// indentation stays, and so does the box of an open task. A line that is no task only gets the tag
/// instead of earlier ones.
std::string repeatCopy(std::string_view line, int index, int count,
                       const grammar::MarkerSettings& markers);

/// A completed last repeat with " @final-repeat" at its end; nothing for a line that is not done,
/// carries no "@repeat(n/n)", or has the tag already.
std::optional<std::string> withFinalRepeat(std::string_view line,
                                           const grammar::MarkerSettings& markers);

}  // namespace tessaly::tasks
