// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

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

/// Whether nothing stayed behind.
bool isWhole(const store::MoveReport& report);

/// What became of the offer to move the notes.
struct OfferResult {
    base::Result<sync::MigrationAnswer> answer;  ///< failure: as of `MigrationOffer::ask`
    std::optional<store::MoveReport> moved;      ///< when that was the answer
};

/// Puts the offer once in a run, when there is something to move and the user wants such offers;
/// moves the notes when that is the answer, and tells the user when all have been moved. Nothing:
/// the offer was not put. Main queue.
std::optional<OfferResult> offerMigration(Services& services,
                                          const store::MoveOptions& options = {});

}  // namespace tessaly::app
