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

TEST_CASE("the offer is put once, when there is something to move and it is wanted") {
    struct Row {
        const char* what;
        const char* settings;
        const char* notes;
        std::optional<std::size_t> answer;
        std::vector<std::string> told;
        const char* movedTo;  // what the cloud drive's file holds then
        bool isWantedThen = true;
    };
    const char* const offer = "iCloud Drive Detected!";
    const char* const some = "-- Notes/Plans.txt\nplans\n";
    for (const Row& row : {
             Row{"moved", "{}", some, 0, {offer, "Moving Your Notes"}, "plans\n"},
             Row{"see preferences", "{}", some, 1, {offer}, "-"},
             Row{"never", "{}", some, 2, {offer}, "-", false},
             Row{"no answer", "{}", some, std::nullopt, {offer}, "-"},
             Row{"nothing there", "{}", "", 0, {}, "-"},
             Row{"another button", "{}", some, 7, {offer}, "-"},
             Row{"unwanted", R"({"shouldMigrateFiles": false})", some, 0, {}, "-", false},
         }) {
        CAPTURE(row.what);
        const TempFolder cloud;
        Planner planner{{.cloudContainer = cloud.path(), .answer = row.answer}};
        planner.set(row.settings);
        planner.write(row.notes);
        app::offerMigration(planner.services());
        app::offerMigration(planner.services());
        std::vector<std::string> told;
        for (const ports::Question& question : planner.questions()) {
            told.push_back(question.title);
        }
        const auto wanted =
            planner.services().ports().standardDefaults.valueForKey("shouldMigrateFiles");
        CHECK(wanted.has_value() != row.isWantedThen);
        CHECK(told == row.told);
        const char* const moved = "Documents/Notes/Plans.txt";
        CHECK((cloud.exists(moved) ? cloud.read(moved) : "-") == row.movedTo);
    }
}
