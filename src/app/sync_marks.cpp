// SPDX-License-Identifier: MIT
#include "app/sync_marks.h"

#include <array>
#include <string_view>
#include <vector>

#include "store/paths.h"

namespace tessaly::app {
namespace {

using Kind = ports::FolderEntry::Kind;

/// What a client leaves in the folders that it keeps in step.
struct SyncMark {
    std::string_view beginning;
    std::string_view end;  ///< empty: the name is `beginning`
    std::optional<Kind> kind;
    std::string_view inside;  ///< a name that must be in it; empty: none
    const char* client;
};

// In a home folder, ".dropbox" is a folder, and ".sync" may be one of settings.
constexpr std::array<SyncMark, 6> marks{{
    {".stfolder", "", std::nullopt, "", "Syncthing"},
    {".dropbox.cache", "", Kind::folder, "", "Dropbox"},
    {".dropbox", "", Kind::file, "", "Dropbox"},
    {".sync_", ".db", Kind::file, "", "Nextcloud/ownCloud"},
    {"._sync_", ".db", Kind::file, "", "Nextcloud/ownCloud"},
    {".sync", "", Kind::folder, "IgnoreList", "Resilio"},
}};

bool matches(const SyncMark& mark, const ports::FolderEntry& entry) {
    const std::string_view name = entry.name;
    const bool isName = mark.end.empty()
                            ? name == mark.beginning
                            : name.starts_with(mark.beginning) && name.ends_with(mark.end);
    return isName && (!mark.kind || mark.kind == entry.kind);
}

bool isMark(ports::FileSystem& files, const SyncMark& mark, const std::string& path) {
    return mark.inside.empty() || files.kindOf(store::joined(path, mark.inside)).ok();
}

std::optional<ports::CloudFolder> markIn(ports::FileSystem& files, const std::string& folder) {
    const auto entries = files.list(folder);
    for (const SyncMark& mark : marks) {
        for (const auto& entry : entries ? *entries : std::vector<ports::FolderEntry>()) {
            std::string path = store::joined(folder, entry.name);
            if (matches(mark, entry) && isMark(files, mark, path)) {
                return ports::CloudFolder{mark.client, folder, {}, std::move(path), false};
            }
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<ports::CloudFolder> markedFolder(ports::FileSystem& files,
                                               const std::string& folder) {
    for (std::string at = folder; at.size() > 1; at = store::parentOf(at)) {
        if (auto marked = markIn(files, at)) {
            return marked;
        }
    }
    return std::nullopt;
}

}  // namespace tessaly::app
