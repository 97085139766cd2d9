// SPDX-License-Identifier: MIT
#include "cli/migration_lines.h"

#include <fmt/format.h>

#include "base/localisation.h"
#include "cli/context.h"
#include "cli/safe_text.h"

namespace tessaly::cli {

namespace {

using base::tr;

/// With the path of what stays, unless the failure begins with it.
std::string reasonOf(const store::MoveReport::Failed& one) {
    const std::string& reason = one.failure.description;
    const bool isTold = one.path.empty() || reason.starts_with(one.path + ": ");
    return safeText(isTold ? reason : one.path + ": " + reason);
}

}  // namespace

void complainOf(const store::MoveReport& report) {
    for (const store::MoveReport::Failed& one : report.failed) {
        complain(fmt::format(fmt::runtime(tr("not moved: {}")), reasonOf(one)));
    }
    if (report.cancelled) {
        complain(tr("interrupted; tessaly migrate goes on where it stopped"));
    }
}

std::vector<std::string> syncPreferences(const std::string& container) {
    return {fmt::format("cloudDriveContainer = {}", safeText(container)),
            tr("To name another folder: tessaly settings set cloudDriveContainer FOLDER"),
            tr("To keep the notes on this machine: tessaly settings reset cloudDriveContainer")};
}

}  // namespace tessaly::cli
