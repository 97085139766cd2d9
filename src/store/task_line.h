// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessaly::store {

/// A tag in a task line, with the white space that goes when it goes: what stands before it, or,
/// where it opens the content, behind it.
struct TaskTag {
    std::string_view lead;
    std::string_view core;  ///< from its sign on
    std::string_view trail;
    std::string_view family;  ///< what stays when its value changes: ">", "@done", "#name"
    std::size_t place = 0;    ///< before which byte of the line's `text` it stands
};

/// The fields of a task line. They point into the line.
struct TaskLine {
    std::string_view prefix;  ///< indent and marker
    std::string_view box;     ///< with its blank; empty for a bare marker
    std::string text;         ///< the content without its tags
    std::vector<TaskTag> tags;
    std::string_view tail;  ///< white space at the line's end, a carriage return among it
};

/// Takes a line apart, which holds no "\n". Nothing when it is no task; any marker makes one here,
/// with or without a box.
std::optional<TaskLine> readTaskLine(std::string_view line);

}  // namespace tessaly::store
