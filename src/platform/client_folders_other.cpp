// SPDX-License-Identifier: MIT
#include <nlohmann/json.hpp>

#include "base/utf8.h"
#include "platform/client_files.h"
#include "platform/client_folders.h"
#include "platform/json_object.h"

namespace tessaly::platform {

namespace {

ClientFolders foldersInDatabase(const std::string& source, const std::string& query) {
    ClientFolders folders;
    for (std::string& path : textsInDatabase(source, query)) {
        folders.push_back({std::move(path), {}, source, false});
    }
    return folders;
}

}  // namespace

/// One object an account; its name is the account's.
ClientFolders dropboxFolders(const ClientHomes& homes) {
    const std::string source = homes.home + "/.dropbox/info.json";
    const auto text = clientFile(source);
    const auto accounts = parseJsonObject(source, text.value_or(""));
    ClientFolders folders;
    if (!accounts) {
        return folders;
    }
    for (const auto& [name, account] : accounts->items()) {
        const auto path = account.is_object() ? account.find("path") : account.end();
        if (path != account.end() && path->is_string()) {
            folders.push_back({path->get<std::string>(), name, source, false});
        }
    }
    return folders;
}

ClientFolders seafileFolders(const ClientHomes& homes) {
    const auto place = clientFile(homes.home + "/.ccnet/seafile.ini");
    const auto data = clientPath(base::trimmed(place ? *place : std::string_view()), homes.home);
    return data ? foldersInDatabase(
                      *data + "/repo.db",
                      "SELECT value FROM RepoProperty WHERE key = 'worktree' ORDER BY value")
                : ClientFolders();
}

ClientFolders pCloudFolders(const ClientHomes& homes) {
    return foldersInDatabase(homes.home + "/.pcloud/data.db",
                             "SELECT localpath FROM syncfolder ORDER BY localpath");
}

}  // namespace tessaly::platform
