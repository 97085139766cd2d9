// SPDX-License-Identifier: MIT
#include "platform/folder_cloud_container.h"

#include <optional>
#include <utility>

#include "platform/posix_file_system.h"
#include "platform/xdg_folders.h"

namespace tessaly::platform {

namespace {

std::string withHome(const std::string& path) {
    return path == "~" || path.starts_with("~/") ? homeFolder() + path.substr(1) : path;
}

std::optional<std::string> existingFolder(const std::string& path) {
    if (!path.starts_with('/')) {
        return std::nullopt;
    }
    const auto kind = PosixFileSystem().kindOf(path);
    const bool isFolder = kind && *kind == ports::FolderEntry::Kind::folder;
    return isFolder ? std::optional{path} : std::nullopt;
}

}  // namespace

ports::CloudContainer folderCloudContainer(std::function<std::string()> folderSetting) {
    return [folderSetting = std::move(folderSetting)] {
        return existingFolder(withHome(folderSetting()));
    };
}

}  // namespace tessaly::platform
