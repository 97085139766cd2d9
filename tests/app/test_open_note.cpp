// SPDX-License-Identifier: MIT
#include <filesystem>
#include <memory>

#include <doctest/doctest.h>

#include "app/note_typist.h"

using namespace tessaly;
using namespace std::chrono_literals;
using app::OpenNote;
using tests::plans;
using tests::SteppedPlanner;
using Editor = tests::NoteTypist;
using SaveState = OpenNote::SaveState;

namespace {

constexpr const char* file = tests::plansFile;
const app::NoteAddress today{base::NoteType::calendar, "20190305.txt", base::Day{}};

struct SavedRow {
    const char* what;
    const char* before;  // the file's bytes; null: there is none
    const char* typed;
    const char* outside;  // the file's bytes while that is not saved yet; null: as before
    const char* after;
    const char* shown;  // null: what was typed
};

const SavedRow savedRows[] = {
    {"a plain change", "a\nb\n", "a\nb\nc\n", nullptr, "a\nb\nc\n", nullptr},
    {"no final line break", "a\nb", "a\nbc", nullptr, "a\nbc", nullptr},
    {"byte-order mark",
     "\xef\xbb\xbf"
     "a\n",
     "a\nb\n", nullptr,
     "\xef\xbb\xbf"
     "a\nb\n",
     nullptr},
    {"mark and CRLF, joined",
     "\xef\xbb\xbf"
     "a\r\nb\r\n",
     "A\r\nb\r\n",
     "\xef\xbb\xbf"
     "a\r\nb\r\nc\r\n",
     "\xef\xbb\xbf"
     "A\r\nb\r\nc\r\n",
     "A\r\nb\r\nc\r\n"},
    {"all is deleted", "a\n", "", nullptr, "", nullptr},
    {"a new note", nullptr, "a", nullptr, "a", nullptr},
    {"a new note that somebody else makes", nullptr, "mine\n", "theirs\n", "mine\ntheirs\n",
     "mine\ntheirs\n"},
    {"nothing in a note that is not there", nullptr, "", nullptr, "-", nullptr},
    {"two lines, one changed by each", "a\nb\nc\n", "A\nb\nc\n", "a\nb\nC\n", "A\nb\nC\n",
     "A\nb\nC\n"},
    {"the same change by both", "a\n", "b\n", "b\n", "b\n", nullptr},
    {"a task completed there and dated here", "* Call\n", "* Call >2019-03-08\n", "* [x] Call\n",
     "* [x] Call >2019-03-08\n", "* [x] Call >2019-03-08\n"},
};

void check(const SavedRow& row) {
    CAPTURE(row.what);
    SteppedPlanner planner;
    if (row.before != nullptr) {
        planner.write(file, row.before);
    }
    Editor editor{planner};
    REQUIRE_FALSE(editor.note().obstacle());
    editor.type(row.typed);
    if (row.outside != nullptr) {
        planner.write(file, row.outside);
    }
    planner.pass(1s);
    CHECK(planner.textOf(file) == row.after);
    CHECK(editor.text == (row.shown != nullptr ? row.shown : row.typed));
    CHECK(editor.note().saveState() == SaveState::saved);
    CHECK(editor.note().text() == editor.text);
}

struct RereadRow {
    const char* what;
    const char* typed;    // null: nothing
    const char* outside;  // null: the file goes
    const char* shown;
    int gone;
    const char* saved;  // what the file holds in the end
};

// The note holds "a\nb\n" before.
const RereadRow rereadRows[] = {
    {"nothing typed", nullptr, "a\nx\nb\n", "a\nx\nb\n", 0, "a\nx\nb\n"},
    {"nothing typed, and gone", nullptr, nullptr, "a\nb\n", 1, "-"},
    {"typed, and gone", "a\nb\nc\n", nullptr, "a\nb\nc\n", 0, "a\nb\nc\n"},
    {"typed, and written", "a\nb\nc\n", "x\na\nb\n", "x\na\nb\nc\n", 0, "x\na\nb\nc\n"},
    {"typed, and written alike", "a\nc\n", "a\nc\n", "a\nc\n", 0, "a\nc\n"},
    {"typed, and no text any more", "a\nb\nc\n", "a\xff\n", "a\nb\nc\n", 0, "a\xff\n"},
};

void check(const RereadRow& row) {
    CAPTURE(row.what);
    SteppedPlanner planner;
    planner.write(file, "a\nb\n");
    Editor editor{planner};
    if (row.typed != nullptr) {
        editor.type(row.typed);
    }
    if (row.outside != nullptr) {
        planner.write(file, row.outside);
    } else {
        std::filesystem::remove(planner.folder() / planner.path(file));
    }
    editor.note().reread();
    planner.settle();
    CHECK(editor.text == row.shown);
    CHECK(editor.gone == row.gone);
    planner.pass(1s);
    CHECK(planner.textOf(file) == row.saved);
    CHECK(editor.gone == row.gone);
}

}  // namespace

TEST_CASE("what is typed is saved, joined with what others wrote, in the file's own form") {
    for (const SavedRow& row : savedRows) {
        check(row);
    }
}

TEST_CASE("what others write is joined into the open text, and the save goes on") {
    for (const RereadRow& row : rereadRows) {
        check(row);
    }
}

TEST_CASE("typing without a pause is saved often enough, and no more often") {
    SteppedPlanner planner;
    Editor editor{planner};
    int saves = 0;
    std::string held = "-";
    for (int key = 0; key < 100; ++key) {
        editor.type(editor.text + "x");
        planner.pass(100ms);
        const std::string now = planner.textOf(file);
        saves += now != held;
        held = now;
        CHECK(editor.text.size() - (held == "-" ? 0 : held.size()) <= 8);
    }
    CHECK(saves <= 10s / OpenNote::longestUnsaved);
    planner.pass(OpenNote::longestUnsaved);
    CHECK(planner.textOf(file) == editor.text);
}

TEST_CASE("short pauses do not make for more saves") {
    SteppedPlanner planner;
    Editor editor{planner};
    int saves = 0;
    std::string held = "-";
    for (int word = 0; word < 20; ++word) {
        editor.type(editor.text + "word ");
        for (int tenth = 0; tenth < 4; ++tenth) {
            planner.pass(100ms);
            saves += std::exchange(held, planner.textOf(file)) != held;
        }
    }
    CHECK(saves <= 8s / OpenNote::longestUnsaved);
}

TEST_CASE("what is typed while a save runs is kept and saved next") {
    SteppedPlanner planner;
    planner.write(file, "a\n");
    Editor editor{planner};
    editor.type("a\nb\n");
    planner.mainQueue().advance(OpenNote::pause);
    planner.write(file, "outside\na\n");
    while (planner.step()) {
    }
    editor.type("a\nb\nc\n");
    CHECK(planner.textOf(file) == "outside\na\nb\n");
    planner.mainQueue().runPosted();
    CHECK(editor.text == "outside\na\nb\nc\n");
    CHECK(editor.note().saveState() == SaveState::unsaved);
    planner.pass(1s);
    CHECK(planner.textOf(file) == "outside\na\nb\nc\n");
    CHECK(editor.states == "us");
}

TEST_CASE("a long text is joined beside the main thread, and what is typed meanwhile stays") {
    SteppedPlanner planner;
    std::string lines;
    for (int i = 0; i < 30'000; ++i) {
        lines += "line " + std::to_string(i) + "\n";
    }
    planner.write(file, lines);
    Editor editor{planner};
    editor.type(lines + "typed\n");
    planner.write(file, "outside\n" + lines);
    editor.note().reread();
    int typed = 0;
    while (planner.step() || planner.mainQueue().runPosted() > 0) {
        if (editor.merges == 0) {
            editor.type(editor.text + "more " + std::to_string(++typed) + "\n");
        }
    }
    CHECK(typed > 2);
    CHECK(editor.text.starts_with("outside\nline 0\n"));
    CHECK(editor.text.ends_with("more " + std::to_string(typed) + "\n"));
    CHECK(editor.note().saveNow());
    CHECK(planner.textOf(file) == editor.text);
}

TEST_CASE("a save that fails is told, kept trying, and good again when the disk is") {
    SteppedPlanner planner;
    planner.write(file, "a\n");
    Editor editor{planner};
    planner.files().before([&](int, std::string_view operation, const std::string&) {
        if (operation == "replace") {
            planner.files().failThis(base::Failure::Kind::noSpace);
        }
    });
    editor.type("b\n");
    planner.pass(1s);
    CHECK(editor.note().saveState() == SaveState::failed);
    REQUIRE(editor.note().saveFailure());
    CHECK(editor.note().saveFailure()->kind == base::Failure::Kind::noSpace);
    CHECK_FALSE(editor.note().saveNow());
    planner.pass(2 * OpenNote::retryInterval);
    CHECK(planner.log().lines().size() == 1);
    const auto copy = editor.note().keepCopy();
    REQUIRE(copy);
    CHECK(copy->starts_with(planner.folder() / "state/"));
    CHECK(planner.folder().read(copy->substr(planner.folder().path().size() + 1)) == "b\n");
    CHECK(editor.note().keepCopy());
    planner.files().heal();
    planner.pass(OpenNote::retryInterval);
    CHECK(planner.textOf(file) == "b\n");
    CHECK(editor.states == "ufs");
}

TEST_CASE("each call of a save can fail, and nothing is lost") {
    bool hasFailed = true;
    int call = 0;
    for (; hasFailed; ++call) {
        CAPTURE(call);
        SteppedPlanner planner;
        planner.write(file, "theirs\n");
        Editor editor{planner};
        editor.type("theirs\nmine\n");
        planner.files().failAt(call, base::Failure::Kind::other);
        (void)editor.note().saveNow();
        hasFailed = planner.files().calls() > call;
        const std::string held = planner.textOf(file);
        CHECK((held == "theirs\n" || held == "theirs\nmine\n"));
        CHECK(editor.text == "theirs\nmine\n");
        planner.files().heal();
        CHECK(editor.note().saveNow());
        CHECK(planner.textOf(file) == "theirs\nmine\n");
    }
    CHECK(call > 20);
}

TEST_CASE("a note that is left while a save runs is saved, and tells nobody") {
    SteppedPlanner planner;
    planner.write(file, "a\n");
    Editor editor{planner};
    editor.type("b\n");
    planner.mainQueue().advance(OpenNote::pause);
    editor.note().reread();
    planner.write(file, "a\noutside\n");
    const std::string states = editor.states;
    editor.close();
    planner.pass(10s);
    CHECK(planner.textOf(file) == "b\noutside\n");
    CHECK(editor.merges == 0);
    CHECK(editor.states == states);
    CHECK(planner.mainQueue().timers() == 0);
}

TEST_CASE("an editor may close its note from within a call") {
    SteppedPlanner planner;
    planner.write(file, "a\n");
    std::unique_ptr<OpenNote> note;
    int calls = 0;
    note = std::make_unique<OpenNote>(
        planner.services(), plans,
        OpenNote::Handlers{[] { return std::string("a\n"); },
                           [&](const std::string&) {
                               ++calls;
                               note.reset();
                           },
                           [&](SaveState) { ++calls; }, [&] { ++calls; }});
    planner.write(file, "b\n");
    note->reread();
    planner.settle();
    CHECK(calls == 1);
    CHECK_FALSE(note);
}

TEST_CASE("a word that an editor gives up while it takes what others wrote is saved") {
    SteppedPlanner planner;
    planner.write(file, "a\n");
    std::string text = "a\n";
    std::unique_ptr<OpenNote> note;
    note = std::make_unique<OpenNote>(planner.services(), plans,
                                      OpenNote::Handlers{[&] { return text; },
                                                         [&](const std::string& merged) {
                                                             text = merged + "word\n";
                                                             note->edited();
                                                         },
                                                         {},
                                                         {}});
    planner.write(file, "a\nb\n");
    note->reread();
    planner.settle();
    CHECK(text == "a\nb\nword\n");
    planner.pass(1s);
    CHECK(planner.textOf(file) == "a\nb\nword\n");
}

TEST_CASE("a day gets its note with the first word, not before") {
    SteppedPlanner planner;
    Editor editor{planner, today};
    CHECK_FALSE(editor.note().exists());
    editor.type("");
    planner.pass(1s);
    CHECK_FALSE(planner.folder().exists(planner.path("Calendar")));
    editor.type("* First");
    CHECK(editor.note().saveNow());
    CHECK(planner.textOf("Calendar/20190305.txt") == "* First");
    CHECK(editor.note().exists());
}

TEST_CASE("what is no text cannot be edited, until it is one") {
    SteppedPlanner planner;
    planner.write(file, "caf\xe9\n");
    Editor editor{planner};
    REQUIRE(editor.note().obstacle());
    CHECK(editor.note().obstacle()->description == "Notes/Plans.txt is not UTF-8 text");
    editor.type("typed all the same");
    CHECK(editor.note().saveNow());
    CHECK(planner.textOf(file) == "caf\xe9\n");
    editor.text.clear();
    planner.write(file, "caf\xc3\xa9\n");
    editor.note().reread();
    planner.settle();
    CHECK_FALSE(editor.note().obstacle());
    CHECK(editor.text == "caf\xc3\xa9\n");
}
