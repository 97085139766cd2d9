// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <dirent.h>
#include <memory>
#include <string>
#include <string_view>

namespace tessaly::platform {

inline bool isDots(std::string_view name) {
    return name == "." || name == "..";
}

/// A folder's entries, one after another, "." and ".." left out.
class FolderStream {
public:
    explicit FolderStream(const std::string& folder)
        : _stream(::opendir(folder.c_str()), closeStream), _error(_stream ? 0 : errno) {}

    /// Null: that was all, or it broke off, which must not pass for a shorter folder: see `error`.
    const dirent* next() {
        while (_error == 0) {
            errno = 0;
            const dirent* entry = ::readdir(_stream.get());
            if (entry == nullptr) {
                _error = errno;
                return nullptr;
            }
            if (!isDots(entry->d_name)) {
                return entry;
            }
        }
        return nullptr;
    }

    /// 0, or why it could not be opened or read to its end.
    int error() const { return _error; }

    int fd() const { return _stream ? ::dirfd(_stream.get()) : -1; }

private:
    static void closeStream(DIR* stream) {
        if (stream != nullptr) {
            ::closedir(stream);
        }
    }

    std::unique_ptr<DIR, void (*)(DIR*)> _stream;
    int _error;
};

}  // namespace tessaly::platform
