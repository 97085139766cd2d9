// SPDX-License-Identifier: MIT
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "support/failure_kind.h"
#include "support/log_capture.h"
#include "tasks/runner_fixture.h"

namespace tessaly::tests {

TEST_CASE("operation runner: notes are changed and given back byte for byte") {
    struct Row {
        std::string what;
        Notes before;
        Notes after;
    };
    const std::string mark = "\xEF\xBB\xBF";
    const Row rows[] = {
        {"lines",
         {{source, "a\n* Call\nb\n"}, {target, "c\n"}},
         {{source, "a\n* [>] Call >2020-01-03\nb\n"}, {target, "c\n* Call <2019-12-31\n"}}},
        {"CRLF",
         {{source, "a\r\n* Call\r\n"}, {target, "c\r\n"}},
         {{source, "a\r\n* [>] Call >2020-01-03\r\n"}, {target, "c\r\n* Call <2019-12-31\r\n"}}},
        {"byte-order mark, no line break at the end",
         {{source, mark + "a\n* Call"}, {target, mark + "c"}},
         {{source, mark + "a\n* [>] Call >2020-01-03"}, {target, mark + "c\n" + copy}}},
        {"new note",
         {{source, "a\n* Call\n"}},
         {{source, "a\n* [>] Call >2020-01-03\n"}, {target, "* Call <2019-12-31"}}},
        {"empty note",
         {{source, "\n* Call"}, {target, ""}},
         {{source, "\n* [>] Call >2020-01-03"}, {target, "* Call <2019-12-31"}}},
        {"task that moved",
         {{source, "a\nb\nc\n* Call\n"}, {target, "\xC3\xA4\n\n"}},
         {{source, "a\nb\nc\n* [>] Call >2020-01-03\n"},
          {target, "\xC3\xA4\n\n* Call <2019-12-31\n"}}},
    };
    for (const Row& row : rows) {
        CAPTURE(row.what);
        RunnerFixture f(row.before);
        const auto made = f.runner().make(planOf({copied(), marked()}));
        REQUIRE(made);
        CHECK(made->number == 1);
        CHECK(shown(f.notes()) == shown(row.after));
        const auto undone = f.runner().undo(*made);
        REQUIRE(undone);
        CHECK(undone->isComplete);
        CHECK(shown(f.notes()) == shown(row.before));
        CHECK(failureKind(f.runner().undo(*made)) == Failure::Kind::notFound);
        CHECK(shown(f.notes()) == shown(row.before));
    }
}

TEST_CASE("operation runner: steps of one note build on each other") {
    RunnerFixture f;
    const NoteStep again =
        step(target, {Edit::Kind::replace, 1, 1, "* Call <2019-12-31", "* Call back", "", 0});
    const NoteStep nothing = step(source, {Edit::Kind::replace, 0, 0, "# Day", "# Day", "", 0});
    const auto made = f.runner().make(planOf({copied(), nothing, again}));
    REQUIRE(made);
    CHECK(made->steps.size() == 2);
    CHECK(f.folder.read("data/" + target) == "first\n* Call back\n");
    REQUIRE(f.undoLast());
    CHECK(shown(f.notes()) == shown(before));
    const auto none = f.runner().make(planOf({nothing}));
    REQUIRE(none);
    CHECK(none->number == 0);
    CHECK(none->steps.empty());
    CHECK(f.operations().size() == 0);
}

TEST_CASE("operation runner: a plan that is refused changes nothing") {
    struct Row {
        std::string what;
        NoteStep refused;
        Failure::Kind kind;
        const char* log;
    };
    const std::string bad = "Calendar/bad.txt";
    const Row rows[] = {
        {"line not there", marked(earlier), Failure::Kind::changed, ""},
        {"no note", marked("Calendar/none.txt"), Failure::Kind::notFound, "file does not exist"},
        {"not UTF-8", copied(bad), Failure::Kind::malformed,
         "Could not read and write into the note: Calendar/bad.txt: Content empty"},
        {"not downloaded", copied("Calendar/far.txt"), Failure::Kind::unavailable,
         "Could not read and write into the note: "},
        {"leads out", copied("Calendar/../../x.txt"), Failure::Kind::outside,
         "couldn't create the url"},
    };
    for (const Row& row : rows) {
        CAPTURE(row.what);
        RunnerFixture f({{source, "* Call"}, {bad, "\xFF\n"}, {earlier, ""}});
        f.folder.write("data/Calendar/far.txt.nextcloud", "");
        const Notes notes = f.notes();
        LogCapture log;
        CHECK(failureKind(f.runner().make(planOf({copied(), row.refused}))) == row.kind);
        CHECK(shown(f.notes()) == shown(notes));
        CHECK(f.operations().size() == 0);
        REQUIRE(log.lines().size() == (*row.log == '\0' ? 0 : 1));
        const bool isLogged = log.lines().empty() || log.lines().front().starts_with(row.log);
        CHECK(isLogged);
    }
}

TEST_CASE("operation runner: undoing takes back what still is there") {
    struct Row {
        std::string note;
        std::optional<std::string> text;  // as it is found
        std::optional<std::string> left;
        bool isComplete;
        std::string log;
    };
    const std::string twice = "x\nfirst\n" + copy + "\n" + copy + "\n";
    const std::string unreadable = "Could not read and write into the note: " + target;
    const Row rows[] = {
        {source, "x\n" + after.at(source), "x\n" + before.at(source), true, ""},
        {target, "x\n" + after.at(target), "x\n" + before.at(target), true, ""},
        {earlier, "x\n" + after.at(earlier), "x\n" + before.at(earlier), true, ""},
        {target, "* Call them", "* Call them", false, ""},
        {target, twice, twice, false, ""},
        {target, "\xFF", "\xFF", false, unreadable},
        {target, {}, {}, false, "file does not exist " + target},
    };
    for (const Row& row : rows) {
        CAPTURE(row.text);
        RunnerFixture f;
        REQUIRE(f.schedule());
        std::filesystem::remove(f.folder / ("data/" + row.note));
        f.put(with({}, row.note, row.text));
        LogCapture log;
        const auto undone = f.undoLast();
        REQUIRE(undone);
        CHECK(undone->isComplete == row.isComplete);
        CHECK(shown(f.notes()) == shown(with(before, row.note, row.left)));
        CHECK(f.operations().empty());
        CHECK(log.lines().size() == (row.log.empty() ? 0 : 1));
        CHECK((log.lines().empty() || log.lines().front().starts_with(row.log)));
    }
}

TEST_CASE("operation runner: a line that cannot be restored keeps its copy where it is") {
    struct Row {
        std::string what;
        std::optional<std::string> found;  // of the source, where two tasks were scheduled
        std::string source;                // what is left there
        std::string target;
        std::string earlier;
    };
    const std::string both = "# Day\n* [>] Call >2020-01-03\n* [>] Mail >2020-01-03\n";
    const std::string other = "* Mail <2019-12-31\n";
    const std::string call = "* Call <2019-12-31\n";
    const Row rows[] = {
        {"neither", "* [>] Call them >2020-01-03\n", "* [>] Call them >2020-01-03\n",
         "first\n" + call + other, "# Then\nlast\n"},
        {"one of two", "* [>] Call them >2020-01-03\n* [>] Mail >2020-01-03\n",
         "* [>] Call them >2020-01-03\n* Mail\n", "first\n" + call, "# Then\nlast\n"},
        {"the other", "* [>] Call >2020-01-03\n", "* Call\n", "first\n" + other,
         "# Then\n" + call + "last\n"},
        {"no note", {}, "", "first\n" + call + other, "# Then\nlast\n"},
    };
    for (const Row& row : rows) {
        CAPTURE(row.what);
        RunnerFixture f(with(before, source, "# Day\n* Call\n* Mail\n"));
        NoteStep copies = copied();
        copies.edits.push_back({Edit::Kind::append, 0, 0, "", "* Mail <2019-12-31", "", 0});
        NoteStep marks = marked();
        marks.edits.push_back(
            {Edit::Kind::replace, 2, 2, "* Mail", "* [>] Mail >2020-01-03", "", 0});
        REQUIRE(f.runner().make(planOf({copies, marks, removed()})));
        CHECK(f.notes().at(source) == both);
        std::filesystem::remove(f.folder / ("data/" + source));
        f.put(with({}, source, row.found));
        LogCapture log;
        const auto undone = f.undoLast();
        REQUIRE(undone);
        CHECK_FALSE(undone->isComplete);
        Notes left = with(with({}, target, row.target), earlier, row.earlier);
        left = row.source.empty() ? left : with(left, source, row.source);
        CHECK(shown(f.notes()) == shown(left));
    }
}

TEST_CASE("operation runner: undoing takes no line that had been there before") {
    struct Row {
        std::string found;
        std::string left;
        bool isComplete;
    };
    const std::string own = copy + "\n";
    const Row rows[] = {
        // The line that was added was changed, or nobody can tell which of both is gone.
        {own + "b\n* [x] Call <2019-12-31\n", own + "b\n* [x] Call <2019-12-31\n", false},
        {"b\n" + own, "b\n" + own, false},
        {own + "b\n" + own + "c\n", own + "b\nc\n", true},
    };
    for (const Row& row : rows) {
        CAPTURE(row.found);
        RunnerFixture f(with(before, target, own + "b\n"));
        REQUIRE(f.schedule());
        f.put({{target, row.found}});
        const auto undone = f.undoLast();
        REQUIRE(undone);
        CHECK(undone->isComplete == row.isComplete);
        CHECK(shown(f.notes()) ==
              shown(with(with(before, target, row.left), source, before.at(source))));
    }
}

}  // namespace tessaly::tests
