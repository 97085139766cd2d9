// SPDX-License-Identifier: MIT
#include "platform/client_files.h"

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

#include <sys/stat.h>

#include "platform/file_descriptor.h"
#include "platform/open_flags.h"

namespace tessaly::platform {

namespace {

constexpr std::size_t mostBytes = 4 << 20;

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

bool isRegular(const struct stat& status) {
    return S_ISREG(status.st_mode);
}

}  // namespace

std::optional<std::string> clientFile(const std::string& path) {
    const FileDescriptor file(::open(path.c_str(), readFlags));
    struct stat status;
    if (!file || ::fstat(file.get(), &status) != 0 || !isRegular(status) ||
        static_cast<std::size_t>(status.st_size) > mostBytes) {
        return std::nullopt;
    }
    // One more than may be: the file may have grown.
    std::string bytes(std::min(static_cast<std::size_t>(status.st_size), mostBytes) + 1, '\0');
    std::size_t size = 0;
    while (size < bytes.size()) {
        const ssize_t got = uninterrupted(
            [&] { return ::read(file.get(), bytes.data() + size, bytes.size() - size); });
        if (got < 0) {
            return std::nullopt;
        }
        if (got == 0) {
            break;
        }
        size += static_cast<std::size_t>(got);
    }
    bytes.resize(size);
    return bytes;
}

bool isRegularFile(const std::string& path) {
    struct stat status;
    return ::stat(path.c_str(), &status) == 0 && isRegular(status);
}

std::vector<std::string> namesIn(const std::string& folder, std::string_view beginning,
                                 std::string_view end) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, CloseFolder> stream(::opendir(folder.c_str()));
    while (const dirent* entry = stream ? ::readdir(stream.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        if (name.starts_with(beginning) && name.ends_with(end)) {
            names.emplace_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::optional<std::string> clientPath(std::string_view written, const std::string& home) {
    std::string path(written);
    if (path == "~" || path.starts_with("~/")) {
        path.replace(0, 1, home);
    }
    while (path.ends_with('/')) {
        path.pop_back();
    }
    const bool isPath = path.starts_with('/') && path.find('\0') == path.npos;
    return isPath ? std::optional(std::move(path)) : std::nullopt;
}

}  // namespace tessaly::platform
