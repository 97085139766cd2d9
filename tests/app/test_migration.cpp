// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include "app/migration.h"
#include "app/planner.h"

using namespace tessaly;
using app::Migration;
using tests::Planner;
using tests::TempFolder;

TEST_CASE("notes are moved only from the local folder into a cloud drive that is in use") {
    const TempFolder cloud;
    struct Row {
        const char* what;
        std::optional<std::string> container;
        bool dropbox;
        std::optional<std::string> dataFolder;
        const char* notes;
        Migration state;
    };
    const char* some = "-- Notes/Work/Plans.txt\nplans\n";
    for (const Row& row : {
             Row{"possible", cloud.path(), false, {}, some, Migration::possible},
             Row{"no container", {}, false, {}, some, Migration::noCloudDrive},
             Row{"Dropbox", cloud.path(), true, {}, some, Migration::dropboxLinked},
             Row{"named", cloud.path(), false, cloud.path(), some, Migration::folderNamed},
             Row{"no local folder", cloud.path(), false, {}, "", Migration::nothingLocal},
         }) {
        CAPTURE(row.what);
        Planner planner{{.dropbox = row.dropbox,
                         .cloudContainer = row.container,
                         .dataFolder = row.dataFolder}};
        planner.write(row.notes);
        CHECK(app::migrationState(planner.services()) == row.state);
    }
}

TEST_CASE("folders without a file are nothing to move") {
    const TempFolder cloud;
    Planner planner{{.cloudContainer = cloud.path()}};
    planner.folder().mkdir(std::string{Planner::root} + "Notes/Work");
    CHECK(app::migrationState(planner.services()) == Migration::nothingLocal);
}

namespace {

struct OfferRow {
    const char* what;
    const char* settings;
    const char* notes;
    std::optional<std::size_t> answer;
    std::optional<sync::MigrationAnswer> given;  // nothing: the offer was not put
    bool isWantedThen = true;
};

void checkOffer(const OfferRow& row) {
    CAPTURE(row.what);
    const TempFolder cloud;
    Planner planner{{.cloudContainer = cloud.path(), .answer = row.answer}};
    planner.set(row.settings);
    planner.write(row.notes);
    const auto given = app::putMigrationOffer(planner.services());
    CHECK(given.has_value() == row.given.has_value());
    if (given) {
        CHECK(given->value() == *row.given);
    }
    CHECK_FALSE(app::putMigrationOffer(planner.services()));
    CHECK(planner.questions().size() == (row.given ? 1U : 0U));
    const auto wanted =
        planner.services().ports().standardDefaults.valueForKey("shouldMigrateFiles");
    CHECK(wanted.has_value() != row.isWantedThen);
}

}  // namespace

TEST_CASE("the offer is put once, when there is something to move and it is wanted") {
    using Answer = sync::MigrationAnswer;
    const char* const some = "-- Notes/Plans.txt\nplans\n";
    for (const OfferRow& row : {
             OfferRow{"move", "{}", some, 0, Answer::move},
             OfferRow{"see preferences", "{}", some, 1, Answer::seePreferences},
             OfferRow{"never", "{}", some, 2, Answer::never, false},
             OfferRow{"no answer", "{}", some, std::nullopt, Answer::notGiven},
             OfferRow{"nothing there", "{}", "", 0, std::nullopt},
             OfferRow{"another button", "{}", some, 7, Answer::notGiven},
             OfferRow{"unwanted", R"({"shouldMigrateFiles": false})", some, 0, std::nullopt, false},
         }) {
        checkOffer(row);
    }
}
