// SPDX-License-Identifier: MIT
#include <string>

#include <doctest/doctest.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "store/loaded_note.h"
#include "store/note_model.h"

using namespace tessaly;
using base::NoteType;
using store::NoteModel;

namespace {

std::string counts(std::string_view content, const store::CountSettings& settings = {}) {
    const NoteModel note("20190305.txt", NoteType::calendar, content, settings);
    return fmt::format("open {} scheduled {} done {} cancelled {} closed {}", note.numOpenTodos,
                       note.numScheduledTodos, note.numDoneTodos, note.numCancelledTodos,
                       note.numClosedTodos);
}

std::string tags(std::string_view content) {
    const NoteModel note("a.txt", NoteType::note, content, {});
    return fmt::format("{} {}", fmt::join(note.hashTags, ","), fmt::join(note.atTags, ","));
}

std::string repeated(std::string_view text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

}  // namespace

TEST_CASE("tasks are counted by their state") {
    CHECK(counts("") == "open 0 scheduled 0 done 0 cancelled 0 closed 0");
    const std::string text =
        "# Title\n* a\n- b\n1. c\n* [ ] d\n- [x] e\n* [-] f\n2) [>] g\n\t* [x] h\n  * [ ] i";
    CHECK(counts(text) == "open 3 scheduled 1 done 2 cancelled 1 closed 3");
    CHECK(counts("\xEF\xBB\xBF* a") == "open 1 scheduled 0 done 0 cancelled 0 closed 0");
    const store::CountSettings all{.markers = {true, true, true},
                                   .isIndentedTasksInCalendar = false};
    CHECK(counts(text, all) == "open 5 scheduled 1 done 1 cancelled 1 closed 2");
    CHECK(counts(repeated("* [x] a\n", 200) + repeated("* [-] b\n", 300)) ==
          "open 0 scheduled 0 done 200 cancelled 255 closed 255");
}

TEST_CASE("the day of a note is its file name's") {
    using namespace std::chrono;
    const auto day = [](std::string name, NoteType type) {
        return NoteModel(std::move(name), type, "", {}).date;
    };
    CHECK(day("20190305.txt", NoteType::calendar) == 2019y / March / 5);
    CHECK_FALSE(day("2019-03-05.txt", NoteType::calendar));
    CHECK_FALSE(day("20190230.txt", NoteType::calendar));
    CHECK_FALSE(day("20190305.md", NoteType::calendar));
    CHECK_FALSE(day("old/20190305.txt", NoteType::calendar));
    CHECK_FALSE(day("20190305.txt", NoteType::note));
}

TEST_CASE("tags are gathered once, parents first, without the program's own") {
    CHECK(tags("#Work/Clients and #work\n@Bob #a/b(c/d)\n* x @done(2019-03-05) @repeat(1/2)") ==
          "#work,#work/clients,#a,#a/b(c/d) @bob");
    CHECK(tags("mail@home.org #1 a#b") == " ");
}

TEST_CASE("a day has a dot an item, in the order of the kinds") {
    NoteModel day;
    day.numReminders = 1;
    day.numEvents = 2;
    day.numOpenTodos = 1;
    day.numOpenNoteTodos = 1;
    day.numScheduledTodos = 1;
    day.numDoneTodos = 1;
    day.numCompletedReminders = 1;
    day.numDoneNoteTodos = 1;
    day.numCancelledTodos = 9;
    day.numClosedTodos = 10;
    std::vector<base::Color> dots;
    for (int i = 0; i < 10; ++i) {
        dots.push_back(day.dotColor(i));
    }
    CHECK(dots == std::vector{base::reminderRed, base::eventPurple, base::eventPurple,
                              base::todoOrange, base::todoOrange, base::scheduleBlue,
                              base::doneGreen, base::doneGreen, base::doneGreen, base::darkGray});
}

TEST_CASE("sums of a crowded day stop at 255") {
    NoteModel day;
    CHECK(day.totalCount() == 0);
    day.numCancelledTodos = 200;
    CHECK(day.totalCount() == 0);
    day.numOpenTodos = 200;
    day.numEvents = 100;
    CHECK(day.totalCount() == 255);
    CHECK(day.dotColor(99) == base::eventPurple);
    CHECK(day.dotColor(254) == base::todoOrange);
    CHECK(day.dotColor(255) == base::darkGray);
}

TEST_CASE("a general note is read in full") {
    store::LoadingTools tools;
    const ports::FileStamp stamp{.inode = 1,
                                 .size = 2,
                                 .modified = base::Instant{std::chrono::seconds{3}},
                                 .changed = {},
                                 .created = base::Instant{std::chrono::seconds{4}}};
    const auto note = store::loadNote("sub/Plans.txt",
                                      "\xEF\xBB\xBF## My plans\n"
                                      "* a >2019-03-05\n"
                                      "* [x] b @done(2019-03-06 10:00)\n"
                                      "* c >2019-02-31\n"
                                      "* d >2019-02-31 <2019-03-07\n"
                                      "text >2019-03-08 #Tag @Bob\n"
                                      "* e @2019-03-09",
                                      stamp, {}, tools);
    CHECK(note.title == "My plans");
    CHECK(note.content.view().starts_with("## My plans\n"));
    CHECK(note.contentChangedDate == stamp.modified);
    CHECK(note.contentCreatedDate == stamp.created);
    CHECK(note.hashTags == std::vector<std::string>{"#tag"});
    CHECK(note.atTags == std::vector<std::string>{"@bob"});
    std::vector<std::string> dated;
    for (const auto& todo : note.datedTodos()) {
        dated.push_back(fmt::format("{} {}", todo.filename, todo.lineIndex));
    }
    CHECK(dated == std::vector<std::string>{"Notes/sub/Plans.txt 1", "Notes/sub/Plans.txt 2",
                                            "Notes/sub/Plans.txt 4", "Notes/sub/Plans.txt 6"});

    const auto damaged = store::loadNote("caf\xC3\xA9.md", "caf\xE9 #tag", stamp, {}, tools);
    CHECK(damaged.content.view().empty());
    CHECK(damaged.hashTags.empty());
    CHECK(damaged.title == "caf\xC3\xA9");
}
