// SPDX-License-Identifier: MIT
#include "app/open_conflict.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "app/conflicts.h"
#include "base/localisation.h"
#include "base/serial_queue.h"
#include "store/data_store.h"
#include "sync/file_versions.h"

namespace tessaly::app {

using base::Result;
using base::tr;

/// Lives as long as work in hand needs it. What the queue guards is touched by its jobs alone.
struct OpenConflict::State final : sync::ConflictManagerDelegate,
                                   std::enable_shared_from_this<OpenConflict::State> {
    State(Services& shared, NoteAddress note, Handlers answers, std::string file)
        : services(shared),
          address(std::move(note)),
          path(std::move(file)),
          handlers(std::move(answers)),
          versions({shared.ports().files, shared.safeFiles(), shared.dataStore().root()}),
          manager({versions, shared.dateStrings().formats(), shared.ports().clock}),
          queue(std::string(bundleIdentifier) + ".OpenConflict", shared.ports().executor) {
        manager.setDelegate(this);
    }

    void work(void (State::*step)()) {
        queue.async([self = shared_from_this(), step] { (self.get()->*step)(); });
    }
    void tell(std::function<void(const Handlers&)> telling) {
        services.ports().mainQueue.post([weak = weak_from_this(), telling = std::move(telling)] {
            const auto self = weak.lock();
            if (self != nullptr && !self->isLeft) {
                telling(self->handlers);
            }
        });
    }

    void showVersion(const sync::ConflictBar& bar, const Result<std::string>& text) override;
    void hideConflictBar() override;

    void check();
    void showOther() { manager.showOtherVersion(); }
    void choose();
    void merge();

    bool findShown();
    ConflictedNote note() const {
        return {address.type, address.filename, path, manager.conflictedNotes()};
    }
    void finish(const Result<Resolved>& resolved, const std::string& notice);
    void refuse(const std::string& why) {
        tell([why](const Handlers& told) { told.onRefused(why); });
    }

    Services& services;
    const NoteAddress address;
    const std::string path;
    const Handlers handlers;
    bool isLeft = false;  ///< main thread

    // Guarded by the queue.
    sync::FileVersions versions;
    sync::ConflictManager manager;
    bool isQuiet = false;  ///< the manager's looks are not shown
    std::string shownUrl;  ///< of the version that is shown
    Result<std::string> shownText = std::string();

    base::SerialQueue queue;
};

void OpenConflict::State::showVersion(const sync::ConflictBar& bar,
                                      const Result<std::string>& text) {
    if (isQuiet) {
        return;
    }
    const auto& all = manager.conflictedNotes();
    const auto& shown = all[static_cast<std::size_t>(manager.conflictedVersionSelectionIndex())];
    shownUrl = shown.url;
    shownText = text;
    tell([version = ShownVersion{bar, !shown.isConflict, text}](const Handlers& told) {
        told.onShow(version);
    });
}

void OpenConflict::State::hideConflictBar() {
    shownUrl.clear();
    if (!isQuiet) {
        tell([](const Handlers& told) { told.onHide(); });
    }
}

/// Looks again, and turns to the version that was shown. False: it is not there any more.
bool OpenConflict::State::findShown() {
    const std::string url = shownUrl;
    isQuiet = true;
    manager.setSelectedNoteUrl(path);
    manager.checkForConflicts();
    const auto& all = manager.conflictedNotes();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const auto& version) { return version.url == url; });
    for (auto version = all.begin(); found != all.end() && version != found; ++version) {
        manager.showOtherVersion();
    }
    isQuiet = false;
    return found != all.end();
}

void OpenConflict::State::check() {
    findShown();
    if (manager.conflictedNotes().empty()) {
        hideConflictBar();
    } else {
        manager.updateVersionSelection(true);
    }
}

void OpenConflict::State::choose() {
    const Result<std::string> seen = shownText;
    const bool isThere = findShown();
    const auto index = static_cast<std::size_t>(manager.conflictedVersionSelectionIndex());
    // The current version is what the editor holds, which has just been saved.
    const bool isSame =
        isThere && (!manager.conflictedNotes()[index].isConflict ||
                    (seen && manager.textOf(index) && *seen == *manager.textOf(index)));
    if (!isSame) {
        refuse(tr("The versions of this note have just changed. Look at them again."));
        check();
        return;
    }
    finish(keepVersion(services, note(), index + 1),
           tr("This version was kept. The others are in the note's history."));
}

void OpenConflict::State::merge() {
    findShown();
    finish(mergeVersions(services, note()),
           tr("The versions were merged. Each of them is in the note's history."));
}

void OpenConflict::State::finish(const Result<Resolved>& resolved, const std::string& notice) {
    if (!resolved) {
        refuse(resolved.failure().description);
    } else if (!resolved->isResolved) {
        refuse(tr("Not every version could be taken away; the log tells why."));
    } else {
        tell([notice](const Handlers& told) { told.onResolved(notice); });
    }
    shownUrl.clear();
    check();
}

OpenConflict::OpenConflict(Services& services, NoteAddress address, Handlers handlers) {
    auto path = services.dataStore().pathOf(address.type, address.filename);
    // Made here, since the work asks for them on another thread.
    services.history();
    services.startUpIndex();
    _state = std::make_shared<State>(services, std::move(address), std::move(handlers),
                                     path ? *std::move(path) : std::string());
}

OpenConflict::~OpenConflict() {
    _state->isLeft = true;
    _state->queue.sync([] {});
}

void OpenConflict::check() {
    _state->work(&State::check);
}

void OpenConflict::showOther() {
    _state->work(&State::showOther);
}

void OpenConflict::choose() {
    _state->work(&State::choose);
}

void OpenConflict::merge() {
    _state->work(&State::merge);
}

}  // namespace tessaly::app
