// SPDX-License-Identifier: MIT
#include "platform/cloud_folders.h"

#include <array>
#include <set>
#include <utility>

#include "platform/client_files.h"
#include "platform/client_folders.h"
#include "platform/xdg_folders.h"

namespace tessaly::platform {

namespace {

using ports::CloudFolder;

struct Client {
    const char* name;
    ClientFolders (*folders)(const ClientHomes&);
};

constexpr std::array<Client, 8> clients{{
    {"Syncthing", syncthingFolders},
    {"Nextcloud", nextcloudFolders},
    {"ownCloud", ownCloudFolders},
    {"Dropbox", dropboxFolders},
    {"Maestral", maestralFolders},
    {"OneDrive", oneDriveFolders},
    {"Seafile", seafileFolders},
    {"pCloud", pCloudFolders},
}};

std::vector<CloudFolder> foldersOf(const ClientHomes& homes) {
    std::vector<CloudFolder> all;
    std::set<std::string> known;
    for (const Client& client : clients) {
        for (ClientFolder& folder : client.folders(homes)) {
            auto path = clientPath(folder.path, homes.home);
            if (path && known.insert(*path).second) {
                all.push_back({client.name, *std::move(path), std::move(folder.label),
                               std::move(folder.source), folder.isPaused});
            }
        }
    }
    return all;
}

}  // namespace

ports::CloudFolders cloudFoldersOf(ClientHomes homes) {
    return [homes = std::move(homes)] { return foldersOf(homes); };
}

ClientHomes clientHomes() {
    return {homeFolder(), configHome(), stateHome()};
}

}  // namespace tessaly::platform
