// SPDX-License-Identifier: MIT
#include "app/pretend_files.h"

#include <set>
#include <system_error>
#include <utility>

#include "store/paths.h"

namespace tessaly::app {

using base::Done;
using base::Failure;
using base::Result;
using ports::FileContents;
using ports::FolderEntry;
using ports::SurveyedEntry;
using Kind = FolderEntry::Kind;

namespace {

/// No file system counts its inodes up to here.
constexpr std::uint64_t firstInode = 1ULL << 63;

/// A failure in terms of the path that was asked for, and not of the place that it leads to.
Failure renamed(const std::string& path, const Failure& failure) {
    const auto words = failure.description.rfind(": ");
    return {failure.kind, words == std::string::npos ? failure.description
                                                     : path + failure.description.substr(words)};
}

}  // namespace

PretendFiles::PretendFiles(ports::FileSystem& real, ports::Clock& clock)
    : _real(real), _clock(clock), _tree(real), _lastInode(firstInode) {}

Result<std::vector<FolderEntry>> PretendFiles::list(const std::string& folder) {
    const std::scoped_lock lock(_mutex);
    const auto place = _tree.follow(folder);
    auto entries = place ? _tree.list(*place) : place.failure();
    return entries ? entries : renamed(folder, entries.failure());
}

Result<std::vector<SurveyedEntry>> PretendFiles::survey(const std::string& folder) {
    const std::scoped_lock lock(_mutex);
    const auto place = _tree.follow(folder);
    auto entries = place ? _tree.survey(*place) : place.failure();
    return entries ? entries : renamed(folder, entries.failure());
}

Result<std::vector<std::optional<SurveyedEntry>>> PretendFiles::surveyNames(
    const std::string& folder, std::span<const std::string> names) {
    const std::scoped_lock lock(_mutex);
    const auto place = _tree.follow(folder);
    auto entries = place ? _tree.surveyNames(*place, names) : place.failure();
    return entries ? entries : renamed(folder, entries.failure());
}

Result<FileContents> PretendFiles::read(const std::string& file) {
    const std::scoped_lock lock(_mutex);
    const auto place = _tree.follow(file);
    auto contents = place ? _tree.read(*place) : place.failure();
    return contents ? contents : renamed(file, contents.failure());
}

Result<Done> PretendFiles::readEach(const std::string& folder, std::span<const FolderEntry> files,
                                    const ports::FileSink& sink) {
    std::unique_lock lock(_mutex);
    const auto place = _tree.follow(folder);
    if (!place) {
        return place.failure();
    }
    const bool isChanged = _tree.isChangedIn(*place);
    if (const auto entries = isChanged ? _tree.list(*place) : std::vector<FolderEntry>{};
        !entries) {
        return entries.failure();
    }
    lock.unlock();
    if (!isChanged) {
        return _real.readEach(*place, files, sink);
    }
    for (std::size_t index = 0; index < files.size(); ++index) {
        readOne(*place, files[index], index, sink);
    }
    return Done{};
}

void PretendFiles::readOne(const std::string& folder, const FolderEntry& entry, std::size_t index,
                           const ports::FileSink& sink) {
    const std::string place = store::joined(folder, entry.name);
    std::optional<std::optional<PretendThing>> change;
    {
        const std::scoped_lock lock(_mutex);
        if (const auto* found = _tree.changeAt(place)) {
            change = *found;
        }
    }
    if (!change && _real.readEach(folder, {&entry, 1}, [&](ports::FileRead read) {
            read.index = index;
            sink(read);
        })) {
        return;
    }
    if (change && *change && (*change)->kind == Kind::file && entry.kind == Kind::file) {
        sink({index, (*change)->bytes, &(*change)->stamp, nullptr});
        return;
    }
    const Failure failure = change && *change ? pretendNotAFile(place) : pretendNotFound(place);
    sink({index, {}, nullptr, &failure});
}

Result<Kind> PretendFiles::kindOf(const std::string& path) {
    const std::scoped_lock lock(_mutex);
    const auto place = _tree.follow(path);
    const auto kind = place ? _tree.kindOf(*place) : place.failure();
    return kind ? kind : renamed(path, kind.failure());
}

Result<std::string> PretendFiles::resolve(const std::string& path) {
    const std::scoped_lock lock(_mutex);
    auto place = _tree.follow(path);
    return place ? place : renamed(path, place.failure());
}

std::vector<FileChange> PretendFiles::changes() {
    const std::scoped_lock lock(_mutex);
    std::set<std::string> moved;
    for (const auto& [path, thing] : _tree.things()) {
        if (thing && !thing->origin.empty()) {
            moved.insert(thing->origin);
        }
    }
    std::vector<FileChange> changes;
    for (const auto& [path, thing] : _tree.things()) {
        const bool isFile = thing && thing->kind == Kind::file;
        auto before = moved.contains(path) ? std::nullopt : _tree.realFile(path);
        auto after = isFile ? std::optional(thing->bytes) : std::nullopt;
        if (isFile && thing->origin == path) {
            before = _tree.realFile(path);
        } else if (isFile && !thing->origin.empty()) {
            changes.push_back({path, _tree.realFile(thing->origin), after, thing->origin});
            after = std::nullopt;
        }
        if (before != after) {
            changes.push_back({path, std::move(before), std::move(after), std::nullopt});
        }
    }
    return changes;
}

}  // namespace tessaly::app
