// SPDX-License-Identifier: MIT
#include "app/cloud_offers.h"

#include <algorithm>
#include <utility>

#include "app/sync_marks.h"
#include "store/paths.h"

namespace tessaly::app {
namespace {

using ports::CloudFolder;

/// As it stands where it cannot be resolved.
std::string resolved(ports::FileSystem& files, const std::string& path) {
    const auto real = files.resolve(path);
    return real ? *real : path;
}

bool isFolder(ports::FileSystem& files, const std::string& path) {
    const auto kind = files.kindOf(path);
    return kind && *kind == ports::FolderEntry::Kind::folder;
}

}  // namespace

std::vector<CloudFolder> cloudDriveOffers(Services& services) {
    ports::FileSystem& files = services.ports().files;
    const std::string root = resolved(files, services.dataStore().root());
    const std::string container = services.globals().cloudDriveContainer();
    const std::string current = container.empty() ? container : resolved(files, container);
    std::vector<CloudFolder> offers = services.ports().cloudFolders();
    std::erase_if(offers, [&](const CloudFolder& folder) {
        const std::string path = resolved(files, folder.path);
        return !isFolder(files, path) || path == current || store::isInside(path, root) ||
               store::isInside(root, path);
    });
    std::stable_partition(offers.begin(), offers.end(),
                          [](const CloudFolder& folder) { return !folder.isPaused; });
    return offers;
}

std::vector<std::string> acceptingCommand(const CloudFolder& offer) {
    return {"tessaly", "settings", "set", "cloudDriveContainer", offer.path};
}

std::optional<CloudFolder> syncClientOf(Services& services) {
    ports::FileSystem& files = services.ports().files;
    const std::string root = resolved(files, services.dataStore().root());
    std::optional<CloudFolder> innermost;
    std::size_t depth = 0;
    for (CloudFolder& folder : services.ports().cloudFolders()) {
        const std::string path = resolved(files, folder.path);
        if (store::isInside(root, path) && path.size() > depth) {
            depth = path.size();
            innermost = std::move(folder);
        }
    }
    return innermost ? innermost : markedFolder(files, root);
}

}  // namespace tessaly::app
