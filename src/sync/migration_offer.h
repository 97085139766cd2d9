// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "base/failure.h"
#include "ports/questions.h"
#include "ports/user_defaults.h"
#include "store/data_store.h"

namespace tessaly::sync {

/// The key in the user defaults under which it stands, as false, that the user does not want to be
/// offered the move again.
inline constexpr char shouldMigrateFiles[] = "shouldMigrateFiles";

/// What the user answers to the offer.
enum class MigrationAnswer {
    move,
    seePreferences,
    never,  ///< and that has been stored
    notGiven,
};

/// Offers to move the notes from the local folder into the cloud drive: once in a run, and never
/// again when the user has said so. Main queue.
class MigrationOffer {
public:
    /// All outlive this object.
    struct Tools {
        ports::Questions questions;
        ports::UserDefaults& standardDefaults;
    };
    explicit MigrationOffer(Tools tools) : _tools(std::move(tools)) {}

    /// Whether the offer has been shown in this run.
    bool didShowMigrationDialog() const { return _didShowMigrationDialog; }
    /// Whether the user wants no offers.
    bool isUnwanted() const;

    /// Asks, whatever was answered before. Failure: the user wants no further offers, and that
    /// could not be stored.
    base::Result<MigrationAnswer> ask();

    /// Tells the user that all has been moved.
    void tellOfMove();

private:
    Tools _tools;
    bool _didShowMigrationDialog = false;
};

}  // namespace tessaly::sync
