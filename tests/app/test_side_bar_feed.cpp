// SPDX-License-Identifier: MIT
#include <functional>
#include <string>
#include <string_view>

#include <doctest/doctest.h>

#include "app/note_organiser.h"
#include "app/planner.h"
#include "app/side_bar_feed.h"

using namespace tessaly;
using tests::Planner;

namespace {

constexpr const char* notes =
    "-- Calendar/20190305.txt\n"
    "* one\n"
    "* [x] two\n"
    "-- Notes/Work/Plans.txt\n"
    "# Plans #a\n"
    "* three >2019-03-05\n"
    "-- Filters/Mine\n"
    "\n";

search::SideBarItem* rowOf(app::SideBarFeed& feed, std::string_view key) {
    return feed.sideBar().find(key);
}

bool follows(Planner& planner, app::SideBarFeed& feed, std::string_view key) {
    return planner.mainQueue().runPostedUntil([&] { return rowOf(feed, key) != nullptr; });
}

}  // namespace

TEST_CASE("the sidebar follows notes, filters and what is done to both") {
    Planner planner;
    planner.write(notes);
    app::SideBarFeed feed{planner.services()};
    int updates = 0;
    feed.setOnUpdated([&] { ++updates; });
    CHECK(follows(planner, feed, "view:Mine"));
    CHECK(rowOf(feed, "note:Work/Plans.txt") == nullptr);

    planner.services().noteCache().load();
    CHECK(follows(planner, feed, "note:Work/Plans.txt"));
    CHECK(rowOf(feed, "hashtag:#a") != nullptr);
    CHECK(planner.mainQueue().runPostedUntil([&] { return feed.openTasksToday() == 2; }));
    CHECK(updates > 0);

    app::NoteOrganiser organiser{planner.services()};
    std::string told;
    std::function<void()> undo;
    const auto tell = [&](const app::OrganisedNotes& what) {
        told += what.text + " (" + what.from + " -> " + what.to + ")\n";
        undo = what.undo;
    };
    organiser.renameNote("Work/Plans.txt", "Dreams", tell);
    CHECK(follows(planner, feed, "note:Work/Dreams.txt"));
    CHECK(planner.mainQueue().runPostedUntil([&] { return bool{undo}; }));
    CHECK(rowOf(feed, "note:Work/Plans.txt") == nullptr);
    undo();
    CHECK(follows(planner, feed, "note:Work/Plans a.txt"));
    CHECK(planner.textOf("Notes/Work/Plans a.txt") == "# Plans #a\n* three >2019-03-05\n");
}

TEST_CASE("what is expanded is kept, also when the program ends at once") {
    Planner planner;
    planner.write(notes);
    {
        app::SideBarFeed feed{planner.services()};
        search::SideBarItem* notesHead = rowOf(feed, "section:Notes");
        REQUIRE(notesHead != nullptr);
        CHECK(notesHead->isExpanded);
        feed.setExpanded(*notesHead, false);
    }
    app::SideBarFeed next{planner.services()};
    CHECK_FALSE(rowOf(next, "section:Notes")->isExpanded);
    CHECK(rowOf(next, "section:Calendar")->isExpanded);
}

TEST_CASE("a tree of many notes is made aside, and takes over what was expanded meanwhile") {
    Planner planner;
    std::string many;
    for (int number = 0; number < 2100; ++number) {
        many += "-- Notes/Big/" + std::to_string(number) + ".txt\n# One\n";
    }
    planner.write(many);
    store::NoteCache& cache = planner.services().noteCache();
    cache.load();
    cache.waitUntilIdle();
    REQUIRE(cache.initialUpdateDone());
    app::SideBarFeed feed{planner.services()};
    std::string told;
    feed.setOnUpdated([&] { told += "updated "; });
    feed.setOnReplaced([&](search::SideBar& tree) {
        told += &tree == &feed.sideBar() ? "replaced " : "with another than it has ";
    });

    CHECK(rowOf(feed, "folder:Big") == nullptr);
    feed.setExpanded(*rowOf(feed, "section:Notes"), false);
    feed.setExpanded(*rowOf(feed, "section:Archive"), true);
    told.clear();
    CHECK(follows(planner, feed, "note:Big/2099.txt"));
    CHECK(told.starts_with("replaced updated "));
    CHECK_FALSE(rowOf(feed, "section:Notes")->isExpanded);
    CHECK(rowOf(feed, "section:Archive")->isExpanded);

    const search::SideBarItem* row = rowOf(feed, "note:Big/7.txt");
    planner.write("-- Notes/Big/More.txt\n# More\n");
    cache.reread(base::NoteType::note, "Big/More.txt");
    CHECK(follows(planner, feed, "note:Big/More.txt"));
    CHECK(rowOf(feed, "note:Big/7.txt") == row);
}
