// SPDX-License-Identifier: MIT
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <string>
#include <unistd.h>

#include <sys/eventfd.h>

#include "base/localisation.h"
#include "cli/command_line.h"
#include "cli/context.h"
#include "cli/questions.h"
#include "cli/run.h"
#include "host/program_host.h"
#include "platform/glib_main_queue.h"
#include "platform/system_locale.h"

namespace {

using namespace tessaly;

std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "set in a signal handler");
/// Readable once `interrupted` is set, for who waits.
int interruption = platform::GlibMainQueue::noDescriptor;

extern "C" void onInterrupt(int) {
    interrupted = true;
    const int error = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(interruption, &one, sizeof one);
    errno = error;
}

/// The first Ctrl-C ends the work in hand, and the wait for a reader; a second one the program. A
/// reader of our output that goes away shows as a failing write.
void handleSignals() {
    interruption = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    struct sigaction action {};
    action.sa_handler = onInterrupt;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
}

/// Without them, the next file opened would take the place of a closed standard stream, and what is
/// printed would end up in it.
void keepStandardStreams() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) < 0 && open("/dev/null", O_RDWR) < 0) {
            std::abort();
        }
    }
}

bool stays(const cli::Invocation& invocation) {
    return invocation.verb != nullptr && invocation.verb->stays == cli::Stays::yes;
}

cli::Exit runVerb(const cli::Invocation& invocation, const ports::UserLocale& locale,
                  cli::Output& out) {
    using host::HostOptions;
    const auto host =
        host::ProgramHost::make({host::dataFolderNamed(invocation.root), invocation.now,
                                 stays(invocation) ? HostOptions::Stay::yes : HostOptions::Stay::no,
                                 interruption, cli::askAtTerminal},
                                locale);
    if (!host) {
        return cli::refuse(host.failure(), nullptr);
    }
    return cli::run((*host)->services(), invocation, out, interrupted);
}

/// An exception that gets this far is a fault of ours, or memory has run out.
cli::Exit runGuarded(const cli::Invocation& invocation, const ports::UserLocale& locale,
                     cli::Output& out) {
    try {
        const auto exit = cli::runWithoutServices(invocation, out);
        return exit ? *exit : runVerb(invocation, locale, out);
    } catch (const std::exception& error) {
        cli::complain(error.what());
        return cli::Exit::couldNot;
    }
}

}  // namespace

int main(int argc, char** argv) {
    keepStandardStreams();
    handleSignals();
    const ports::UserLocale locale = platform::systemLocale();
    base::openCatalogue(host::catalogueFolder(), locale.languages);
    cli::Output out{STDOUT_FILENO, &interrupted};
    const auto invocation = cli::parseCommandLine(argc, argv);
    if (!invocation) {
        return static_cast<int>(cli::refuse(invocation.failure(), cli::verbIn(argc, argv)));
    }
    const cli::Exit exit = runGuarded(*invocation, locale, out);
    if (interrupted) {  // so that a script that started us ends too
        std::signal(SIGINT, SIG_DFL);
        std::raise(SIGINT);
    }
    return static_cast<int>(cli::finish(out, exit));
}
