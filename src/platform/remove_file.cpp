// SPDX-License-Identifier: MIT
#include "platform/remove_file.h"

#include <cerrno>
#include <unistd.h>

#include "base/temporary_name.h"
#include "platform/errno_failure.h"
#include "platform/file_bytes.h"
#include "platform/file_failures.h"

namespace tessaly::platform {

using base::Done;

base::Result<Done> removeHeld(const StillFile& file, FolderName name,
                              const StillFile::Expected& expected, const std::string& path,
                              const ChangeNames& rename) {
    if (auto still = file.check(name, expected); !still) {
        return still;
    }
    const std::string temporary = base::temporaryName(name.name);
    const FolderName aside{name.folder, temporary.c_str()};
    if (const int error = rename(name, aside); error != 0) {
        return errnoFailure(error, path);
    }
    auto still = file.check(aside, expected);
    if (still && ::unlinkat(name.folder, aside.name, 0) != 0) {
        still = errnoFailure(errno, path);
    }
    if (!still && isGone(aside)) {
        still = Done{};  // others have cleared it away
    } else if (!still) {
        // Where the name has been taken meanwhile, the file stays under its temporary one.
        rename(aside, name);
    }
    syncFolder(name.folder);
    return still;
}

base::Result<Done> removeIfStill(const std::string& file, const ports::FileContents& read,
                                 const ChangeNames& rename) {
    const Place place = placeOf(file);
    const FileDescriptor folder = openFolder(place.folder);
    if (!folder) {
        return errnoFailure(errno, file);
    }
    const FolderName name{folder.get(), place.name.c_str()};
    StillFile still(name, Links::followed, file);
    if (!still.opened()) {
        return still.opened();
    }
    if (still.status().st_ino != read.stamp.inode) {
        return changedFailure(file);
    }
    if (auto held = still.hold(); !held) {
        return held;
    }
    return removeHeld(
        still, name, [&](int fd) { return holdsBytes(fd, read.bytes); }, file, rename);
}

}  // namespace tessaly::platform
