// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "platform/metadata_query_contract.h"
#include "ports/metadata_query.h"

namespace tessaly::tests {

/// Everything below a root as one knows it who looks only where he was told to.
class Mirror {
public:
    explicit Mirror(std::string root) : _root(std::move(root)) {}

    void look(const Change& change) {
        _seen.erase(change.path);
        if (change.reach == Reach::tree) {
            std::erase_if(_seen, [&](const auto& each) { return isIn(each.first, change.path); });
        }
        find(change.path, change.reach);
    }

    bool operator==(const Mirror&) const = default;

    std::vector<std::string> folders() const {
        std::vector<std::string> found;
        for (const auto& [path, contents] : _seen) {
            if (contents == folderMark) {
                found.push_back(path);
            }
        }
        return found;
    }

private:
    static constexpr const char* folderMark = "/";

    /// What disappears meanwhile will be told.
    void find(const std::string& path, Reach reach) {
        std::error_code error;
        const std::filesystem::path full = std::filesystem::path(_root) / path;
        const auto status = std::filesystem::symlink_status(full, error);
        if (std::filesystem::is_regular_file(status)) {
            std::ifstream file(full, std::ios::binary);
            _seen[path] = std::string(std::istreambuf_iterator<char>(file), {});
        }
        if (!std::filesystem::is_directory(status)) {
            return;
        }
        _seen[path] = folderMark;
        if (reach == Reach::entry) {
            return;
        }
        for (std::filesystem::directory_iterator each(full, error), end; !error && each != end;
             each.increment(error)) {
            const std::string name = each->path().filename();
            if (!name.starts_with('.')) {
                find(path.empty() ? name : path + "/" + name, reach);
            }
        }
    }

    std::string _root;
    std::map<std::string, std::string> _seen;
};

/// The watches that this process has.
inline std::size_t kernelWatches() {
    std::size_t watches = 0;
    for (const auto& file : std::filesystem::directory_iterator("/proc/self/fdinfo")) {
        std::ifstream lines(file.path());
        for (std::string line; std::getline(lines, line);) {
            watches += line.starts_with("inotify wd:") ? 1 : 0;
        }
    }
    return watches;
}

/// Checks that `told`, looked at when it was told, gave all there is, and that every folder is
/// watched in its place.
inline void checkNothingIsLost(Watching& watching, ports::MetadataQuery& query, Mirror& told,
                               const std::string& root) {
    Mirror real(root);
    real.look(treeAt(""));
    CHECK(told.folders() == real.folders());
    REQUIRE(told == real);
    CHECK(query.state().watchedFolders == real.folders().size());
    CHECK(kernelWatches() == real.folders().size());
    CHECK(query.state().unwatchedTrees == std::vector<std::string>{});
    watching.forget();
    std::set<Change> last;
    for (const std::string& folder : real.folders()) {
        const std::string file = folder.empty() ? "last" : folder + "/last";
        std::ofstream(std::filesystem::path(root) / file).put('x');
        last.insert(entryAt(file));
    }
    CHECK(watching.await([&](const Changes& all) {
        return std::includes(all.begin(), all.end(), last.begin(), last.end());
    }));
}

}  // namespace tessaly::tests
