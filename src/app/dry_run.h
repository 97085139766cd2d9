// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/pretend_files.h"
#include "app/pretend_ports.h"
#include "app/services.h"
#include "base/log.h"

namespace tessaly::app {

/// Services that change nothing outside: they read the real world and keep what they would write in
/// memory. The same code runs against them as against the real ones, and then `changes` tells what
/// it would have done. Files that go to the trash are gone here.
///
/// Nothing is logged while a dry run lives, as the lines would tell of what did not happen; what
/// cannot be done is told by the results. Of one thread, and one at a time; make and end it while
/// no other thread logs.
class DryRun {
public:
    /// `services` are the real ones, and outlive this object.
    explicit DryRun(Services& services);
    ~DryRun();
    DryRun(const DryRun&) = delete;
    DryRun& operator=(const DryRun&) = delete;

    Services& services() { return _services; }

    /// The files in the data folders (the local one, the cloud drive's, and the one in use) that
    /// would be others, in the order of their paths. Below a data folder that is a link, paths
    /// begin with the link.
    std::vector<FileChange> changes();

private:
    struct Root {
        std::string path;
        std::string resolved;
    };
    std::vector<Root> roots();

    const base::LogSink _logBefore;
    ports::FileSystem& _realFiles;
    PretendFiles _files;
    PretendLocks _locks;
    PretendDefaults _standardDefaults;
    PretendDefaults _groupDefaults;
    Services _services;
};

}  // namespace tessaly::app
