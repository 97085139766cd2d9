// SPDX-License-Identifier: MIT
#pragma once

#include "app/services.h"
#include "store/data_store.h"

namespace tessaly::app {

/// The key in the user defaults under which it stands, as false, that the user does not want to be
/// offered the move again.
inline constexpr char shouldMigrateFiles[] = "shouldMigrateFiles";

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

/// What the user answers to the offer.
enum class MigrationAnswer {
    move,
    seePreferences,
    never,  ///< and that has been stored
    notGiven,
};

/// Offers to move the notes. Failure: the user wants no further offers, and that could not be
/// stored.
base::Result<MigrationAnswer> askForMigration(Services& services);

/// Moves everything in the local data folder into the cloud drive; see
/// `DataStore::moveAllToCloudDrive`.
store::MoveReport migrate(Services& services, const store::MoveOptions& options = {});

/// Tells the user that all has been moved.
void tellOfMigration(Services& services);

}  // namespace tessaly::app
