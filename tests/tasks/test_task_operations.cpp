// SPDX-License-Identifier: MIT
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "tasks/task_desk.h"
#include "tasks/task_rewrites.h"

using namespace tessaly;
using tests::Notes;
using tests::TaskDesk;

namespace {

struct Case {
    std::string before;
    std::string command;
    std::string told;
    std::string after;  ///< the notes that changed
    tasks::RewriteSettings settings = {};
};

/// Cases of a file: a line "==" with settings begins each; the notes follow, then a line "$ " with
/// the command, what it tells, and the notes that it changes. An empty line ends a case; behind it
/// another command for the same notes may follow.
std::vector<Case> casesIn(const std::string& file) {
    const auto folder = std::filesystem::path(__FILE__).parent_path() / "cases";
    std::ifstream stream(folder / (file + ".txt"));
    std::vector<Case> cases;
    std::string* part = nullptr;
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with("==")) {
            Case& row = cases.emplace_back();
            const auto has = [&](const char* word) { return line.find(word) != line.npos; };
            row.settings.isAppendCompletionLinks = !has("no-completion-links");
            row.settings.isAppendScheduleLinks = !has("no-schedule-links");
            row.settings.isCopyScheduleGeneralNoteTodos = !has("no-copies");
            row.settings.markers.isDashTodo = has("dashes");
            part = &row.before;
        } else if (line.starts_with("$ ")) {
            if (!cases.back().command.empty()) {
                const Case& same = cases.back();
                cases.push_back({same.before, {}, {}, {}, same.settings});
            }
            cases.back().command = line.substr(2);
            part = &cases.back().told;
        } else {
            part =
                line.starts_with("-- ") && part == &cases.back().told ? &cases.back().after : part;
            *part += line + "\n";
        }
    }
    for (Case& row : cases) {
        std::string& last = row.after.empty() ? row.told : row.after;
        last.erase(last.ends_with("\n\n") || last == "\n" ? last.size() - 1 : last.size());
    }
    return cases;
}

/// Makes the change, compares every file, and takes it back.
void check(const Case& row) {
    CAPTURE(row.before);
    CAPTURE(row.command);
    TaskDesk desk(row.settings);
    const Notes before = tests::notesIn(row.before);
    desk.write(before);
    CHECK(desk.command(row.command) == row.told);
    Notes expected = before;
    for (const auto& [name, text] : tests::notesIn(row.after)) {
        expected[name] = text;
    }
    CHECK(tests::shown(desk.notes()) == tests::shown(expected));
    if (expected == before) {
        CHECK(desk.journal().operations(1).value().empty());
    } else if (row.settings.isAppendScheduleLinks) {
        CHECK(desk.undo().isComplete);
        CHECK(tests::shown(desk.notes()) == tests::shown(before));
    }
}

}  // namespace

TEST_CASE("operations change the lines that they are about, and are undone") {
    for (const char* const file :
         {"states", "look_up", "schedule", "schedule_again", "repeat", "archive", "beside"}) {
        CAPTURE(std::string(file));
        const std::vector<Case> cases = casesIn(file);
        CHECK(!cases.empty());
        for (const Case& row : cases) {
            check(row);
        }
    }
}

TEST_CASE("a line may be told with the carriage return that stands behind it") {
    TaskDesk desk;
    desk.write({{"Notes/P.txt", "* b\r\n* a\r\n"}});
    const tasks::TaskReference task{{base::NoteType::note, "P.txt"}, 0, "* a\r"};
    CHECK(desk.operations().cancel({&task, 1}).value().refusals.empty());
    CHECK(desk.notes().at("Notes/P.txt") == "* b\r\n* [-] a\r\n");
}

TEST_CASE("later repeats are counted, each once, and none that is named itself") {
    TaskDesk desk;
    desk.write(
        tests::notesIn("-- Calendar/20190521.txt\n* a @repeat(1/3)\n* a @repeat(2/3)\n"
                       "-- Calendar/20190522.txt\n* a @repeat(2/3)\n* a @repeat(3/3)\n"
                       "* a @repeat(3/4)\n-- Calendar/20190520.txt\n* a @repeat(3/3)\n"));
    const tasks::NoteName first{base::NoteType::calendar, "20190521.txt"};
    const tasks::NoteName second{base::NoteType::calendar, "20190522.txt"};
    const tasks::TaskReference tasks[] = {{first, 0, {}}, {first, 1, {}}};
    CHECK(desk.operations().countLaterRepeats(tasks).value() == 2);
    const tasks::TaskReference named[] = {{first, 0, {}}, {second, 0, {}}};
    CHECK(desk.operations().countLaterRepeats(named).value() == 1);
}

TEST_CASE("what is wrong with a note is logged once") {
    struct Row {
        const char* name;
        const char* log;
    };
    const Row rows[] = {
        {"../P", "couldn't create the url"},
        {"Away", "file does not exist"},
        {"Bytes", "Could not read and write into the note: "},
        {"Folder", "Could not read and write into the note: "},
    };
    for (const Row& row : rows) {
        TaskDesk desk;
        desk.write({{"Notes/Bytes.txt", "* a\xFF\n* b\n"}, {"Notes/Folder.txt/x.txt", ""}});
        const std::string name = row.name;
        const std::string told = desk.command("done " + name + ":1 " + name + ":2");
        CHECK(std::count(told.begin(), told.end(), '\n') == 2);
        REQUIRE(desk.log().lines().size() == 1);
        CHECK(desk.log().lines()[0].starts_with(row.log));
    }
}

TEST_CASE("copies without links stay when their scheduling is undone") {
    tasks::RewriteSettings settings;
    settings.isAppendScheduleLinks = false;
    TaskDesk desk(settings);
    desk.write({{"Calendar/20190521.txt", "* a\n"}});
    desk.command("schedule 2019-05-22 20190521:1");
    CHECK(desk.undo().leftCopies);
    CHECK(tests::shown(desk.notes()) ==
          "-- Calendar/20190521.txt\n* a\n-- Calendar/20190522.txt\n* a%\n");
}

TEST_CASE("an operation is remembered with what it was about") {
    TaskDesk desk;
    desk.write({{"Notes/P.txt", "* [ ] Call Bob\n* b\n* [x] c\n"}});
    desk.command("schedule 2019-05-22 P:3 P:1 P:2");
    const auto operations = desk.journal().operations(2).value();
    REQUIRE(operations.size() == 1);
    CHECK(operations[0].title == "Call Bob");
    CHECK(operations[0].tasks == 2);
    CHECK(operations[0].cause == store::ChangeCause::scheduled);
    CHECK(base::tagText(operations[0].day.value()) == "2019-05-22");
}

TEST_CASE("a note that changes while the operation waits is changed as it is then") {
    struct Row {
        const char* meanwhile;
        const char* told;
        const char* after;
    };
    const Row rows[] = {
        {"# Title\n* b\n* a\n", "cancelled Notes/P.txt:3 * [-] a\n", "# Title\n* b\n* [-] a\n"},
        {"* c\n", "refused: Notes/P.txt:1: the line has changed\n", "* c\n"},
        {"* [-] a\n", "already cancelled Notes/P.txt:1 * [-] a\n", "* [-] a\n"},
    };
    for (const Row& row : rows) {
        CAPTURE(std::string(row.meanwhile));
        TaskDesk desk;
        desk.write({{"Notes/P.txt", "* a\n"}});
        bool isDone = false;
        desk.files().before([&](int, std::string_view operation, const std::string&) {
            if (operation == "take" && !isDone) {
                isDone = true;
                desk.write({{"Notes/P.txt", row.meanwhile}});
            }
        });
        CHECK(desk.command("cancel P:1=a") == row.told);
        CHECK(desk.notes().at("Notes/P.txt") == row.after);
    }
}

namespace {

/// Operations chosen by chance on notes made by chance.
class Chance {
public:
    explicit Chance(unsigned seed) : _random(seed) {}

    std::size_t below(std::size_t count) { return _random() % count; }

    Notes notes() {
        Notes notes;
        for (const std::string& name : names) {
            std::string& text = notes[(name == "Plan" ? "Notes/" : "Calendar/") + name + ".txt"];
            const std::string lineBreak = below(4) == 0 ? "\r\n" : "\n";
            text = below(4) == 0 ? "\xEF\xBB\xBF" : "";
            for (std::size_t line = below(7); line > 0; --line) {
                text += lines[below(lines.size())] + (line == 1 && below(3) == 0 ? "" : lineBreak);
            }
        }
        return notes;
    }

    std::string command() {
        std::string text =
            pick({"done", "cancel", "reopen", "schedule 2019-05-22", "schedule 2019-05-21",
                  "schedule 2019-05-24", "repeat day 2", "delete", "delete-all"});
        for (std::size_t count = 1 + below(3); count > 0; --count) {
            text += " " + pick(names) + ":" + std::to_string(1 + below(7));
        }
        return text;
    }

private:
    std::string pick(const std::vector<std::string>& from) { return from[below(from.size())]; }

    const std::vector<std::string> names{"20190521", "20190522", "20190523", "Plan"};
    const std::vector<std::string> lines{"* a",
                                         "* [>] a >2019-05-22",
                                         "* a <2019-05-21",
                                         "\t- [ ] b #x",
                                         "* [x] a @done(2019-05-20)",
                                         "* b @repeat(1/2)",
                                         "* b @repeat(2/2)",
                                         "Text",
                                         "",
                                         "## Archive",
                                         "* [>] b >2019-05-23"};
    std::mt19937 _random;
};

}  // namespace

TEST_CASE("any operations, undone in reverse, leave every byte as it was") {
    for (unsigned seed = 1; seed <= 25; ++seed) {
        Chance chance(seed);
        TaskDesk desk;
        desk.write(chance.notes());
        std::vector<Notes> states{desk.notes()};
        std::string commands;
        for (int i = 0; i < 5; ++i) {
            const std::string command = i == 3 ? "archive Plan 20190522" : chance.command();
            commands += command + "\n";
            desk.command(command);
            if (desk.notes() != states.back()) {
                states.push_back(desk.notes());
            }
        }
        CAPTURE(commands);
        CHECK(desk.journal().operations(9).value().size() == states.size() - 1);
        for (; states.size() > 1; states.pop_back()) {
            CHECK(desk.undo().isComplete);
            CHECK(tests::shown(desk.notes()) == tests::shown(states[states.size() - 2]));
        }
    }
}
