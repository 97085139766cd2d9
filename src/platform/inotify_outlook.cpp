// SPDX-License-Identifier: MIT
#include "platform/inotify_outlook.h"

#include <cerrno>
#include <fcntl.h>
#include <fstream>

#include "platform/blind_file_systems.h"
#include "platform/errno_failure.h"
#include "platform/file_descriptor.h"
#include "platform/inotify_instance.h"

namespace tessaly::platform {

namespace {

std::optional<std::size_t> numberIn(const std::string& file) {
    std::size_t number = 0;
    return std::ifstream(file) >> number ? std::optional(number) : std::nullopt;
}

std::vector<ports::BlindFolder> blindOnes(const std::vector<std::string>& folders) {
    std::vector<ports::BlindFolder> blind;
    for (const std::string& path : folders) {
        const FileDescriptor folder(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        const std::string_view name = folder ? blindFileSystemOf(folder.get()) : "";
        if (!name.empty()) {
            blind.push_back({path, std::string(name)});
        }
    }
    return blind;
}

std::optional<base::Failure> refusalNow() {
    const InotifyInstance instance;
    return instance.fd() < 0 ? std::optional(errnoFailure(errno, "inotify")) : std::nullopt;
}

}  // namespace

ports::WatchOutlooks inotifyOutlook() {
    return [](const std::vector<std::string>& folders) {
        return ports::WatchOutlook{blindOnes(folders),
                                   numberIn("/proc/sys/fs/inotify/max_user_watches"), refusalNow()};
    };
}

}  // namespace tessaly::platform
