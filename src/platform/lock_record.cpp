// SPDX-License-Identifier: MIT
#include "platform/lock_record.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include <sys/stat.h>

#include "platform/errno_failure.h"
#include "platform/file_bytes.h"
#include "platform/file_descriptor.h"

namespace tessaly::platform {

using base::Done;

namespace {

bool contains(const std::vector<std::string>& all, const std::string& one) {
    return std::find(all.begin(), all.end(), one) != all.end();
}

void addOnce(std::vector<std::string>& all, const std::string& one) {
    if (!contains(all, one)) {
        all.push_back(one);
    }
}

/// False: `errno` says why.
bool readAll(int fd, std::string& bytes) {
    std::array<char, 4096> buffer;
    for (;;) {
        const ssize_t got = uninterrupted([&] {
            return ::pread(fd, buffer.data(), buffer.size(), static_cast<off_t>(bytes.size()));
        });
        if (got <= 0) {
            return got == 0;
        }
        bytes.append(buffer.data(), static_cast<std::size_t>(got));
    }
}

std::string readPresentRun() {
    const FileDescriptor fd(uninterrupted(
        [] { return ::open("/proc/sys/kernel/random/boot_id", O_RDONLY | O_CLOEXEC); }));
    std::string run;
    if (fd) {
        readAll(fd.get(), run);
    }
    std::erase(run, '\n');
    return "run " + run;  // no path, also where the kernel does not tell
}

const std::string& presentRun() {
    static const std::string run = readPresentRun();
    return run;
}

/// A part of the bytes would be worse than none, since the next ones would be taken for its end.
bool appendAll(int fd, std::string_view bytes) {
    struct stat before;
    if (::fstat(fd, &before) != 0) {
        return false;
    }
    const int error = writeAll(fd, bytes);
    if (error != 0) {
        errno = ::ftruncate(fd, before.st_size) == 0 ? error : errno;
    }
    return error == 0;
}

}  // namespace

base::Result<LockRecord> LockRecord::read(int fd, std::string folder) {
    std::string bytes;
    if (!readAll(fd, bytes)) {
        return errnoFailure(errno, folder);
    }
    LockRecord record;
    record._isEmpty = bytes.empty();
    std::string_view rest = bytes;
    bool isFirst = true;
    for (auto end = rest.find('\0'); end != rest.npos; end = rest.find('\0')) {
        const std::string part(rest.substr(0, end));
        rest.remove_prefix(end + 1);
        record._isPresent = record._isPresent || (isFirst && part == presentRun());
        isFirst = false;
        if (part.starts_with('/')) {
            addOnce(record._named, part);
        }
    }
    record._isTorn = !rest.empty();
    if (!record._isPresent || record._isTorn) {
        record._unfinished = {folder};
    }
    for (const std::string& named : record._named) {
        addOnce(record._unfinished, named);
    }
    record._folder = std::move(folder);
    return record;
}

base::Result<Done> LockRecord::add(int fd, const std::string& folder) {
    if (contains(_named, folder)) {
        return Done{};
    }
    using namespace std::string_literals;
    // A torn path gets an end, and that it was torn must not be forgotten with it.
    const std::string before = _isTorn ? "\0"s + _folder + "\0"s : ""s;
    if (!appendAll(fd, before + folder + "\0"s)) {
        _isTorn = true;
        return errnoFailure(errno, folder);
    }
    _isEmpty = false;
    _isTorn = false;
    addOnce(_named, folder);
    return Done{};
}

void LockRecord::clear(int fd) {
    const std::string header = presentRun() + '\0';
    if (_isPresent && isUnfinished()) {
        _isPresent = ::ftruncate(fd, static_cast<off_t>(header.size())) == 0;
    }
    if (!_isPresent) {
        _isPresent = ::ftruncate(fd, 0) == 0 && appendAll(fd, header);
    }
    _named.clear();
    _unfinished.clear();
    _isEmpty = false;
    _isTorn = false;
}

}  // namespace tessaly::platform
