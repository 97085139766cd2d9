// SPDX-License-Identifier: MIT
#include "cli/change_report.h"

#include <array>
#include <string_view>

#include <fmt/format.h>

#include "app/dry_run.h"
#include "app/note_history.h"
#include "base/localisation.h"
#include "cli/file_diffs.h"
#include "cli/json_line.h"
#include "cli/read_input.h"
#include "cli/safe_text.h"

namespace tessaly::cli {

namespace {

using app::NoteChange;
using base::N_;
using base::tr;

struct Wording {
    NoteChange change;
    std::string_view name;  // for programs
    const char* text;       // {0} is the note, {1} what the history knows it by
};

constexpr std::array wordings{
    Wording{NoteChange::created, "created", N_("Created {0}")},
    Wording{NoteChange::added, "added", N_("Added to {0}")},
    Wording{NoteChange::overwritten, "overwritten", N_("Overwrote {0}")},
    Wording{NoteChange::unchanged, "unchanged", N_("Nothing to change in {0}")},
    Wording{NoteChange::restored, "restored", N_("Restored {0}")},
    Wording{NoteChange::trashed, "trashed", N_("Moved to the trash: {0}")},
    Wording{NoteChange::removed, "removed",
            N_("Removed, as there is no trash: {0} (to get it back: tessaly history restore {1})")},
};

const Wording& wordingOf(NoteChange change) {
    return wordings[static_cast<std::size_t>(change)];
}

ChangeReport pretend(Context& context, const Change& change,
                     std::vector<app::FileChange>& changes) {
    app::DryRun dryRun{context.services};
    ChangeReport report = change(dryRun.services());
    changes = dryRun.changes();
    return report;
}

}  // namespace

Exit carryOut(Context& context, const Change& change) {
    if (context.invocation.has("--dry-run")) {
        std::vector<app::FileChange> changes;
        const Exit exit = pretend(context, change, changes).exit;
        context.progress.erase();
        printDiffs(context, changes);
        return exit;
    }
    const ChangeReport report = change(context.services);
    context.progress.erase();
    for (const std::string& line : report.lines) {
        context.out.line(line);
    }
    return report.exit;
}

std::string lineOf(const Context& context, const app::ChangedNote& changed) {
    const Wording& wording = wordingOf(changed.change);
    const std::string id = changed.historyId.substr(0, app::historyIdDigits);
    if (!context.invocation.json) {
        return fmt::format(fmt::runtime(tr(wording.text)),
                           safeText(app::pathInDataFolder(changed.note)), id);
    }
    JsonObject object;
    object.add("did", wording.name)
        .add("type", base::rawValue(changed.note.type))
        .add("filename", changed.note.filename)
        .add("path", changed.path);
    if (!id.empty()) {
        object.add("id", id);
    }
    return object.text();
}

ChangeReport reportOn(Context& context, const base::Result<app::ChangedNote>& changed) {
    if (!changed) {
        return {couldNot(context, changed.failure()), {}};
    }
    return {Exit::done, {lineOf(context, *changed)}};
}

base::Result<std::string> givenText(Context& context, const std::string& argument) {
    return argument == "-" ? readInput(context.services.ports().files, "-", context.cancelled)
                           : base::Result<std::string>{argument};
}

}  // namespace tessaly::cli
