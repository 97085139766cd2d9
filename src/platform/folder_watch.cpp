// SPDX-License-Identifier: MIT
#include "platform/folder_watch.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <fcntl.h>
#include <utility>

#include <fmt/format.h>
#include <sys/inotify.h>
#include <sys/stat.h>

#include "base/localisation.h"
#include "platform/errno_failure.h"
#include "platform/subfolders.h"

namespace tessaly::platform {

using Cause = ports::WatchState::Cause;
using Reach = ports::PossibleChange::Reach;

namespace {

// IN_CREATE too: a file that is linked into its place has no other event.
constexpr std::uint32_t entryEvents = IN_CREATE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE |
                                      IN_CLOSE_WRITE | IN_MODIFY | IN_ATTRIB | IN_EXCL_UNLINK;
// A folder below the root that goes is told by the folder above it.
constexpr std::uint32_t rootEvents = IN_DELETE_SELF | IN_MOVE_SELF;
constexpr std::uint32_t endEvents = rootEvents | IN_UNMOUNT | IN_IGNORED;

enum class Loss {
    gone,        ///< an event tells where it went
    unreadable,  ///< nobody can look there
    limit,
};

Loss lossOf(int error) {
    struct Row {
        int error;
        Loss loss;
    };
    constexpr std::array<Row, 7> rows{{
        {ENOENT, Loss::gone},
        {ENOTDIR, Loss::gone},
        {ELOOP, Loss::gone},
        {ENOSPC, Loss::limit},
        {ENOMEM, Loss::limit},
        {EMFILE, Loss::limit},
        {ENFILE, Loss::limit},
    }};
    const auto* const row = std::find_if(rows.begin(), rows.end(),
                                         [error](const Row& each) { return each.error == error; });
    return row != rows.end() ? row->loss : Loss::unreadable;
}

/// The kernel says of its limit that the device is full.
std::string describe(int error, const std::string& folder) {
    return error == ENOSPC ? fmt::format("{}: {}", folder,
                                         base::tr("no more folders can be watched (see "
                                                  "fs.inotify.max_user_watches)"))
                           : errnoFailure(error, folder).description;
}

/// Empty, with `errno`: some part of it is not there.
std::string realPathOf(const std::string& path) {
    std::array<char, PATH_MAX> buffer;
    return ::realpath(path.c_str(), buffer.data()) != nullptr ? buffer.data() : "";
}

FileDescriptor openItself(const std::string& folder) {
    return FileDescriptor(uninterrupted(
        [&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC); }));
}

}  // namespace

FolderWatch::FolderWatch(ports::MetadataQuery::Scope scope, WatchOptions options,
                         std::function<bool()> isCancelled)
    : _scope(std::move(scope)),
      _options(std::move(options)),
      _isCancelled(std::move(isCancelled)) {}

void FolderWatch::begin() {
    watchRoot();
    tell("", Reach::tree);
}

// A new instance has no events of old, nor watches whose folders have moved unseen.
void FolderWatch::watchRoot() {
    _tree = {};
    _unwatched = {};
    _inotify.reset();
    _inotify.emplace();
    if (_inotify->fd() < 0) {
        giveUp(Cause::noEvents, errnoFailure(errno, "inotify").description);
        return;
    }
    _root = realPathOf(_scope.root);
    if (_root.empty()) {
        giveUp(Cause::noRoot, errnoFailure(errno, _scope.root).description);
        return;
    }
    watchTree("");
}

bool FolderWatch::isRootWatched() const {
    return _tree.watchOf("") &&
           identityAt({AT_FDCWD, _scope.root.c_str()}, Links::followed) == _rootIdentity;
}

void FolderWatch::giveUp(Cause cause, std::string description) {
    _inotify.reset();
    _tree = {};
    _unwatched = {};
    _unwatched.add("", cause, std::move(description));
}

void FolderWatch::watchTree(const std::string& folder) {
    std::vector<Reached> pending{{folder, std::nullopt}};
    while (!pending.empty() && !_isCancelled()) {
        const Reached next = std::move(pending.back());
        pending.pop_back();
        watchFolder(next, pending);
    }
}

void FolderWatch::watchFolder(const Reached& reached, std::vector<Reached>& pending) {
    const int watch = addWatch(reached.folder);
    if (watch < 0) {
        leaveOut(reached.folder, errno);
        return;
    }
    // What came below it since it was watched is told by events.
    if (_tree.watchOf(reached.folder) == watch) {
        return;
    }
    dropTree(reached.folder);
    _tree.set(reached.folder, watch);
    const std::size_t before = pending.size();
    if (const int error = listFolder(reached, pending); error != 0) {
        pending.resize(before);
        leaveOut(reached.folder, error);
    }
}

int FolderWatch::addWatch(const std::string& folder) const {
    const int watch =
        _inotify->watch(absolute(folder), entryEvents | (folder.empty() ? rootEvents : 0));
    if (watch >= 0 && _tree.size() >= _options.maxWatches && _tree.folderOf(watch) == nullptr) {
        _inotify->unwatch(watch);
        errno = ENOSPC;
        return -1;
    }
    return watch;
}

int FolderWatch::listFolder(const Reached& reached, std::vector<Reached>& pending) {
    const FileDescriptor opened = openItself(absolute(reached.folder));
    struct stat status;
    if (!opened || ::fstat(opened.get(), &status) != 0) {
        return errno;
    }
    if (reached.folder.empty()) {
        _rootIdentity = identityOf(status);
    }
    if (reached.device != status.st_dev) {
        if (const auto kind = _options.blindFileSystem(opened.get()); !kind.empty()) {
            _unwatched.add(reached.folder, Cause::blindFileSystem,
                           fmt::format("{}: {}", absolute(reached.folder), kind));
        }
    }
    return forEachSubfolder(opened.get(), [&](std::string_view name) {
        std::string path = joinPath(reached.folder, name);
        if (_scope.covers(path, true)) {
            pending.push_back({std::move(path), status.st_dev});
        }
    });
}

void FolderWatch::leaveOut(const std::string& folder, int error) {
    dropTree(folder);
    const Loss loss = lossOf(error);
    if (loss == Loss::limit) {
        _unwatched.add(folder, Cause::noWatchesLeft, describe(error, absolute(folder)));
    } else if (folder.empty()) {
        giveUp(Cause::noRoot, describe(error, _root));
    } else if (loss == Loss::unreadable) {
        _unwatched.add(folder, Cause::none, {});
    }
}

void FolderWatch::dropTree(std::string_view folder) {
    for (const int watch : _tree.forgetTree(folder)) {
        _inotify->unwatch(watch);
    }
    _unwatched.removeTree(folder);
}

void FolderWatch::handleEvents() {
    for (const FolderEvent& event : _inotify->read()) {
        if (_isCancelled() || !handle(event)) {
            return;
        }
    }
}

bool FolderWatch::handle(const FolderEvent& event) {
    if ((event.mask & IN_Q_OVERFLOW) != 0) {
        begin();
        return false;
    }
    const std::string* const known = _tree.folderOf(event.watch);
    if (known == nullptr) {
        return true;
    }
    if (event.name.empty()) {
        return handleFolderItself(event, std::string(*known));
    }
    handleEntry(joinPath(*known, event.name), event.mask);
    return true;
}

bool FolderWatch::handleFolderItself(const FolderEvent& event, const std::string& folder) {
    if (folder.empty() && (event.mask & endEvents) != 0) {
        giveUp(Cause::noRoot, errnoFailure(ENOENT, _root).description);
        tell("", Reach::tree);
        return false;
    }
    if ((event.mask & IN_UNMOUNT) != 0) {
        handleSubfolder(folder, IN_DELETE);
    } else if ((event.mask & IN_IGNORED) != 0) {
        _tree.forget(event.watch);
    } else if (folder.empty()) {
        tryAgain(Cause::none, folder);
    }
    return true;
}

void FolderWatch::handleEntry(std::string path, std::uint32_t mask) {
    const bool isFolder = (mask & IN_ISDIR) != 0;
    if (!_scope.covers(path, isFolder)) {
        return;
    }
    if (isFolder) {
        handleSubfolder(path, mask);
    } else {
        tell(std::move(path), Reach::entry);
    }
}

void FolderWatch::handleSubfolder(const std::string& path, std::uint32_t mask) {
    constexpr std::uint32_t comesOrGoes = IN_CREATE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE;
    if ((mask & comesOrGoes) == 0) {
        tryAgain(Cause::none, path);
        tell(path, Reach::entry);
        return;
    }
    // Also of one that goes: when two folders change places, the last event of one is that it goes.
    // What is not there any more is dropped.
    watchTree(path);
    tell(path, Reach::tree);
}

void FolderWatch::retry() {
    if (isRootWatched()) {
        tryAgain(Cause::none, "");
        tryAgain(Cause::noWatchesLeft, "");
        return;
    }
    const bool wasWatched = _tree.watchOf("").has_value();
    watchRoot();
    if (wasWatched || _tree.watchOf("")) {
        tell("", Reach::tree);
    }
}

void FolderWatch::tryAgain(Cause cause, std::string_view folder) {
    for (const std::string& tree : _unwatched.ofCause(cause, folder)) {
        watchTree(tree);
        if (_tree.watchOf(tree)) {
            tell(tree, Reach::tree);
        } else if (_unwatched.holds(tree, Cause::noWatchesLeft)) {
            return;
        }
    }
}

void FolderWatch::tell(std::string path, Reach reach) {
    _found.add({std::move(path), reach});
}

std::string FolderWatch::absolute(std::string_view folder) const {
    return folder.empty() ? _root : joinPath(_root, folder);
}

ports::WatchState FolderWatch::state() const {
    ports::WatchState state;
    state.isReady = true;
    state.watchedFolders = _tree.size();
    _unwatched.describeIn(state);
    return state;
}

}  // namespace tessaly::platform
