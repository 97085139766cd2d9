// SPDX-License-Identifier: MIT
#include "app/side_bar_feed.h"

#include <algorithm>
#include <atomic>
#include <string>
#include <utility>
#include <vector>

#include "app/side_bar_view.h"
#include "base/serial_queue.h"
#include "ports/main_queue.h"
#include "store/note_cache.h"

namespace tessaly::app {
namespace {

constexpr std::chrono::seconds keepDelay{1};

/// With so many notes more or less, bringing the tree up to date takes longer than a frame.
constexpr std::size_t manyNotes = 2'000;

/// What nobody tells of when it changes.
struct Polled {
    std::vector<std::string> filters;
    base::SortType sortBy = base::SortType::modified;
    bool operator==(const Polled&) const = default;
};

}  // namespace

/// Held by the feed alone; what is posted holds it weakly.
struct SideBarFeed::State final : store::CacheListener,
                                  std::enable_shared_from_this<SideBarFeed::State> {
    explicit State(Services& all)
        : services(all),
          sideBar(std::make_shared<search::SideBar>(expandedSideBarItems(all))),
          queue(std::string(bundleIdentifier) + ".SideBarFeed", all.ports().executor) {}

    void cacheChanged(const store::CacheChanges&) override {
        if (!isUpdatePosted.exchange(true)) {
            post([](State& state) {
                state.isUpdatePosted = false;
                state.update();
            });
        }
    }

    void post(std::function<void(State&)> job) {
        services.ports().mainQueue.post([weak = weak_from_this(), job = std::move(job)] {
            if (const auto state = weak.lock()) {
                job(*state);
            }
        });
    }

    search::SideBarNotes notesNow() const {
        const store::NoteCache& cache = services.noteCache();
        return {cache.generalNotes(), cache.lineHashTags(), cache.lineAtTags(), polled.filters,
                polled.sortBy};
    }

    void update() {
        if (isMaking) {
            return;  // what there is when it is made is shown then
        }
        search::SideBarNotes notes = notesNow();
        const std::size_t count = notes.generalNotes->size();
        if (std::max(count, shownNotes) - std::min(count, shownNotes) > manyNotes) {
            return make(std::move(notes));
        }
        shownNotes = count;
        sideBar->update(notes);
        tell();
    }

    // Nobody can use the tree while it is changed, and a view wants to be told of every row.
    void make(search::SideBarNotes notes) {
        isMaking = true;
        queue.async([this, notes = std::move(notes), expanded = sideBar->expanded()] {
            auto made = std::make_shared<search::SideBar>(expanded);
            made->update(notes);
            post([made = std::move(made), count = notes.generalNotes->size()](State& state) {
                state.replace(made, count);
            });
        });
    }

    void replace(std::shared_ptr<search::SideBar> made, std::size_t count) {
        isMaking = false;
        shownNotes = count;
        takeExpanded(*made);
        std::swap(sideBar, made);
        if (onReplaced) {
            onReplaced(*sideBar);
        }
        update();
    }

    /// What was expanded and collapsed while the tree was made.
    void takeExpanded(search::SideBar& made) const {
        const auto bring = [&](const std::string& key, bool isExpanded) {
            search::SideBarItem* row = made.find(key);
            if (row != nullptr) {
                made.setExpanded(*row, isExpanded);
            }
        };
        const search::SideBarKeys before = made.expanded();
        for (const std::string& key : before) {
            if (!sideBar->expanded().contains(key)) {
                bring(key, false);
            }
        }
        for (const std::string& key : sideBar->expanded()) {
            bring(key, true);
        }
    }

    void tell() const {
        if (onUpdated) {
            onUpdated();
        }
    }

    // Filters that cannot be listed are those of before.
    void look() {
        if (std::exchange(isLooking, true)) {
            isLookDue = true;
            return;
        }
        queue.async([this] {
            Polled now;
            const auto listed = services.filterHelper().list();
            now.filters = listed ? *listed : std::vector<std::string>();
            now.sortBy = services.globals().sortBy();
            post([now = std::move(now), isListed = listed.ok()](State& state) mutable {
                if (!isListed) {
                    now.filters = state.polled.filters;
                }
                state.take(std::move(now));
            });
        });
    }

    void take(Polled now) {
        isLooking = false;
        if (now != polled) {
            polled = std::move(now);
            update();
        }
        if (std::exchange(isLookDue, false)) {
            look();
        }
    }

    void keepLater() {
        ports::MainQueue& mainQueue = services.ports().mainQueue;
        mainQueue.cancel(keepTimer);
        keepTimer = mainQueue.after(keepDelay, [this] { keep(); });
    }

    // What could not be kept is tried again with the next change; nothing but rows is lost.
    void keep() {
        services.ports().mainQueue.cancel(std::exchange(keepTimer, 0));
        queue.async([this, expanded = sideBar->expanded()] {
            [[maybe_unused]] const auto kept = keepExpandedSideBarItems(services, expanded);
        });
    }

    Services& services;
    std::shared_ptr<search::SideBar> sideBar;  ///< never null
    std::size_t shownNotes = 0;                ///< of the tree
    bool isMaking = false;                     ///< another tree
    std::function<void()> onUpdated;
    std::function<void(search::SideBar& tree)> onReplaced;
    Polled polled;
    bool isLooking = false;
    bool isLookDue = false;
    std::atomic<bool> isUpdatePosted = false;
    ports::MainQueue::Timer lookTimer = 0;
    ports::MainQueue::Timer keepTimer = 0;
    base::SerialQueue queue;
};

SideBarFeed::SideBarFeed(Services& services) : _state(std::make_shared<State>(services)) {
    services.noteCache().addListener(*_state);
    _state->update();
    _state->look();
    _state->lookTimer =
        services.ports().mainQueue.every(lookInterval, [state = _state.get()] { state->look(); });
}

SideBarFeed::~SideBarFeed() {
    State& state = *_state;
    state.services.noteCache().removeListener(state);
    state.services.ports().mainQueue.cancel(state.lookTimer);
    if (state.keepTimer != 0) {
        state.keep();
    }
    state.queue.sync([] {});
    state.sideBar->setObserver(nullptr);
}

search::SideBar& SideBarFeed::sideBar() {
    return *_state->sideBar;
}

void SideBarFeed::setOnReplaced(std::function<void(search::SideBar& tree)> onReplaced) {
    _state->onReplaced = std::move(onReplaced);
}

void SideBarFeed::setOnUpdated(std::function<void()> onUpdated) {
    _state->onUpdated = std::move(onUpdated);
}

void SideBarFeed::setExpanded(search::SideBarItem& item, bool isExpanded) {
    if (item.isExpanded != isExpanded) {
        _state->sideBar->setExpanded(item, isExpanded);
        _state->keepLater();
        _state->tell();
    }
}

void SideBarFeed::filtersChanged() {
    _state->look();
}

std::size_t SideBarFeed::openTasksToday() const {
    const auto day = _state->services.noteCache().calendarNotes()->find(_state->services.today());
    return day ? std::size_t{day->model.numOpenTodos} + day->model.numOpenNoteTodos : 0;
}

}  // namespace tessaly::app
