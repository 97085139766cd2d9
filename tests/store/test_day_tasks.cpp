// SPDX-License-Identifier: MIT
#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "base/thread_pool.h"
#include "store/day_tasks.h"
#include "store/note_names.h"

using namespace tessaly;
using base::NoteType;
using store::DayTasks;
using namespace std::chrono;

namespace {

struct NoteRow {
    std::string path;  ///< relative to the data folder
    std::string text;
};

constexpr base::Day today = 2019y / May / 21;

/// How a note comes to its set.
enum class By { text, record };

struct Place {
    NoteType type;
    std::string filename;
};

Place placeOf(const NoteRow& note) {
    const std::size_t slash = note.path.find('/');
    return {base::noteTypeOfFolder(note.path.substr(0, slash)), note.path.substr(slash + 1)};
}

std::string recordOf(const NoteRow& note) {
    grammar::NoteScanner scanner;
    const Place place = placeOf(note);
    return DayTasks::record(place.type, place.filename, note.text, {}, scanner);
}

void addTo(DayTasks& tasks, const NoteRow& note, By by = By::text) {
    grammar::NoteScanner scanner;
    const auto [type, filename] = placeOf(note);
    if (by == By::text) {
        tasks.add(type, filename, note.text, {}, scanner);
    } else {
        CHECK(tasks.addRecord(type, filename, recordOf(note)));
    }
}

std::string printed(const std::vector<store::NoteTask>& tasks) {
    std::string text;
    for (const store::NoteTask& task : tasks) {
        text += base::tagText(*task.day) + " " + task.todo.filename + ":" +
                std::to_string(task.todo.lineIndex + 1) + " " + task.todo.base + "\n";
    }
    return text;
}

/// Three look for copies.
base::Executor& helpers() {
    static base::ThreadPool pool(2);
    return pool;
}

std::string answers(const DayTasks& tasks) {
    return "note\n" + printed(tasks.ofNote(today)) + "scheduled\n" +
           printed(tasks.scheduledTo(today)) + "overdue\n" +
           printed(tasks.overdue(today, helpers()).tasks);
}

void check(const std::vector<NoteRow>& notes, const std::string& expected) {
    for (const By by : {By::text, By::record}) {
        CAPTURE(by);
        DayTasks tasks;
        for (const NoteRow& note : notes) {
            addTo(tasks, note, by);
        }
        CHECK(answers(tasks) == expected);
    }
}

}  // namespace

TEST_CASE("the day's own tasks are shown in every state") {
    check({{"Calendar/20190521.txt",
            "# Day\n* open\n\t* [x] done @done(2019-05-21)\n* [-] off\ntext\n- list\n"
            "* [>] moved >2019-05-25\n* [ ] later >2019-05-24"},
           {"Calendar/20190522.txt", "* tomorrow"}},
          "note\n"
          "2019-05-21 Calendar/20190521.txt:2 * open\n"
          "2019-05-21 Calendar/20190521.txt:3 \t* [x] done @done(2019-05-21)\n"
          "2019-05-21 Calendar/20190521.txt:4 * [-] off\n"
          "2019-05-25 Calendar/20190521.txt:7 * [>] moved >2019-05-25\n"
          "2019-05-24 Calendar/20190521.txt:8 * [ ] later >2019-05-24\n"
          "scheduled\n"
          "overdue\n");
}

TEST_CASE("tasks of other notes stand in the day they are scheduled to, by file and line") {
    check({{"Notes/b.txt", "* two >2019-05-21\n* not me >2019-05-22"},
           {"Notes/a/c.txt",
            "# T\n* [x] done >2019-05-21\n* [>] one >2019-05-21\nno task >2019-05-21"},
           {"Calendar/20190520.txt", "* [>] from yesterday >2019-05-21"},
           {"Calendar/20190521.txt", "* own >2019-05-21"},
           {"Notes/first.txt",
            "* first tag decides >2019-05-22 >2019-05-21\n"
            "* no day >2019-02-31 >2019-05-21\n* back <2019-05-21\n"
            "* plain @2019-05-21"}},
          "note\n"
          "2019-05-21 Calendar/20190521.txt:1 * own >2019-05-21\n"
          "scheduled\n"
          "2019-05-21 Calendar/20190520.txt:1 * [>] from yesterday >2019-05-21\n"
          "2019-05-21 Notes/a/c.txt:2 * [x] done >2019-05-21\n"
          "2019-05-21 Notes/a/c.txt:3 * [>] one >2019-05-21\n"
          "2019-05-21 Notes/b.txt:1 * two >2019-05-21\n"
          "overdue\n");
}

TEST_CASE("an original whose copy stands in the day is left out") {
    check(
        {{"Calendar/20190521.txt",
          "* Call Bob <2019-05-20\n* [x] Pay @done(2019-05-21 10:00)\n* Ring <2019-05-18\n"
          "* Unlinked\n* Same"},
         {"Calendar/20190520.txt",
          "\t- [>] Call Bob >2019-05-21\n* [>] Ring >2019-05-21\n* [>] Unlinked >2019-05-21"},
         {"Notes/a.txt", "* [>] Pay >2019-05-21\n* [>] Call >2019-05-21\n* [ ] Same >2019-05-21"}},
        "note\n"
        "2019-05-21 Calendar/20190521.txt:1 * Call Bob <2019-05-20\n"
        "2019-05-21 Calendar/20190521.txt:2 * [x] Pay @done(2019-05-21 10:00)\n"
        "2019-05-21 Calendar/20190521.txt:3 * Ring <2019-05-18\n"
        "2019-05-21 Calendar/20190521.txt:4 * Unlinked\n"
        "2019-05-21 Calendar/20190521.txt:5 * Same\n"
        "scheduled\n"
        "2019-05-21 Calendar/20190520.txt:2 * [>] Ring >2019-05-21\n"
        "2019-05-21 Notes/a.txt:2 * [>] Call >2019-05-21\n"
        "2019-05-21 Notes/a.txt:3 * [ ] Same >2019-05-21\n"
        "overdue\n");
}

TEST_CASE("an original that was opened again does not count beside its open copy") {
    check({{"Calendar/20190519.txt",
            "* Call <2019-05-18\n* [x] Pay <2019-05-18\n* [>] own >2019-05-19"},
           {"Calendar/20190521.txt", "* Ring <2019-05-18\n* [>] mine >2019-05-21"},
           {"Calendar/20190518.txt",
            "* Call >2019-05-19\n* [ ] Pay >2019-05-19\n* [ ] Ring >2019-05-21"}},
          "note\n"
          "2019-05-21 Calendar/20190521.txt:1 * Ring <2019-05-18\n"
          "2019-05-21 Calendar/20190521.txt:2 * [>] mine >2019-05-21\n"
          "scheduled\n"
          "overdue\n"
          "2019-05-19 Calendar/20190518.txt:2 * [ ] Pay >2019-05-19\n"
          "2019-05-19 Calendar/20190519.txt:1 * Call <2019-05-18\n"
          "2019-05-19 Calendar/20190519.txt:3 * [>] own >2019-05-19\n");
}

TEST_CASE("open tasks planned for an earlier day are overdue, the oldest first, none twice") {
    check({{"Calendar/20190519.txt", "* b\n* [x] done\n* [-] off\n* a\r\n* copy <2019-05-01"},
           {"Calendar/20190518.txt",
            "* again >2019-05-19\n* later >2019-06-01\n* [>] moved >2019-05-19\n"
            "* [>] lost >2019-05-19\n* odd >2019-02-31"},
           {"Calendar/20190522.txt", "* was early >2019-05-01\n* moved"},
           {"Notes/n.txt",
            "* undated\n* [>] copied >2019-05-19\n* [>] alone >2019-05-20\n"
            "* [ ] open >2019-05-17\n* [x] over >2019-05-17\n* now >2019-05-21"},
           {"Notes/m.txt", "* [>] copy >2019-05-19"}},
          "note\n"
          "scheduled\n"
          "2019-05-21 Notes/n.txt:6 * now >2019-05-21\n"
          "overdue\n"
          "2019-05-01 Calendar/20190522.txt:1 * was early >2019-05-01\n"
          "2019-05-17 Notes/n.txt:4 * [ ] open >2019-05-17\n"
          "2019-05-18 Calendar/20190518.txt:5 * odd >2019-02-31\n"
          "2019-05-19 Calendar/20190518.txt:1 * again >2019-05-19\n"
          "2019-05-19 Calendar/20190519.txt:1 * b\n"
          "2019-05-19 Calendar/20190519.txt:4 * a\r\n"
          "2019-05-19 Calendar/20190519.txt:5 * copy <2019-05-01\n"
          "2019-05-19 Notes/n.txt:2 * [>] copied >2019-05-19\n"
          "2019-05-20 Notes/n.txt:3 * [>] alone >2019-05-20\n");
}

TEST_CASE("the first of the overdue tasks are the oldest, and all are counted") {
    DayTasks tasks;
    for (const NoteRow& note : std::vector<NoteRow>{
             {"Calendar/20190303.txt", "* c\n* d\n"},
             {"Calendar/20190301.txt", "* a\n* b\n"},
         }) {
        addTo(tasks, note);
    }
    const store::OverdueTasks overdue = tasks.overdue(today, helpers(), 3);
    CHECK(overdue.total == 4);
    CHECK(printed(overdue.tasks) ==
          "2019-03-01 Calendar/20190301.txt:1 * a\n"
          "2019-03-01 Calendar/20190301.txt:2 * b\n"
          "2019-03-03 Calendar/20190303.txt:1 * c\n");
    CHECK(tasks.overdue(today, helpers(), 0).tasks.empty());
}

TEST_CASE("the order of notes and the way they are joined do not matter") {
    std::mt19937 random(7);
    const std::vector<std::string> lines{"* a",
                                         "* [>] a >2019-05-21",
                                         "* a <2019-05-20",
                                         "* [x] a >2019-05-20 @done(2019-05-20)",
                                         "* [ ] b >2019-05-19",
                                         "* [>] b >2019-05-20",
                                         "* b",
                                         "text >2019-05-21"};
    std::vector<NoteRow> notes;
    for (int i = 0; i < 12; ++i) {
        const std::string name = std::to_string(i);
        notes.push_back(
            {i < 5 ? "Calendar/2019051" + std::to_string(i + 5) + ".txt" : "Notes/" + name + ".txt",
             ""});
        for (int n = 0; n < 6; ++n) {
            notes.back().text += lines[random() % lines.size()] + "\n";
        }
    }
    notes.push_back({"Calendar/20190520.txt", "* a <2019-05-19\n* b"});
    notes.push_back({"Calendar/20190521.txt", "* a <2019-05-20"});
    DayTasks whole;
    for (const NoteRow& note : notes) {
        addTo(whole, note);
    }
    const std::string expected = answers(whole);
    for (int round = 0; round < 20; ++round) {
        std::shuffle(notes.begin(), notes.end(), random);
        std::vector<DayTasks> parts(3);
        for (const NoteRow& note : notes) {
            addTo(parts[random() % parts.size()], note, random() % 2 ? By::text : By::record);
        }
        parts[1].join(std::move(parts[2]));
        parts[0].join(std::move(parts[1]));
        CHECK(answers(parts[0]) == expected);
    }
}

TEST_CASE("a record of tasks is read whole or not at all, whatever bytes it holds") {
    const std::vector<NoteRow> notes{
        {"Calendar/20190521.txt",
         "# Day\n* open\n\t* [x] done @done(2019-05-21)\n* [>] >2019-05-25"},
        {"Notes/a.txt", "# Title\n" + std::string(300, '\n') +
                            "\t\t- [ ] t\xC3\xA4sk >0001-01-01\n* >9999-12-31 " +
                            std::string(200, 'x')}};
    std::mt19937 random(3);
    int read = 0;
    for (const NoteRow& note : notes) {
        const std::string whole = recordOf(note);
        const auto [type, filename] = placeOf(note);
        for (std::size_t length = 1; length < whole.size(); ++length) {
            DayTasks tasks;
            CHECK_FALSE(tasks.addRecord(type, filename, whole.substr(0, length)));
            CHECK_FALSE(tasks.addRecord(type, filename, whole.substr(length)));
            CHECK(tasks.overdue(9999y / December / 31, helpers()).total == 0);
        }
        for (int round = 0; round < 20000; ++round) {
            std::string bytes = whole;
            for (auto changes = random() % 3 + 1; changes > 0; --changes) {
                bytes[random() % bytes.size()] = static_cast<char>(random());
            }
            DayTasks tasks;
            read += tasks.addRecord(type, filename, bytes) ? 1 : 0;
            answers(tasks);
        }
    }
    CHECK(read > 0);
    // A task of a general note is one of a day by its schedule tag alone.
    CHECK_FALSE(DayTasks().addRecord(NoteType::note, "20190521.txt", recordOf(notes[0])));
    CHECK(DayTasks().addRecord(NoteType::calendar, "20190521.txt", recordOf(notes[1])));
}
