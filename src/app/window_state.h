// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/place.h"
#include "base/failure.h"
#include "ports/user_defaults.h"

namespace tessaly::app {

/// How the window was left, kept between runs in a file of its own below the state folder.
struct WindowState {
    std::string geometry;  ///< the toolkit's own, Base64; empty: its choice
    bool isSideBarShown = true;
    bool isListShown = false;
    bool isRightPaneShown = true;
    int sideBarWidth = 236;  ///< pixels that do not depend on the screen's scale
    int listWidth = 320;
    int rightPaneWidth = 292;
    Place place;           ///< last shown
    bool wasAtDay = true;  ///< `place` was today's note, or is not known
    ListRequest list;
    std::vector<std::string> recentSearches;  ///< newest first, at most 20
    bool operator==(const WindowState&) const = default;
};

/// What is not stored, or makes no sense, has its default.
WindowState readWindowState(ports::UserDefaults& defaults);
/// Stores what differs from what is stored; of the searches, the newest 20. Failure: some of it may
/// be stored.
base::Result<base::Done> keepWindowState(ports::UserDefaults& defaults, const WindowState& state);

}  // namespace tessaly::app
