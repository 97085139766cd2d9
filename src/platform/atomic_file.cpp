// SPDX-License-Identifier: MIT
#include "platform/atomic_file.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <random>
#include <unistd.h>

#include <sys/stat.h>

#include "platform/errno_failure.h"
#include "platform/file_descriptor.h"

namespace tessaly::platform {

using base::Done;

namespace {

constexpr std::size_t maxNameBytes = 255;
constexpr std::size_t randomLength = 8;

std::string randomText() {
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz0123456789";
    thread_local std::random_device device;
    std::uniform_int_distribution<std::size_t> any(0, letters.size() - 1);
    std::string text;
    for (std::size_t i = 0; i < randomLength; ++i) {
        text += letters[any(device)];
    }
    return text;
}

/// At most `bytes` bytes of `text`, without half a character, which some file systems refuse.
std::string_view cutName(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) {
        return text;
    }
    while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0) == 0x80) {
        --bytes;
    }
    return text.substr(0, bytes);
}

struct Place {
    std::string folder;
    std::string name;
};

Place placeOf(const std::string& file) {
    const auto slash = file.find_last_of('/');
    return {slash == 0 ? "/" : file.substr(0, slash), file.substr(slash + 1)};
}

/// A new file under a temporary name, which goes with this object.
class TemporaryFile {
public:
    TemporaryFile(int folder, std::string_view name, mode_t mode) : _folder(folder), _fd(-1) {
        do {
            _name = temporaryName(name);
            _fd = FileDescriptor(uninterrupted([&] {
                return ::openat(folder, _name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                                mode);
            }));
        } while (!_fd && errno == EEXIST);
    }
    ~TemporaryFile() {
        if (_fd) {
            ::unlinkat(_folder, _name.c_str(), 0);
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    explicit operator bool() const { return static_cast<bool>(_fd); }
    const char* name() const { return _name.c_str(); }
    int fd() const { return _fd.get(); }

private:
    int _folder;
    std::string _name;
    FileDescriptor _fd;
};

/// 0 or the error's number.
int writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t put = uninterrupted([&] { return ::write(fd, bytes.data(), bytes.size()); });
        if (put < 0) {
            return errno;
        }
        bytes.remove_prefix(static_cast<std::size_t>(put));
    }
    return uninterrupted([&] { return ::fsync(fd); }) == 0 ? 0 : errno;
}

bool isUnsupported(int error) {
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == EPERM;
}

/// Takes the name with an empty file of our own, then puts the temporary one in its place.
int moveOverReservation(int folder, const char* temporary, const char* name) {
    const FileDescriptor reserved(uninterrupted(
        [&] { return ::openat(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600); }));
    if (!reserved) {
        return errno;
    }
    if (::renameat(folder, temporary, folder, name) == 0) {
        return 0;
    }
    const int error = errno;
    ::unlinkat(folder, name, 0);
    return error;
}

/// Gives the file its name if that is free. Not every file system can say "only if"; of those, not
/// every one has links.
int moveToFreeName(int folder, const char* temporary, const char* name) {
    if (::renameat2(folder, temporary, folder, name, RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (!isUnsupported(errno)) {
        return errno;
    }
    if (::linkat(folder, temporary, folder, name, 0) == 0) {
        return 0;
    }
    return isUnsupported(errno) ? moveOverReservation(folder, temporary, name) : errno;
}

int moveOver(int folder, const char* temporary, const char* name) {
    return ::renameat(folder, temporary, folder, name) == 0 ? 0 : errno;
}

int keepMode(int fd, mode_t mode) {
    return ::fchmod(fd, mode & 07777) == 0 ? 0 : errno;
}

using Move = int (*)(int folder, const char* temporary, const char* name);

/// `kept`: the permissions of the file that is replaced; null lets the user's mask decide.
int writeThrough(const Place& place, std::string_view bytes, const mode_t* kept, Move move) {
    const FileDescriptor folder(uninterrupted(
        [&] { return ::open(place.folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!folder) {
        return errno;
    }
    const TemporaryFile file(folder.get(), place.name, kept != nullptr ? 0600 : 0666);
    if (!file) {
        return errno;
    }
    int error = kept != nullptr ? keepMode(file.fd(), *kept) : 0;
    error = error != 0 ? error : writeAll(file.fd(), bytes);
    error = error != 0 ? error : move(folder.get(), file.name(), place.name.c_str());
    if (error == 0) {
        // The file stands under its name: were this to fail, there would be nothing to take back.
        ::fsync(folder.get());
    }
    return error;
}

base::Result<Done> resultOf(int error, const std::string& file) {
    return error == 0 ? base::Result<Done>(Done{}) : errnoFailure(error, file);
}

}  // namespace

std::string temporaryName(std::string_view name) {
    constexpr std::size_t added = 4 + randomLength;
    return ".~" + std::string(cutName(name, maxNameBytes - added)) + "." + randomText() + "~";
}

base::Result<Done> writeNewFile(const std::string& file, std::string_view bytes) {
    return resultOf(writeThrough(placeOf(file), bytes, nullptr, moveToFreeName), file);
}

base::Result<Done> replaceFile(const std::string& file, std::string_view bytes) {
    struct stat status;
    if (::lstat(file.c_str(), &status) != 0) {
        const int error = errno;
        return resultOf(
            error == ENOENT ? writeThrough(placeOf(file), bytes, nullptr, moveOver) : error, file);
    }
    const std::unique_ptr<char, void (*)(void*)> real(::realpath(file.c_str(), nullptr), std::free);
    if (!real || ::stat(real.get(), &status) != 0) {
        return errnoFailure(errno, file);
    }
    return resultOf(writeThrough(placeOf(real.get()), bytes, &status.st_mode, moveOver), file);
}

}  // namespace tessaly::platform
