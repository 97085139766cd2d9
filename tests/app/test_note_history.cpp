// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include "app/change_notes.h"
#include "app/note_history.h"
#include "app/planner.h"
#include "base/sha256.h"

using namespace tessaly;
using tests::Planner;

namespace {

std::string idOf(std::string_view text) {
    return base::sha256(text).substr(0, app::historyIdDigits);
}

void overwrite(Planner& planner, const std::string& note, const std::string& text) {
    REQUIRE(app::addText(planner.services(), {note, text, base::WriteMode::overwrite}));
}

}  // namespace

TEST_CASE("a file that is gone is found by its name") {
    Planner planner;
    planner.write(
        "-- Notes/Plans.txt\nplans\n"
        "-- Notes/Work/Log.md\nlog\n"
        "-- Notes/Home/Log.md\nlog\n"
        "-- Notes/Kept.txt\nkept\n");
    for (const char* note : {"Plans", "Work/Log.md", "Home/Log.md"}) {
        REQUIRE(app::trashNote(planner.services(), note));
    }
    struct Row {
        const char* note;
        std::string file;  // relative to the data folder, or how the refusal begins
    };
    for (const Row& row : {
             Row{"Notes/Plans.txt", "Notes/Plans.txt"},
             Row{" plans ", "Notes/Plans.txt"},
             Row{"Work/Log", "Notes/Work/Log.md"},
             Row{"Log.md", "the history knows several files “Log.md”"},
             Row{"ans.txt", "there is no note called “ans.txt”"},
             Row{"Kept", "Notes/Kept.txt"},  // there, with no history
             Row{"today", "Calendar/20190305.txt"},
         }) {
        CAPTURE(row.note);
        const auto file = app::fileInHistory(planner.services(), row.note);
        if (file) {
            CHECK(*file == planner.folder() / (std::string{Planner::root} + row.file));
        } else {
            CHECK(file.failure().description.substr(0, row.file.size()) == row.file);
        }
    }
}

TEST_CASE("a text comes back where its file and folder are gone, and into another note") {
    Planner planner;
    planner.write("-- Notes/Work/Plans.txt\n\xFF bytes\n");
    REQUIRE(app::trashNote(planner.services(), "Work/Plans"));
    std::filesystem::remove(planner.folder() / (std::string{Planner::root} + "Notes/Work"));
    const std::string id = idOf("\xFF bytes\n");
    REQUIRE(app::restoreText(planner.services(), id, std::nullopt));
    CHECK(planner.textOf("Notes/Work/Plans.txt") == "\xFF bytes\n");
    REQUIRE(app::restoreText(planner.services(), id, "tomorrow"));
    CHECK(planner.textOf("Calendar/20190306.txt") == "\xFF bytes\n");
    CHECK_FALSE(app::restoreText(planner.services(), id, "No such note"));
}

TEST_CASE("a text of another data folder is not written there") {
    Planner planner;
    planner.write("-- Notes/Plans.txt\none\n");
    overwrite(planner, "Plans", "two\n");
    const std::string text = "elsewhere\n";
    const std::string outside = planner.folder().write("data/other/Notes/Plans.txt", "now\n");
    const std::string sneaky =
        planner.folder() / (std::string{Planner::root} + "Notes/../../other/Notes/Plans.txt");
    const std::string noKind = planner.folder() / (std::string{Planner::root} + "Plans.txt");
    for (const std::string& path : {outside, sneaky, noKind}) {
        CAPTURE(path);
        REQUIRE(planner.services().history().keepOld(path, text));
        const auto restored = app::restoreText(planner.services(), idOf(text), std::nullopt);
        REQUIRE_FALSE(restored);
        CHECK(restored.failure().kind == base::Failure::Kind::outside);
        CHECK(planner.folder().read("data/other/Notes/Plans.txt") == "now\n");
    }
    REQUIRE(app::restoreText(planner.services(), idOf(text), "Plans"));
    CHECK(planner.textOf("Notes/Plans.txt") == text);
}
