// SPDX-License-Identifier: MIT
#include <string>

#include <fmt/format.h>

#include "app/change_notes.h"
#include "base/localisation.h"
#include "base/write_mode.h"
#include "cli/change_report.h"
#include "cli/context.h"
#include "cli/verb_functions.h"

namespace tessaly::cli {

Exit runNew(Context& context) {
    const Invocation& invocation = context.invocation;
    const auto text = givenText(context, invocation.value("--text"));
    if (!text) {
        return couldNot(context, text.failure());
    }
    const app::NoteRequest request{invocation.arguments.front(), invocation.value("--folder"),
                                   *text};
    return carryOut(context, [&](app::Services& services) {
        return reportOn(context, app::newNote(services, request));
    });
}

Exit runAdd(Context& context) {
    const Invocation& invocation = context.invocation;
    const auto mode = base::fromRawValue<base::WriteMode>(
        invocation.has("--mode") ? invocation.value("--mode") : "append");
    if (!mode) {
        complain(base::tr("--mode is append, prepend or overwrite"));
        return Exit::misuse;
    }
    const auto text = givenText(context, invocation.arguments.front());
    if (!text) {
        return couldNot(context, text.failure());
    }
    const app::AddRequest request{invocation.has("--to") ? invocation.value("--to") : "today",
                                  *text, *mode};
    return carryOut(context, [&](app::Services& services) {
        const auto added = app::addText(services, request, context.readOptions());
        const ChangeReport report = reportOn(context, added);
        if (!added && added.failure().kind == base::Failure::Kind::notFound) {
            complain(base::tr("tessaly new makes a note."));
        }
        return report;
    });
}

Exit runTrash(Context& context) {
    return carryOut(context, [&](app::Services& services) {
        ChangeReport all;
        for (const std::string& note : context.invocation.arguments) {
            ChangeReport one =
                reportOn(context, app::trashNote(services, note, context.readOptions()));
            if (one.exit != Exit::done) {
                all.exit = one.exit;
            }
            all.lines.insert(all.lines.end(), one.lines.begin(), one.lines.end());
        }
        return all;
    });
}

}  // namespace tessaly::cli
