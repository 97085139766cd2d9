// SPDX-License-Identifier: MIT
#include "tasks/note_texts.h"

#include <algorithm>

#include "base/log.h"
#include "store/inside_path.h"
#include "store/note_document.h"
#include "store/note_names.h"
#include "store/paths.h"
#include "tasks/refusals.h"

namespace tessaly::tasks {
namespace {

using FailureKind = base::Failure::Kind;

constexpr std::string_view noUrl = "couldn't create the url";
constexpr std::string_view noFile = "file does not exist";
constexpr std::string_view unreadable = "Could not read and write into the note: ";

}  // namespace

std::optional<base::Day> dayOf(const NoteName& note) {
    return note.type == base::NoteType::calendar ? store::dayOfCalendarFilename(note.filename)
                                                 : std::nullopt;
}

NoteName calendarNote(base::Day day) {
    return {base::NoteType::calendar, store::calendarFilename(day)};
}

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == text.npos ? text.size() : end + 1);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        lines.emplace_back(line);
    }
    return lines;
}

const base::Result<NoteTexts::Lines>& NoteTexts::known(const NoteName& note) {
    const auto found = _notes.find(note);
    if (found != _notes.end()) {
        return found->second;
    }
    auto path = store::pathInside(_files, _root, pathOf(note));
    if (!path) {
        _troubles[note] = {noUrl, path.failure().description};
        return _notes.emplace(note, path.failure()).first->second;
    }
    return _notes.emplace(note, read(note, *path)).first->second;
}

base::Result<NoteTexts::Lines> NoteTexts::read(const NoteName& note, const std::string& path) {
    const auto file = _files.read(path);
    if (!file) {
        if (file.failure().kind == FailureKind::notFound) {
            return noteIsNotThere(note);
        }
        _troubles[note] = {unreadable, file.failure().description};
        return file.failure();
    }
    const auto text = store::decodedText(file->bytes);
    if (!text) {
        _troubles[note] = {unreadable, pathOf(note) + ": Content empty"};
        return noteIsNotText(note);
    }
    return linesOf(*text);
}

const base::Result<NoteTexts::Lines>& NoteTexts::lines(const NoteName& note) {
    const auto& lines = known(note);
    if (!lines && lines.failure().kind == FailureKind::notFound) {
        _troubles[note] = {noFile, pathOf(note)};
    }
    return lines;
}

const base::Result<NoteTexts::Lines>& NoteTexts::linesIfAny(const NoteName& note) {
    static const base::Result<Lines> none{Lines{}};
    const auto& lines = known(note);
    return !lines && lines.failure().kind == FailureKind::notFound ? none : lines;
}

const std::vector<base::Day>& NoteTexts::days() {
    if (!_days) {
        _days.emplace();
        const std::string_view folder = base::folderName(base::NoteType::calendar);
        if (const auto entries = _files.list(store::joined(_root, folder))) {
            for (const ports::FolderEntry& entry : *entries) {
                if (const auto day = store::dayOfCalendarFilename(entry.name)) {
                    _days->push_back(*day);
                }
            }
        }
        std::sort(_days->begin(), _days->end());
    }
    return *_days;
}

void NoteTexts::logTroubles() const {
    for (const auto& [note, trouble] : _troubles) {
        base::log(trouble.first, trouble.second);
    }
}

}  // namespace tessaly::tasks
