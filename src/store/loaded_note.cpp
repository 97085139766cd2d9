// SPDX-License-Identifier: MIT
#include "store/loaded_note.h"

#include <algorithm>
#include <utility>

#include "base/note_type.h"
#include "grammar/todo_helper.h"
#include "store/note_document.h"
#include "store/note_names.h"
#include "store/note_tags.h"
#include "store/paths.h"

namespace tessaly::store {
namespace {

bool isDatedTask(const grammar::ScannedLine& line) {
    return grammar::isTask(line.line.type) &&
           std::any_of(line.marks.begin(), line.marks.end(), [&](const grammar::Mark& mark) {
               return dayOfMark(line, mark).has_value();
           });
}

grammar::Todo datedTodo(const LoadedNote& note, const grammar::ScannedLine& line) {
    grammar::Todo todo = grammar::TodoHelper::todoOf(line, std::nullopt);
    todo.title = note.title;
    todo.filename = joined(base::folderName(base::NoteType::note), note.filename);
    return todo;
}

}  // namespace

LoadedNote loadNote(std::string filename, std::string_view bytes, const ports::FileStamp& stamp,
                    const CountSettings& settings, grammar::NoteScanner& scanner) {
    LoadedNote note;
    note.filename = std::move(filename);
    note.content = decodedText(bytes).value_or(std::string_view());
    note.title = grammar::noteTitle(note.content, baseName(note.filename));
    note.contentChangedDate = stamp.modified;
    note.contentCreatedDate = stamp.created;
    NoteTags tags;
    scanner.start(note.content, settings.markers);
    while (const grammar::ScannedLine* line = scanner.next()) {
        tags.add(*line);
        if (isDatedTask(*line)) {
            note.datedTodos.push_back(datedTodo(note, *line));
        }
    }
    note.hashTags = tags.hashTags.take();
    note.atTags = tags.atTags.take();
    return note;
}

}  // namespace tessaly::store
