// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "tasks/operation.h"

namespace tessaly::tasks {

/// An operation as a file of the journal holds it: lines that begin with a word, their fields
/// separated by tabs and so written that any line of a note fits in one. The first line names the
/// form and its version. Its number is the file's name and not part of it. Behind the operation,
/// lines may follow that tell of single steps anew.
///
///     tessaly operation 1
///     time     2019-12-31T14:07:00.000000000Z
///     cause    scheduled
///     day      2020-01-03               (if it has one)
///     undoes   41                       (if it does)
///     tasks    1
///     title    Call Bob
///     steps    2
///     step     0  Calendar  20200103.txt  HASH BEFORE  HASH AFTER
///     stays                             (if it stays when undone)
///     bytes    OFFSET  REMOVED  INSERTED
///     append   INDEX  NEW INDEX  ALIKE  BEFORE  AFTER  ANCHOR
///     end
///     step     1  ...
std::string textOf(const Operation& operation);

/// What is appended when step `index` turned out to be another than was written first. Begins with
/// a line break, which ends what an interrupted write may have left.
std::string textOf(std::size_t index, const NoteStep& step);

/// What is appended when the first `count` steps have been made.
std::string textOfStepsMade(std::size_t count);

/// Reads all of these; the last that is told of a step holds. A step without its end, and whatever
/// follows the last complete line, is a write that was interrupted, and is passed over. Nothing
/// when it is no operation, is of a later version, or lacks one of its steps.
std::optional<Operation> operationOf(std::string_view text);

}  // namespace tessaly::tasks
