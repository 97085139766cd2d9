// SPDX-License-Identifier: MIT
#include <atomic>
#include <csignal>
#include <cstddef>
#include <thread>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include "platform/atomic_file.h"
#include "platform/file_system_contract.h"
#include "platform/posix_file_system.h"

namespace tessaly::platform {
namespace {

using base::Failure;
using tests::failureKind;
using tests::TempFolder;

TEST_CASE("the kernel's files keep the contract") {
    tests::checkFileSystem([] { return std::make_unique<PosixFileSystem>(); });
}

TEST_CASE("a file that changes while it is read comes as some state of it") {
    const TempFolder folder;
    const std::string file = folder.write("note", "");
    std::atomic<bool> stop{false};
    std::thread writer([&] {
        for (std::uintmax_t size = 0; !stop; size = (size + 30011) % 400000) {
            std::filesystem::resize_file(file, size);
        }
    });
    PosixFileSystem files;
    for (int i = 0; i < 300; ++i) {
        const auto contents = files.read(file);
        REQUIRE(contents);
        CHECK(contents->bytes.size() <= 400000);
        CHECK(contents->bytes.find_first_not_of('\0') == std::string::npos);
    }
    stop = true;
    writer.join();
}

TEST_CASE("a file that holds more than it says is read to its end") {
    PosixFileSystem files;
    const auto contents = files.read("/proc/self/status");
    REQUIRE(contents);
    CHECK(contents->stamp.size == 0);
    CHECK(contents->bytes.starts_with("Name:"));
}

TEST_CASE("a new file has the permissions that the user's mask leaves") {
    const TempFolder folder;
    const mode_t before = ::umask(027);
    CHECK(PosixFileSystem().create(folder / "note", "x"));
    ::umask(before);
    struct stat status {};
    REQUIRE(::stat((folder / "note").c_str(), &status) == 0);
    CHECK((status.st_mode & 07777U) == 0640U);
}

TEST_CASE("a disk that takes no more leaves the old file or none, and no temporary one") {
    const TempFolder folder;
    folder.write("old", "old");
    ::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{10, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    const auto created = PosixFileSystem().create(folder / "new", std::string(11, 'x'));
    const auto replaced = replaceFile(folder / "old", std::string(11, 'x'));
    ::setrlimit(RLIMIT_FSIZE, &before);
    ::signal(SIGXFSZ, SIG_DFL);

    CHECK(failureKind(created) == Failure::Kind::tooLarge);
    CHECK(failureKind(replaced) == Failure::Kind::tooLarge);
    CHECK(folder.names() == std::vector<std::string>{"old"});
    CHECK(folder.read("old") == "old");
    CHECK(PosixFileSystem().create(folder / "new", std::string(11, 'x')));
}

TEST_CASE("a replaced file keeps its permissions, and a link stays a link") {
    const TempFolder folder;
    folder.write("real/settings", "old");
    ::chmod((folder / "real/settings").c_str(), 0604);
    folder.link("settings", "real/settings");
    folder.link("toNothing", "missing");
    CHECK(replaceFile(folder / "settings", "new"));
    CHECK(failureKind(replaceFile(folder / "toNothing", "new")) == Failure::Kind::notFound);

    CHECK(std::filesystem::is_symlink(folder / "settings"));
    CHECK(std::filesystem::is_symlink(folder / "toNothing"));
    CHECK(folder.read("real/settings") == "new");
    CHECK(folder.names("real") == std::vector<std::string>{"settings"});
    struct stat status {};
    REQUIRE(::stat((folder / "real/settings").c_str(), &status) == 0);
    CHECK((status.st_mode & 07777U) == 0604U);
}

/// From now on, for the whole process, these system calls fail as they do on a file system that
/// has no such thing. False: the kernel does not let us.
bool refuseCalls(const std::vector<unsigned>& calls, unsigned error) {
    std::vector<sock_filter> filter{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const unsigned call : calls) {
        filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1));
        filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error));
    }
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

TEST_CASE("where a rename cannot be told to replace nothing, a new file still does not") {
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
        const pid_t child = ::fork();
        REQUIRE(child >= 0);
        if (child == 0) {
            if (!refuseCalls(row.calls, row.error)) {
                ::_exit(2);
            }
            PosixFileSystem files;
            const bool created = files.create(folder / "new", "new").ok();
            const auto refused = failureKind(files.create(folder / "old", "new"));
            ::_exit(created && refused == Failure::Kind::exists ? 0 : 1);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        REQUIRE(WIFEXITED(status));
        if (WEXITSTATUS(status) == 2) {
            MESSAGE("skipped: no system calls can be refused here");
            return;
        }
        CHECK(WEXITSTATUS(status) == 0);
        CHECK(folder.names() == std::vector<std::string>{"new", "old"});
        CHECK(folder.read("new") == "new");
        CHECK(folder.read("old") == "old");
    }
}

}  // namespace
}  // namespace tessaly::platform
