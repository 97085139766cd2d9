// SPDX-License-Identifier: MIT
#include "store/note_set.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "store/note_document.h"
#include "store/note_names.h"
#include "store/paths.h"

namespace tessaly::store {
namespace {

/// What one worker has read.
struct Part {
    LoadingTools tools;
    std::vector<std::shared_ptr<const LoadedNote>> generalNotes;
    std::vector<std::shared_ptr<const CalendarNote>> calendarNotes;
    std::vector<std::string> strays;

    void addFolder(std::string_view folder) {
        LoadedNote note;
        note.title = lastComponent(folder);
        note.filename = folder;
        note.isFolder = true;
        generalNotes.push_back(std::make_shared<const LoadedNote>(std::move(note)));
    }

    void addCalendarNote(const NoteFile& file, const CountSettings& settings) {
        if (!dayOfCalendarFilename(file.filename)) {
            strays.emplace_back(file.filename);
            return;
        }
        const std::string_view text = decodedText(file.bytes).value_or(std::string_view());
        calendarNotes.push_back(std::make_shared<const CalendarNote>(CalendarNote{
            NoteModel(std::string(file.filename), file.type, text, settings, tools.scanner),
            tools.texts.keep(text), file.stamp}));
    }

    void add(const NoteFile& file, const CountSettings& settings) {
        if (file.type == base::NoteType::calendar) {
            addCalendarNote(file, settings);
        } else {
            generalNotes.push_back(std::make_shared<const LoadedNote>(
                loadNote(std::string(file.filename), file.bytes, file.stamp, settings, tools)));
        }
    }
};

void joinGeneralNotes(NoteSet& notes, std::vector<Part>& parts) {
    for (Part& part : parts) {
        std::move(part.generalNotes.begin(), part.generalNotes.end(),
                  std::back_inserter(notes.generalNotes));
    }
    std::sort(notes.generalNotes.begin(), notes.generalNotes.end(),
              [](const auto& a, const auto& b) { return a->filename < b->filename; });
}

void joinCalendar(NoteSet& notes, Part& part) {
    std::move(part.strays.begin(), part.strays.end(), std::back_inserter(notes.strays));
    for (auto& note : part.calendarNotes) {
        const base::Day day = *note->model.date;
        notes.calendarNotes.emplace(day, std::move(note));
    }
}

}  // namespace

NoteSet loadNotes(const DataStore& store, base::Executor& executor, const CountSettings& settings,
                  NoteReader::Options options) {
    NoteReader reader(store, executor);
    std::vector<Part> parts(reader.workers());
    options.types = {base::NoteType::calendar, base::NoteType::note};
    options.visitFolder = [&, told = std::move(options.visitFolder)](
                              std::size_t worker, base::NoteType type, std::string_view folder) {
        if (type == base::NoteType::note) {
            parts[worker].addFolder(folder);
        }
        if (told) {
            told(worker, type, folder);
        }
    };
    NoteSet notes;
    notes.report = reader.readAll(options, [&](std::size_t worker, const NoteFile& file) {
        parts[worker].add(file, settings);
    });
    joinGeneralNotes(notes, parts);
    for (Part& part : parts) {
        joinCalendar(notes, part);
    }
    std::sort(notes.strays.begin(), notes.strays.end());
    return notes;
}

}  // namespace tessaly::store
