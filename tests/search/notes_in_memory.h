// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/day.h"
#include "base/shared_text.h"
#include "grammar/line_scanner.h"
#include "store/cached_notes.h"

namespace tessaly::tests {

/// A note as a test changes it.
struct MemoryNote {
    std::string text;
    int modified = 0;  ///< hours
    int created = 0;
    bool isFolder = false;
};

inline ports::FileStamp stampOf(const MemoryNote& note) {
    ports::FileStamp stamp;
    stamp.modified = base::Instant(std::chrono::hours(430'000 + note.modified));
    stamp.created = base::Instant(std::chrono::hours(430'000 + note.created));
    return stamp;
}

/// Snapshots as the cache publishes them, without files. A change makes but the note anew.
class NotesInMemory {
public:
    std::shared_ptr<const store::GeneralNotes> general = std::make_shared<store::GeneralNotes>();
    std::shared_ptr<const store::CalendarNotes> calendar = std::make_shared<store::CalendarNotes>();

    /// Nothing: the note goes.
    void setGeneral(const std::string& filename, const std::optional<MemoryNote>& note) {
        store::GeneralNotes::Pointer item;
        if (note && note->isFolder) {
            item = store::folderOfNotes(filename);
        } else if (note) {
            item = store::generalNote(filename, base::SharedText(note->text), stampOf(*note), {},
                                      _scanner);
        }
        const store::GeneralNotes::Change change{filename, item};
        general = std::make_shared<const store::GeneralNotes>(general->with({&change, 1}));
    }

    /// `hasFile`: else tasks of other notes are scheduled to the day.
    void setDay(base::Day day, const std::optional<MemoryNote>& note, bool hasFile = true) {
        std::shared_ptr<store::CalendarNote> item;
        if (note) {
            item = std::make_shared<store::CalendarNote>(
                *store::calendarNote(base::fileText(day) + ".txt", base::SharedText(note->text),
                                     stampOf(*note), {}, _scanner));
            if (!hasFile) {
                item->stamp.reset();
                item->content = base::SharedText();
            }
        }
        const store::CalendarNotes::Change change{day, item};
        calendar = std::make_shared<const store::CalendarNotes>(calendar->with({&change, 1}));
    }

private:
    grammar::NoteScanner _scanner;
};

}  // namespace tessaly::tests
