// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/change_notes.h"
#include "base/failure.h"
#include "cli/context.h"

namespace tessaly::cli {

/// What a change came to: how the verb ends, and the lines that it prints.
struct ChangeReport {
    Exit exit = Exit::done;
    std::vector<std::string> lines;
};

/// A change that a verb makes. It has complained of what could not be done.
using Change = std::function<ChangeReport(app::Services& services)>;

/// Makes a change and prints its report; with --dry-run, prints what would become of the files, and
/// changes none.
Exit carryOut(Context& context, const Change& change);

/// "Created Notes/Plans.txt", or a record.
std::string lineOf(const Context& context, const app::ChangedNote& changed);

/// The report on one note: a line, or a complaint.
ChangeReport reportOn(Context& context, const base::Result<app::ChangedNote>& changed);

/// The text that a user gave as an argument, or standard input when that is "-".
base::Result<std::string> givenText(Context& context, const std::string& argument);

}  // namespace tessaly::cli
