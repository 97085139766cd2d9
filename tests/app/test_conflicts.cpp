// SPDX-License-Identifier: MIT
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "app/conflicts.h"
#include "app/held_texts.h"
#include "app/index_keeper.h"
#include "app/planner.h"

using namespace tessaly;
using base::NoteType;
using tests::Planner;

namespace {

// Long enough to show that a text lies before the parting of those that have them.
const std::string common =
    "* [ ] read what the harbour office wrote\n"
    "* [ ] write to the three carpenters\n"
    "* [ ] ask Ann about the timber\n";
const std::string parted = common + "* [ ] rest\n";
const std::string mine = common + "* [ ] rest\n* [ ] sail\n";
const std::string theirs = common + "* [ ] swim\n";
const std::string file = std::string{Planner::root} + "Notes/a.md";
const std::string copy =
    std::string{Planner::root} + "Notes/a.sync-conflict-20190305-140733-ABCDEFG.md";

std::size_t textsIn(Planner& planner, const std::string& text) {
    const auto entries = planner.services().history().entries(planner.folder() / file);
    std::size_t found = 0;
    for (const store::HistoryEntry& entry : *entries) {
        found += *planner.services().history().text(entry) == text ? 1 : 0;
    }
    return found;
}

void putInConflict(Planner& planner) {
    planner.folder().write(file, mine);
    planner.folder().write(copy, theirs);
}

}  // namespace

TEST_CASE("a merge takes what the device is known to have held for its base") {
    enum class From { nowhere, held, index };
    for (const From from : {From::nowhere, From::held, From::index}) {
        CAPTURE(static_cast<int>(from));
        Planner planner;
        planner.folder().write(file, parted);
        if (from == From::held) {
            const auto now = planner.services().ports().clock.now();
            app::keepHeldTexts(planner.services(),
                               {{NoteType::note, "a.md", {{base::SharedText(parted), now}}}});
        } else if (from == From::index) {
            REQUIRE(app::writeIndex(planner.services()));
        }
        putInConflict(planner);
        planner.services().startUpIndex().forget();
        const auto note = app::conflictOf(planner.services(), "a");
        REQUIRE(note);
        const auto merged = app::mergeVersions(planner.services(), *note);
        REQUIRE(merged);
        CHECK(merged->isResolved);
        CHECK(merged->baseTime.has_value() == (from != From::nowhere));
        CHECK(merged->linesTaken == (from == From::nowhere ? 0U : 1U));
        CHECK((planner.textOf("Notes/a.md").find("rest") == std::string::npos) ==
              (from != From::nowhere));
        for (const char* kept : {"sail", "swim", "timber"}) {
            CHECK(planner.textOf("Notes/a.md").find(kept) != std::string::npos);
        }
        CHECK(textsIn(planner, mine) > 0);
        CHECK(textsIn(planner, theirs) > 0);
        CHECK(app::listConflicts(planner.services()).notes.empty());
    }
}

TEST_CASE("a conflict that looks otherwise by now is left alone") {
    for (const bool isMerge : {false, true}) {
        Planner planner;
        putInConflict(planner);
        const auto note = app::conflictOf(planner.services(), "a.md");
        REQUIRE(note);
        planner.folder().write(copy + ".conflict1", "one more");
        planner.folder().write(std::string{Planner::root} + "Notes/a (conflicted copy).md", "more");
        const auto before = planner.everything();
        const auto resolved = isMerge ? app::mergeVersions(planner.services(), *note)
                                      : app::keepVersion(planner.services(), *note, 1);
        REQUIRE_FALSE(resolved);
        CHECK(resolved.failure().kind == base::Failure::Kind::changed);
        CHECK(planner.everything() == before);
    }
}

TEST_CASE("texts that a watching program held are in the history once, as of their time") {
    Planner planner;
    planner.folder().write(file, mine);
    store::History& history = planner.services().history();
    REQUIRE(history.keepOld(planner.folder() / file, mine));
    const auto time = planner.services().ports().clock.now() - std::chrono::hours(1);
    for (int run = 0; run < 2; ++run) {
        app::keepHeldTexts(planner.services(),
                           {{NoteType::note,
                             "a.md",
                             {{base::SharedText(parted), time}, {base::SharedText(mine), time}}}});
    }
    const auto entries = history.entries();
    REQUIRE(entries->size() == 2);
    CHECK(entries->front().cause == store::ChangeCause::held);
    CHECK(entries->front().time == time);
    CHECK(*history.text(entries->front()) == parted);
}
