// SPDX-License-Identifier: MIT
#include "app/migration.h"

#include <algorithm>
#include <string>

#include "store/paths.h"

namespace tessaly::app {
namespace {

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

store::MoveReport migrate(Services& services, const store::MoveOptions& options) {
    return services.dataStore().moveAllToCloudDrive(options);
}

bool isWhole(const store::MoveReport& report) {
    return report.failed.empty() && !report.cancelled;
}

std::optional<OfferResult> offerMigration(Services& services, const store::MoveOptions& options) {
    sync::MigrationOffer& offer = services.migrationOffer();
    if (offer.didShowMigrationDialog() || offer.isUnwanted() ||
        migrationState(services) != Migration::possible) {
        return std::nullopt;
    }
    OfferResult result{offer.ask(), std::nullopt};
    if (result.answer && *result.answer == sync::MigrationAnswer::move) {
        result.moved = migrate(services, options);
        if (isWhole(*result.moved)) {
            offer.tellOfMove();
        }
    }
    return result;
}

}  // namespace tessaly::app
