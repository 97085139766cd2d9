// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include "app/migration.h"
#include "app/planner.h"

using namespace tessaly;
using app::Migration;
using app::MigrationAnswer;
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

TEST_CASE("the offer is put with its three answers, and only the third is stored") {
    const std::optional<std::size_t> answers[] = {0, 1, 2, std::nullopt, 3};
    const MigrationAnswer meanings[] = {MigrationAnswer::move, MigrationAnswer::seePreferences,
                                        MigrationAnswer::never, MigrationAnswer::notGiven,
                                        MigrationAnswer::notGiven};
    for (std::size_t index = 0; index < std::size(answers); ++index) {
        CAPTURE(index);
        Planner::User user;
        user.answer = answers[index];
        Planner planner{user};
        const auto answer = app::askForMigration(planner.services());
        REQUIRE(answer);
        CHECK(*answer == meanings[index]);
        REQUIRE(planner.questions().size() == 1);
        CHECK(planner.questions()[0].title == "iCloud Drive Detected!");
        CHECK(planner.questions()[0].buttons == std::vector<std::string>{"Yes, move my notes",
                                                                         "See sync preferences",
                                                                         "Don't show this again"});
        const auto stored =
            planner.services().ports().standardDefaults.valueForKey("shouldMigrateFiles");
        CHECK((stored == ports::DefaultsValue{false}) == (*answer == MigrationAnswer::never));
    }
}
