// SPDX-License-Identifier: MIT
#include <system_error>
#include <utility>

#include "app/pretend_files.h"
#include "base/localisation.h"
#include "store/paths.h"

namespace tessaly::app {

using base::Done;
using base::Failure;
using base::Result;
using ports::FileContents;
using Kind = ports::FolderEntry::Kind;

namespace {

constexpr std::size_t maxNameBytes = 255;

Result<Done> done(const Result<std::string>& result) {
    return result ? Result<Done>(Done{}) : result.failure();
}

/// Done: it still is what was read.
Result<Done> compared(const std::string& file, const FileContents& now, const FileContents& read) {
    if (now.bytes == read.bytes && now.stamp.inode == read.stamp.inode) {
        return Done{};
    }
    return Failure{Failure::Kind::changed,
                   file + ": " + base::tr("another program has changed it")};
}

std::string withoutLastSlashes(std::string path) {
    while (path.size() > 1 && path.ends_with('/')) {
        path.pop_back();
    }
    return path;
}

}  // namespace

ports::FileStamp PretendFiles::newStamp(std::size_t size) {
    const base::Instant now = _clock.now();
    return {++_lastInode, size, now, now, now};
}

Result<std::string> PretendFiles::freePlace(const std::string& path) {
    auto place = _tree.place(path);
    if (!place) {
        return place;
    }
    if (store::lastComponent(*place).size() > maxNameBytes) {
        return pretendFailure(std::errc::filename_too_long, path, Failure::Kind::other);
    }
    const auto there = _tree.entryAt(*place);
    if (there) {
        return pretendFailure(std::errc::file_exists, path, Failure::Kind::exists);
    }
    return there.failure().kind == Failure::Kind::notFound ? place : there.failure();
}

Result<Done> PretendFiles::makeFolders(const std::string& folder) {
    const std::scoped_lock lock(_mutex);
    return makeFoldersHere(withoutLastSlashes(folder));
}

Result<Done> PretendFiles::makeFoldersHere(const std::string& folder) {
    const auto there = _tree.follow(folder);
    const auto kind = there ? _tree.kindOf(*there) : there.failure();
    if (kind) {
        return *kind == Kind::folder
                   ? Result<Done>(Done{})
                   : pretendFailure(std::errc::not_a_directory, folder, Failure::Kind::exists);
    }
    if (kind.failure().kind != Failure::Kind::notFound) {
        return kind.failure();
    }
    if (auto above = makeFoldersHere(store::parentOf(folder)); !above) {
        return above;
    }
    const auto place = freePlace(folder);
    if (place) {
        _tree.put(*place, {Kind::folder, {}, newStamp(0), {}});
    }
    return done(place);
}

Result<Done> PretendFiles::create(const std::string& file, std::string_view bytes, ports::Readers,
                                  ports::Durability) {
    const std::scoped_lock lock(_mutex);
    const auto place = freePlace(file);
    if (place) {
        _tree.put(*place, {Kind::file, std::string(bytes), newStamp(bytes.size()), {}});
    }
    return done(place);
}

Result<Done> PretendFiles::replace(const std::string& file, const FileContents& read,
                                   std::string_view bytes) {
    const std::scoped_lock lock(_mutex);
    const auto place = _tree.follow(file);
    const auto now = place ? _tree.read(*place) : place.failure();
    if (!now) {
        return now.failure();
    }
    auto same = compared(file, *now, read);
    if (same) {
        const auto* change = _tree.changeAt(*place);
        _tree.put(*place, {Kind::file, std::string(bytes), newStamp(bytes.size()),
                           change != nullptr ? (*change)->origin : std::string()});
    }
    return same;
}

Result<Done> PretendFiles::append(const std::string& file, std::string_view bytes,
                                  ports::Durability) {
    const std::scoped_lock lock(_mutex);
    const auto place = _tree.follow(file);
    if (!place && place.failure().kind == Failure::Kind::notFound) {
        const auto made = freePlace(file);
        if (!made) {
            // A link that leads nowhere is in the way.
            const bool isTaken = made.failure().kind == Failure::Kind::exists;
            return isTaken ? place.failure() : made.failure();
        }
        _tree.put(*made, {Kind::file, std::string(bytes), newStamp(bytes.size()), {}});
        return Done{};
    }
    const auto thing = place ? _tree.fileToChange(*place) : place.failure();
    if (!thing) {
        return thing.failure();
    }
    (*thing)->bytes += bytes;
    (*thing)->stamp.size = (*thing)->bytes.size();
    (*thing)->stamp.modified = (*thing)->stamp.changed = _clock.now();
    return Done{};
}

Result<Done> PretendFiles::sync(const std::string& file) {
    return done(resolve(file));
}

Result<Done> PretendFiles::remove(const std::string& file, const FileContents* read) {
    const std::scoped_lock lock(_mutex);
    const auto place = _tree.place(file);
    const auto kind = place ? _tree.entryAt(*place) : place.failure();
    if (!kind) {
        return kind.failure();
    }
    if (*kind == Kind::folder) {
        return pretendFailure(std::errc::is_a_directory, file, Failure::Kind::notAFile);
    }
    if (read != nullptr) {
        const auto target = _tree.follow(*place);
        const auto now = target ? _tree.read(*target) : target.failure();
        if (auto same = now ? compared(file, *now, *read) : now.failure(); !same) {
            return same;
        }
    }
    _tree.remove(*place);
    return Done{};
}

Result<PretendThing> PretendFiles::thingToMove(const std::string& place) {
    const auto kind = _tree.entryAt(place);
    if (!kind) {
        return kind.failure();
    }
    if (*kind != Kind::file && *kind != Kind::link) {
        return pretendNotAFile(place);
    }
    if (const auto* change = _tree.changeAt(place)) {
        return **change;
    }
    if (*kind == Kind::link) {
        const auto target = _real.resolve(place);
        return PretendThing{Kind::link, target ? *target : std::string(), newStamp(0), {}};
    }
    auto contents = _tree.read(place);
    if (!contents) {
        return contents.failure();
    }
    auto [bytes, stamp] = std::move(contents).value();
    return PretendThing{Kind::file, std::move(bytes), stamp, place};
}

Result<Done> PretendFiles::move(const std::string& from, const std::string& to) {
    const std::scoped_lock lock(_mutex);
    const auto source = _tree.place(from);
    const auto target = source ? _tree.place(to) : source;
    auto thing = target ? thingToMove(*source) : target.failure();
    if (!thing) {
        return thing.failure();
    }
    const auto free = freePlace(to);
    if (free) {
        _tree.remove(*source);
        _tree.put(*free, std::move(thing).value());
    }
    return done(free);
}

Result<Done> PretendFiles::removeFolder(const std::string& folder) {
    const std::scoped_lock lock(_mutex);
    const auto place = _tree.place(withoutLastSlashes(folder));
    const auto kind = place ? _tree.entryAt(*place) : place.failure();
    if (!kind) {
        return kind.failure();
    }
    if (*kind != Kind::folder) {
        return pretendFailure(std::errc::not_a_directory, folder, Failure::Kind::notAFile);
    }
    const auto entries = _tree.list(*place);
    if (!entries) {
        return entries.failure();
    }
    if (!entries->empty()) {
        return pretendFailure(std::errc::directory_not_empty, folder, Failure::Kind::exists);
    }
    _tree.remove(*place);
    return Done{};
}

}  // namespace tessaly::app
