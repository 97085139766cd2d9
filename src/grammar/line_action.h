// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tessaly::grammar {

/// How a command changes a line. The patterns are in ICU syntax and count at the line's start only;
/// in the templates `$1` … `$9` stand for groups.
struct LineAction {
    /// A line must match it to be changed; 1 the marker with its blank · 2 the rest.
    const char16_t* linePattern;
    /// Finds a box that is there; 1 the marker without its blank · 2 the text behind the box.
    const char16_t* boxPattern;
    const char* applyTemplate;         ///< for the match of `linePattern`: puts the new box in
    const char16_t* appliedPattern;    ///< the line has this state already
    const char* removeTemplate;        ///< for the match of `boxPattern`: takes the state off
    const char16_t* exclusionPattern;  ///< lines that match are left alone; null: none
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
/// does not match stay as they are. A line that has the state already loses it, and its box. What
/// stands behind a line terminator within the line (a carriage return, U+2028) stays. A line that
/// ICU gives up, one with a million digits say, also stays as it is.
std::string applied(const LineAction& action, std::string_view line);

/// As the record alone, for a state command; where it takes completion tags off, they go from the
/// lines that it changes, and the blank stays that belongs to the marker or the box. Linear in the
/// length of the line, and gives none up.
std::string applied(const StateAction& action, std::string_view line);

/// Whether the action would change the line, be it that it takes the state off.
bool isApplicable(const LineAction& action, std::string_view line);

}  // namespace tessaly::grammar
