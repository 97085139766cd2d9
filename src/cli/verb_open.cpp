// SPDX-License-Identifier: MIT
#include <string>

#include "app/task_address.h"
#include "base/localisation.h"
#include "cli/context.h"
#include "cli/editors.h"
#include "cli/safe_text.h"
#include "cli/verb_functions.h"

namespace tessaly::cli {

namespace {

using base::tr;

/// A day's note may be the first one: without its folder no editor could save it.
base::Result<base::Done> makeFolderOf(app::Services& services, const std::string& path) {
    return services.ports().changes.makeFolders(path.substr(0, path.rfind('/')));
}

}  // namespace

Exit runOpen(Context& context) {
    app::Services& services = context.services;
    const std::string editor = userEditor();
    if (editor.empty()) {
        complain(tr("which editor? set VISUAL or EDITOR to its command"));
        return Exit::couldNot;
    }
    const auto found =
        app::TaskFinder(services, context.readOptions()).find(context.invocation.arguments.front());
    context.progress.erase();
    if (!found) {
        return couldNot(context, found.failure());
    }
    const auto path = services.dataStore().pathOf(found->note.type, found->note.filename);
    if (!path) {
        return couldNot(context, path.failure());
    }
    if (const auto made = makeFolderOf(services, *path); !made) {
        return couldNot(context, made.failure());
    }
    return couldNot(context,
                    becomeEditor(editor, editorArguments(editor, *path, found->lineIndex)));
}

}  // namespace tessaly::cli
