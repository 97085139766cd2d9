// SPDX-License-Identifier: MIT
#include <utility>

#include "base/localisation.h"
#include "store/cloud_mover.h"
#include "store/data_store.h"
#include "store/inside_path.h"
#include "store/new_files.h"
#include "store/paths.h"

namespace tessaly::store {
namespace {

using base::Failure;

Failure noCloudDrive() {
    return {Failure::Kind::unavailable, base::tr("there is no cloud drive")};
}

Failure cloudInLocal(const std::string& cloud) {
    return {Failure::Kind::outside,
            cloud + ": " + base::tr("lies in the folder that is to be moved")};
}

MoveReport nothingMoved(Failure failure) {
    MoveReport report;
    report.failed.push_back(
        {"", logged("Failed to move all files to cloud: ", std::move(failure))});
    return report;
}

void enter(MoveReport& report, const std::string& from, const base::Result<std::string>& to) {
    if (!to) {
        report.failed.push_back({from, to.failure()});
        return;
    }
    ++report.moved;
    if (*to != from) {
        report.renamed.push_back({from, *to});
    }
}

}  // namespace

base::Result<std::string> DataStore::pushToCloudDrive(base::NoteType type,
                                                      std::string_view filename) {
    constexpr std::string_view notPushed =
        "Could not push file from local to iCloud Drive, error = ";
    const auto cloud = cloudRoot();
    if (!cloud) {
        return logged(notPushed, noCloudDrive());
    }
    if (type == base::NoteType::none || !namesOnly(filename)) {
        return logged(notPushed, outside(filename));
    }
    const std::string folder(base::folderName(type));
    const CloudMover mover(_tools, localRoot(), *cloud);
    if (mover.isCloudInLocal()) {
        return logged(notPushed, cloudInLocal(*cloud));
    }
    const auto moved = _files.sync([&] { return mover.move(joined(folder, filename)); });
    return moved ? base::Result<std::string>(moved->substr(folder.size() + 1)) : moved;
}

MoveReport DataStore::moveAllToCloudDrive(const MoveOptions& options) {
    const auto cloud = cloudRoot();
    if (!cloud) {
        return nothingMoved(noCloudDrive());
    }
    const CloudMover mover(_tools, localRoot(), *cloud);
    if (mover.isCloudInLocal()) {
        return nothingMoved(cloudInLocal(*cloud));
    }
    FolderTree tree = _files.sync([&] {
        // What cannot be settled now lies there as a temporary file, and is told of as such.
        static_cast<void>(_tools.safeFiles.settle(localRoot(), SafeFiles::Settle::always));
        return mover.tree();
    });
    MoveReport report;
    report.failed = std::move(tree.staying);
    std::size_t files = 0;
    for (const std::string& file : tree.files) {
        if (options.cancelled != nullptr && *options.cancelled) {
            report.cancelled = true;
            return report;
        }
        enter(report, file, _files.sync([&] { return mover.move(file); }));
        if (options.progress) {
            options.progress(++files);
        }
    }
    _files.sync([&] { mover.moveEmptyFolders(tree.folders); });
    return report;
}

}  // namespace tessaly::store
