// SPDX-License-Identifier: MIT
// Preloaded into a program, lets its n-th change of the disk go wrong. What counts is every call
// that opens a file for writing, changes a file or a folder, or asks for a lock; the standard
// streams, pipes and sockets do not. The C library's own calls, as those of stdio, are not seen.
//
//   FAIL_CALL   n, from 1 on; 0 or absent: none
//   FAIL_HOW    a number: the call fails with that errno, the next is sound again
//               a number and "+": that call fails and all after it
//               short: half of the bytes are written; other calls are sound
//               kill-after: the process is killed when the call is done
//   FAIL_PLAIN  set: the file system can neither exchange two names nor rename to a free name only
//   FAIL_TOLD   a file that gets a line for each call that counted: its name and the path
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <unistd.h>

#include <sys/stat.h>
#include <sys/types.h>

namespace {

/// The function behind ours. A name of ours must not be called in this file but through this.
template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}
#define NEXT(function) next<decltype(function)>(#function)

std::string_view variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string_view{} : std::string_view{value};
}

struct Plan {
    unsigned long call = std::strtoul(std::string(variable("FAIL_CALL")).c_str(), nullptr, 10);
    std::string_view how = variable("FAIL_HOW");
    int error = std::atoi(std::string(how).c_str());
    bool onwards = !how.empty() && how.back() == '+';
    bool plainRenames = std::getenv("FAIL_PLAIN") != nullptr;
    std::string told{variable("FAIL_TOLD")};
};

const Plan& plan() {
    static const Plan read;
    return read;
}

[[noreturn]] void endHere() {
    ::kill(::getpid(), SIGKILL);
    for (;;) {
        ::pause();
    }
}

void tell(const char* name, const std::string& path) {
    if (plan().told.empty()) {
        return;
    }
    const int fd = NEXT(open)(plan().told.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    const std::string line = std::string(name) + " " + path + "\n";
    if (NEXT(write)(fd, line.data(), line.size()) < 0) {
        ::abort();
    }
    ::close(fd);
}

std::string pathOf(int fd) {
    char path[PATH_MAX];
    const std::string link = "/proc/self/fd/" + std::to_string(fd);
    const ssize_t length = ::readlink(link.c_str(), path, sizeof path);
    return length < 0 ? std::string("?") : std::string(path, static_cast<std::size_t>(length));
}

std::string pathOf(const char* path) {
    return path == nullptr ? "" : path;
}

std::atomic<unsigned long> calls{0};

/// Whether this call is the one (or, with "+", one after it). Tells of the call.
template <typename Where>
bool isMeant(const char* name, Where where) {
    const int kept = errno;
    tell(name, pathOf(where));
    errno = kept;
    const unsigned long number = ++calls;
    const bool meant = plan().onwards ? number >= plan().call : number == plan().call;
    return plan().call != 0 && meant;
}

/// `call` as the plan wants it; `half` is what is called for a short write.
template <typename Where, typename Call, typename Half>
auto counted(const char* name, Where where, Call call, Half half) -> decltype(call()) {
    if (!isMeant(name, where)) {
        return call();
    }
    if (plan().error != 0) {
        errno = plan().error;
        return -1;
    }
    if (plan().how == "short") {
        return half();
    }
    call();
    endHere();
}

template <typename Where, typename Call>
auto counted(const char* name, Where where, Call call) -> decltype(call()) {
    return counted(name, where, call, call);
}

bool isOnDisk(int fd) {
    struct stat status;
    return fd > STDERR_FILENO && ::fstat(fd, &status) == 0 &&
           (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
}

template <typename Call>
auto ofFile(const char* name, int fd, Call call) -> decltype(call()) {
    return isOnDisk(fd) ? counted(name, fd, call) : call();
}

/// `call(n)` writes the first n of `count` bytes.
template <typename Call>
ssize_t writes(const char* name, int fd, std::size_t count, Call call) {
    if (!isOnDisk(fd)) {
        return call(count);
    }
    return counted(
        name, fd, [&] { return call(count); }, [&] { return call((count + 1) / 2); });
}

template <typename Call>
int opens(const char* name, const char* path, int flags, Call call) {
    const bool changes = (flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_TRUNC)) != 0;
    return changes ? counted(name, path, call) : call();
}

mode_t modeIn(int flags, std::va_list rest) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0;
}

}  // namespace

#define OPENS(function)                                                                          \
    int function(const char* path, int flags, ...) {                                             \
        std::va_list rest;                                                                       \
        va_start(rest, flags);                                                                   \
        const mode_t mode = modeIn(flags, rest);                                                 \
        va_end(rest);                                                                            \
        return opens(#function, path, flags, [=] { return NEXT(function)(path, flags, mode); }); \
    }
#define OPENS_AT(function)                                                       \
    int function(int folder, const char* path, int flags, ...) {                 \
        std::va_list rest;                                                       \
        va_start(rest, flags);                                                   \
        const mode_t mode = modeIn(flags, rest);                                 \
        va_end(rest);                                                            \
        return opens(#function, path, flags,                                     \
                     [=] { return NEXT(function)(folder, path, flags, mode); }); \
    }
// Changes what `where`, a parameter, names.
#define CHANGES(function, where, parameters, arguments)                             \
    int function parameters {                                                       \
        return counted(#function, where, [=] { return NEXT(function) arguments; }); \
    }
// Changes what the descriptor `fd` names.
#define CHANGES_FILE(function, parameters, arguments)                           \
    int function parameters {                                                   \
        return ofFile(#function, fd, [=] { return NEXT(function) arguments; }); \
    }

extern "C" {

OPENS(open)
OPENS(open64)
OPENS_AT(openat)
OPENS_AT(openat64)

int creat(const char* path, mode_t mode) {
    return counted("creat", path, [=] { return NEXT(creat)(path, mode); });
}

ssize_t write(int fd, const void* bytes, std::size_t count) {
    return writes("write", fd, count, [=](std::size_t n) { return NEXT(write)(fd, bytes, n); });
}
ssize_t pwrite(int fd, const void* bytes, std::size_t count, off_t offset) {
    return writes("pwrite", fd, count,
                  [=](std::size_t n) { return NEXT(pwrite)(fd, bytes, n, offset); });
}
ssize_t pwrite64(int fd, const void* bytes, std::size_t count, off64_t offset) {
    return writes("pwrite64", fd, count,
                  [=](std::size_t n) { return NEXT(pwrite64)(fd, bytes, n, offset); });
}
ssize_t copy_file_range(int from, off64_t* fromOffset, int to, off64_t* toOffset, std::size_t count,
                        unsigned flags) {
    return writes("copy_file_range", to, count, [=](std::size_t n) {
        return NEXT(copy_file_range)(from, fromOffset, to, toOffset, n, flags);
    });
}

// Nobody cuts the power here, so there is no need to wait for the disk.
int fsync(int fd) {
    return ofFile("fsync", fd, [] { return 0; });
}
int fdatasync(int fd) {
    return ofFile("fdatasync", fd, [] { return 0; });
}

CHANGES_FILE(ftruncate, (int fd, off_t length), (fd, length))
CHANGES_FILE(ftruncate64, (int fd, off64_t length), (fd, length))
CHANGES_FILE(fallocate, (int fd, int mode, off_t offset, off_t length), (fd, mode, offset, length))
CHANGES_FILE(fchmod, (int fd, mode_t mode), (fd, mode))
CHANGES_FILE(fchown, (int fd, uid_t owner, gid_t group), (fd, owner, group))
CHANGES_FILE(futimens, (int fd, const timespec times[2]), (fd, times))
CHANGES_FILE(fsetxattr, (int fd, const char* name, const void* value, std::size_t size, int flags),
             (fd, name, value, size, flags))
// The system has a struct of that name.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"
CHANGES_FILE(flock, (int fd, int operation), (fd, operation))
#pragma GCC diagnostic pop

CHANGES(truncate, path, (const char* path, off_t length), (path, length))
CHANGES(rename, to, (const char* from, const char* to), (from, to))
CHANGES(renameat, to, (int fromFolder, const char* from, int toFolder, const char* to),
        (fromFolder, from, toFolder, to))
CHANGES(link, to, (const char* from, const char* to), (from, to))
CHANGES(linkat, to, (int fromFolder, const char* from, int toFolder, const char* to, int flags),
        (fromFolder, from, toFolder, to, flags))
CHANGES(symlink, path, (const char* target, const char* path), (target, path))
CHANGES(unlink, path, (const char* path), (path))
CHANGES(unlinkat, path, (int folder, const char* path, int flags), (folder, path, flags))
CHANGES(remove, path, (const char* path), (path))
CHANGES(rmdir, path, (const char* path), (path))
CHANGES(mkdir, path, (const char* path, mode_t mode), (path, mode))
CHANGES(mkdirat, path, (int folder, const char* path, mode_t mode), (folder, path, mode))
CHANGES(chmod, path, (const char* path, mode_t mode), (path, mode))
CHANGES(utimensat, path, (int folder, const char* path, const timespec times[2], int flags),
        (folder, path, times, flags))

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
    return counted("renameat2", to, [=] {
        if (plan().plainRenames && flags != 0) {
            errno = EINVAL;
            return -1;
        }
        return NEXT(renameat2)(fromFolder, from, toFolder, to, flags);
    });
}

int fcntl64(int fd, int command, ...) {
    std::va_list rest;
    va_start(rest, command);
    void* argument = va_arg(rest, void*);
    va_end(rest);
    const auto call = [=] { return NEXT(fcntl64)(fd, command, argument); };
    return command == F_SETLEASE ? counted("fcntl", fd, call) : call();
}
int fcntl(int fd, int command, ...) {
    std::va_list rest;
    va_start(rest, command);
    void* argument = va_arg(rest, void*);
    va_end(rest);
    return ::fcntl64(fd, command, argument);
}

}  // extern "C"
