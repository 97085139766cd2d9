// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "base/failure.h"
#include "base/note_type.h"
#include "cli/change_report.h"
#include "cli/json_line.h"
#include "tasks/task_operations.h"

namespace tessaly::cli {

/// The report on lines that were changed. Complains of those that were not, and of other versions
/// of the notes.
ChangeReport reportOn(Context& context, const base::Result<tasks::TaskOutcome>& outcome);

/// "Calendar/20191231.txt", in a terminal "2019-12-31", safe to show.
std::string noteWords(const Context& context, const tasks::NoteName& note);

/// The same with a line, from 1.
std::string placeWords(const Context& context, const tasks::NoteName& note, std::size_t lineIndex);

/// Words and the line that they are about, as it looks in lists of tasks; a terminal cuts it.
std::string drawnChange(Context& context, const std::string& words, const std::string& line);

/// {"did","type","filename"} and, where there is one, {"line","text"}.
JsonObject changeRecord(std::string_view did, const tasks::NoteName& note,
                        std::optional<std::size_t> lineIndex, const std::string& line);

}  // namespace tessaly::cli
