// SPDX-License-Identifier: MIT
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <malloc.h>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <unistd.h>

#include <sys/eventfd.h>

#include "app/services.h"
#include "base/localisation.h"
#include "base/thread_pool.h"
#include "cli/command_line.h"
#include "cli/context.h"
#include "cli/questions.h"
#include "cli/read_input.h"
#include "cli/run.h"
#include "platform/background_process.h"
#include "platform/cloud_folders.h"
#include "platform/fixed_clock.h"
#include "platform/flock_folder_locks.h"
#include "platform/folder_cloud_container.h"
#include "platform/gio_trash.h"
#include "platform/glib_main_queue.h"
#include "platform/inotify_outlook.h"
#include "platform/inotify_query.h"
#include "platform/json_user_defaults.h"
#include "platform/nextcloud_downloads.h"
#include "platform/posix_cache_files.h"
#include "platform/posix_file_changes.h"
#include "platform/posix_file_system.h"
#include "platform/system_clock.h"
#include "platform/system_locale.h"
#include "platform/telling_stamps.h"
#include "platform/xdg_folders.h"

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

std::string catalogueFolder() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string{} : (program.parent_path().parent_path() / "share/locale").string();
}

std::optional<std::string> dataFolder(const cli::Invocation& invocation) {
    if (invocation.root) {
        return cli::absolutePath(*invocation.root);
    }
    const char* root = std::getenv("TESSALY_ROOT");
    if (root == nullptr || *root == '\0') {
        return std::nullopt;
    }
    return cli::absolutePath(root);
}

/// Empty: there is none.
std::string runtimeFolder() {
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    return folder == nullptr ? std::string{} : folder;
}

/// The clock that the user asked for.
base::Result<std::unique_ptr<ports::Clock>> makeClock(const cli::Invocation& invocation) {
    if (!invocation.now) {
        return std::unique_ptr<ports::Clock>{std::make_unique<platform::SystemClock>()};
    }
    const auto time = platform::parseTime(*invocation.now);
    if (!time) {
        return time.failure();
    }
    return std::unique_ptr<ports::Clock>{std::make_unique<platform::FixedClock>(*time)};
}

bool stays(const cli::Invocation& invocation) {
    return invocation.verb != nullptr && invocation.verb->stays == cli::Stays::yes;
}

/// Who asks for one answer works on it with the others; in a program that stays, the main thread
/// waits for what happens.
std::size_t poolThreads(const cli::Invocation& invocation) {
    const std::size_t processors = std::max(std::thread::hardware_concurrency(), 2U);
    return stays(invocation) ? processors : processors - 1;
}

/// Lists of all notes, as the first batch is one, come and go as a whole. As part of the heap they
/// would leave holes behind that a program that stays has for good.
void keepListsOffTheHeap() {
    constexpr int listBytes = 4 << 20;
    mallopt(M_MMAP_THRESHOLD, listBytes);
}

cli::Exit runVerb(const cli::Invocation& invocation, const ports::UserLocale& locale,
                  cli::Output& out) {
    auto clock = makeClock(invocation);
    if (!clock) {
        return cli::refuse(clock.failure(), nullptr);
    }
    const ports::StandardFolders folders = platform::xdgFolders("tessaly");
    platform::PosixFileSystem files;
    platform::PosixFileChanges changes;
    platform::FlockFolderLocks locks{folders.state + "/locks"};
    platform::JsonUserDefaults standardDefaults{folders.config + "/settings.json"};
    platform::JsonUserDefaults groupDefaults{folders.config + "/group.json"};
    if (stays(invocation)) {
        keepListsOffTheHeap();
    }
    base::ThreadPool pool{poolThreads(invocation)};
    platform::InotifyQuery cloudQuery;
    platform::GlibMainQueue mainQueue{interruption};
    platform::NextcloudDownloads downloads{
        platform::NextcloudDownloads::socketsIn(runtimeFolder())};
    platform::PosixCacheFiles cacheFiles;
    platform::SystemClock fileClock;
    app::Services* shared = nullptr;  // what the cloud drive asks for its folder
    app::Services services{{files,
                            changes,
                            locks,
                            standardDefaults,
                            groupDefaults,
                            **clock,
                            pool,
                            cloudQuery,
                            mainQueue,
                            downloads,
                            cacheFiles,
                            fileClock,
                            platform::tellingStamps,
                            platform::backgroundProcess(),
                            platform::cloudFoldersOf(platform::clientHomes()),
                            platform::inotifyOutlook(),
                            folders,
                            locale,
                            [] { return false; },
                            platform::folderCloudContainer(
                                [&shared] { return shared->globals().cloudDriveContainer(); }),
                            platform::gioTrash(),
                            cli::askAtTerminal,
                            dataFolder(invocation),
                            std::getenv("TEST_MODE") != nullptr}};
    shared = &services;
    services.globals();  // made here, since any thread may ask for the cloud drive's folder
    return cli::run(services, invocation, out, interrupted);
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
    base::openCatalogue(catalogueFolder(), locale.languages);
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
