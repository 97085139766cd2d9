// SPDX-License-Identifier: MIT
#include <utility>

#include "base/localisation.h"
#include "base/log.h"
#include "store/data_store.h"
#include "store/new_files.h"
#include "store/note_names.h"
#include "store/paths.h"
#include "store/taken_names.h"

namespace tessaly::store {
namespace {

using base::Failure;

// Others may take a name between our look and our write; not this often.
constexpr int maxNameTries = 100;

std::string baseOfNewNote(const NewNote& note, ports::Clock& clock) {
    const auto name = filenameFromTitle(note.title.empty() ? note.text : note.title, note.strip);
    return name ? *name : untitledName(clock.local(clock.now()));
}

}  // namespace

base::Result<base::Done> DataStore::createNote(base::NoteType type, std::string_view filename,
                                               std::string_view text) {
    const std::string rootFolder = root();
    return _files.sync([&] { return createIn(rootFolder, type, filename, text); });
}

base::Result<base::Done> DataStore::createIn(const std::string& rootFolder, base::NoteType type,
                                             std::string_view filename, std::string_view text) {
    const auto path = pathIn(rootFolder, type, filename);
    if (!path) {
        return logged(noteNotWritten, path.failure());
    }
    const auto notWritten = writeNewFile(_tools, rootFolder, *path, text);
    return notWritten ? base::Result<base::Done>(logged(notWritten->message, notWritten->failure))
                      : base::Done{};
}

base::Result<std::string> DataStore::writeNewNote(const NewNote& note) {
    const std::string rootFolder = root();
    auto written = _files.sync([&] {
        return note.type == base::NoteType::calendar ? writeCalendarNote(rootFolder, note)
                                                     : writeGeneralNote(rootFolder, note);
    });
    if (!written || rootFolder != localRoot() || root() == rootFolder) {
        return written;
    }
    // The cloud drive came while we wrote. When the push fails, the note still is written.
    auto pushed = pushToCloudDrive(note.type, *written);
    return pushed ? std::move(pushed) : std::move(written);
}

base::Result<std::string> DataStore::writeCalendarNote(const std::string& rootFolder,
                                                       const NewNote& note) {
    if (!note.day || !note.day->ok()) {
        return logged(noteNotWritten,
                      {Failure::Kind::malformed, base::tr("a calendar note needs a day")});
    }
    std::string filename = calendarFilename(*note.day);
    const auto created = createIn(rootFolder, note.type, filename, note.text);
    return created ? base::Result<std::string>(std::move(filename)) : created.failure();
}

base::Result<std::string> DataStore::writeGeneralNote(const std::string& rootFolder,
                                                      const NewNote& note) {
    const std::string base = baseOfNewNote(note, _tools.clock);
    const auto relative = [&](const std::string& name) {
        return joined(note.folder, withExtension(name, noteExtension));
    };
    const auto path = pathIn(rootFolder, note.type, relative(base));
    if (!path) {
        return logged(noteNotWritten, path.failure());
    }
    const std::string folder = parentOf(*path);
    const auto listed = listForUniqueName(folder);
    TakenNames taken = listed ? *listed : TakenNames{};
    for (int tries = 1;; ++tries) {
        const std::string name = taken.unique(base, noteExtension);
        const std::string filename = withExtension(name, noteExtension);
        const auto notWritten =
            writeNewFile(_tools, rootFolder, joined(folder, filename), note.text);
        if (!notWritten) {
            return relative(name);
        }
        if (notWritten->failure.kind != Failure::Kind::exists || !listed || tries == maxNameTries) {
            return logged(notWritten->message, notWritten->failure);
        }
        taken.add(filename);
    }
}

base::Result<Trashed> DataStore::trashNote(base::NoteType type, std::string_view filename) {
    return discard(type, filename, {});
}

base::Result<Trashed> DataStore::deleteNote(base::NoteType type, std::string_view filename,
                                            FromTrash fromTrash) {
    return discard(type, filename,
                   fromTrash == FromTrash::yes ? ", fromTrash: true" : ", fromTrash: false");
}

base::Result<Trashed> DataStore::discard(base::NoteType type, std::string_view filename,
                                         std::string_view suffix) {
    const std::string rootFolder = root();
    return _files.sync([&]() -> base::Result<Trashed> {
        const auto path = pathIn(rootFolder, type, filename);
        if (!path) {
            return path.failure();
        }
        const auto kind = _tools.files.kindOf(*path);
        if (!kind) {
            return kind.failure();
        }
        if (*kind != ports::FolderEntry::Kind::file) {
            return Failure{Failure::Kind::notAFile, *path + ": " + base::tr("not a regular file")};
        }
        const auto trashed = _tools.safeFiles.trash(rootFolder, *path, _tools.trash);
        if (trashed) {
            base::log("Deleted: ", std::string(*path).append(suffix));
            return Trashed::toSystemTrash;
        }
        if (trashed.failure().kind == Failure::Kind::notFound) {
            return trashed.failure();
        }
        base::log("Failed to trash note in first trial ", trashed.failure().description);
        const auto removed = _tools.safeFiles.remove(rootFolder, *path);
        return removed ? base::Result<Trashed>(Trashed::toHistory)
                       : logged("Failed to trash note in second trial ", removed.failure());
    });
}

}  // namespace tessaly::store
