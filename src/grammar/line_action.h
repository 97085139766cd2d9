// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tessaly::grammar {

/// How a command changes a line. The patterns are in ICU syntax and count at the line's start only;
/// in the templates `$1` … `$9`, one digit each, stand for groups, and every other character for
/// itself. Null: there is none; then nothing matches, and nothing is put in.
struct LineAction {
    /// What a line must match to be changed, and what is put in the match's place.
    const char16_t* linePattern = nullptr;
    const char* applyTemplate = nullptr;
    /// What is taken off before that, a box or another prefix, and what stays of its match.
    const char16_t* stripPattern = nullptr;
    const char* stripTemplate = nullptr;
    /// Finds that the line has been changed so already, and what stays of the match then.
    const char16_t* appliedPattern = nullptr;
    const char* removeTemplate = nullptr;
    /// Lines that match are left alone.
    const char16_t* exclusionPattern = nullptr;
};

/// A command that changes a task's state.
struct StateAction {
    LineAction record;
    enum class DoneTag { stays, goes } doneTag;  ///< what becomes of completion tags
};

extern const StateAction markAsDone;
extern const StateAction markAsCanceled;
extern const StateAction markAsScheduled;

/// One line, which holds no "\n", after the action; an excluded one and one that the line pattern
/// does not match stay as they are. A line that has been changed so already is changed back. What
/// stands behind a line terminator within the line (a carriage return, U+2028) stays. A line that
/// ICU gives up, one with a million digits say, also stays as it is.
std::string applied(const LineAction& action, std::string_view line);

/// As the record alone, for a state command; where it takes completion tags off, they go from the
/// lines that it changes, and the blank stays that belongs to the marker or the box. Linear in the
/// length of the line, and gives none up.
std::string applied(const StateAction& action, std::string_view line);

/// Whether the action would change a line with the line pattern, be it that it changes it back.
bool isApplicable(const LineAction& action, std::string_view line);

}  // namespace tessaly::grammar
