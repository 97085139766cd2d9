// SPDX-License-Identifier: MIT
#include "sync/survey.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "store/entry_role.h"
#include "store/inside_path.h"
#include "store/paths.h"
#include "store/work_queue.h"
#include "sync/append.h"

namespace tessaly::sync {
namespace {

using base::Failure;
using ports::SurveyedEntry;

// Above so many names the whole folder is cheaper to look at.
constexpr std::size_t manyNames = 64;
// Looking at a name takes less time than waking a thread for it.
constexpr std::size_t foldersPerJob = 32;

base::Result<std::string> kindFolder(ports::FileSystem& files, const std::string& root,
                                     std::string_view kind) {
    auto resolved = files.resolve(store::joined(root, kind));
    if (resolved && !store::isInside(*resolved, root)) {
        return store::outside(kind);
    }
    return resolved;
}

}  // namespace

void Survey::Found::add(Found&& more) {
    append(folders, std::move(more.folders));
    append(names, std::move(more.names));
    append(gone, std::move(more.gone));
    append(failed, std::move(more.failed));
}

Survey::Survey(ports::FileSystem& files, base::Executor& executor, const std::string& root)
    : _files(files), _executor(executor), _root(root) {
    for (const base::NoteType type : watchedKinds) {
        const std::string_view kind = base::folderName(type);
        _kinds.emplace(kind, kindFolder(files, root, kind));
    }
}

std::vector<std::string> Survey::linkedKinds() const {
    std::vector<std::string> linked;
    for (const auto& [kind, path] : _kinds) {
        if (path && *path != store::joined(_root, kind)) {
            linked.push_back(kind);
        }
    }
    return linked;
}

base::Result<std::string> Survey::pathOf(std::string_view folder) const {
    const std::size_t slash = std::min(folder.find('/'), folder.size());
    const auto& kind = _kinds.find(folder.substr(0, slash))->second;
    return kind ? base::Result(std::string(*kind).append(folder.substr(slash))) : kind.failure();
}

Survey::Found Survey::look(const Looks& looks) const {
    const auto byFolder = looks.names();
    std::vector<Found> parts(byFolder.size());
    std::vector<decltype(byFolder)::const_iterator> folders;
    for (auto at = byFolder.begin(); at != byFolder.end(); ++at) {
        folders.push_back(at);
    }
    const std::size_t jobs = (parts.size() + foldersPerJob - 1) / foldersPerJob;
    base::parallelFor(_executor, jobs, [&](std::size_t job) {
        const std::size_t end = std::min(parts.size(), (job + 1) * foldersPerJob);
        for (std::size_t index = job * foldersPerJob; index < end; ++index) {
            lookAtNames(folders[index]->first, folders[index]->second, parts[index]);
        }
    });
    Found found;
    for (Found& part : parts) {
        found.add(std::move(part));
    }
    found.add(trees(looks.trees()));
    return found;
}

void Survey::lookAtNames(const std::string& folder, const std::set<std::string>& names,
                         Found& found) const {
    const auto path = pathOf(folder);
    if (!path) {
        cannotLook(folder, path.failure(), found);
        return;
    }
    if (names.size() > manyNames) {
        auto entries = _files.survey(*path);
        if (entries) {
            found.folders.push_back({folder, *std::move(entries)});
        } else {
            cannotLook(folder, entries.failure(), found);
        }
        return;
    }
    const std::vector<std::string> asked(names.begin(), names.end());
    auto entries = _files.surveyNames(*path, asked);
    if (!entries) {
        cannotLook(folder, entries.failure(), found);
        return;
    }
    Found::Names& answer = found.names.emplace_back(Found::Names{folder, {}});
    auto entry = (*std::move(entries)).begin();
    for (const std::string& name : asked) {
        answer.names.push_back({name, *std::move(entry++)});
    }
}

Survey::Found Survey::trees(const std::vector<std::string>& folders) const {
    store::WorkQueue<std::string> queue;
    for (const std::string& folder : folders) {
        queue.push(folder);
    }
    const auto lookAt = [&](const std::string& folder, Found& found) {
        const auto path = pathOf(folder);
        auto entries = path ? _files.survey(*path) : path.failure();
        if (!entries) {
            cannotLook(folder, entries.failure(), found);
            return;
        }
        auto& whole = found.folders.emplace_back(Found::Folder{folder, *std::move(entries)});
        std::sort(whole.entries.begin(), whole.entries.end(),
                  [](const auto& a, const auto& b) { return a.name < b.name; });
        for (const SurveyedEntry& entry : whole.entries) {
            if (entry.kind == SurveyedEntry::Kind::folder &&
                store::entryRoleIn(folder, entry) == store::EntryRole::folder) {
                queue.push(store::joined(folder, entry.name));
            }
        }
    };
    std::vector<Found> parts(_executor.width() + 1);
    base::parallelFor(_executor, parts.size(), [&](std::size_t worker) {
        queue.drain([&](const std::string& folder) { lookAt(folder, parts[worker]); });
    });
    Found whole;
    for (Found& part : parts) {
        whole.add(std::move(part));
    }
    std::sort(whole.folders.begin(), whole.folders.end(),
              [](const auto& a, const auto& b) { return a.path < b.path; });
    return whole;
}

void Survey::cannotLook(const std::string& folder, const Failure& failure, Found& found) {
    if (failure.kind == Failure::Kind::notFound || failure.kind == Failure::Kind::notAFile) {
        found.gone.push_back(folder);
    } else {
        found.failed.push_back({folder, failure});
    }
}

}  // namespace tessaly::sync
