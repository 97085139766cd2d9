// SPDX-License-Identifier: MIT
#include <string>

#include <fmt/format.h>

#include "app/note_address.h"
#include "base/enum_names.h"
#include "base/localisation.h"
#include "cli/context.h"
#include "cli/json_records.h"
#include "cli/json_times.h"
#include "cli/note_text.h"
#include "cli/safe_text.h"
#include "cli/shell_words.h"
#include "cli/text_records.h"
#include "cli/verb_functions.h"
#include "grammar/note_title.h"
#include "store/conflict_copies.h"
#include "store/note_document.h"

namespace tessaly::cli {

namespace {

using base::tr;

std::string pathOf(const app::NoteAddress& note) {
    return fmt::format("{}/{}", base::folderName(note.type), note.filename);
}

Exit couldNotRead(const app::NoteAddress& note, const base::Failure& failure) {
    if (failure.kind == base::Failure::Kind::notFound && note.day) {
        complain(fmt::format(fmt::runtime(tr("there is no note of {}")), base::tagText(*note.day)));
    } else {
        complain(safeText(failure.description));
    }
    return Exit::couldNot;
}

void printRecord(Context& context, const app::NoteAddress& note,
                 const ports::FileContents& contents, const std::string& text) {
    app::Services& services = context.services;
    const store::NoteModel model(note.filename, note.type, text, services.countSettings());
    JsonObject object;
    object.add("type", base::rawValue(note.type))
        .add("filename", note.filename)
        .add("title", grammar::titleOfNote({text, pathOf(note)}).text)
        .add("date", note.day ? std::optional{base::tagText(*note.day)} : std::nullopt)
        .add("changed", rfc3339(contents.stamp.modified))
        .add("created", rfc3339(contents.stamp.created));
    addModel(object, model);
    object.add("lines", textRecords(services, {text, pathOf(note)}));
    context.out.line(object.text());
}

void tellOfVersions(app::Services& services, const app::NoteAddress& note) {
    const std::string path = pathOf(note);
    const auto copies =
        store::conflictCopiesOf(services.ports().files, services.dataStore().root(), {path});
    if (!copies.empty()) {
        complain(fmt::format(fmt::runtime(tr("there are other versions of this note: {}")),
                             commandLine({"tessaly", "conflicts", safeText(path)})));
    }
}

}  // namespace

Exit runShow(Context& context) {
    app::Services& services = context.services;
    const auto note =
        app::findNote(services, context.invocation.arguments.front(), context.readOptions());
    context.progress.erase();
    if (!note) {
        if (note.failure().kind != base::Failure::Kind::cancelled) {
            complain(safeText(note.failure().description));
        }
        return Exit::couldNot;
    }
    const auto path = services.dataStore().pathOf(note->type, note->filename);
    if (!path) {
        return couldNotRead(*note, path.failure());
    }
    const auto contents = services.ports().files.read(*path);
    if (!contents) {
        return couldNotRead(*note, contents.failure());
    }
    tellOfVersions(services, *note);
    if (!context.invocation.json) {
        printNoteText(context, contents->bytes);
        return Exit::done;
    }
    const auto text = store::decodedText(contents->bytes);
    if (!text) {
        complain(fmt::format(fmt::runtime(tr("{} is not UTF-8 text")), safeText(pathOf(*note))));
        return Exit::couldNot;
    }
    printRecord(context, *note, *contents, std::string{*text});
    return Exit::done;
}

}  // namespace tessaly::cli
