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
    grammar::NoteScanner scanner;
    std::vector<LoadedNote> generalNotes;
    std::vector<CalendarNote> calendarNotes;
    std::vector<std::string> strays;

    void addFolder(std::string_view folder) {
        LoadedNote note;
        note.title = lastComponent(folder);
        note.filename = folder;
        note.isFolder = true;
        generalNotes.push_back(std::move(note));
    }

    void addCalendarNote(const NoteFile& file, const CountSettings& settings) {
        if (!dayOfCalendarFilename(file.filename)) {
            strays.emplace_back(file.filename);
            return;
        }
        const std::string_view text = decodedText(file.bytes).value_or(std::string_view());
        calendarNotes.push_back(
            {NoteModel(std::string(file.filename), file.type, text, settings, scanner),
             std::string(text), file.stamp});
    }

    void add(const NoteFile& file, const CountSettings& settings) {
        if (file.type == base::NoteType::calendar) {
            addCalendarNote(file, settings);
        } else {
            generalNotes.push_back(
                loadNote(std::string(file.filename), file.bytes, file.stamp, settings, scanner));
        }
    }
};

// Notes are large to move about: they are put in order by address, and moved once.
void joinGeneralNotes(NoteSet& notes, std::vector<Part>& parts) {
    std::vector<LoadedNote*> order;
    for (Part& part : parts) {
        for (LoadedNote& note : part.generalNotes) {
            order.push_back(&note);
        }
    }
    std::sort(order.begin(), order.end(),
              [](const LoadedNote* a, const LoadedNote* b) { return a->filename < b->filename; });
    notes.generalNotes.reserve(order.size());
    for (LoadedNote* note : order) {
        notes.generalNotes.push_back(std::move(*note));
    }
}

void joinCalendar(NoteSet& notes, Part& part) {
    std::move(part.strays.begin(), part.strays.end(), std::back_inserter(notes.strays));
    for (CalendarNote& note : part.calendarNotes) {
        const base::Day day = *note.model.date;
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
