// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "app/services.h"
#include "store/data_store.h"
#include "sync/migration_offer.h"

namespace tessaly::app {

/// Whether notes can be moved from the local data folder into the cloud drive, and why not.
enum class Migration {
    possible,
    nothingLocal,       ///< there is no file in the local folder
    noCloudDrive,       ///< the settings name none
    cloudDriveMissing,  ///< its folder cannot be used now
    dropboxLinked,
    folderNamed,  ///< the data folder was named outright
};
Migration migrationState(Services& services);

/// Moves everything in the local data folder into the cloud drive; see
/// `DataStore::moveAllToCloudDrive`.
store::MoveReport migrate(Services& services, const store::MoveOptions& options = {});

/// How many files `migrate` would move; counted while others may change them.
std::size_t filesToMigrate(Services& services);

/// Whether nothing stayed behind.
bool isWhole(const store::MoveReport& report);

/// What became of the offer to move the notes.
struct OfferResult {
    base::Result<sync::MigrationAnswer> answer;  ///< failure: as of `MigrationOffer::ask`
    std::optional<store::MoveReport> moved;      ///< when that was the answer
};

/// Puts the offer once in a run, when there is something to move and the user wants such offers.
/// Nothing: it was not put. Failure: as of `MigrationOffer::ask`. Main queue.
std::optional<base::Result<sync::MigrationAnswer>> putMigrationOffer(Services& services);

/// What the user is to know of it: that files stay where they were, or that no further offers are
/// wanted could not be stored. Empty: nothing.
std::string wordsOfMigration(Services& services, const OfferResult& result);

}  // namespace tessaly::app
