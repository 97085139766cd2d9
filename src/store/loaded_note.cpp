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

DatedLine placeOf(const grammar::ScannedLine& line) {
    return {static_cast<std::uint32_t>(line.start), static_cast<std::uint32_t>(line.text.size()),
            static_cast<std::uint32_t>(line.index), line.line};
}

}  // namespace

std::vector<grammar::Todo> LoadedNote::datedTodos() const {
    std::vector<grammar::Todo> todos;
    std::vector<grammar::Mark> marks;
    for (const DatedLine& dated : datedLines) {
        const std::string_view text = content.view().substr(dated.start, dated.length);
        grammar::findMarks(text, marks);
        todos.push_back(grammar::TodoHelper::todoOf(
            {dated.lineIndex, dated.start, text, dated.line, marks}, std::nullopt));
        todos.back().title = title;
        todos.back().filename = joined(base::folderName(base::NoteType::note), filename);
    }
    return todos;
}

LoadedNote loadNote(std::string filename, base::SharedText content, const ports::FileStamp& stamp,
                    const CountSettings& settings, grammar::NoteScanner& scanner) {
    LoadedNote note;
    note.filename = std::move(filename);
    note.content = std::move(content);
    note.title = grammar::noteTitle(note.content, baseName(note.filename));
    note.contentChangedDate = stamp.modified;
    note.contentCreatedDate = stamp.created;
    NoteTags tags;
    scanner.start(note.content, settings.markers);
    while (const grammar::ScannedLine* line = scanner.nextWithSign()) {
        tags.add(*line);
        if (isDatedTask(*line)) {
            note.datedLines.push_back(placeOf(*line));
        }
    }
    note.hashTags = tags.hashTags.take();
    note.atTags = tags.atTags.take();
    // A hundred thousand notes are held like this one.
    note.datedLines.shrink_to_fit();
    note.hashTags.shrink_to_fit();
    note.atTags.shrink_to_fit();
    return note;
}

LoadedNote loadNote(std::string filename, std::string_view bytes, const ports::FileStamp& stamp,
                    const CountSettings& settings, LoadingTools& tools) {
    return loadNote(std::move(filename),
                    tools.texts.keep(decodedText(bytes).value_or(std::string_view())), stamp,
                    settings, tools.scanner);
}

}  // namespace tessaly::store
