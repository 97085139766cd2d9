// SPDX-License-Identifier: MIT
#include "app/start_up_index.h"

#include <utility>

#include <fmt/format.h>

#include "app/services.h"
#include "base/localisation.h"
#include "base/log.h"

namespace tessaly::app {

using base::Failure;

namespace {

/// The kinds' folders may be file systems of their own.
std::string whyNot(Services& services) {
    if (!services.globals().isStartUpIndex()) {
        return base::tr("the setting isStartUpIndex is off");
    }
    const store::DataStore& store = services.dataStore();
    for (const auto type : {base::NoteType::none, base::NoteType::calendar, base::NoteType::note}) {
        const auto telling = services.ports().tellingStamps(store.folder(type));
        if (!telling && telling.failure().kind == Failure::Kind::unavailable) {
            return fmt::format(
                fmt::runtime(base::tr("the notes are on a file system ({}) of which none is made")),
                telling.failure().description);
        }
    }
    return {};
}

bool isSame(const store::NoteIndex::Key& one, const store::NoteIndex::Key& other) {
    return one.root == other.root && one.markers.isAsteriskTodo == other.markers.isAsteriskTodo &&
           one.markers.isDashTodo == other.markers.isDashTodo &&
           one.markers.isNumbersTodo == other.markers.isNumbersTodo;
}

}  // namespace

base::Result<IndexPlace> indexPlace(Services& services) {
    auto root = services.ports().files.resolve(services.dataStore().root());
    if (!root) {
        return root.failure();
    }
    std::string file = store::NoteIndex::fileFor(services.ports().folders.cache, *root);
    return IndexPlace{
        {*std::move(root), services.markerSettings()}, std::move(file), whyNot(services)};
}

std::shared_ptr<const store::NoteIndex> StartUpIndex::get() {
    const auto place = indexPlace(_services);
    if (!place) {
        return nullptr;
    }
    if (!place->whyNot.empty()) {
        (void)_services.ports().cacheFiles.remove(place->file);  // mostly there is none
        return nullptr;
    }
    const std::scoped_lock lock(_mutex);
    if (!_index || !isSame(_key, place->key)) {
        _index = open(*place);
        _key = place->key;
    }
    return _index;
}

std::shared_ptr<const store::NoteIndex> StartUpIndex::open(const IndexPlace& place) {
    ports::CacheFiles& files = _services.ports().cacheFiles;
    auto index = store::NoteIndex::open(files, place.file, place.key);
    if (index) {
        return *std::move(index);
    }
    if (index.failure().kind != Failure::Kind::notFound) {
        base::log("start-up index thrown away: ", index.failure().description);
        (void)files.remove(place.file);  // else it is in the way once more, and no worse
    }
    return nullptr;
}

void StartUpIndex::forget() {
    const std::scoped_lock lock(_mutex);
    _index.reset();
}

}  // namespace tessaly::app
