// SPDX-License-Identifier: MIT
#include "cli/desktop_program.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <spawn.h>
#include <string>
#include <system_error>
#include <unistd.h>

#include <sys/wait.h>

namespace tessaly::cli {

namespace {

bool isSet(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

bool isBare(const Invocation& invocation) {
    return invocation.verb == nullptr && !invocation.root && !invocation.now && !invocation.json &&
           invocation.color == ColorChoice::automatic;
}

/// An ignored signal would be ignored by the other program, too.
pid_t spawned(const std::string& program) {
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t usual;
    sigemptyset(&usual);
    sigaddset(&usual, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &usual);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    std::string name = program;
    char* const words[] = {name.data(), nullptr};
    pid_t process = 0;
    const int error = posix_spawn(&process, program.c_str(), nullptr, &attributes, words, environ);
    posix_spawnattr_destroy(&attributes);
    return error == 0 ? process : -1;
}

}  // namespace

bool wantsWindow(const Invocation& invocation) {
    return isBare(invocation) && (isSet("WAYLAND_DISPLAY") || isSet("DISPLAY"));
}

std::optional<Exit> runDesktopProgram() {
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    const pid_t process = error ? -1 : spawned(self.parent_path() / "tessaly-desktop");
    if (process < 0) {
        return std::nullopt;
    }
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) {
            return Exit::couldNot;
        }
    }
    // The toolkit aborts where it finds no display.
    if (!WIFEXITED(status)) {
        return std::nullopt;
    }
    return WEXITSTATUS(status) == 0 ? Exit::done : Exit::couldNot;
}

}  // namespace tessaly::cli
