// SPDX-License-Identifier: MIT
#include "platform/xdg_folders.h"

#include <array>
#include <cstdlib>
#include <optional>
#include <pwd.h>
#include <unistd.h>

namespace tessaly::platform {

namespace {

std::string withoutLastSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

/// Nothing also for a relative path, which the rules have us ignore.
std::optional<std::string> folderFromEnvironment(const char* variable) {
    const char* value = std::getenv(variable);
    if (value == nullptr || value[0] != '/') {
        return std::nullopt;
    }
    return withoutLastSlashes(value);
}

std::optional<std::string> folderFromUserDatabase() {
    std::array<char, 16384> texts;
    passwd entry{};
    passwd* found = nullptr;
    ::getpwuid_r(::getuid(), &entry, texts.data(), texts.size(), &found);
    if (found == nullptr || found->pw_dir == nullptr || found->pw_dir[0] != '/') {
        return std::nullopt;
    }
    return withoutLastSlashes(found->pw_dir);
}

std::string folderBelow(const std::string& folder, std::string_view name) {
    return (folder == "/" ? "" : folder) + "/" + std::string(name);
}

std::string xdgHome(const char* variable, std::string_view inHome) {
    auto folder = folderFromEnvironment(variable);
    return folder ? *folder : folderBelow(homeFolder(), inHome);
}

}  // namespace

std::string homeFolder() {
    if (auto folder = folderFromEnvironment("HOME")) {
        return *folder;
    }
    return folderFromUserDatabase().value_or("/");
}

std::string configHome() {
    return xdgHome("XDG_CONFIG_HOME", ".config");
}

std::string stateHome() {
    return xdgHome("XDG_STATE_HOME", ".local/state");
}

ports::StandardFolders xdgFolders(const char* programName) {
    return {
        .data = xdgHome("XDG_DATA_HOME", ".local/share"),
        .config = folderBelow(configHome(), programName),
        .state = folderBelow(stateHome(), programName),
        .cache = folderBelow(xdgHome("XDG_CACHE_HOME", ".cache"), programName),
    };
}

}  // namespace tessaly::platform
