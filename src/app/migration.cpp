// SPDX-License-Identifier: MIT
#include "app/migration.h"

#include <algorithm>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/temporary_name.h"
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

/// What cannot be listed is not moved either.
std::size_t countFiles(ports::FileSystem& files, const std::string& folder) {
    const auto entries = files.list(folder);
    std::size_t count = 0;
    for (const ports::FolderEntry& entry : entries ? *entries : std::vector<ports::FolderEntry>{}) {
        if (entry.kind == Kind::folder) {
            count += countFiles(files, store::joined(folder, entry.name));
        } else if (entry.kind == Kind::file && !base::nameOfTemporary(entry.name)) {
            ++count;
        }
    }
    return count;
}

std::string wordsOfMove(Services& services, const store::MoveReport& report) {
    const std::string local = services.dataStore().localRoot();
    const base::LocaleFormats& formats = services.dateStrings().formats();
    const auto number = [&](std::size_t count) {
        return formats.number(static_cast<long long>(count));
    };
    if (report.cancelled) {
        return fmt::format(
            fmt::runtime(base::trPlural("{0} file is moved. The others are as they were, in {1}.",
                                        "{0} files are moved. The others are as they were, in {1}.",
                                        report.moved)),
            number(report.moved), local);
    }
    if (report.failed.empty()) {
        return {};
    }
    const std::string& why = report.failed.front().failure.description;
    return fmt::format(
        fmt::runtime(base::trPlural("{0} file could not be moved and is still in {1}: {2}",
                                    "{0} files could not be moved and are still in {1}: {2}",
                                    report.failed.size())),
        number(report.failed.size()), local, why);
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

std::size_t filesToMigrate(Services& services) {
    return countFiles(services.ports().files, services.dataStore().localRoot());
}

std::optional<base::Result<sync::MigrationAnswer>> putMigrationOffer(Services& services) {
    sync::MigrationOffer& offer = services.migrationOffer();
    if (offer.didShowMigrationDialog() || offer.isUnwanted() ||
        migrationState(services) != Migration::possible) {
        return std::nullopt;
    }
    return offer.ask();
}

std::string wordsOfMigration(Services& services, const OfferResult& result) {
    if (!result.answer) {
        return result.answer.failure().description;
    }
    return result.moved ? wordsOfMove(services, *result.moved) : std::string();
}

}  // namespace tessaly::app
