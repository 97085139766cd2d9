// SPDX-License-Identifier: MIT
#include "app/migration.h"

#include <algorithm>
#include <array>
#include <string>

#include "base/localisation.h"
#include "store/paths.h"

namespace tessaly::app {
namespace {

using base::tr;
using Kind = ports::FolderEntry::Kind;

/// Whether anything but folders lies below; what cannot be listed may hold something.
bool holdsFiles(ports::FileSystem& files, const std::string& folder) {
    const auto entries = files.list(folder);
    if (!entries) {
        return entries.failure().kind != base::Failure::Kind::notFound;
    }
    return std::any_of(entries->begin(), entries->end(), [&](const ports::FolderEntry& entry) {
        return entry.kind != Kind::folder || holdsFiles(files, store::joined(folder, entry.name));
    });
}

// By the buttons of the offer.
constexpr std::array answers{MigrationAnswer::move, MigrationAnswer::seePreferences,
                             MigrationAnswer::never};

}  // namespace

Migration migrationState(Services& services) {
    const Ports& ports = services.ports();
    const store::DataStore& dataStore = services.dataStore();
    if (ports.dataFolder) {
        return Migration::folderNamed;
    }
    if (ports.dropboxAuthorised && ports.dropboxAuthorised()) {
        return Migration::dropboxLinked;
    }
    if (!dataStore.cloudRoot()) {
        return services.isCloudDriveMissing() ? Migration::cloudDriveMissing
                                              : Migration::noCloudDrive;
    }
    const bool isThere = dataStore.localFolderExists();
    return isThere && holdsFiles(ports.files, dataStore.localRoot()) ? Migration::possible
                                                                     : Migration::nothingLocal;
}

base::Result<MigrationAnswer> askForMigration(Services& services) {
    const auto answer = services.ports().questions(
        {tr("iCloud Drive Detected!"),
         tr("You have notes saved locally outside of iCloud Drive. iCloud Drive is available now "
            "and "
            "will be used. Do you want to move your notes to iCloud Drive (to sync with other "
            "devices)? You can also do this from your Tessaly preferences."),
         {tr("Yes, move my notes"), tr("See sync preferences"), tr("Don't show this again")}});
    if (!answer || *answer >= answers.size()) {
        return MigrationAnswer::notGiven;
    }
    if (answers[*answer] == MigrationAnswer::never) {
        const auto stored = services.ports().standardDefaults.setValue(shouldMigrateFiles, false);
        if (!stored) {
            return stored.failure();
        }
    }
    return answers[*answer];
}

store::MoveReport migrate(Services& services, const store::MoveOptions& options) {
    return services.dataStore().moveAllToCloudDrive(options);
}

void tellOfMigration(Services& services) {
    services.ports().questions(
        {tr("Moving Your Notes"),
         tr("Moving your notes to iCloud Drive has completed. Restart Tessaly to rebuild the "
            "database."),
         {}});
}

}  // namespace tessaly::app
