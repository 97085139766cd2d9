// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

#include "app/services.h"
#include "search/side_bar.h"

namespace tessaly::app {

/// Keeps the sidebar's tree as the notes, the saved filters and the settings are, and keeps what
/// the user expands between runs. Main thread; the disk is waited for in the background.
class SideBarFeed {
public:
    /// How often settings and filters, which nobody tells of, are looked at.
    static constexpr std::chrono::seconds lookInterval{5};

    /// Shows what the cache holds already; when that is much, a moment later. `services` outlives
    /// it.
    explicit SideBarFeed(Services& services);
    /// Keeps what is expanded, if it is not kept yet, and waits for the work in hand.
    ~SideBarFeed();
    SideBarFeed(const SideBarFeed&) = delete;
    SideBarFeed& operator=(const SideBarFeed&) = delete;

    /// To be changed by `setExpanded` alone. Another one takes its place when so much has changed
    /// that a new one is made in the background, as after the first load; see `setOnReplaced`.
    search::SideBar& sideBar();
    /// Told with the new tree; the old one goes when this returns. It is followed by what
    /// `setOnUpdated` was given. One at a time; may be empty.
    void setOnReplaced(std::function<void(search::SideBar& tree)> onReplaced);

    /// Told after each update of the tree, when the observer has been told of all of it. One at a
    /// time; may be empty.
    void setOnUpdated(std::function<void()> onUpdated);

    void setExpanded(search::SideBarItem& item, bool isExpanded);
    /// A filter was saved, renamed or removed by ourselves: looks at them now.
    void filtersChanged();

    /// Open tasks of today's note and those planned for today in other notes.
    std::size_t openTasksToday() const;

private:
    struct State;
    std::shared_ptr<State> _state;
};

}  // namespace tessaly::app
