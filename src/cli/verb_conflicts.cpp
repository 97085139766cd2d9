// SPDX-License-Identifier: MIT
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "app/conflicts.h"
#include "base/localisation.h"
#include "cli/context.h"
#include "cli/file_diffs.h"
#include "cli/safe_text.h"
#include "cli/shell_words.h"
#include "cli/verb_functions.h"
#include "cli/version_rows.h"

namespace tessaly::cli {

namespace {

using base::tr;

/// The change from the first version to another; nothing when one of them cannot be read, of which
/// it has complained.
std::optional<std::string> diffOf(Context& context, const app::ConflictedNote& note,
                                  std::size_t index) {
    ports::FileSystem& files = context.services.ports().files;
    const std::string& from = note.versions.front().url;
    const std::string& to = note.versions[index].url;
    const auto before = files.read(from);
    const auto after = files.read(to);
    if (!before || !after) {
        couldNot(context, before ? after.failure() : before.failure());
        return std::nullopt;
    }
    return diffBetween(context, {from, before->bytes}, {to, after->bytes});
}

void printRecords(Context& context, const app::ConflictedNote& note) {
    for (std::size_t index = 0; index < note.versions.size(); ++index) {
        context.out.line(recordOf(note, index).text());
    }
}

Exit listAllConflicts(Context& context) {
    const app::Conflicts conflicts = app::listConflicts(context.services, context.readOptions());
    if (!isComplete(context, conflicts.report)) {
        return Exit::couldNot;
    }
    for (const app::ConflictedNote& note : conflicts.notes) {
        if (context.invocation.json) {
            printRecords(context, note);
        } else {
            printVersions(context, note);
        }
    }
    if (!context.invocation.json) {
        context.out.line(conflicts.notes.empty()
                             ? tr("No note is in conflict.")
                             : tr("How versions differ: tessaly conflicts NOTE\n"
                                  "To resolve: tessaly resolve NOTE --merge, or --keep N"));
    }
    tellOfSkipped(context);
    return Exit::done;
}

std::string hintFor(const app::ConflictedNote& note) {
    const std::string name = safeText(nameOf(note));
    return fmt::format(fmt::runtime(tr("To resolve: {0}, or {1}")),
                       commandLine({"tessaly", "resolve", name, "--merge"}),
                       commandLine({"tessaly", "resolve", name, "--keep"}) + " N");
}

Exit showOneConflict(Context& context) {
    const auto note = app::conflictOf(context.services, context.invocation.arguments.front(),
                                      context.readOptions());
    context.progress.erase();
    if (!note) {
        return couldNot(context, note.failure());
    }
    if (context.invocation.json) {
        if (note->isInConflict()) {
            printRecords(context, *note);
        }
        return Exit::done;
    }
    if (!note->isInConflict()) {
        context.out.line(fmt::format(fmt::runtime(tr("There is only one version of {}.")),
                                     safeText(nameOf(*note))));
        return Exit::done;
    }
    printVersions(context, *note);
    Exit exit = Exit::done;
    for (std::size_t index = 1; index < note->versions.size(); ++index) {
        if (const auto diff = diffOf(context, *note, index)) {
            printDiffText(context, *diff);
        } else {
            exit = Exit::couldNot;
        }
    }
    context.out.line(hintFor(*note));
    return exit;
}

}  // namespace

Exit runConflicts(Context& context) {
    return context.invocation.arguments.empty() ? listAllConflicts(context)
                                                : showOneConflict(context);
}

}  // namespace tessaly::cli
