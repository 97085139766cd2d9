// SPDX-License-Identifier: MIT
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <thread>
#include <unistd.h>

#include <doctest/doctest.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include "platform/background_process.h"
#include "platform/file_descriptor.h"
#include "support/environment.h"
#include "support/temp_folder.h"

namespace tessaly::platform {
namespace {

constexpr char reportVariable[] = "TESSALY_TEST_REPORT";

std::string target(const std::string& link) {
    std::error_code error;
    return std::filesystem::read_symlink(link, error).string();
}

int openDescriptorsBeyondStreams() {
    int open = 0;
    for (int descriptor = STDERR_FILENO + 1; descriptor < 256; ++descriptor) {
        open += static_cast<int>(::fcntl(descriptor, F_GETFD) >= 0);
    }
    return open;
}

/// Run by the process that the test below starts; in any other run it does nothing.
TEST_CASE("what a process in the background finds" * doctest::skip()) {
    const char* report = std::getenv(reportVariable);
    if (report == nullptr) {
        return;
    }
    const int open = openDescriptorsBeyondStreams();
    struct sigaction pipe {};
    ::sigaction(SIGPIPE, nullptr, &pipe);
    sigset_t mask;
    ::sigprocmask(SIG_SETMASK, nullptr, &mask);
    const std::string unfinished = std::string(report) + ".part";
    std::ofstream(unfinished) << "session " << ::getsid(0) << "\nparent " << ::getppid()
                              << "\nnice " << ::getpriority(PRIO_PROCESS, 0) << "\nio "
                              << (::syscall(SYS_ioprio_get, 1, 0) >> 13) << "\nfolder "
                              << std::filesystem::current_path().string() << "\nin "
                              << target("/proc/self/fd/0") << "\nout " << target("/proc/self/fd/1")
                              << "\nerr " << target("/proc/self/fd/2") << "\nopen " << open
                              << "\nignored " << (pipe.sa_handler == SIG_IGN) << "\nblocked "
                              << ::sigismember(&mask, SIGUSR1) << "\n";
    std::filesystem::rename(unfinished, report);
}

std::map<std::string, std::string> reportIn(const tests::TempFolder& folder) {
    for (int trial = 0; trial < 3000 && !folder.exists("report"); ++trial) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    REQUIRE(folder.exists("report"));
    std::ifstream file(folder / "report");
    std::map<std::string, std::string> report;
    for (std::string name, value; file >> name >> value;) {
        report[name] = value;
    }
    return report;
}

TEST_CASE("a process in the background has nothing of who started it") {
    const tests::TempFolder folder;
    const tests::Environment environment({{reportVariable, folder / "report"}});
    // What a library may have left open, a signal that is ignored, one that is blocked.
    const FileDescriptor leak(::open("/dev/null", O_RDONLY));
    const auto ignoredBefore = std::signal(SIGPIPE, SIG_IGN);
    sigset_t blocked;
    sigset_t before;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGUSR1);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);

    const auto started =
        backgroundProcess()({"--test-case=what a process in the background finds", "--no-skip"});

    sigset_t after;
    ::pthread_sigmask(SIG_SETMASK, &before, &after);
    std::signal(SIGPIPE, ignoredBefore);
    REQUIRE(started);
    CHECK(::sigismember(&after, SIGUSR1) == 1);
    CHECK(::sigismember(&after, SIGINT) == ::sigismember(&before, SIGINT));
    // Nobody has to wait for it.
    CHECK(::waitpid(-1, nullptr, WNOHANG) == -1);
    CHECK(errno == ECHILD);

    auto report = reportIn(folder);
    CHECK(report["session"] != std::to_string(::getsid(0)));
    CHECK(report["parent"] != std::to_string(::getpid()));
    CHECK(report["nice"] == "19");
    CHECK(report["io"] == "3");
    CHECK(report["folder"] == "/");
    CHECK(report["in"] == "/dev/null");
    CHECK(report["out"] == "/dev/null");
    CHECK(report["err"] == "/dev/null");
    CHECK(report["open"] == "0");
    CHECK(report["ignored"] == "0");
    CHECK(report["blocked"] == "0");
}

/// Run by the process that the test below starts: until it is asked to end.
TEST_CASE("what waits to be ended" * doctest::skip()) {
    if (std::getenv(reportVariable) != nullptr) {
        std::this_thread::sleep_for(std::chrono::minutes(5));
    }
}

bool endsSoon(ports::FollowedJob& job) {
    for (int trial = 0; trial < 3000 && !job.hasEnded(); ++trial) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return job.hasEnded();
}

TEST_CASE("a process that is followed is known to have ended, of itself or as it was asked") {
    const tests::TempFolder folder;
    const tests::Environment environment({{reportVariable, folder / "report"}});
    const auto start = followedProcesses("/proc/self/exe");

    const auto waiting = start({"--test-case=what waits to be ended", "--no-skip"});
    REQUIRE(waiting);
    CHECK_FALSE((*waiting)->hasEnded());
    (*waiting)->end();
    CHECK(endsSoon(**waiting));
    (*waiting)->end();

    const auto working = start({"--test-case=what a process in the background finds", "--no-skip"});
    REQUIRE(working);
    auto report = reportIn(folder);
    CHECK(report["session"] != std::to_string(::getsid(0)));
    CHECK(report["nice"] == "19");
    CHECK(report["out"] == "/dev/null");
    CHECK(endsSoon(**working));
    CHECK(::waitpid(-1, nullptr, WNOHANG) == -1);  // nothing is left to be waited for
}

TEST_CASE("a program that is not there is no process") {
    const tests::TempFolder folder;
    const auto started = followedProcesses(folder / "none")({});
    REQUIRE_FALSE(started);
    CHECK(started.failure().kind == base::Failure::Kind::notFound);
    CHECK(::waitpid(-1, nullptr, WNOHANG) == -1);
}

}  // namespace
}  // namespace tessaly::platform
