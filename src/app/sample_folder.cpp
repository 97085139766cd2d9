// SPDX-License-Identifier: MIT
#include "app/sample_folder.h"

#include <algorithm>

#include "app/sample_notes.h"
#include "store/foreign_names.h"
#include "store/note_names.h"

namespace tessaly::app {
namespace {

bool isOurs(const ports::FolderEntry& entry) {
    const auto notDownloaded = store::nameOfPlaceholder(entry.name);
    return base::noteTypeOfFolder(entry.name) != base::NoteType::none ||
           store::isNoteFilename(notDownloaded.value_or(entry.name));
}

}  // namespace

bool isNewUser(Services& services) {
    const auto entries = services.ports().files.list(services.dataStore().root());
    if (!entries) {
        return entries.failure().kind == base::Failure::Kind::notFound;
    }
    return std::none_of(entries->begin(), entries->end(), isOurs);
}

base::Result<int> makeSampleNotes(Services& services) {
    if (!isNewUser(services)) {
        return 0;
    }
    ports::Clock& clock = services.ports().clock;
    const auto notes =
        sampleNotes(clock.local(clock.now()), services.dateStrings().formats().hourCycle());
    int made = 0;
    for (const SampleNote& note : notes) {
        const auto created = services.dataStore().createNote(note.type, note.filename, note.text);
        if (created) {
            ++made;
        } else if (created.failure().kind != base::Failure::Kind::exists) {
            return created.failure();
        }
    }
    return made;
}

}  // namespace tessaly::app
