// SPDX-License-Identifier: MIT
#include "app/moved_files.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "app/change_notes.h"
#include "base/localisation.h"
#include "base/normalise.h"
#include "base/utf8.h"
#include "store/cloud_note.h"
#include "store/entry_role.h"
#include "store/foreign_names.h"
#include "store/new_files.h"
#include "store/note_names.h"
#include "store/paths.h"
#include "store/taken_names.h"

namespace tessaly::app {
namespace {

using base::Failure;
using base::NoteType;
using base::tr;
using Kind = ports::FolderEntry::Kind;

// Others may take a name between our look and our move; not this often.
constexpr int maxNameTries = 100;

std::string notesPath(const std::string& root) {
    return store::joined(root, base::folderName(NoteType::note));
}

Failure notShown(std::string_view folder) {
    return {Failure::Kind::outside,
            fmt::format(fmt::runtime(tr("notes in the folder “{}” would not be shown")), folder)};
}

/// The names that a new entry of the folder `at` cannot have; an entry does not stand in its own
/// way.
base::Result<store::TakenNames> takenNames(Services& services, const std::string& at,
                                           const std::string& itself) {
    const auto entries = services.ports().files.list(at);
    if (!entries) {
        return entries.failure();
    }
    store::TakenNames taken;
    for (const ports::FolderEntry& entry : *entries) {
        if (store::joined(at, entry.name) != itself) {
            taken.add(entry.name);
        }
        if (const auto expected = store::nameOfPlaceholder(entry.name)) {
            taken.add(std::string(*expected));
        }
    }
    return taken;
}

/// Before a file has another path; what a sync client has not downloaded cannot be read.
base::Result<base::Done> keepText(Services& services, const FiledItem& note) {
    const auto read = services.ports().files.read(note.path);
    return read ? services.history().keepOld(note.path, read->bytes)
                : base::Result<base::Done>(read.failure());
}

std::string_view extensionOf(std::string_view name) {
    return name.substr(name.rfind('.') + 1);
}

std::vector<std::string> knownNames(Services& services, const std::string& name) {
    std::vector<std::string> names{name};
    const std::string below = name + "/";
    services.noteCache().generalNotes()->forEachFrom(below, [&](const auto& note) {
        const std::string& filename = note->note.filename;
        const bool isBelow = filename.starts_with(below);
        if (isBelow) {
            names.push_back(filename);
        }
        return isBelow;
    });
    return names;
}

void addTo(std::vector<store::CloudNote>& notes, const std::string& path,
           store::UpdateType update) {
    store::CloudNote note;
    note.filename = store::lastComponent(path);
    note.base = NoteType::note;
    note.update = update;
    note.url = path;
    notes.push_back(std::move(note));
}

/// With all notes below, if it is a folder.
void addAllIn(ports::FileSystem& files, const std::string& path,
              std::vector<store::CloudNote>& notes) {
    addTo(notes, path, store::UpdateType::added);
    const auto entries = files.list(path);
    if (!entries) {
        return;
    }
    for (const ports::FolderEntry& entry : *entries) {
        const store::EntryRole role = store::entryRole(entry);
        if (role == store::EntryRole::folder || role == store::EntryRole::note) {
            addAllIn(files, store::joined(path, entry.name), notes);
        }
    }
}

}  // namespace

std::string FiledItem::folder() const {
    const std::size_t slash = name.rfind('/');
    return slash == std::string::npos ? std::string() : name.substr(0, slash);
}

base::Result<FiledItem> filedItem(Services& services, const std::string& name, Kind kind) {
    store::DataStore& dataStore = services.dataStore();
    const std::string root = dataStore.root();
    const auto path = dataStore.pathOf(NoteType::note, name);
    if (!path) {
        return path.failure();
    }
    if (!store::isCoveredPath(name)) {
        return notShown(name);
    }
    const auto found = services.ports().files.kindOf(*path);
    if (!found && found.failure().kind == Failure::Kind::notFound) {
        return kind == Kind::folder
                   ? Failure{Failure::Kind::notFound,
                             fmt::format(fmt::runtime(tr("there is no folder “{}”")), name)}
                   : noNoteThere({NoteType::note, name, std::nullopt});
    }
    if (!found) {
        return found.failure();
    }
    if (*found != kind) {
        return Failure{Failure::Kind::notAFile,
                       fmt::format(fmt::runtime(kind == Kind::folder ? tr("“{}” is no folder")
                                                                     : tr("“{}” is no file")),
                                   name)};
    }
    return FiledItem{root, name, *path};
}

base::Result<FiledItem> targetFolder(Services& services, std::string_view folder) {
    const std::string name(folder);
    const std::string root = services.dataStore().root();
    if (!name.empty()) {
        const auto path = services.dataStore().pathOf(NoteType::note, name);
        if (!path) {
            return path.failure();
        }
        if (!store::isCoveredPath(name)) {
            return notShown(name);
        }
    }
    const std::string path = store::joined(notesPath(root), name);
    const auto made = store::makeIfMissing(services.ports().files, services.ports().changes, path);
    if (!made) {
        return made.failure();
    }
    return name.empty() ? base::Result<FiledItem>(FiledItem{root, name, path})
                        : filedItem(services, name, Kind::folder);
}

base::Result<std::string> acceptedLine(std::string_view typed) {
    const auto accepted = acceptedText(typed);
    if (!accepted) {
        return accepted.failure();
    }
    std::string line = *accepted;
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    std::string trimmed(base::trimmed(line));
    if (trimmed.empty()) {
        return Failure{Failure::Kind::malformed, tr("a name is needed")};
    }
    return trimmed;
}

base::Result<std::string> nameForTitle(std::string_view title) {
    const auto name = store::filenameFromTitle(title, store::StripListMarkers::no);
    if (!name || store::nameKind(*name) != store::NameKind::ordinary ||
        !store::isCoveredPath(*name)) {
        return Failure{Failure::Kind::malformed,
                       fmt::format(fmt::runtime(tr("“{}” cannot be the name of a file")), title)};
    }
    return *name;
}

base::Result<bool> isNameTaken(Services& services, const std::string& at, std::string_view name,
                               const std::string& itself) {
    const auto taken = takenNames(services, at, itself);
    return taken ? base::Result<bool>(taken->holder(name) != nullptr) : taken.failure();
}

Failure nameIsTaken(std::string_view name) {
    return {Failure::Kind::exists, fmt::format(fmt::runtime(tr("there is a “{}” already")), name)};
}

base::Result<std::string> moveToFreeName(Services& services, const FiledItem& note,
                                         const FiledItem& to, std::string_view base) {
    auto taken = takenNames(services, to.path, note.path);
    if (!taken) {
        return taken.failure();
    }
    store::TakenNames names = *std::move(taken);
    const std::string_view extension = extensionOf(note.name);
    const std::string_view own = store::lastComponent(note.name);
    for (int tries = 1;; ++tries) {
        const std::string name = store::withExtension(names.unique(base, extension), extension);
        const std::string target = store::joined(to.path, name);
        if (target == note.path) {
            return note.name;
        }
        if (auto kept = keepText(services, note); !kept) {
            return kept.failure();
        }
        const auto moved = services.safeFiles().move(note.root, note.path, target);
        if (moved) {
            return store::joined(to.name, name);
        }
        if (moved.failure().kind != Failure::Kind::exists || tries == maxNameTries) {
            return moved.failure();
        }
        // A file system that ignores case finds the note itself in the way of its new name.
        if (note.folder() == to.name && base::foldedForNames(name) == base::foldedForNames(own)) {
            return note.name;
        }
        names.add(name);
    }
}

void tellCacheOfMove(Services& services, const std::string& from, const std::string& to) {
    const auto root = services.ports().files.resolve(services.dataStore().root());
    if (!root) {
        return;
    }
    store::CloudBatch batch{*root, {}, store::CloudBatch::Kind::later};
    const std::string notes = notesPath(*root);
    if (from.empty()) {
        addTo(batch.notes, store::joined(notes, to), store::UpdateType::added);
    } else {
        for (const std::string& name : knownNames(services, from)) {
            addTo(batch.notes, store::joined(notes, name), store::UpdateType::deleted);
            if (!to.empty()) {
                addTo(batch.notes, store::joined(notes, to + name.substr(from.size())),
                      store::UpdateType::added);
            }
        }
    }
    services.noteCache().onCloudUpdate(batch);
}

void tellCacheOfReturn(Services& services, const std::string& name) {
    const auto root = services.ports().files.resolve(services.dataStore().root());
    if (!root) {
        return;
    }
    store::CloudBatch batch{*root, {}, store::CloudBatch::Kind::later};
    addAllIn(services.ports().files, store::joined(notesPath(*root), name), batch.notes);
    services.noteCache().onCloudUpdate(batch);
}

}  // namespace tessaly::app
