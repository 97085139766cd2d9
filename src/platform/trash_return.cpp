// SPDX-License-Identifier: MIT
#include "platform/trash_return.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <glib.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include <fmt/format.h>
#include <sys/stat.h>

#include "platform/move_file.h"

namespace tessaly::platform {

using base::Done;
using base::Failure;

namespace {

namespace fs = std::filesystem;

/// A trash, and the folder that its records name places from.
struct TrashFolder {
    fs::path path;
    fs::path top;
};

std::optional<dev_t> deviceOf(const fs::path& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? std::optional(status.st_dev) : std::nullopt;
}

/// The topmost folder of the volume that `folder` is on.
fs::path topOf(fs::path folder) {
    const auto device = deviceOf(folder);
    while (folder.has_relative_path() && deviceOf(folder.parent_path()) == device) {
        folder = folder.parent_path();
    }
    return folder;
}

std::vector<TrashFolder> trashFoldersFor(const fs::path& folder) {
    const fs::path top = topOf(folder);
    const auto user = std::to_string(::getuid());
    return {{fs::path(g_get_user_data_dir()) / "Trash", "/"},
            {top / ".Trash" / user, top},
            {top / (".Trash-" + user), top}};
}

struct TrashRecord {
    fs::path file;
    fs::file_time_type written;
};

constexpr std::string_view recordSuffix = ".trashinfo";

/// Newest first.
std::vector<TrashRecord> recordsIn(const TrashFolder& trash) {
    std::vector<TrashRecord> records;
    std::error_code error;
    for (fs::directory_iterator entry(trash.path / "info", error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code vanished;
        const auto written = fs::last_write_time(entry->path(), vanished);
        if (!vanished && entry->path().extension() == recordSuffix) {
            records.push_back({entry->path(), written});
        }
    }
    std::sort(records.begin(), records.end(), [](const auto& a, const auto& b) {
        return a.written != b.written ? a.written > b.written : a.file > b.file;
    });
    return records;
}

/// Where a record says that its file lay; empty: it does not say.
fs::path placeIn(const TrashRecord& record, const TrashFolder& trash) {
    constexpr std::string_view key = "Path=";
    std::ifstream stream(record.file, std::ios::binary);
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with(key)) {
            const std::unique_ptr<char, void (*)(void*)> path(
                g_uri_unescape_string(line.c_str() + key.size(), nullptr), g_free);
            return path ? trash.top / path.get() : fs::path();
        }
    }
    return {};
}

base::Result<Done> takeBackTo(const std::string& path, const fs::path& file,
                              const fs::path& record) {
    auto moved = moveFile(file.string(), path);
    if (moved) {
        std::error_code ignored;  // a record without its file is no more than clutter
        fs::remove(record, ignored);
    }
    return moved;
}

base::Result<ports::TakeBack> findInTrash(const std::string& path) {
    const fs::path wanted(path);
    std::error_code error;
    const fs::path resolved = fs::weakly_canonical(wanted.parent_path(), error) / wanted.filename();
    for (const TrashFolder& trash : trashFoldersFor(wanted.parent_path())) {
        for (const TrashRecord& record : recordsIn(trash)) {
            const fs::path place = placeIn(record, trash);
            const fs::path file = trash.path / "files" / record.file.stem();
            if ((place == wanted || place == resolved) &&
                fs::exists(fs::symlink_status(file, error))) {
                return ports::TakeBack(
                    [=, item = record.file] { return takeBackTo(path, file, item); });
            }
        }
    }
    return Failure{Failure::Kind::notFound, path};
}

}  // namespace

ports::TrashReturn trashReturn() {
    return findInTrash;
}

}  // namespace tessaly::platform
