// SPDX-License-Identifier: MIT
#include "platform/temporary_file.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include "base/temporary_name.h"

namespace tessaly::platform {

TemporaryFile::TemporaryFile(int folder, std::string_view besideName, mode_t mode)
    : _folder(folder), _fd(-1) {
    do {
        _name = base::temporaryName(besideName);
        _fd = FileDescriptor(uninterrupted([&] {
            return ::openat(folder, _name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        }));
    } while (!_fd && errno == EEXIST);
    struct stat status;
    if (!_fd || ::fstat(_fd.get(), &status) != 0) {
        _error = errno;
        return;
    }
    _identity = identityOf(status);
}

void TemporaryFile::discard() {
    if (!_keeps && _error == 0 && identityAt(name()) == _identity) {
        ::unlinkat(_folder, _name.c_str(), 0);
    }
}

}  // namespace tessaly::platform
