// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include <doctest/doctest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <sys/xattr.h>

#include "platform/atomic_file.h"
#include "platform/file_changes_contract.h"
#include "platform/odd_things.h"
#include "platform/posix_file_changes.h"
#include "platform/read_and_append.h"
#include "support/failure_kind.h"
#include "support/temp_folder.h"
#include "support/without_rights.h"

namespace tessaly::platform {
namespace {

using base::Failure;
using tests::failureKind;
using tests::Names;
using tests::readOf;
using tests::TempFolder;
using namespace std::string_literals;

TEST_CASE("changes of the kernel's files keep the contract") {
    const TempFolder folder;
    PosixFileSystem files;
    PosixFileChanges changes;
    tests::checkFileChanges({folder.path(), files, changes});
}

unsigned modeOf(const std::string& file) {
    struct stat status {};
    REQUIRE(::lstat(file.c_str(), &status) == 0);
    return status.st_mode & 07777U;
}

TEST_CASE("a name is taken by whatever has it") {
    const tests::OddThings taken;
    const TempFolder& folder = taken.folder;
    PosixFileChanges changes;
    const auto before = folder.names();
    for (const char* name : {"note", "folder", "pipe", "toNote", "toNothing", "loop"}) {
        CAPTURE(name);
        CHECK(failureKind(changes.create(folder / name, "new")) == Failure::Kind::exists);
        CHECK(failureKind(changes.move(folder / "note", folder / name)) == Failure::Kind::exists);
    }
    CHECK(folder.names() == before);
    CHECK(folder.read("note") == "text");
    for (const char* name : {"pipe", "toNothing", "toNothing/below"}) {
        CAPTURE(name);
        CHECK(!changes.makeFolders(folder / name));
    }
    CHECK(changes.makeFolders(folder / "toFolder/a"));
    for (const char* name : {"pipe", "toFolder"}) {
        CAPTURE(name);
        CHECK(!changes.append(folder / name, "x", ports::Durability::now));
        const auto read = readOf(folder / "note");
        CHECK(failureKind(changes.replace(folder / name, read, "x")) == Failure::Kind::notAFile);
        CHECK(failureKind(changes.remove(folder / name, &read)) == Failure::Kind::notAFile);
    }
    CHECK(folder.names() == before);
}

TEST_CASE("what is made has the permissions that were asked for") {
    const TempFolder folder;
    folder.mkdir("folder");
    ::chmod((folder / "folder").c_str(), 0755);
    PosixFileChanges changes;
    const mode_t before = ::umask(027);
    CHECK(changes.create(folder / "byMask", "x"));
    CHECK(changes.create(folder / "ownerOnly", "x", ports::Readers::ownerOnly));
    CHECK(changes.append(folder / "appended", "x", ports::Durability::later));
    CHECK(changes.makeFolders(folder / "folder/a/b"));
    ::umask(before);
    struct Row {
        const char* name;
        unsigned mode;
    };
    for (const Row& row : std::vector<Row>{{"byMask", 0640},
                                           {"ownerOnly", 0600},
                                           {"appended", 0600},
                                           {"folder", 0755},
                                           {"folder/a", 0700},
                                           {"folder/a/b", 0700}}) {
        CAPTURE(row.name);
        CHECK(modeOf(folder / row.name) == row.mode);
    }
}

std::optional<std::string> attributeOf(const std::string& file, const char* name) {
    std::array<char, 100> value{};
    const ssize_t size = ::getxattr(file.c_str(), name, value.data(), value.size());
    return size < 0 ? std::nullopt
                    : std::optional(std::string(value.data(), static_cast<std::size_t>(size)));
}

TEST_CASE("a replaced file keeps its permissions, owner and attributes") {
    constexpr uid_t otherOwner = 12345;
    for (const unsigned mode : {0604U, 0440U, 02775U}) {
        CAPTURE(mode);
        const TempFolder folder;
        const std::string file = folder.write("note", "old");
        const bool root = ::chown(file.c_str(), otherOwner, otherOwner) == 0;
        const bool attributed = ::setxattr(file.c_str(), "user.tag", "blue", 4, 0) == 0;
        ::chmod(file.c_str(), mode);
        if (!root && (mode & 0200U) == 0) {
            continue;
        }
        REQUIRE(PosixFileChanges().replace(file, readOf(file), "new"));
        CHECK(folder.read("note") == "new");
        CHECK(modeOf(file) == mode);
        struct stat status {};
        ::stat(file.c_str(), &status);
        CHECK((!root || (status.st_uid == otherOwner && status.st_gid == otherOwner)));
        CHECK((!attributed || attributeOf(file, "user.tag") == "blue"));
    }
}

TEST_CASE("a folder's default access list gives nobody rights to a file that is replaced") {
    // Version 2, then tag, permissions and id of: owner, user 1234, group, mask, others.
    constexpr unsigned char list[] =
        "\2\0\0\0"
        "\1\0\7\0\377\377\377\377\2\0\7\0\322\4\0\0\4\0\5\0\377\377\377\377"
        "\20\0\7\0\377\377\377\377\40\0\5\0\377\377\377\377";
    const TempFolder folder;
    const std::string file = folder.write("note", "old");
    if (::setxattr(folder.path().c_str(), "system.posix_acl_default", list, sizeof list - 1, 0)) {
        MESSAGE("skipped: this file system has no access lists");
        return;
    }
    REQUIRE(PosixFileChanges().replace(file, readOf(file), "new"));
    CHECK(folder.read("note") == "new");
    CHECK_FALSE(attributeOf(file, "system.posix_acl_access"));
    REQUIRE(PosixFileChanges().create(folder / "other", "new"));
    CHECK(attributeOf(folder / "other", "system.posix_acl_access"));
}

TEST_CASE("a link stays a link when what it leads to is replaced, and goes when it is removed") {
    const TempFolder folder;
    folder.write("real/note", "old");
    folder.write("real/other", "old");
    folder.link("note", "real/note");
    folder.link("toNothing", "missing");
    PosixFileChanges changes;
    const auto read = readOf(folder / "note");
    REQUIRE(changes.replace(folder / "note", read, "new"));
    CHECK(std::filesystem::is_symlink(folder / "note"));
    CHECK(folder.read("real/note") == "new");
    CHECK(failureKind(changes.replace(folder / "toNothing", read, "x")) == Failure::Kind::notFound);

    CHECK(failureKind(changes.remove(folder / "note", &read)) == Failure::Kind::changed);
    const auto now = readOf(folder / "note");
    CHECK(changes.remove(folder / "note", &now));
    CHECK(changes.remove(folder / "toNothing"));
    CHECK(folder.names() == Names{"real"});
    CHECK(folder.names("real") == Names{"note", "other"});

    folder.link("note", "real/other");
    CHECK(changes.move(folder / "note", folder / "moved"));
    CHECK(std::filesystem::is_symlink(folder / "moved"));
    CHECK(replaceFile(folder / "moved", "settings"));
    CHECK(failureKind(replaceFile(folder / "missing/x", "x")) == Failure::Kind::notFound);
    CHECK(std::filesystem::is_symlink(folder / "moved"));
    CHECK(folder.read("real/other") == "settings");
    CHECK(folder.names("real") == Names{"note", "other"});
}

TEST_CASE("what may not be written is not replaced, though its folder may be changed") {
    const TempFolder folder;
    const std::string locked = folder.write("open/locked", "old");
    const std::string free = folder.write("closed/free", "old");
    const auto readLocked = readOf(locked);
    const auto readFree = readOf(free);
    ::chmod(locked.c_str(), 0444);
    ::chmod(free.c_str(), 0666);
    ::chmod((folder / "open").c_str(), 0777);
    ::chmod((folder / "closed").c_str(), 0555);
    {
        const tests::WithoutRights rights(folder);
        if (!rights.effective()) {
            MESSAGE("skipped: this root cannot lay down its rights");
            return;
        }
        PosixFileChanges changes;
        const auto now = ports::Durability::now;
        for (const auto& result : std::vector<base::Result<base::Done>>{
                 changes.replace(locked, readLocked, "new"), changes.append(locked, "x", now),
                 changes.replace(free, readFree, "new"), changes.remove(free),
                 changes.remove(free, &readFree), changes.move(free, folder / "open/new"),
                 changes.create(folder / "closed/new", "x"),
                 changes.makeFolders(folder / "closed/new"),
                 changes.removeFolder(folder / "closed")}) {
            CHECK(failureKind(result) == Failure::Kind::denied);
        }
    }
    ::chmod((folder / "closed").c_str(), 0700);
    CHECK(folder.names("open") == Names{"locked"});
    CHECK(folder.names("closed") == Names{"free"});
    CHECK(folder.read("open/locked") == "old");
    CHECK(folder.read("closed/free") == "old");
}

TEST_CASE("a touch between reading and replacing is no change") {
    const TempFolder folder;
    const std::string file = folder.write("note", "old");
    const auto read = readOf(file);
    ::chmod(file.c_str(), 0640);
    const timespec times[2] = {{0, UTIME_OMIT}, {1551794853, 0}};
    ::utimensat(AT_FDCWD, file.c_str(), times, 0);
    CHECK(PosixFileChanges().replace(file, read, "new"));
    CHECK(folder.read("note") == "new");
}

/// A folder on another file system than the usual temporary one; nothing: there is none.
std::optional<std::string> otherDevice(const TempFolder& folder) {
    std::string path = "/dev/shm/tessaly-test-XXXXXX";
    struct stat here {};
    struct stat there {};
    if (::mkdtemp(path.data()) == nullptr) {
        return std::nullopt;
    }
    ::stat(folder.path().c_str(), &here);
    ::stat(path.c_str(), &there);
    if (here.st_dev == there.st_dev) {
        ::rmdir(path.c_str());
        return std::nullopt;
    }
    return path;
}

TEST_CASE("a file moves to another file system with all that it has") {
    const TempFolder folder;
    const auto other = otherDevice(folder);
    if (!other) {
        MESSAGE("skipped: there is no other file system");
        return;
    }
    std::string text(200000, 'x');
    text += "end";
    const std::string file = folder.write("note", text);
    ::chmod(file.c_str(), 0604);
    const timespec times[2] = {{0, UTIME_OMIT}, {1551794853, 123456789}};
    ::utimensat(AT_FDCWD, file.c_str(), times, 0);
    const auto modified = readOf(file).stamp.modified;
    PosixFileChanges changes;
    const std::string target = *other + "/note";

    REQUIRE(changes.create(target, "theirs"));
    CHECK(failureKind(changes.move(file, target)) == Failure::Kind::exists);
    CHECK(readOf(target).bytes == "theirs");
    REQUIRE(changes.remove(target));
    // A program that has it open is waited for.
    FileDescriptor open(::open(file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
    std::thread writer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        CHECK(::write(open.get(), "!", 1) == 1);
        ::futimens(open.get(), times);
        open = FileDescriptor(-1);
    });
    CHECK(changes.move(file, target));
    writer.join();
    CHECK(folder.names().empty());
    CHECK((readOf(target).bytes == text + "!"));
    CHECK(readOf(target).stamp.modified == modified);
    CHECK(modeOf(target) == 0604U);
    folder.link("link", "note");
    folder.mkdir("folder");
    CHECK(!changes.move(folder / "link", *other + "/link"));
    CHECK(!changes.move(folder / "folder", *other + "/folder"));
    CHECK(std::distance(std::filesystem::directory_iterator(*other), {}) == 1);
    std::filesystem::remove_all(*other);
}

/// Whether `work` succeeds in a process of its own where these system calls fail as they do on a
/// file system that has no such thing; nothing, with a message: the kernel does not let us.
template <class Work>
std::optional<bool> succeedsWithout(const std::vector<unsigned>& calls, unsigned error, Work work) {
    std::vector<sock_filter> filter{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const unsigned call : calls) {
        filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1));
        filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error));
    }
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
    const pid_t child = ::fork();
    REQUIRE(child >= 0);
    if (child == 0) {
        const bool isRefused = ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
                               ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
        ::_exit(!isRefused ? 2 : work() ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    REQUIRE(WIFEXITED(status));
    if (WEXITSTATUS(status) == 2) {
        MESSAGE("skipped: no system calls can be refused here");
        return std::nullopt;
    }
    return WEXITSTATUS(status) == 0;
}

TEST_CASE("where a rename cannot be told to replace nothing, a new name still does not") {
    struct Row {
        const char* without;
        std::vector<unsigned> calls;
        unsigned error;
    };
    for (const Row& row : std::vector<Row>{
             {"exclusive rename", {SYS_renameat2}, EINVAL},
             {"exclusive rename and links", {SYS_renameat2, SYS_linkat}, EPERM},
         }) {
        CAPTURE(row.without);
        const TempFolder folder;
        folder.write("old", "old");
        const auto done = succeedsWithout(row.calls, row.error, [&] {
            PosixFileChanges changes;
            const std::string made = folder / "made";
            const bool created = changes.create(made, "new").ok();
            const auto refused = failureKind(changes.create(folder / "old", "new"));
            const bool moved = changes.move(made, folder / "new").ok();
            const auto stopped = failureKind(changes.move(folder / "new", folder / "old"));
            const auto exists = Failure::Kind::exists;
            return created && refused == exists && moved && stopped == exists;
        });
        if (!done) {
            return;
        }
        CHECK(*done);
        CHECK(folder.names() == std::vector<std::string>{"new", "old"});
        CHECK(folder.read("new") == "new");
        CHECK(folder.read("old") == "old");
    }
}

TEST_CASE("a disk that takes no more leaves what was there, and nothing torn") {
    const TempFolder folder;
    const std::string old = folder.write("old", "old");
    const auto read = readOf(old);
    const auto done = succeedsWithout({SYS_write}, ENOSPC, [&] {
        PosixFileChanges changes;
        const auto now = ports::Durability::now;
        const std::array failures{failureKind(changes.create(folder / "new", "new")),
                                  failureKind(changes.replace(old, read, "new")),
                                  failureKind(replaceFile(old, "new")),
                                  failureKind(changes.append(old, "new", now)),
                                  failureKind(changes.append(folder / "log", "new", now))};
        return std::count(failures.begin(), failures.end(), Failure::Kind::noSpace) == 5;
    });
    CHECK(done.value_or(true));
    CHECK(folder.names() == Names{"old"});
    CHECK(folder.read("old") == "old");
}

TEST_CASE("where permissions cannot be given, those that a new file has anyway are enough") {
    const TempFolder folder;
    const std::string file = folder.write("note", "old");
    struct Row {
        mode_t mode;
        const char* text;
    };
    for (const Row& row : {Row{0644, "old"}, Row{0600, "new"}}) {
        CAPTURE(row.mode);
        ::chmod(file.c_str(), row.mode);
        const auto read = readOf(file);
        const auto done = succeedsWithout({SYS_fchmod}, ENOSYS, [&] {
            return PosixFileChanges().replace(file, read, "new").ok();
        });
        if (!done) {
            return;
        }
        CHECK(*done == (row.text == "new"s));
        CHECK(folder.read("note") == row.text);
        CHECK(folder.names() == std::vector<std::string>{"note"});
    }
}

}  // namespace
}  // namespace tessaly::platform
