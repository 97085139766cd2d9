// SPDX-License-Identifier: MIT
#include "platform/background_process.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <unistd.h>
#include <utility>
#include <vector>

#include <linux/close_range.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include "platform/errno_failure.h"
#include "platform/file_descriptor.h"

namespace tessaly::platform {

namespace {

constexpr char thisProgram[] = "/proc/self/exe";

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
int become(const char* program, char* const* arguments) {
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
[[noreturn]] void runInGrandchild(const char* program, char* const* arguments, int told) {
    ::setsid();
    const pid_t child = ::fork();
    endWith(child < 0 ? errno : child == 0 ? become(program, arguments) : 0, told);
}

[[noreturn]] void runInChild(const char* program, char* const* arguments, int told) {
    ::setsid();
    endWith(become(program, arguments), told);
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

using Run = void (*)(const char* program, char* const* arguments, int told);

/// The child and, where no program was started, the error number.
struct Started {
    pid_t child = -1;
    int error = 0;
};

Started startChild(const char* program, char* const* arguments, Run run) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        return {-1, errno};
    }
    const FileDescriptor ours(ends[0]);
    FileDescriptor theirs(ends[1]);
    Started started;
    {
        const BlockedSignals blocked;
        started.child = ::fork();
        if (started.child == 0) {
            run(program, arguments, theirs.get());
        }
        started.error = started.child < 0 ? errno : 0;
    }
    if (started.child > 0) {
        theirs = FileDescriptor(-1);
        started.error = errorTold(ours.get());
    }
    return started;
}

Started start(const std::string& program, std::vector<std::string> arguments, Run run) {
    arguments.insert(arguments.begin(), "tessaly");
    std::vector<char*> words;
    for (std::string& argument : arguments) {
        words.push_back(argument.data());
    }
    words.push_back(nullptr);
    return startChild(program.c_str(), words.data(), run);
}

void waitFor(pid_t child) {
    if (child > 0) {
        uninterrupted([&] { return ::waitpid(child, nullptr, 0); });
    }
}

base::Result<base::Done> startAgain(const std::vector<std::string>& arguments) {
    const Started started = start(thisProgram, arguments, runInGrandchild);
    waitFor(started.child);
    return started.error == 0 ? base::Result(base::Done{})
                              : errnoFailure(started.error, thisProgram);
}

/// A child's number is nobody else's until it has been waited for.
class FollowedProcess final : public ports::FollowedJob {
public:
    explicit FollowedProcess(pid_t child) : _child(child) {}
    ~FollowedProcess() override { (void)hasEnded(); }

    bool hasEnded() override {
        if (_child > 0 && uninterrupted([&] { return ::waitpid(_child, nullptr, WNOHANG); }) != 0) {
            _child = 0;
        }
        return _child == 0;
    }
    void end() override {
        if (!hasEnded()) {
            ::kill(_child, SIGINT);
        }
    }

private:
    pid_t _child;  ///< 0: it has ended
};

}  // namespace

ports::BackgroundJob backgroundProcess() {
    return startAgain;
}

ports::FollowedJobs followedProcesses(std::string program) {
    return [program = std::move(program)](const std::vector<std::string>& arguments)
               -> base::Result<std::unique_ptr<ports::FollowedJob>> {
        const Started started = start(program, arguments, runInChild);
        if (started.error != 0) {
            waitFor(started.child);
            return errnoFailure(started.error, program);
        }
        return std::unique_ptr<ports::FollowedJob>(
            std::make_unique<FollowedProcess>(started.child));
    };
}

}  // namespace tessaly::platform
