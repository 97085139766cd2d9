// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <string_view>

#include "app/services.h"
#include "base/failure.h"
#include "cli/command_line.h"
#include "cli/output.h"
#include "cli/progress.h"
#include "cli/terminal.h"
#include "store/note_reader.h"

namespace tessaly::cli {

/// What a verb works with.
struct Context {
    app::Services& services;
    const Invocation& invocation;
    Output& out;
    const Terminal& terminal;
    Progress& progress;
    const std::atomic<bool>& cancelled;
    std::size_t skipped = 0;    ///< files that the reading passed over
    bool isIndexStale = false;  ///< by what the reading had to open

    /// For a reading of many notes: progress on the terminal, and Ctrl-C.
    store::NoteReader::Options readOptions();
};

/// Prints a line to standard error, as the program's: "tessaly: " and what is wrong.
void complain(std::string_view text);

/// Complains of how the program was called.
Exit misuse(std::string_view text);

/// Complains of a failure in its own words; of a cancelled one, not at all.
Exit couldNot(Context& context, const base::Failure& failure);

/// Tells in one line that files were passed over, if there were any.
void tellOfSkipped(const Context& context);

/// Ends a reading: takes the progress away and keeps what is to be done about it at the end.
/// False: the reading was cancelled, and there is nothing to show.
bool isComplete(Context& context, const store::ReadReport& report);

}  // namespace tessaly::cli
