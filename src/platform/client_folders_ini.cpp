// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "platform/client_files.h"
#include "platform/client_folders.h"
#include "platform/client_ini.h"

namespace tessaly::platform {

namespace {

// The groups of folders below an account.
constexpr std::array<std::string_view, 3> groups{"Folders", "FoldersWithPlaceholders",
                                                 "Multifolders"};

/// "0\Folders\1\localPath": the folder's own part, and what is told of it.
struct FolderKey {
    std::string_view folder;
    std::string_view name;
};

FolderKey folderKey(std::string_view key) {
    const std::size_t last = key.rfind('\\');
    const std::size_t account = key.find('\\');
    const std::size_t group = account == key.npos ? key.npos : key.find('\\', account + 1);
    const bool isFolder = group != key.npos && group < last &&
                          std::find(groups.begin(), groups.end(),
                                    key.substr(account + 1, group - account - 1)) != groups.end();
    return isFolder ? FolderKey{key.substr(0, last), key.substr(last + 1)} : FolderKey{};
}

ClientFolders foldersOfAccounts(const std::string& source) {
    const auto text = clientFile(source);
    std::map<std::string_view, ClientFolder> folders;
    for (const IniLine& line : iniLines(text ? *text : std::string_view())) {
        const FolderKey key = folderKey(line.section == "Accounts" ? line.key : "");
        if (key.name == "localPath") {
            folders[key.folder].path = unescaped(line.value);
        } else if (key.name == "displayString") {
            folders[key.folder].label = unescaped(line.value);
        } else if (key.name == "paused") {
            folders[key.folder].isPaused = line.value == "true";
        }
    }
    ClientFolders found;
    for (auto& [key, folder] : folders) {
        folder.source = source;
        found.push_back(std::move(folder));
    }
    return found;
}

void append(ClientFolders& folders, ClientFolders&& more) {
    std::move(more.begin(), more.end(), std::back_inserter(folders));
}

/// The value of `key` in `section`, without quotes; the last one counts. Nothing: it is not there.
std::optional<std::string> valueIn(const std::string& text, std::string_view section,
                                   std::string_view key) {
    std::optional<std::string> value;
    for (const IniLine& line : iniLines(text)) {
        if (line.section == section && line.key == key) {
            value = unquoted(line.value);
        }
    }
    return value;
}

constexpr char oneDriveDefault[] = "~/OneDrive";

/// Nothing: no client keeps its settings in this folder.
std::optional<ClientFolder> oneDriveFolder(const std::string& configs, const std::string& name) {
    constexpr std::string_view plainName = "onedrive";
    const std::string source = configs + "/" + name + "/config";
    const auto text = clientFile(source);
    if (!text && name != plainName) {
        return std::nullopt;
    }
    const auto folder = valueIn(text.value_or(""), "", "sync_dir");
    return ClientFolder{folder.value_or(oneDriveDefault), name == plainName ? "" : name,
                        text ? source : configs + "/" + name, false};
}

}  // namespace

ClientFolders nextcloudFolders(const ClientHomes& homes) {
    ClientFolders folders;
    for (const std::string& place :
         {homes.config, homes.home + "/.local/share/data",
          homes.home + "/.var/app/com.nextcloud.desktopclient.nextcloud/config"}) {
        append(folders, foldersOfAccounts(place + "/Nextcloud/nextcloud.cfg"));
    }
    return folders;
}

ClientFolders ownCloudFolders(const ClientHomes& homes) {
    return foldersOfAccounts(homes.config + "/ownCloud/owncloud.cfg");
}

ClientFolders maestralFolders(const ClientHomes& homes) {
    constexpr std::string_view extension = ".ini";
    ClientFolders folders;
    const std::string configs = homes.config + "/maestral";
    for (const std::string& name : namesIn(configs, "", extension)) {
        const std::string source = configs + "/" + name;
        const auto text = clientFile(source);
        const auto path = valueIn(text.value_or(""), "sync", "path");
        if (path) {
            folders.push_back(
                {*path, name.substr(0, name.size() - extension.size()), source, false});
        }
    }
    return folders;
}

ClientFolders oneDriveFolders(const ClientHomes& homes) {
    ClientFolders folders;
    for (const std::string& name : namesIn(homes.config, "onedrive", "")) {
        if (auto folder = oneDriveFolder(homes.config, name)) {
            folders.push_back(*std::move(folder));
        }
    }
    return folders;
}

}  // namespace tessaly::platform
