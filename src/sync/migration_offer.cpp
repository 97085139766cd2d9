// SPDX-License-Identifier: MIT
#include "sync/migration_offer.h"

#include <array>

#include "base/localisation.h"

namespace tessaly::sync {
namespace {

using base::tr;

// By the buttons of the offer.
constexpr std::array answers{MigrationAnswer::move, MigrationAnswer::seePreferences,
                             MigrationAnswer::never};

}  // namespace

bool MigrationOffer::isUnwanted() const {
    return _tools.standardDefaults.valueForKey(shouldMigrateFiles) == ports::DefaultsValue(false);
}

base::Result<MigrationAnswer> MigrationOffer::ask() {
    _didShowMigrationDialog = true;
    const auto answer = _tools.questions(
        {tr("iCloud Drive Detected!"),
         tr("You have notes saved locally outside of iCloud Drive. iCloud Drive is available now "
            "and will be used. Do you want to move your notes to iCloud Drive (to sync with other "
            "devices)? You can also do this from your Tessaly preferences."),
         {tr("Yes, move my notes"), tr("See sync preferences"), tr("Don't show this again")}});
    if (!answer || *answer >= answers.size()) {
        return MigrationAnswer::notGiven;
    }
    if (answers[*answer] == MigrationAnswer::never) {
        const auto stored = _tools.standardDefaults.setValue(shouldMigrateFiles, false);
        if (!stored) {
            return stored.failure();
        }
    }
    return answers[*answer];
}

void MigrationOffer::tellOfMove() {
    _tools.questions(
        {tr("Moving Your Notes"),
         tr("Moving your notes to iCloud Drive has completed. Restart Tessaly to rebuild the "
            "database."),
         {}});
}

}  // namespace tessaly::sync
