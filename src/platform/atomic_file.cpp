// SPDX-License-Identifier: MIT
#include "platform/atomic_file.h"

#include <cerrno>
#include <cstdlib>
#include <memory>

#include <sys/stat.h>

#include "platform/errno_failure.h"
#include "platform/file_attributes.h"
#include "platform/file_bytes.h"
#include "platform/file_failures.h"
#include "platform/still_file.h"
#include "platform/temporary_file.h"

namespace tessaly::platform {

using base::Done;
using ports::Durability;
using ports::Readers;

namespace {

mode_t modeFor(Readers readers) {
    return readers == Readers::ownerOnly ? 0600 : 0666;
}

int writeTo(const TemporaryFile& file, std::string_view bytes, Durability durability) {
    int error = file.error();
    error = error != 0 ? error : writeAll(file.fd(), bytes);
    return error != 0 || durability == Durability::later ? error : syncBytes(file.fd());
}

base::Result<Done> replaceExisting(const std::string& file, std::string_view bytes) {
    const Place place = placeOf(file);
    const FileDescriptor folder = openFolder(place.folder);
    if (!folder) {
        return errnoFailure(errno, file);
    }
    const FolderName name{folder.get(), place.name.c_str()};
    const StillFile old(name, Links::themselves, file);
    if (!old.opened()) {
        return old.opened();
    }
    const TemporaryFile fresh(folder.get(), place.name, 0600);
    int error = fresh.error();
    error = error != 0 ? error : copyAttributes(old.fd(), old.status(), fresh.fd());
    error = error != 0 ? error : writeTo(fresh, bytes, Durability::now);
    error = error != 0 ? error : giveName(fresh.name(), name);
    if (error == 0) {
        syncFolder(folder.get());
    }
    return resultOf(error, file);
}

}  // namespace

base::Result<Done> writeNewFile(const std::string& file, std::string_view bytes, Readers readers,
                                Durability durability) {
    const Place place = placeOf(file);
    const FileDescriptor folder = openFolder(place.folder);
    if (!folder) {
        return errnoFailure(errno, file);
    }
    const TemporaryFile fresh(folder.get(), place.name, modeFor(readers));
    int error = writeTo(fresh, bytes, durability);
    error = error != 0 ? error : giveFreeName(fresh.name(), {folder.get(), place.name.c_str()});
    if (error == 0 && durability == Durability::now) {
        // The file stands under its name: were this to fail, there would be nothing to take back.
        syncFolder(folder.get());
    }
    return resultOf(error, file);
}

base::Result<Done> replaceFile(const std::string& file, std::string_view bytes) {
    struct stat status;
    if (::lstat(file.c_str(), &status) != 0) {
        return errno == ENOENT ? writeNewFile(file, bytes, Readers::byMask, Durability::now)
                               : errnoFailure(errno, file);
    }
    const std::unique_ptr<char, void (*)(void*)> real(::realpath(file.c_str(), nullptr), std::free);
    return real ? replaceExisting(real.get(), bytes) : errnoFailure(errno, file);
}

}  // namespace tessaly::platform
