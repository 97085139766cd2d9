// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/note_address.h"
#include "app/services.h"
#include "base/failure.h"
#include "sync/conflict_manager.h"

namespace tessaly::app {

/// The version of a note in conflict that the user looks at.
struct ShownVersion {
    sync::ConflictBar bar;
    bool isCurrent = false;
    base::Result<std::string> text = std::string{};  ///< its bytes
};

/// The conflict of the note that is open in an editor. Main thread, which never waits for the disk
/// here: the work is done in the background, in order, and its answers come later, if this object
/// is still there.
class OpenConflict {
public:
    struct Handlers {
        std::function<void(const ShownVersion& version)> onShow;
        /// There is no conflict, or no longer.
        std::function<void()> onHide;
        /// The conflict was resolved, and the note may hold another text; in words for the user.
        std::function<void(const std::string& notice)> onResolved;
        /// In words for the user: why it was not.
        std::function<void(const std::string& why)> onRefused;
    };

    /// `services` outlives it.
    OpenConflict(Services& services, NoteAddress address, Handlers handlers);
    /// Waits for the work in hand.
    ~OpenConflict();
    OpenConflict(const OpenConflict&) = delete;
    OpenConflict& operator=(const OpenConflict&) = delete;

    /// Looks for versions; the one that was shown is shown on, if it is still there.
    void check();
    /// The next version.
    void showOther();
    /// Keeps the version that is shown, all others being in the history. The current version must
    /// be saved. Refused when the version that is shown holds something else by now.
    void choose();
    /// Joins all versions by line. The current one must be saved.
    void merge();

private:
    struct State;
    std::shared_ptr<State> _state;
};

}  // namespace tessaly::app
