// SPDX-License-Identifier: MIT
#include <filesystem>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "note_cache_fixture.h"
#include "support/log_capture.h"
#include "support/without_rights.h"

using namespace tessaly;
using tests::batchOf;
using tests::CacheFixture;
using tests::Kind;
using Lines = std::vector<std::string>;

namespace {

struct UpdateRow {
    const char* name;
    std::function<void(const tests::TempFolder& folder)> change;
    Lines named;
    Lines told;
};

void remove(const std::string& path) {
    std::filesystem::remove_all(path);
}

// After an update the cache is what a fresh load finds, and exactly the difference is told.
void check(const UpdateRow& row) {
    CAPTURE(row.name);
    CacheFixture fixture({{"Notes/a.txt", "A #x @y\n* [ ] t >2019-03-06"},
                          {"Notes/sub/b.txt", "B"},
                          {"Notes/sub/c.txt", "C"},
                          {"Calendar/20190305.txt", "* one #x"},
                          {"Calendar/20190307.txt", "* two"}});
    fixture.load();
    row.change(fixture.folder);
    fixture.update(row.named);
    CHECK(fixture.lines == row.told);
    CHECK(tests::describe(*fixture.cache) == fixture.freshLoad());
    fixture.lines.clear();
    fixture.update(row.named);
    CHECK(fixture.lines == Lines{});
}

}  // namespace

TEST_CASE("an update takes over what is on the disk") {
    const UpdateRow rows[] = {
        {"a note changes",
         [](const auto& f) { f.write("data/Notes/a.txt", "A #x @z\n* [ ] t >2019-03-06"); },
         {"Notes/a.txt", "Notes/a.txt"},
         {"told tags", "told general @ Notes/a.txt"}},
        {"a note comes in a new folder",
         [](const auto& f) { f.write("data/Notes/new/d.md", "D #x"); },
         {"Notes/new", "Notes/new/d.md"},
         {"told tags", "told general # Notes/new Notes/new/d.md"}},
        {"a note goes",
         [](const auto& f) { remove(f / "data/Notes/a.txt"); },
         {"Notes/a.txt"},
         {"told tags", "told general @ # Notes/a.txt", "told calendar Calendar/20190306.txt"}},
        {"a folder goes with its notes",
         [](const auto& f) { remove(f / "data/Notes/sub"); },
         {"Notes/sub", "Notes/sub/b.txt", "Notes/sub/c.txt"},
         {"told general Notes/sub Notes/sub/b.txt Notes/sub/c.txt"}},
        {"a task is scheduled to another day",
         [](const auto& f) { f.write("data/Notes/a.txt", "A #x @y\n* [x] t >2019-03-07"); },
         {"Notes/a.txt"},
         {"told general Notes/a.txt", "told calendar Calendar/20190306.txt Calendar/20190307.txt"}},
        {"a day comes, another changes, a third goes",
         [](const auto& f) {
             f.write("data/Calendar/20190306.txt", "* [x] t");
             f.write("data/Calendar/20190305.txt", "* one #x\n* more");
             remove(f / "data/Calendar/20190307.txt");
         },
         {"Calendar/20190307.txt", "Calendar/20190306.txt", "Calendar/20190305.txt"},
         {"told calendar Calendar/20190305.txt Calendar/20190306.txt Calendar/20190307.txt"}},
        {"a name changes in case alone",
         [](const auto& f) {
             std::filesystem::rename(f / "data/Notes/a.txt", f / "data/Notes/A.txt");
         },
         {"Notes/a.txt", "Notes/A.txt"},
         {"told general Notes/A.txt Notes/a.txt"}},
        {"a note becomes a conflict copy's original",
         [](const auto& f) {
             f.write("data/Notes/a.sync-conflict-20190306-070809-AAAAAAA.txt", "other");
         },
         {"Notes/a.sync-conflict-20190306-070809-AAAAAAA.txt"},
         {}},
        {"a composed copy of an original that is spelt decomposed comes with it",
         [](const auto& f) {
             f.write("data/Notes/cafe\u0301.txt", "one");
             f.write("data/Notes/caf\u00E9.sync-conflict-20190306-070809-AAAAAAA.txt", "other");
         },
         {"Notes/cafe\u0301.txt", "Notes/caf\u00E9.sync-conflict-20190306-070809-AAAAAAA.txt"},
         {"told general Notes/cafe\u0301.txt"}},
        {"nothing is said of what is no note",
         [](const auto& f) {
             f.write("data/Notes/picture.png", "x");
             f.write("data/Notes/.hidden.txt", "x");
             f.write("data/Notes/_attachments/e.txt", "x");
             f.write("data/.Trash/gone.txt", "x");
         },
         {"Notes/picture.png", "Notes/.hidden.txt", "Notes/_attachments/e.txt", ".Trash/gone.txt",
          "Notes", "Calendar"},
         {}},
        {"what is named and not there changes nothing",
         [](const auto&) {},
         {"Notes/none.txt", "Calendar/20200101.txt", "Notes/none/none.txt", "Notes/a.txt"},
         {}},
    };
    for (const UpdateRow& row : rows) {
        check(row);
    }
}

TEST_CASE("a file that is written anew with the same content is told only for its date") {
    CacheFixture fixture({{"Notes/a.txt", "A"}});
    fixture.load();
    const auto file = fixture.folder / "data/Notes/a.txt";
    const auto date = std::filesystem::last_write_time(file);
    remove(file);
    fixture.folder.write("data/Notes/a.txt", "A");
    std::filesystem::last_write_time(file, date);
    fixture.update({"Notes/a.txt"});
    CHECK(fixture.lines == Lines{});
    const auto stamp = fixture.files.read(file)->stamp;
    CHECK(fixture.cache->generalNotes()->find("a.txt")->stamp == stamp);
    std::filesystem::last_write_time(file, date + std::chrono::hours(1));
    fixture.update({"Notes/a.txt"});
    CHECK(fixture.lines == Lines{"told general Notes/a.txt"});
}

TEST_CASE("what cannot be read keeps its text") {
    CacheFixture fixture({{"Notes/a.txt", "A"}, {"Notes/sub/b.txt", "B"}});
    fixture.load();
    const std::string before = tests::describe(*fixture.cache);
    const auto file = fixture.folder / "data/Notes/a.txt";
    std::optional<tests::WithoutRights> withoutRights;
    SUBCASE("without the right to read it") {
        fixture.folder.write("data/Notes/a.txt", "changed");
        std::filesystem::permissions(file, std::filesystem::perms::none);
        withoutRights.emplace(fixture.folder);
        if (!withoutRights->effective()) {
            return;
        }
    }
    SUBCASE("too large") {
        std::filesystem::resize_file(file, ports::maxFileBytes + 1);
    }
    SUBCASE("its folder has become a link") {
        std::filesystem::rename(fixture.folder / "data/Notes/sub", fixture.folder / "elsewhere");
        fixture.folder.link("data/Notes/sub", "../../elsewhere");
    }
    SUBCASE("the data folder is away") {
        std::filesystem::rename(fixture.folder / "data", fixture.folder / "away");
    }
    fixture.update({"Notes/a.txt", "Notes/sub/b.txt"});
    CHECK(tests::describe(*fixture.cache) == before);
    CHECK(fixture.lines == Lines{});
}

TEST_CASE("strays that arrive are merged into their days") {
    CacheFixture fixture({{"Calendar/20190305.txt", "day"}, {"Calendar/2019-3-6.txt", "old"}});
    fixture.load();
    const auto& folder = fixture.folder;
    tests::LogCapture log;
    folder.write("data/Calendar/2019-3-5.txt", "one");
    folder.write("data/Calendar/20190307 2.txt", "* two #t");
    folder.write("data/Calendar/ideas.txt", "three");
    SUBCASE("later") {
        fixture.update({"Calendar/2019-3-5.txt", "Calendar/20190307 2.txt", "Calendar/ideas.txt",
                        "Calendar/2019-3-6.txt"});
        CHECK(fixture.cache->strays() == Lines{"2019-3-6.txt", "ideas.txt"});
        CHECK(folder.names("data/Calendar") ==
              Lines{"2019-3-6.txt", "20190305.txt", "20190307.txt", "ideas.txt"});
        CHECK(folder.read("data/Calendar/20190305.txt") == "day\none");
        CHECK(std::count(log.lines().begin(), log.lines().end(),
                         "found an invalid calendar file: 2019-3-5.txt, attempt to merge it.") ==
              1);
        CHECK(fixture.lines.size() == 2);
    }
    SUBCASE("first") {
        fixture.update({"Calendar/2019-3-5.txt", "Calendar/20190307 2.txt", "Calendar/ideas.txt"},
                       Kind::all);
        CHECK(fixture.cache->strays() ==
              Lines{"2019-3-5.txt", "2019-3-6.txt", "20190307 2.txt", "ideas.txt"});
        CHECK(folder.read("data/Calendar/20190305.txt") == "day");
    }
    CHECK(tests::describe(*fixture.cache) == fixture.freshLoad());
}

TEST_CASE("completed repeats in what arrives are handed on once") {
    const std::string done = "* [x] t @done(2019-03-05 10:00) @repeat(1/3)";
    CacheFixture fixture(
        {{"Calendar/20190305.txt", "* [ ] t @repeat(1/3)"}, {"Notes/old.txt", done}});
    Lines found;
    fixture.onRepeat = [&](const store::FinishedRepeat& repeat) {
        found.push_back(repeat.filename + ":" + std::to_string(repeat.lineIndex) + ":" +
                        repeat.line);
        fixture.folder.write("data/Calendar/20190305.txt", repeat.line + "\nby the hook");
        return repeat.type == base::NoteType::calendar;
    };
    fixture.load();
    const Lines named{"Calendar/20190305.txt", "Notes/old.txt"};
    fixture.folder.write(
        "data/Calendar/20190305.txt",
        "one\n" + done + "\n* [x] u @done(2019-03-05) @repeat(3/3) @final-repeat" +
            "\n* [ ] v @repeat(1/2)\n* [x] w @repeat(1/2)\n* [-] y @done(2019-03-05) @repeat(1/2)");
    SUBCASE("later") {
        fixture.update(named);
        CHECK(found == Lines{"20190305.txt:1:" + done});
        CHECK(fixture.cache->calendarNotes()
                  ->find(*base::dayFromFileText("20190305"))
                  ->content.view() == done + "\nby the hook");
        CHECK(fixture.lines == Lines{"told calendar Calendar/20190305.txt"});
        fixture.update(named);
    }
    SUBCASE("first") {
        fixture.update(named, Kind::all);
        CHECK(found == Lines{});
    }
    CHECK(tests::describe(*fixture.cache) == fixture.freshLoad());
}

TEST_CASE("notes are counted anew when a setting changes") {
    CacheFixture fixture({{"Calendar/20190305.txt", "* a\n\t* [ ] b\n- c"},
                          {"Notes/a.txt", "- t >2019-03-06\n+ [x] u >2019-03-05"}});
    fixture.load();
    fixture.cache->settingsMayHaveChanged();
    CHECK(fixture.lines == Lines{});
    fixture.settings.isIndentedTasksInCalendar = false;
    fixture.cache->settingsMayHaveChanged();
    CHECK(tests::describe(*fixture.cache) == fixture.freshLoad());
    fixture.settings.markers.isDashTodo = true;
    fixture.cache->settingsMayHaveChanged();
    CHECK(tests::describe(*fixture.cache) == fixture.freshLoad());
    fixture.settings.markers.isDashTodo = false;
    fixture.cache->settingsMayHaveChanged();
    CHECK(tests::describe(*fixture.cache) == fixture.freshLoad());
}

TEST_CASE("a copy in the day's note stands for its original") {
    CacheFixture fixture({{"Notes/a.txt", "* [>] t >2019-03-06\n* [ ] u >2019-03-06"}});
    fixture.load();
    const auto counts = [&] {
        const auto day = fixture.cache->calendarNotes()->find(*base::dayFromFileText("20190306"));
        return day ? std::to_string(day->model.numOpenNoteTodos) +
                         std::to_string(day->model.numDoneNoteTodos)
                   : "none";
    };
    CHECK(counts() == "20");
    fixture.folder.write("data/Calendar/20190306.txt", "* t");
    fixture.update({"Calendar/20190306.txt"});
    CHECK(counts() == "10");
    fixture.folder.write("data/Notes/a.txt", "* [>] t >2019-03-06\n* [x] u >2019-03-06");
    fixture.update({"Notes/a.txt"});
    CHECK(counts() == "01");
    remove(fixture.folder / "data/Calendar/20190306.txt");
    remove(fixture.folder / "data/Notes/a.txt");
    fixture.update({"Notes/a.txt", "Calendar/20190306.txt"});
    CHECK(counts() == "none");
}

namespace {

std::string randomText(std::mt19937& engine) {
    static const Lines words{"#a",  "#a/b", "#c",          "@p",          "@p/q",    "word",
                             "\n*", "\n-",  ">2019-03-06", ">2019-03-07", "\n* [x]", "\n* [>]"};
    std::string text;
    for (auto count = engine() % 12; count > 0; --count) {
        text += words[engine() % words.size()] + " ";
    }
    return text;
}

/// Changes some files of a small data folder, and returns the paths of those.
Lines changeSomething(const tests::TempFolder& folder, std::mt19937& engine) {
    static const Lines paths{"Notes/a.txt",           "Notes/b.md",
                             "Notes/sub/c.txt",       "Notes/sub/deep/d.txt",
                             "Calendar/20190305.txt", "Calendar/20190306.txt",
                             "Calendar/20190307.txt", "Calendar/list.txt"};
    Lines changed{"Notes/sub", "Notes/sub/deep"};
    for (auto count = engine() % 3 + 1; count > 0; --count) {
        const std::string& path = paths[engine() % paths.size()];
        if (engine() % 3 == 0) {
            remove(folder / ("data/" + path));
        } else {
            folder.write("data/" + path, randomText(engine));
        }
        changed.push_back(path);
    }
    if (engine() % 10 == 0) {
        remove(folder / "data/Notes/sub");
        changed.insert(changed.end(), {"Notes/sub/c.txt", "Notes/sub/deep/d.txt"});
    }
    std::shuffle(changed.begin(), changed.end(), engine);
    return changed;
}

}  // namespace

TEST_CASE("after any edits the cache is what a fresh load finds") {
    for (unsigned seed = 1; seed <= 3; ++seed) {
        CAPTURE(seed);
        std::mt19937 engine(seed);
        CacheFixture fixture({{"Notes/a.txt", "#a"}, {"Calendar/20190305.txt", "* x"}});
        fixture.load();
        for (int round = 0; round < 80; ++round) {
            fixture.update(changeSomething(fixture.folder, engine));
            REQUIRE(tests::describe(*fixture.cache) == fixture.freshLoad());
        }
    }
}

TEST_CASE("the notes are those of the data folder in use") {
    CacheFixture chosen({}, CacheFixture::Root::chosen);
    chosen.folder.write("share/org.example/Notes/both.txt", "local");
    chosen.folder.write("cloud/Documents/Notes/both.txt", "cloud");
    chosen.load();
    CHECK(tests::describe(*chosen.cache) == "both.txt=local|local|0\n");
    chosen.cloudContainer = [&] { return std::optional(chosen.folder / "cloud"); };
    chosen.cache->onCloudUpdate(
        batchOf(chosen.folder / "cloud/Documents", {"Notes/both.txt"}, Kind::all));
    CHECK(tests::describe(*chosen.cache) == "both.txt=cloud|cloud|0\n");

    CacheFixture linked({});
    linked.folder.write("real/Notes/a.txt", "a");
    std::filesystem::create_directory_symlink("real", linked.root);
    linked.load();
    std::filesystem::remove(linked.root);
    linked.cache->onCloudUpdate(batchOf(linked.root, {}, Kind::all));
    CHECK(tests::describe(*linked.cache) == "a.txt=a|a|0\n");
}
