// SPDX-License-Identifier: MIT
#include <algorithm>
#include <iterator>
#include <utility>

#include "base/log.h"
#include "store/paths.h"
#include "sync/cloud_sync.h"

namespace tessaly::sync {
namespace {

using base::NoteType;
using Cause = ports::WatchState::Cause;

}  // namespace

void CloudSync::processBatch() {
    _isBatchWaiting = false;
    const std::string root = resolvedRoot();
    if (root != _root || isAnotherFolder(root)) {
        leaveRoot();
        beginWith(root);
    }
    if (canLook()) {
        work();
    }
    checkWatching();
}

std::string CloudSync::resolvedRoot() {
    const std::string root = _tools.store.root();
    auto resolved = _tools.store.files().resolve(root);
    if (resolved) {
        _isRootThere = true;
        return *std::move(resolved);
    }
    const bool isGone = resolved.failure().kind == base::Failure::Kind::notFound;
    _isRootThere = !isGone;
    return isGone || _root.empty() ? root : _root;
}

// As when something is mounted there now, or not any more. By way of the folder itself, so that one
// that is mounted on demand is there.
std::uint64_t CloudSync::inodeOf(const std::string& root) {
    const std::string name(store::lastComponent(root));
    const auto found = _tools.store.files().surveyNames(store::joined(root, ".."), {&name, 1});
    return found && found->front() ? found->front()->stamp.inode : 0;
}

bool CloudSync::isAnotherFolder(const std::string& root) {
    const std::uint64_t inode = inodeOf(root);
    if (inode == 0) {
        return false;
    }
    const std::uint64_t before = std::exchange(_rootInode, inode);
    return before != 0 && before != inode;
}

void CloudSync::beginWith(std::string root) {
    _root = std::move(root);
    _rootInode = inodeOf(_root);
    _isFirstLoad = true;
    currentNotesQueue.sync([this] {
        currentNotesQueue.assertCurrent();
        _currentNotes.reset(_root);
    });
    const auto started = cloudQuery.start({_root, isWatched}, [this] { onUpdate(); });
    const std::scoped_lock lock(_mutex);
    _queryFailure = started ? std::nullopt : std::optional(started.failure());
}

void CloudSync::leaveRoot() {
    Survey::Found nothing;
    for (const NoteType kind : watchedKinds) {
        nothing.gone.emplace_back(base::folderName(kind));
    }
    auto differences = apply(std::move(nothing), {});
    deliverLater(std::move(differences.notes));
    askForDownloads(differences, {});
    _failing.clear();
}

// Before the query watches every folder, what it has not noticed would be missed.
bool CloudSync::canLook() {
    const ports::WatchState state = watching().state;
    return state.isReady || state.cause == Cause::noEvents || state.cause == Cause::noRoot;
}

void CloudSync::work() {
    const Survey survey(_tools.store.files(), _tools.executor, _root);
    const auto began = _tools.mainQueue.now();
    const Due due = whatIsDue(survey, began);
    if (due.looks.isEmpty() && !due.areDownloadsDue) {
        noteTime(due, began);
        return;
    }
    const bool isFirst = _isFirstLoad && _isRootThere;
    if (isFirst) {
        deliverNextDays(survey);
    }
    const auto lookedAt = _tools.clock.now();
    auto differences = compareWithHeld(survey, survey.look(due.looks), lookedAt);
    noteTime(due, began);
    auto changed = trulyChanged(std::exchange(differences.doubtful, {}));
    std::move(changed.begin(), changed.end(), std::back_inserter(differences.notes));
    if (isFirst) {
        deliverFirst(std::move(differences.notes));
    } else {
        deliverLater(std::move(differences.notes));
    }
    // What lies in a root that comes back has not arrived there one by one.
    _isFirstLoad = !_isRootThere;
    askForDownloads(differences, due);
}

CloudSync::Due CloudSync::whatIsDue(const Survey& survey, RescanPlan::Time now) {
    Due due;
    for (const ports::PossibleChange& hint : cloudQuery.take()) {
        due.looks.addHint(hint);
    }
    if (_isFirstLoad || !_isRootThere || _rescans.isRescanDue(now)) {
        due.looks.addTree({});
    }
    due.isPoll = _rescans.isPollDue(now);
    if (due.isPoll) {
        addPolled(survey, due.looks);
    }
    due.areDownloadsDue = _areDownloadsLeft || (due.isPoll && !_downloads.unanswered().empty());
    return due;
}

// Folders that report nothing, or of which nothing could be learnt the last time.
void CloudSync::addPolled(const Survey& survey, Looks& looks) {
    cloudQuery.retry();
    for (const std::string& tree : watching().state.unwatchedTrees) {
        looks.addTree(tree);
    }
    for (const std::string& folder : _failing) {
        looks.addTree(folder);
    }
    for (const std::string& kind : survey.linkedKinds()) {
        looks.addTree(kind);
    }
}

void CloudSync::noteTime(const Due& due, RescanPlan::Time began) {
    const auto ended = _tools.mainQueue.now();
    if (due.looks.isEverything()) {
        _rescans.rescanned(began, ended);
    } else if (due.isPoll) {
        _rescans.polled(began, ended);
    }
    _pollInterval = _rescans.pollInterval();
}

CurrentNotes::Differences CloudSync::compareWithHeld(const Survey& survey, Survey::Found found,
                                                     base::Instant lookedAt) {
    CurrentNotes::Differences all;
    std::set<std::string> looked;
    while (true) {
        noteFailures(found);
        for (const auto& folder : found.folders) {
            looked.insert(folder.path);
        }
        auto differences = apply(std::move(found), lookedAt);
        Looks unknown;
        for (std::string& folder : differences.newFolders) {
            if (looked.insert(folder).second) {
                unknown.addTree(std::move(folder));
            }
        }
        all.add(std::move(differences));
        if (unknown.isEmpty()) {
            return all;
        }
        lookedAt = _tools.clock.now();
        found = survey.look(unknown);
    }
}

CurrentNotes::Differences CloudSync::apply(Survey::Found&& found, base::Instant lookedAt) {
    return currentNotesQueue.sync([&] {
        currentNotesQueue.assertCurrent();
        CurrentNotes::Differences all;
        for (auto& [folder, names] : found.names) {
            all.add(_currentNotes.replaceEntries(folder, std::move(names), lookedAt));
        }
        for (auto& [path, entries] : found.folders) {
            all.add(_currentNotes.replaceFolder(path, std::move(entries), lookedAt));
        }
        for (const std::string& folder : found.gone) {
            all.add(_currentNotes.removeFolder(folder));
        }
        return all;
    });
}

void CloudSync::noteFailures(const Survey::Found& found) {
    for (const auto& folder : found.folders) {
        _failing.erase(folder.path);
    }
    for (const std::string& folder : found.gone) {
        _failing.erase(folder);
    }
    for (const auto& [folder, failure] : found.failed) {
        if (_failing.insert(folder).second) {
            base::log("Couldn't parse files in folder, error = ", failure.description);
        }
    }
}

void CloudSync::checkWatching() {
    const Cause cause = watching().state.cause;
    if (std::exchange(_toldCause, cause) == cause) {
        return;
    }
    _tools.mainQueue.post(whileAlive([this] {
        if (_onWatchingChanged) {
            _onWatchingChanged();
        }
    }));
}

}  // namespace tessaly::sync
