// SPDX-License-Identifier: MIT
#include "host/program_host.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <malloc.h>
#include <thread>
#include <utility>

#include "base/thread_pool.h"
#include "platform/background_process.h"
#include "platform/cloud_folders.h"
#include "platform/fixed_clock.h"
#include "platform/flock_folder_locks.h"
#include "platform/folder_cloud_container.h"
#include "platform/gio_trash.h"
#include "platform/glib_main_queue.h"
#include "platform/hunspell_spelling.h"
#include "platform/inotify_outlook.h"
#include "platform/inotify_query.h"
#include "platform/json_user_defaults.h"
#include "platform/nextcloud_downloads.h"
#include "platform/posix_cache_files.h"
#include "platform/posix_file_changes.h"
#include "platform/posix_file_system.h"
#include "platform/system_clock.h"
#include "platform/telling_stamps.h"
#include "platform/trash_return.h"
#include "platform/xdg_folders.h"

namespace tessaly::host {

namespace {

/// Empty: there is none.
std::string runtimeFolder() {
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    return folder == nullptr ? std::string{} : folder;
}

/// The command, beside the program that runs, be that itself or the desktop's.
std::string commandProgram() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return (program.parent_path() / "tessaly").string();
}

base::Result<std::unique_ptr<ports::Clock>> makeClock(const std::optional<std::string>& now) {
    if (!now) {
        return std::unique_ptr<ports::Clock>{std::make_unique<platform::SystemClock>()};
    }
    const auto time = platform::parseTime(*now);
    if (!time) {
        return time.failure();
    }
    return std::unique_ptr<ports::Clock>{std::make_unique<platform::FixedClock>(*time)};
}

/// Who asks for one answer works on it with the others; in a program that stays, the main thread
/// waits for what happens.
std::size_t poolThreads(HostOptions::Stay stay) {
    const std::size_t processors = std::max(std::thread::hardware_concurrency(), 2U);
    return stay == HostOptions::Stay::yes ? processors : processors - 1;
}

/// Lists of all notes, as the first batch is one, come and go as a whole. As part of the heap they
/// would leave holes behind that a program that stays has for good.
void keepListsOffTheHeap() {
    constexpr int listBytes = 4 << 20;
    mallopt(M_MMAP_THRESHOLD, listBytes);
}

}  // namespace

struct ProgramHost::Adapters {
    Adapters(const HostOptions& options, std::unique_ptr<ports::Clock> userClock,
             const ports::UserLocale& locale)
        : clock(std::move(userClock)),
          pool(poolThreads(options.stay)),
          mainQueue(options.stopDescriptor),
          services(portsFor(options, locale)) {
        services.globals();  // made here, since any thread may ask for the cloud drive's folder
    }

    app::Ports portsFor(const HostOptions& options, const ports::UserLocale& locale) {
        return {files,
                changes,
                locks,
                standardDefaults,
                groupDefaults,
                *clock,
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
                    [this] { return services.globals().cloudDriveContainer(); }),
                platform::gioTrash(),
                options.questions,
                options.dataFolder,
                std::getenv("TEST_MODE") != nullptr,
                platform::followedProcesses(commandProgram()),
                platform::trashReturn(),
                platform::hunspellSpelling(platform::dictionaryPlaces())};
    }

    const ports::StandardFolders folders = platform::xdgFolders("tessaly");
    platform::PosixFileSystem files;
    platform::PosixFileChanges changes;
    platform::FlockFolderLocks locks{folders.state + "/locks"};
    platform::JsonUserDefaults standardDefaults{folders.config + "/settings.json"};
    platform::JsonUserDefaults groupDefaults{folders.config + "/group.json"};
    const std::unique_ptr<ports::Clock> clock;
    base::ThreadPool pool;
    platform::InotifyQuery cloudQuery;
    platform::GlibMainQueue mainQueue;
    platform::NextcloudDownloads downloads{
        platform::NextcloudDownloads::socketsIn(runtimeFolder())};
    platform::PosixCacheFiles cacheFiles;
    platform::SystemClock fileClock;
    app::Services services;
};

ProgramHost::ProgramHost(std::unique_ptr<Adapters> adapters) : _adapters(std::move(adapters)) {}

ProgramHost::~ProgramHost() = default;

base::Result<std::unique_ptr<ProgramHost>> ProgramHost::make(const HostOptions& options,
                                                             const ports::UserLocale& locale) {
    auto clock = makeClock(options.now);
    if (!clock) {
        return clock.failure();
    }
    if (options.stay == HostOptions::Stay::yes) {
        keepListsOffTheHeap();
    }
    return std::unique_ptr<ProgramHost>{
        new ProgramHost(std::make_unique<Adapters>(options, std::move(clock).value(), locale))};
}

app::Services& ProgramHost::services() {
    return _adapters->services;
}

std::string catalogueFolder() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string{} : (program.parent_path().parent_path() / "share/locale").string();
}

std::string absolutePath(const std::string& path) {
    std::error_code error;
    const auto absolute = std::filesystem::absolute(path, error);
    if (error) {
        return path;
    }
    std::string text = absolute.lexically_normal().string();
    if (text.size() > 1 && text.back() == '/') {
        text.pop_back();
    }
    return text;
}

std::optional<std::string> dataFolderNamed(const std::optional<std::string>& root) {
    if (root) {
        return absolutePath(*root);
    }
    const char* fromEnvironment = std::getenv("TESSALY_ROOT");
    if (fromEnvironment == nullptr || *fromEnvironment == '\0') {
        return std::nullopt;
    }
    return absolutePath(fromEnvironment);
}

}  // namespace tessaly::host
