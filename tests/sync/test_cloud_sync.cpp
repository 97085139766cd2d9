// SPDX-License-Identifier: MIT
#include <chrono>
#include <filesystem>

#include <doctest/doctest.h>

#include "base/thread_pool.h"
#include "platform/inotify_query.h"
#include "support/log_capture.h"
#include "support/without_rights.h"
#include "sync_fixture.h"

namespace tessaly::tests {
namespace {

using namespace std::chrono_literals;
using Reach = ports::PossibleChange::Reach;
namespace fs = std::filesystem;

constexpr auto copyName = "Notes/a.sync-conflict-20190305-101010-ABCDEFG.txt";

/// A data folder with a few notes that is being watched.
struct Watched : SyncFixture {
    Watched() {
        for (const char* kind : {"Notes", "Calendar", ".Trash"}) {
            folder().mkdir(std::string("data/") + kind);
        }
        for (const char* note : {"Notes/a.txt", "Notes/sub/b.txt", "Calendar/20190301.txt"}) {
            folder().write(std::string("data/") + note, "old");
        }
        start();
    }

    void remove(const std::string& path) {
        fs::remove_all(folder() / ("data/" + path));
        query.notice(path);
    }
    void rename(const std::string& from, const std::string& to, Reach reach = Reach::entry) {
        fs::rename(folder() / ("data/" + from), folder() / ("data/" + to));
        query.notice(from, reach);
        query.notice(to, reach);
    }
    std::string path(const std::string& name) const { return folder() / ("data/" + name); }
};

std::size_t countOf(const LogCapture& log, std::string_view line) {
    return static_cast<std::size_t>(std::count(log.lines().begin(), log.lines().end(), line));
}

}  // namespace

TEST_CASE("ten changes within a second are one batch") {
    Watched watched;
    const LogCapture log;
    for (int i = 0; i < 10; ++i) {
        watched.write("Notes/" + std::to_string(i) + ".txt", "new");
        watched.pass(90ms);
    }
    CHECK(watched.told() == "");
    CHECK(watched.toldThen() ==
          "later: +Notes/0.txt +Notes/1.txt +Notes/2.txt +Notes/3.txt +Notes/4.txt +Notes/5.txt "
          "+Notes/6.txt +Notes/7.txt +Notes/8.txt +Notes/9.txt");
    CHECK(countOf(log, "onUpdate") == 10);
    CHECK(countOf(log, "received an icloud update") == 1);
}

TEST_CASE("changes that never pause are told all the same") {
    Watched watched;
    for (int i = 0; i < 11; ++i) {
        watched.write("Notes/new.txt", std::to_string(i));
        watched.pass(500ms);
    }
    CHECK(watched.told() == "later: +Notes/new.txt");
}

TEST_CASE("what happens to files is told") {
    Watched watched;
    watched.write("Notes/a.txt", "longer");
    watched.write("Notes/new.txt", "new");
    watched.remove("Calendar/20190301.txt");
    CHECK(watched.toldThen() == "later: -Calendar/20190301.txt +Notes/new.txt ~Notes/a.txt");
    watched.rename("Notes/new.txt", "Notes/newer.txt");
    CHECK(watched.toldThen() == "later: -Notes/new.txt +Notes/newer.txt");
    watched.rename("Notes/sub", "Notes/other", Reach::tree);
    CHECK(watched.toldThen() ==
          "later: -Notes/sub/ -Notes/sub/b.txt +Notes/other/ +Notes/other/b.txt");
    watched.folder().write("data/Notes/deep/er/c.txt", "new");
    watched.query.notice("Notes/deep");
    CHECK(watched.toldThen() == "later: +Notes/deep/ +Notes/deep/er/ +Notes/deep/er/c.txt");
    watched.remove("Notes/deep");
    CHECK(watched.toldThen() == "later: -Notes/deep/ -Notes/deep/er/ -Notes/deep/er/c.txt");
}

TEST_CASE("hidden and temporary names never arrive, the trash and filters do") {
    Watched watched;
    for (const char* name : {"Notes/.DS_Store", "Notes/.hidden/a.txt", "Notes/_attachments/a.txt",
                             "Notes/a.txt~", "Notes/.~a.txt.12ab~", "Filters/.a", "Filters/a~",
                             "Filters/sub/a", "a.txt", ".Trash/.b.txt"}) {
        watched.write(name, "new");
    }
    watched.query.notice("", Reach::tree);
    CHECK(watched.toldThen() == "");
    watched.write(".Trash/a.txt", "new");
    CHECK(watched.toldThen() == "later: +.Trash/a.txt");
    watched.write("Filters/This week", "new");
    CHECK(watched.toldThen() == "later: +Filters/This week");
    watched.write("Filters/This week", "other text");
    CHECK(watched.toldThen() == "later: ~Filters/This week");
    watched.remove("Filters/This week");
    CHECK(watched.toldThen() == "later: -Filters/This week");
    REQUIRE(watched.query.isRunning());
}

TEST_CASE("a conflict copy changes its note, and is one when that goes") {
    Watched watched;
    watched.write(copyName, "other");
    CHECK(watched.toldThen() == "later: ~Notes/a.txt!");
    watched.remove("Notes/a.txt");
    CHECK(watched.toldThen() == std::string("later: -Notes/a.txt! +") + copyName);
}

TEST_CASE("only another text or another date is a change") {
    Watched watched;
    watched.known["Notes/a.txt"] = "old";
    const std::string file = watched.path("Notes/a.txt");
    const auto date = fs::last_write_time(file);
    const auto told = [&] {
        fs::last_write_time(file, date);
        watched.query.notice("Notes/a.txt");
        return watched.toldThen();
    };
    fs::permissions(file, fs::perms::owner_read);
    CHECK(told() == "");
    watched.folder().write("data/Notes/.next", "old");
    fs::rename(watched.path("Notes/.next"), file);
    CHECK(told() == "");
    watched.folder().write("data/Notes/.next", "new");
    fs::rename(watched.path("Notes/.next"), file);
    CHECK(told() == "later: ~Notes/a.txt");
    fs::last_write_time(file, date + 1s);
    watched.query.notice("Notes/a.txt");
    CHECK(watched.toldThen() == "later: ~Notes/a.txt");
}

TEST_CASE("folders that report nothing are looked at") {
    Watched watched;
    ports::WatchState state{true, 3, ports::WatchState::Cause::noWatchesLeft, "", {"Notes/sub"}};
    watched.query.setState(state);
    watched.folder().write("data/Notes/sub/new.txt", "new");
    watched.folder().write("data/Notes/new.txt", "new");
    watched.pass(10s);
    CHECK(watched.told() == "later: +Notes/sub/new.txt");
    CHECK(watched.query.retries() > 0);
}

TEST_CASE("a folder that cannot be looked at stays as it was") {
    Watched watched;
    LogCapture log;
    const std::string sub = watched.path("Notes/sub");
    fs::permissions(sub, fs::perms::none);
    {
        const WithoutRights user(watched.folder());
        REQUIRE(user.effective());
        watched.query.notice("Notes", Reach::tree);
        watched.pass(70s);
    }
    CHECK(watched.told() == "");
    const auto isFailure = [](const std::string& line) {
        return line.starts_with("Couldn't parse files in folder, error = ");
    };
    CHECK(std::count_if(log.lines().begin(), log.lines().end(), isFailure) == 1);
    fs::permissions(sub, fs::perms::owner_all);
    watched.folder().write("data/Notes/sub/new.txt", "new");
    watched.pass(10s);
    CHECK(watched.told() == "later: +Notes/sub/new.txt");
}

TEST_CASE("a root that goes and comes back") {
    Watched watched;
    fs::rename(watched.folder() / "data", watched.folder() / "away");
    watched.pass(10s);
    CHECK(watched.told() ==
          "later: -Calendar/20190301.txt -Notes/a.txt -Notes/sub/ -Notes/sub/b.txt");
    watched.pass(60s);
    CHECK(watched.told() == "");
    fs::rename(watched.folder() / "away", watched.folder() / "data");
    watched.pass(10s);
    CHECK(watched.told() ==
          "ahead: +Notes/a.txt +Notes/sub/ +Notes/sub/b.txt | "
          "all: +Calendar/20190301.txt +Notes/a.txt +Notes/sub/ +Notes/sub/b.txt");
    watched.write("Notes/new.txt", "new");
    CHECK(watched.toldThen() == "later: +Notes/new.txt");
}

TEST_CASE("a folder in the root's place is another root") {
    Watched watched;
    fs::rename(watched.folder() / "data", watched.folder() / "away");
    watched.folder().write("data/Notes/other.txt", "other");
    watched.pass(10s);
    CHECK(watched.told() ==
          "later: -Calendar/20190301.txt -Notes/a.txt -Notes/sub/ -Notes/sub/b.txt | "
          "ahead: +Notes/other.txt | all: +Notes/other.txt");
    fs::rename(watched.folder() / "data", watched.folder() / "other");
    fs::rename(watched.folder() / "away", watched.folder() / "data");
    watched.pass(10s);
    CHECK(watched.told() ==
          "later: -Notes/other.txt | ahead: +Notes/a.txt +Notes/sub/ +Notes/sub/b.txt | "
          "all: +Calendar/20190301.txt +Notes/a.txt +Notes/sub/ +Notes/sub/b.txt");
}

TEST_CASE("another root is begun with anew") {
    SyncFixture fixture(StoreFixture::Root::chosen);
    const TempFolder& folder = fixture.folder();
    folder.write("share/org.example/Notes/local.txt", "old");
    folder.write("cloud/Documents/Notes/cloud.txt", "old");
    fixture.start();
    CHECK_FALSE(fixture.sync->isCloudAvailable());
    fixture.store.cloudContainer = [&] { return std::optional(folder / "cloud"); };
    fixture.pass(10s);
    CHECK(fixture.sync->isCloudAvailable());
    CHECK(fixture.told() ==
          "later: -Notes/local.txt | ahead: +Notes/cloud.txt | all: +Notes/cloud.txt");
    CHECK(fixture.query.roots() ==
          std::vector{folder / "share/org.example", folder / "cloud/Documents"});
}

TEST_CASE("the first batches tell the next days, the general notes, and then all") {
    SyncFixture fixture;
    for (const char* note :
         {"Calendar/20190304.txt", "Calendar/20190305.txt", "Calendar/20190314.txt",
          "Calendar/20190315.txt", "Notes/a.txt", "Notes/_Ideas.txt", "Notes/_old/b.txt",
          "Notes/sub/_c.txt", ".Trash/d.txt"}) {
        fixture.folder().write(std::string("data/") + note, "old");
    }
    fixture.query.isReadyAtOnce = false;
    fixture.sync->start();
    fixture.pass(20s);
    CHECK(fixture.told() == "");
    CHECK(fixture.sync->isFirstLoad());
    fixture.query.becomeReady();
    CHECK(fixture.toldThen() ==
          "ahead: +Calendar/20190305.txt +Calendar/20190314.txt | "
          "ahead: +Notes/a.txt +Notes/sub/ | "
          "all: +.Trash/d.txt +Calendar/20190304.txt +Calendar/20190305.txt "
          "+Calendar/20190314.txt +Calendar/20190315.txt +Notes/_Ideas.txt +Notes/_old/ "
          "+Notes/_old/b.txt +Notes/a.txt +Notes/sub/ +Notes/sub/_c.txt");
    CHECK_FALSE(fixture.sync->isFirstLoad());
    fixture.pass(20s);
    CHECK(fixture.told() == "");
}

TEST_CASE("a kind's folder may be a link within the root, and no other") {
    SyncFixture fixture;
    fixture.folder().write("data/Stuff/a.txt", "old");
    fixture.folder().write("outside/b.txt", "old");
    fixture.folder().link("data/Notes", "Stuff");
    fixture.folder().link("data/Calendar", "../outside");
    const LogCapture log;
    fixture.sync->start();
    CHECK(fixture.toldThen() == "ahead: +Notes/a.txt | all: +Notes/a.txt");
    fixture.folder().write("data/Stuff/c.txt", "new");
    fixture.pass(10s);
    CHECK(fixture.told() == "later: +Notes/c.txt");
}

TEST_CASE("without any events there are only looks") {
    SyncFixture fixture;
    fixture.folder().write("data/Notes/a.txt", "old");
    fixture.query.startFailure = base::Failure{base::Failure::Kind::other, "no inotify"};
    int changes = 0;
    fixture.sync->setOnWatchingChanged([&] { ++changes; });
    fixture.start();
    CHECK(fixture.sync->watching().state.cause == ports::WatchState::Cause::noEvents);
    CHECK(changes == 1);
    fixture.folder().write("data/Notes/new.txt", "new");
    fixture.pass(10s);
    CHECK(fixture.told() == "later: +Notes/new.txt");
}

TEST_CASE("files behind placeholders are asked for until they are here") {
    Watched watched;
    const LogCapture log;
    const std::string shell = watched.path("Notes/c.txt.nextcloud");
    watched.downloads.nextAnswer = base::Failure{base::Failure::Kind::denied, "not mine"};
    watched.write("Notes/c.txt.nextcloud", " ");
    CHECK(watched.toldThen() == "");
    CHECK(countOf(log, "could not download: " + shell + ", error: not mine") == 1);
    watched.downloads.nextAnswer = base::Done{};
    watched.pass(20s);
    CHECK(watched.downloads.requested == std::vector{shell, shell});
    watched.rename("Notes/c.txt.nextcloud", "Notes/c.txt");
    CHECK(watched.toldThen() == "later: +Notes/c.txt");
    watched.pass(100s);
    CHECK(watched.downloads.requested.size() == 2);
}

TEST_CASE("the end may come at any time") {
    Watched watched;
    watched.write("Notes/new.txt", "new");
    SUBCASE("with a request posted") {}
    SUBCASE("with a timer waiting") {
        watched.mainQueue.runPosted();
    }
    watched.sync.reset();
    watched.query.notice("Notes/new.txt");
    watched.pass(100s);
    CHECK(watched.told() == "");
    CHECK(watched.mainQueue.timers() == 0);
    CHECK_FALSE(watched.query.isRunning());
}

TEST_CASE("the end may come while other threads are at work") {
    const LogCapture log;
    SyncFixture fixture;
    base::ThreadPool pool(3);
    platform::InotifyQuery query;
    for (int round = 0; round < 10; ++round) {
        sync::CloudSync sync({fixture.store.store,
                              query,
                              fixture.mainQueue,
                              fixture.downloads,
                              fixture.store.clock,
                              pool,
                              {}});
        sync.start();
        fixture.mainQueue.waitForPost();
        fixture.pass(sync::CloudSync::quietTime);
        fixture.folder().write("data/Notes/deep/er/" + std::to_string(round) + ".txt", "new");
        fixture.pass(sync::CloudSync::quietTime);
    }
}

}  // namespace tessaly::tests
