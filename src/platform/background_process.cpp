// SPDX-License-Identifier: MIT
#include "platform/background_process.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

#include <linux/close_range.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include "platform/errno_failure.h"
#include "platform/file_descriptor.h"

namespace tessaly::platform {

namespace {

constexpr char program[] = "/proc/self/exe";

// Between fork and exec there is one thread, and whatever lock another one held is held for ever:
// what follows makes system calls only.

void lowerPriority() {
    constexpr int lowest = 19;
    constexpr int whoProcess = 1;  // IOPRIO_WHO_PROCESS
    constexpr int idle = 3 << 13;  // IOPRIO_CLASS_IDLE
    ::setpriority(PRIO_PROCESS, 0, lowest);
    ::syscall(SYS_ioprio_set, whoProcess, 0, idle);
}

/// A signal that is ignored would be after exec, too.
void resetSignals() {
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal) {
        ::sigaction(signal, &action, nullptr);
    }
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// False: `errno` says why.
bool leaveStreams() {
    const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    if (nothing < 0) {
        return false;
    }
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (::dup2(nothing, stream) < 0) {
            return false;
        }
    }
    // Ours close themselves; a library's may not.
    ::close_range(STDERR_FILENO + 1, UINT_MAX, CLOSE_RANGE_CLOEXEC);
    return ::chdir("/") == 0;
}

/// Runs the program in place of this process; comes back with an error number alone.
int become(char* const* arguments) {
    resetSignals();
    lowerPriority();
    if (!leaveStreams()) {
        return errno;
    }
    ::execv(program, arguments);
    return errno;
}

[[noreturn]] void endWith(int error, int told) {
    if (error != 0) {
        [[maybe_unused]] const auto written = ::write(told, &error, sizeof error);
    }
    ::_exit(0);
}

/// The child of this process ends at once, so that nobody has to wait for the one that stays.
[[noreturn]] void runInChild(char* const* arguments, int told) {
    ::setsid();
    const pid_t child = ::fork();
    endWith(child < 0 ? errno : child == 0 ? become(arguments) : 0, told);
}

/// While it lives, no handler of this process runs in a child that is not yet another program.
class BlockedSignals {
public:
    BlockedSignals() {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &_before);
    }
    ~BlockedSignals() { ::pthread_sigmask(SIG_SETMASK, &_before, nullptr); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

private:
    sigset_t _before;
};

/// The error number that is told through the pipe; 0 when it ends without one, as exec closes it.
int errorTold(int pipe) {
    int error = 0;
    const auto count = uninterrupted([&] { return ::read(pipe, &error, sizeof error); });
    return count == static_cast<ssize_t>(sizeof error) ? error : 0;
}

int start(char* const* arguments) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        return errno;
    }
    const FileDescriptor ours(ends[0]);
    FileDescriptor theirs(ends[1]);
    pid_t child = -1;
    {
        const BlockedSignals blocked;
        child = ::fork();
        if (child == 0) {
            runInChild(arguments, theirs.get());
        }
    }
    if (child < 0) {
        return errno;
    }
    theirs = FileDescriptor(-1);
    uninterrupted([&] { return ::waitpid(child, nullptr, 0); });
    return errorTold(ours.get());
}

base::Result<base::Done> startAgain(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "tessaly");
    std::vector<char*> words;
    for (std::string& argument : arguments) {
        words.push_back(argument.data());
    }
    words.push_back(nullptr);
    if (const int error = start(words.data()); error != 0) {
        return errnoFailure(error, program);
    }
    return base::Done{};
}

}  // namespace

ports::BackgroundJob backgroundProcess() {
    return startAgain;
}

}  // namespace tessaly::platform
