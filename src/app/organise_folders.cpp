// SPDX-License-Identifier: MIT
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "app/moved_files.h"
#include "app/organise_notes.h"
#include "base/localisation.h"
#include "base/normalise.h"
#include "search/side_bar_folders.h"
#include "store/entry_role.h"
#include "store/foreign_names.h"
#include "store/new_files.h"
#include "store/paths.h"

namespace tessaly::app {
namespace {

using base::Failure;
using base::tr;
using Kind = ports::FolderEntry::Kind;

/// The archive has its name, be it there or not.
bool isArchiveName(const std::string& parent, std::string_view name) {
    return parent.empty() && base::foldedForNames(name) ==
                                 base::foldedForNames(search::SideBarFolders::archiveFolder);
}

/// Gives a folder another place, which is free.
base::Result<std::string> moveFolderTo(Services& services, const FiledItem& folder,
                                       const FiledItem& parent, std::string_view name) {
    std::string target = store::joined(parent.name, name);
    if (target == folder.name) {
        return target;
    }
    if (isArchiveName(parent.name, name)) {
        return nameIsTaken(name);
    }
    const auto taken = isNameTaken(services, parent.path, name, folder.path);
    if (!taken) {
        return taken.failure();
    }
    if (*taken) {
        return nameIsTaken(name);
    }
    const auto moved =
        services.safeFiles().move(folder.root, folder.path, store::joined(parent.path, name));
    if (!moved) {
        return moved.failure().kind == Failure::Kind::exists ? nameIsTaken(name) : moved.failure();
    }
    tellCacheOfMove(services, folder.name, target);
    return target;
}

/// What lies in a folder and below.
struct FolderContents {
    std::size_t entries = 0;
    std::size_t notes = 0;
    std::vector<std::string> files;  ///< paths of the notes, the first `mostKeptOfFolder + 1`
    std::string placeholder;         ///< the path of one; empty: there is none
};

base::Result<base::Done> lookInto(ports::FileSystem& files, const std::string& folder,
                                  FolderContents& contents) {
    const auto entries = files.survey(folder);
    if (!entries) {
        return entries.failure();
    }
    for (const ports::SurveyedEntry& entry : *entries) {
        const std::string path = store::joined(folder, entry.name);
        ++contents.entries;
        if (entry.isPlaceholder || store::nameOfPlaceholder(entry.name)) {
            contents.placeholder = path;
        }
        if (entry.kind == Kind::folder) {
            if (auto looked = lookInto(files, path, contents); !looked) {
                return looked;
            }
        } else if (store::entryRole(entry) == store::EntryRole::note) {
            ++contents.notes;
            if (contents.files.size() <= mostKeptOfFolder) {
                contents.files.push_back(path);
            }
        }
    }
    return base::Done{};
}

// The trash has them all; of thousands, the history would take minutes.
void keepTexts(Services& services, const FolderContents& contents) {
    if (contents.files.size() > mostKeptOfFolder) {
        return;
    }
    for (const std::string& file : contents.files) {
        if (const auto read = services.ports().files.read(file)) {
            [[maybe_unused]] const auto kept =
                services.history().keepOld(file, read->bytes, store::ChangeCause::trashed);
        }
    }
}

}  // namespace

base::Result<std::string> newFolder(Services& services, std::string_view parent,
                                    std::string_view name) {
    const auto line = acceptedLine(name);
    const auto accepted = line ? nameForTitle(*line) : line;
    if (!accepted) {
        return accepted.failure();
    }
    const auto above = targetFolder(services, parent);
    if (!above) {
        return above.failure();
    }
    const auto taken = isNameTaken(services, above->path, *accepted, {});
    if (!taken) {
        return taken.failure();
    }
    if (*taken || isArchiveName(above->name, *accepted)) {
        return nameIsTaken(*accepted);
    }
    auto made = targetFolder(services, store::joined(above->name, *accepted));
    if (!made) {
        return made.failure();
    }
    tellCacheOfMove(services, {}, made->name);
    return made->name;
}

base::Result<std::string> renameFolder(Services& services, const std::string& folder,
                                       std::string_view name) {
    const auto line = acceptedLine(name);
    const auto accepted = line ? nameForTitle(*line) : line;
    if (!accepted) {
        return accepted.failure();
    }
    const auto item = filedItem(services, folder, Kind::folder);
    if (!item) {
        return item.failure();
    }
    const auto parent = targetFolder(services, item->folder());
    return parent ? moveFolderTo(services, *item, *parent, *accepted)
                  : base::Result<std::string>(parent.failure());
}

base::Result<std::string> moveFolder(Services& services, const std::string& folder,
                                     std::string_view parent) {
    const auto item = filedItem(services, folder, Kind::folder);
    if (!item) {
        return item.failure();
    }
    if (store::isInside(parent, folder)) {
        return Failure{Failure::Kind::malformed,
                       fmt::format(fmt::runtime(tr("“{}” cannot be moved into itself")), folder)};
    }
    const auto target = targetFolder(services, parent);
    return target ? moveFolderTo(services, *item, *target, store::lastComponent(folder))
                  : base::Result<std::string>(target.failure());
}

base::Result<std::size_t> trashFolder(Services& services, const std::string& folder) {
    const auto item = filedItem(services, folder, Kind::folder);
    if (!item) {
        return item.failure();
    }
    const ports::Trash& trash = services.ports().trash;
    FolderContents contents;
    if (auto looked = lookInto(services.ports().files, item->path, contents); !looked) {
        return looked.failure();
    }
    if (!contents.placeholder.empty()) {
        return store::notDownloaded(contents.placeholder);
    }
    keepTexts(services, contents);
    const auto trashed = services.safeFiles().trash(item->root, item->path, trash);
    if (!trashed) {
        const auto removed = contents.entries == 0
                                 ? services.ports().changes.removeFolder(item->path)
                                 : base::Result<base::Done>(trashed.failure());
        if (!removed) {
            return removed.failure();
        }
    }
    tellCacheOfMove(services, folder, {});
    return contents.notes;
}

}  // namespace tessaly::app
