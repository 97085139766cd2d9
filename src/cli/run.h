// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>

#include "app/services.h"
#include "cli/command_line.h"
#include "cli/output.h"
#include "cli/verbs.h"

namespace tessaly::cli {

/// Does what needs no data here: prints help, the version or a document, or runs the window.
/// Nothing when `invocation` asks for none of them, or the window cannot be had.
std::optional<Exit> runWithoutServices(const Invocation& invocation, Output& out);

/// Brings the program up and carries the verb out; without one, prints today. `cancelled` becomes
/// true when the user wants no more.
Exit run(app::Services& services, const Invocation& invocation, Output& out,
         const std::atomic<bool>& cancelled);

/// Tells of misuse on standard error, and where help is; `verb` is null where none was named.
Exit refuse(const base::Failure& misuse, const VerbRow* verb);

/// Writes what is left of the output. A reader that has gone away is no failure.
Exit finish(Output& out, Exit exit);

}  // namespace tessaly::cli
