// SPDX-License-Identifier: MIT
#include "platform/posix_cache_files.h"

#include <cerrno>
#include <unistd.h>

#include "platform/errno_failure.h"
#include "platform/file_failures.h"
#include "platform/folder_names.h"
#include "platform/mapped_file.h"
#include "platform/new_cache_file.h"
#include "platform/posix_file_changes.h"

namespace tessaly::platform {

base::Result<std::shared_ptr<const ports::MappedFile>> PosixCacheFiles::map(
    const std::string& file) {
    return holdsNul(file) ? nulFailure(file) : mapFile(file);
}

base::Result<std::unique_ptr<ports::NewCacheFile>> PosixCacheFiles::create(
    const std::string& file) {
    if (holdsNul(file)) {
        return nulFailure(file);
    }
    if (const auto made = PosixFileChanges().makeFolders(placeOf(file).folder); !made) {
        return made.failure();
    }
    return beginCacheFile(file);
}

base::Result<base::Done> PosixCacheFiles::remove(const std::string& file) {
    if (holdsNul(file)) {
        return nulFailure(file);
    }
    return resultOf(::unlink(file.c_str()) == 0 ? 0 : errno, file);
}

}  // namespace tessaly::platform
