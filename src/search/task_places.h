// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "grammar/line_scanner.h"
#include "grammar/todo.h"

namespace tessaly::search {

/// Where a task's line lies in a note's folded text, in bytes.
struct TaskPlace {
    std::uint32_t start = 0;
    std::uint32_t length = 0;  ///< without "\n"
    std::uint32_t lineIndex : 28 = 0;
    std::uint32_t type : 4 = 0;  ///< `grammar::TodoType`; a task's

    std::size_t end() const { return std::size_t{start} + length; }
    grammar::TodoType todoType() const { return static_cast<grammar::TodoType>(type); }
};

/// The tasks of a note in order; `text` is its content, `foldedText` its folded form or the same
/// bytes.
std::vector<TaskPlace> tasksOf(std::string_view text, std::string_view foldedText,
                               const grammar::MarkerSettings& markers,
                               grammar::NoteScanner& scanner);

}  // namespace tessaly::search
