// SPDX-License-Identifier: MIT
#include <optional>
#include <string>

#include "app/note_address.h"
#include "base/enum_names.h"
#include "cli/context.h"
#include "cli/json_line.h"
#include "cli/safe_text.h"
#include "cli/verb_functions.h"

namespace tessaly::cli {

namespace {

/// The path goes to programs as it is; a terminal gets no control characters.
void printPath(Context& context, const std::optional<app::NoteAddress>& note,
               const std::string& path) {
    if (!context.invocation.json) {
        context.out.line(context.terminal.isTerminal ? safeText(path) : path);
        return;
    }
    JsonObject object;
    object.add("root", context.services.dataStore().root())
        .add("path", path)
        .add("exists", context.services.ports().files.kindOf(path).ok());
    if (note) {
        object.add("type", base::rawValue(note->type)).add("filename", note->filename);
    }
    context.out.line(object.text());
}

}  // namespace

Exit runWhere(Context& context) {
    app::Services& services = context.services;
    if (context.invocation.arguments.empty()) {
        printPath(context, std::nullopt, services.dataStore().root());
        return Exit::done;
    }
    const auto note =
        app::findNote(services, context.invocation.arguments.front(), context.readOptions());
    context.progress.erase();
    if (!note) {
        return couldNot(context, note.failure());
    }
    const auto path = services.dataStore().pathOf(note->type, note->filename);
    if (!path) {
        return couldNot(context, path.failure());
    }
    printPath(context, *note, *path);
    return Exit::done;
}

}  // namespace tessaly::cli
