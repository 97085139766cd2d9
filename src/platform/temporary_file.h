// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include <sys/types.h>

#include "platform/file_descriptor.h"
#include "platform/folder_names.h"

namespace tessaly::platform {

/// A new file under a temporary name (base::temporaryName) in a folder that stays open longer. The
/// name goes with this object, but only if it still is this file's.
class TemporaryFile {
public:
    TemporaryFile(int folder, std::string_view besideName, mode_t mode);
    ~TemporaryFile() { discard(); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    int error() const { return _error; }  ///< why there is no file; 0: there is one
    int fd() const { return _fd.get(); }  ///< open for reading and writing
    FolderName name() const { return {_folder, _name.c_str()}; }
    const FileIdentity& identity() const { return _identity; }

    /// No longer open. So it must be before it gets another name, since it would count as written.
    void close() { _fd = FileDescriptor(-1); }
    /// The name stays when this object goes.
    void keep() { _keeps = true; }
    void discard();

private:
    int _folder;
    std::string _name;
    FileDescriptor _fd;
    int _error = 0;
    FileIdentity _identity;
    bool _keeps = false;
};

}  // namespace tessaly::platform
