// SPDX-License-Identifier: MIT
#include "search/filter_helper.h"

#include <algorithm>
#include <optional>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/normalise.h"
#include "base/utf8.h"
#include "search/filter_plist.h"
#include "store/foreign_names.h"
#include "store/inside_path.h"
#include "store/new_files.h"
#include "store/note_names.h"
#include "store/paths.h"

namespace tessaly::search {
namespace {

using base::Failure;
using base::Result;
using base::tr;
using Names = std::vector<std::string>;

// How often a filter may come or go between our look and our write.
constexpr int maxTries = 8;

Failure about(std::string_view name, Failure::Kind kind, std::string_view words) {
    return {kind, name.empty() ? std::string(words) : fmt::format("{}: {}", name, words)};
}

bool contains(const Names& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// What a file that stands for itself or for one that is still to come says a filter is called;
/// nothing: it is none.
std::optional<std::string> filterNameOf(const ports::FolderEntry& entry) {
    const std::string name(store::nameOfPlaceholder(entry.name).value_or(entry.name));
    const bool isFilter = entry.kind == ports::FolderEntry::Kind::file &&
                          store::nameKind(name) == store::NameKind::ordinary && base::isUtf8(name);
    return isFilter ? std::optional(name) : std::nullopt;
}

/// The path of a filter; for an empty name, of the folder of filters.
Result<std::string> pathIn(ports::FileSystem& files, const std::string& root,
                           std::string_view filter) {
    return store::pathInside(files, root,
                             store::joined(base::folderName(base::NoteType::filters), filter));
}

/// Conflict copies included; by name in lower case.
Result<Names> filterNames(ports::FileSystem& files, const std::string& root) {
    const auto folder = pathIn(files, root, {});
    if (!folder) {
        return folder.failure();
    }
    const auto entries = files.list(*folder);
    if (!entries) {
        return entries.failure().kind == Failure::Kind::notFound ? Result<Names>(Names{})
                                                                 : entries.failure();
    }
    std::vector<std::pair<std::string, std::string>> byLowerCase;
    for (const ports::FolderEntry& entry : *entries) {
        if (auto name = filterNameOf(entry)) {
            byLowerCase.emplace_back(base::lowerCased(*name), *std::move(name));
        }
    }
    std::sort(byLowerCase.begin(), byLowerCase.end());
    Names names;
    for (auto& [lowerCase, name] : byLowerCase) {
        names.push_back(std::move(name));
    }
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

std::optional<std::string> savedName(std::string_view wanted) {
    return store::filenameFromTitle(wanted, store::StripListMarkers::no);
}

std::optional<std::string> colliding(const Names& names, std::string_view wanted) {
    const auto found =
        std::find_if(names.begin(), names.end(),
                     [folded = base::foldedForNames(wanted)](const std::string& name) {
                         return base::foldedForNames(name) == folded;
                     });
    return found == names.end() ? std::nullopt : std::optional(*found);
}

/// The one that is called so.
std::optional<std::string> calledSo(const Names& names, std::string_view wanted) {
    return contains(names, wanted) ? std::string(wanted) : colliding(names, wanted);
}

/// The one that is called so, else the one that was perhaps saved so.
std::optional<std::string> find(const Names& names, std::string_view wanted) {
    auto found = calledSo(names, wanted);
    const auto saved = found ? std::nullopt : savedName(wanted);
    return saved ? colliding(names, *saved) : found;
}

Failure isTaken(std::string_view name) {
    return about(name, Failure::Kind::exists, tr("there is a filter of this name already"));
}

bool isConflictCopy(const Names& names, std::string_view name) {
    return store::conflictCopyOf(
               name, [&](std::string_view original) { return contains(names, original); })
        .has_value();
}

/// The name that a new filter gets.
Result<std::string> newName(const Names& names, std::string_view wanted) {
    if (base::trimmed(wanted).empty()) {
        return Failure{Failure::Kind::malformed, tr("a filter needs a name")};
    }
    auto name = savedName(wanted);
    if (!name) {
        return about(wanted, Failure::Kind::malformed, tr("no name is left without its signs"));
    }
    const bool isPassedOver = base::trimmedStart(wanted).starts_with('.') ||
                              store::nameKind(*name) != store::NameKind::ordinary ||
                              isConflictCopy(names, *name);
    if (isPassedOver) {
        return about(wanted, Failure::Kind::malformed, tr("files of this name are passed over"));
    }
    return *std::move(name);
}

/// Of a filter the name is told, not the path. A file that is not there may be one that a sync
/// client has not downloaded.
Failure explained(ports::FileSystem& files, const std::string& path, Failure failure) {
    if (failure.kind == Failure::Kind::notFound && store::hasPlaceholder(files, path)) {
        failure = store::notDownloaded(path);
    }
    if (failure.description.starts_with(path + ":")) {
        failure.description.replace(0, path.size(), store::lastComponent(path));
    }
    return failure;
}

/// An edit that lets nothing go that it does not understand.
store::SafeFiles::Edit replacement(const std::string& filter, const std::string& bytes) {
    return [&](std::string_view present) -> Result<std::optional<std::string>> {
        const auto old = filterFromPlist(present);
        if (!old) {
            return about(filter, Failure::Kind::malformed,
                         fmt::format(fmt::runtime(tr(
                                         "the file of this name cannot be read as a filter ({}), "
                                         "so it stays as it is")),
                                     old.failure().description));
        }
        return std::optional(bytes);
    };
}

}  // namespace

Result<FilterHelper::Place> FilterHelper::placeOf(std::string_view wanted) const {
    const std::string root = _tools.store.root();
    const auto names = filterNames(_tools.store.files(), root);
    if (!names) {
        return names.failure();
    }
    auto name = find(*names, wanted);
    if (!name) {
        return about(wanted, Failure::Kind::notFound, tr("there is no filter of this name"));
    }
    auto path = pathIn(_tools.store.files(), root, *name);
    return path ? Result<Place>(Place{root, *std::move(name), *std::move(path)}) : path.failure();
}

Result<FilterHelper::Place> FilterHelper::newPlace(std::string_view wanted) const {
    const std::string root = _tools.store.root();
    const auto names = filterNames(_tools.store.files(), root);
    auto name = names ? newName(*names, wanted) : names.failure();
    auto path = name ? pathIn(_tools.store.files(), root, *name) : name;
    return path ? Result<Place>(Place{root, *std::move(name), *std::move(path)}) : path.failure();
}

Result<Names> FilterHelper::list() const {
    const auto all = filterNames(_tools.store.files(), _tools.store.root());
    if (!all) {
        return all.failure();
    }
    Names names = *all;
    std::erase_if(names, [&](const std::string& name) { return isConflictCopy(*all, name); });
    return names;
}

Result<Filter> FilterHelper::load(std::string_view name) const {
    const auto place = placeOf(name);
    if (!place) {
        return place.failure();
    }
    const auto read = _tools.store.files().read(place->path);
    if (!read) {
        return explained(_tools.store.files(), place->path, read.failure());
    }
    auto filter = filterFromPlist(read->bytes);
    return filter ? std::move(filter)
                  : about(place->name, filter.failure().kind, filter.failure().description);
}

Result<FilterHelper::Place> FilterHelper::placeToSave(std::string_view wanted) const {
    const auto names = filterNames(_tools.store.files(), _tools.store.root());
    if (!names || calledSo(*names, wanted)) {
        return placeOf(wanted);
    }
    auto place = newPlace(wanted);
    const auto other = place ? colliding(*names, place->name) : std::nullopt;
    return other ? isTaken(*other) : std::move(place);
}

Result<FilterHelper::Saved> FilterHelper::save(std::string_view name, const Filter& filter) {
    const auto place = placeToSave(name);
    if (!place) {
        return place.failure();
    }
    const auto bytes = filterToPlist(filter);
    if (!bytes) {
        return about(place->name, bytes.failure().kind, bytes.failure().description);
    }
    const auto how = write(*place, *bytes);
    return how ? Result<Saved>(Saved{place->name, *how}) : how.failure();
}

Result<FilterHelper::Saved::How> FilterHelper::write(const Place& place, const std::string& bytes) {
    const std::string folder = store::parentOf(place.path);
    for (int tries = 0; tries < maxTries; ++tries) {
        const auto edited = _tools.safeFiles.edit(
            place.root, place.path, replacement(place.name, bytes), store::ChangeCause::saved);
        if (edited) {
            return Saved::How::replacing;
        }
        const Failure failure = explained(_tools.store.files(), place.path, edited.failure());
        if (failure.kind != Failure::Kind::notFound) {
            return failure;
        }
        if (!_tools.store.createFolderIfNonExisting(folder)) {
            return about(folder, Failure::Kind::other, tr("the folder cannot be made"));
        }
        const auto created =
            _tools.safeFiles.create(place.root, place.path, bytes, store::ChangeCause::saved);
        if (created) {
            return Saved::How::anew;
        }
        if (created.failure().kind != Failure::Kind::exists) {
            return explained(_tools.store.files(), place.path, created.failure());
        }
    }
    return about(place.name, Failure::Kind::unavailable, tr("another program keeps changing it"));
}

Result<std::string> FilterHelper::rename(std::string_view from, std::string_view to) {
    const auto source = placeOf(from);
    const auto target = source ? newPlace(to) : source;
    if (!target || target->name == source->name) {
        return target ? Result<std::string>(target->name) : target.failure();
    }
    const auto taken = placeOf(target->name);
    if (taken && taken->name != source->name) {
        return isTaken(taken->name);
    }
    const auto moved =
        _tools.safeFiles.move({source->root, source->path}, {target->root, target->path});
    return moved ? Result<std::string>(target->name)
                 : explained(_tools.store.files(), target->path,
                             explained(_tools.store.files(), source->path, moved.failure()));
}

Result<std::string> FilterHelper::remove(std::string_view name) {
    const auto place = placeOf(name);
    if (!place) {
        return place.failure();
    }
    const auto trashed = _tools.safeFiles.trash(place->root, place->path, _tools.trash);
    return trashed ? Result<std::string>(place->name)
                   : explained(_tools.store.files(), place->path, trashed.failure());
}

}  // namespace tessaly::search
