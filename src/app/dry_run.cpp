// SPDX-License-Identifier: MIT
#include "app/dry_run.h"

#include <algorithm>
#include <utility>

#include "store/paths.h"

namespace tessaly::app {

DryRun::DryRun(Services& services)
    : _logBefore(base::setLogSink([](std::string_view) {})),
      _realFiles(services.ports().files),
      _files(_realFiles, services.ports().clock),
      _standardDefaults(services.ports().standardDefaults),
      _groupDefaults(services.ports().groupDefaults),
      _services({.files = _files,
                 .changes = _files,
                 .locks = _locks,
                 .standardDefaults = _standardDefaults,
                 .groupDefaults = _groupDefaults,
                 .clock = services.ports().clock,
                 .executor = services.ports().executor,
                 .cloudQuery = services.ports().cloudQuery,
                 .mainQueue = services.ports().mainQueue,
                 .downloads = services.ports().downloads,
                 .cacheFiles = services.ports().cacheFiles,
                 .fileClock = services.ports().fileClock,
                 .tellingStamps = services.ports().tellingStamps,
                 .background = [](const auto&) { return base::Result(base::Done{}); },
                 .cloudFolders = services.ports().cloudFolders,
                 .watchOutlook = services.ports().watchOutlook,
                 .folders = services.ports().folders,
                 .locale = services.ports().locale,
                 .dropboxAuthorised = services.ports().dropboxAuthorised,
                 .cloudContainer = services.ports().cloudContainer,
                 .trash = [this](const std::string& file) { return _files.remove(file); },
                 .questions = services.ports().questions,
                 .dataFolder = services.ports().dataFolder,
                 .isTestMode = true}) {}

DryRun::~DryRun() {
    base::setLogSink(_logBefore);
}

std::vector<DryRun::Root> DryRun::roots() {
    const store::DataStore& store = _services.dataStore();
    std::vector<std::string> paths{store.root(), store.localRoot()};
    if (const auto cloud = store.cloudRoot()) {
        paths.push_back(*cloud);
    }
    std::vector<Root> roots;
    for (const std::string& path : paths) {
        // One that would be gone is there now, and one that is not there now may be then.
        for (ports::FileSystem* files : {&_realFiles, static_cast<ports::FileSystem*>(&_files)}) {
            if (const auto resolved = files->resolve(path)) {
                roots.push_back({path, *resolved});
            }
        }
    }
    return roots;
}

std::vector<FileChange> DryRun::changes() {
    const std::vector<Root> all = roots();
    const auto rename = [&](std::string& path) {
        const auto root = std::find_if(all.begin(), all.end(), [&](const Root& each) {
            return store::isInside(path, each.resolved);
        });
        if (root == all.end()) {
            return false;
        }
        path = root->path + path.substr(root->resolved.size());
        return true;
    };
    std::vector<FileChange> changes;
    for (FileChange& change : _files.changes()) {
        const bool isHere = rename(change.path);
        const bool wasHere = change.movedFrom && rename(*change.movedFrom);
        if (isHere || wasHere) {
            changes.push_back(std::move(change));
        }
    }
    std::stable_sort(changes.begin(), changes.end(),
                     [](const FileChange& a, const FileChange& b) { return a.path < b.path; });
    return changes;
}

}  // namespace tessaly::app
