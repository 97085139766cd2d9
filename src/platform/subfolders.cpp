// SPDX-License-Identifier: MIT
#include "platform/subfolders.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <dirent.h>
#include <fcntl.h>

#include <sys/stat.h>

#include "platform/file_descriptor.h"

namespace tessaly::platform {

namespace {

// Asked of the kernel directly: the entries of the many files need not be copied to pass over them.
constexpr std::size_t nameBufferBytes = 32768;

bool isFolder(int parent, const dirent64& entry) {
    if (entry.d_type != DT_UNKNOWN) {
        return entry.d_type == DT_DIR;
    }
    struct stat status;
    return ::fstatat(parent, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISDIR(status.st_mode);
}

bool isSelfOrParent(std::string_view name) {
    return name == "." || name == "..";
}

}  // namespace

int forEachSubfolder(int folder, const std::function<void(std::string_view name)>& found) {
    alignas(dirent64) std::array<char, nameBufferBytes> buffer;
    while (true) {
        const auto bytes =
            uninterrupted([&] { return ::getdents64(folder, buffer.data(), buffer.size()); });
        if (bytes <= 0) {
            return bytes == 0 ? 0 : errno;
        }
        for (std::size_t at = 0; at < static_cast<std::size_t>(bytes);) {
            const auto& entry = *reinterpret_cast<const dirent64*>(buffer.data() + at);
            if (isFolder(folder, entry) && !isSelfOrParent(entry.d_name)) {
                found(entry.d_name);
            }
            at += entry.d_reclen;
        }
    }
}

}  // namespace tessaly::platform
