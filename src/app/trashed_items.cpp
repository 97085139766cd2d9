// SPDX-License-Identifier: MIT
#include "app/trashed_items.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "app/moved_files.h"
#include "base/localisation.h"
#include "store/paths.h"

namespace tessaly::app {
namespace {

using base::Done;
using base::Failure;
using base::tr;

std::optional<store::HistoryEntry> textOfTrashedNote(Services& services, const std::string& path) {
    const auto entries = services.history().entries(path);
    if (!entries) {
        return std::nullopt;
    }
    const auto found = std::find_if(entries->begin(), entries->end(), [](const auto& entry) {
        return entry.cause == store::ChangeCause::trashed;
    });
    // An older one is of another time that it went: this time its text could not be kept.
    return found == entries->end() || found->time < entries->front().time ? std::nullopt
                                                                          : std::optional(*found);
}

Failure somethingElseIsThere(const std::string& name) {
    return {
        Failure::Kind::exists,
        fmt::format(fmt::runtime(tr("“{}” stays in the trash: something else has its name now")),
                    name)};
}

base::Result<Done> fromHistory(Services& services, const FiledItem& parent,
                               const TrashedItem& item) {
    const auto bytes = services.history().text(*item.text);
    return bytes ? services.safeFiles().create(parent.root, item.path, *bytes,
                                               store::ChangeCause::restored)
                 : base::Result<Done>(bytes.failure());
}

base::Result<Done> returned(Services& services, const FiledItem& parent, const TrashedItem& item) {
    if (!item.takeBack) {
        return fromHistory(services, parent, item);
    }
    auto taken = item.takeBack();
    const bool isGone = !taken && taken.failure().kind == Failure::Kind::notFound;
    return isGone && item.text ? fromHistory(services, parent, item) : taken;
}

}  // namespace

TrashedItem trashedItem(Services& services, const std::string& name) {
    TrashedItem item{name, {}, {}, std::nullopt};
    const auto path = services.dataStore().pathOf(base::NoteType::note, name);
    if (!path) {
        return item;
    }
    item.path = *path;
    item.text = textOfTrashedNote(services, *path);
    if (services.ports().trashReturn) {
        auto found = services.ports().trashReturn(*path);
        item.takeBack = found ? *std::move(found) : ports::TakeBack();
    }
    return item;
}

base::Result<Done> bringBack(Services& services, const TrashedItem& item) {
    const auto path = services.dataStore().pathOf(base::NoteType::note, item.name);
    if (!path || *path != item.path) {
        return Failure{Failure::Kind::unavailable, tr("another data folder is in use now")};
    }
    const FiledItem named{{}, item.name, item.path};
    const auto parent = targetFolder(services, named.folder());
    if (!parent) {
        return parent.failure();
    }
    const std::string name(store::lastComponent(item.name));
    const auto taken = isNameTaken(services, parent->path, name, {});
    if (!taken) {
        return taken.failure();
    }
    if (*taken) {
        return somethingElseIsThere(name);
    }
    const auto back = returned(services, *parent, item);
    if (!back) {
        return back.failure().kind == Failure::Kind::exists ? somethingElseIsThere(name) : back;
    }
    tellCacheOfReturn(services, item.name);
    return Done{};
}

}  // namespace tessaly::app
