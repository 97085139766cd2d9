// SPDX-License-Identifier: MIT
#include <random>
#include <string>
#include <vector>

#include <doctest/doctest.h>
#include <fmt/format.h>

#include "base/utf8.h"
#include "grammar/todo_helper.h"

using namespace tessaly;
using namespace tessaly::grammar;

namespace {

constexpr MarkerSettings asterisk{};
constexpr MarkerSettings noMarker{false, false, false};
constexpr MarkerSettings dash{false, true, false};
constexpr MarkerSettings numbers{false, false, true};

std::string show(const std::optional<base::LocalTime>& time) {
    return time ? fmt::format("{} {:02}:{:02}", base::tagText(time->day), time->hour, time->minute)
                : "-";
}

std::string describe(const Todo& todo) {
    return fmt::format("{} {} {}|{}", base::rawValue(todo.type), todo.indents, todo.headingLevel,
                       todo.content);
}

struct LineRow {
    const char* line;
    MarkerSettings settings;
    const char* expected;  // kind, indents, heading level | content
};

void checkLine(const LineRow& row) {
    CAPTURE(row.line);
    CHECK(describe(TodoHelper::parseLine(row.line, row.settings)) == row.expected);
}

std::vector<Todo> parse(std::string_view text, std::string_view filename = "Notes/Plans.txt") {
    return TodoHelper::parseNoteContent({text, filename}, asterisk);
}

struct DateRow {
    const char* line;
    const char* filename;
    const char* date;
    bool hasTime;
    const char* alarm;
};

void checkDate(const DateRow& row) {
    CAPTURE(row.line);
    const Todo todo = parse(row.line, row.filename).at(0);
    CHECK(show(todo.date) == row.date);
    CHECK(todo.hasTime == row.hasTime);
    CHECK(show(todo.alarm) == row.alarm);
}

}  // namespace

TEST_CASE("a line is read by its marker, its box and the settings") {
    for (const LineRow& row : std::vector<LineRow>{
             {"* [x] Buy milk", noMarker, "done 0 0|Buy milk"},
             {"\t\t- [>] Call", noMarker, "scheduled 2 0|Call"},
             {"    * [ ] Spaces", noMarker, "open 0 0|Spaces"},
             {"\t  * [-] Both", noMarker, "cancelled 1 0|Both"},
             {"* Buy milk", asterisk, "open 0 0|Buy milk"},
             {"* Buy milk", noMarker, "list 0 0|Buy milk"},
             {"- Buy milk", asterisk, "list 0 0|Buy milk"},
             {"- Buy milk", dash, "open 0 0|Buy milk"},
             {"12) Item", numbers, "open 0 0|Item"},
             {"3. Item", asterisk, "list 0 0|Item"},
             {"* [X] Upper", asterisk, "open 0 0|[X] Upper"},
             {"* [\xC2\xA0] No-break", noMarker, "open 0 0|No-break"},
             {"*[ ] No space", asterisk, "text 0 0|*[ ] No space"},
             {"### Plans", asterisk, "title 0 3|Plans"},
             {"\t> quoted", asterisk, "quote 1 0|quoted"},
             {"   ", asterisk, "empty 0 0|   "},
             {"", asterisk, "empty 0 0|"},
             {"* [ ] Windows\r", asterisk, "open 0 0|Windows"},
             {"\tindented text", asterisk, "text 1 0|\tindented text"},
             {"* a\xE2\x80\xA8* b", asterisk, "open 0 0|a"},
             {"a\xE2\x80\xA8* b", asterisk, "text 0 0|a\xE2\x80\xA8* b"},
         }) {
        checkLine(row);
    }
}

TEST_CASE("a line's day is its schedule tag's, else its completion's, else the note's") {
    const char* note = "Notes/Plans.txt";
    const char* day = "Calendar/20190305.txt";
    for (const DateRow& row : std::vector<DateRow>{
             {"* Call", note, "-", false, "-"},
             {"* Call", day, "2019-03-05 00:00", false, "-"},
             {"* Call", "Calendar/20190231.txt", "-", false, "-"},
             {"* Call", "Notes/20190305.txt", "-", false, "-"},
             {"* Call >2019-05-21", day, "2019-05-21 00:00", false, "-"},
             {"* Call >2019-02-31", day, "2019-03-05 00:00", false, "-"},
             {"* Call <2019-05-20 @2019-05-22", day, "2019-03-05 00:00", false, "-"},
             {"* [x] Call @done(2019-05-21 09:05 PM)", day, "2019-05-21 21:05", true, "-"},
             {"* [x] Call @done(2019-05-21)", note, "2019-05-21 00:00", false, "-"},
             {"* [x] Call @done(2019-05-21 09:05) >2019-05-19", note, "2019-05-19 00:00", false,
              "-"},
             {"* 14:07 Call >2019-05-21", note, "2019-05-21 00:00", false, "2019-05-21 14:07"},
             {"* 14:071 Call >2019-05-21", note, "2019-05-21 00:00", false, "-"},
             {"* 24:07 Call >2019-05-21", note, "2019-05-21 00:00", false, "-"},
             {"* 14:07 Call", day, "2019-03-05 00:00", false, "-"},
         }) {
        checkDate(row);
    }
}

TEST_CASE("records know their place in the note") {
    const auto todos =
        parse("\n\n## \xF0\x9F\x98\x80 Plan\r\n* one\n\n\t* two @repeat(1/2)\n\tthree\n* four\n");
    REQUIRE(todos.size() == 9);
    CHECK(todos[0].title == "\xF0\x9F\x98\x80 Plan");
    CHECK(todos[0].titleRange == base::TextRange{5, 7});
    CHECK(todos[2].textRange == base::TextRange{2, 11});
    CHECK(todos[3].textRange == base::TextRange{14, 5});
    CHECK(todos[5].indentParentIndex == 3);
    CHECK(todos[6].indentParentIndex == 3);
    CHECK_FALSE(todos[7].indentParentIndex);
    CHECK(todos[5].isRecurring);
    CHECK_FALSE(todos[3].isRecurring);
    CHECK(todos[8].type == TodoType::empty);
    CHECK(todos[8].textRange == base::TextRange{55, 0});
    CHECK(parse("").empty());
    CHECK(parse("\xEF\xBB\xBF").empty());
    const auto marked = parse("\xEF\xBB\xBF* one");
    CHECK(describe(marked.at(0)) == "open 0 0|one");
    CHECK(marked[0].textRange == base::TextRange{1, 5});
}

TEST_CASE("the lines of a note, joined again, are the note") {
    std::mt19937 random(7);
    const std::vector<std::string> pieces({"* ", "[x] ", "\n", "\r\n", "#a", "é", "😀", "\r", "\xFF",
                                           "\t", "@done(2019-05-21)", "text",
                                           std::string(20'000, 'x'), std::string(1, '\0')});
    for (int round = 0; round < 300; ++round) {
        std::string text;
        for (auto left = random() % 40; left > 0; --left) {
            text += pieces[random() % pieces.size()];
        }
        std::string joined;
        std::size_t units = 0;
        const auto todos = parse(text);
        for (const Todo& todo : todos) {
            joined += (todo.lineIndex == 0 ? "" : "\n") + todo.base;
            CHECK(todo.textRange.location == units);
            units = todo.textRange.end() + 1;
            const Todo alone = TodoHelper::parseLine(todo.base, asterisk);
            CHECK(describe(alone) == describe(todo));
        }
        CHECK(joined == text);
    }
}

TEST_CASE("lines with a sign are those of all lines that have one") {
    const std::string text =
        "\xEF\xBB\xBFplain\n* a #tag\n\n\tb\r\n> quote\n[>] c\nd\n@e >2019-05-21";
    NoteScanner all;
    NoteScanner some;
    all.start(text, asterisk);
    some.start(text, asterisk);
    std::size_t found = 0;
    while (const ScannedLine* line = all.next()) {
        if (line->text.find_first_of("#@<>") == std::string_view::npos) {
            continue;
        }
        const ScannedLine* same = some.nextWithSign();
        REQUIRE(same != nullptr);
        CHECK(same->index == line->index);
        CHECK(same->start == line->start);
        CHECK(same->text == line->text);
        CHECK(same->line.type == line->line.type);
        CHECK(same->marks.size() == line->marks.size());
        ++found;
    }
    CHECK(found == 4);
    CHECK(some.nextWithSign() == nullptr);
}

TEST_CASE("a new task reads back as an open task") {
    using base::TodoCharacter;
    struct Row {
        MarkerSettings settings;
        TodoCharacter marker;
        const char* prefix;
    };
    for (const Row& row : std::vector<Row>{
             {{true, true, true}, TodoCharacter::number, "* "},
             {{false, true, true}, TodoCharacter::asterisk, "- "},
             {{false, false, true}, TodoCharacter::asterisk, "* [ ] "},
             {{false, false, false}, TodoCharacter::dash, "- [ ] "},
             {{false, false, false}, TodoCharacter::number, "7. [ ] "},
         }) {
        const std::string prefix = TodoHelper::newTaskPrefix(row.settings, row.marker, 7);
        CHECK(prefix == row.prefix);
        CHECK(TodoHelper::parseLine(prefix + "Call", row.settings).type == TodoType::open);
    }
}

TEST_CASE("a note is called by its first line") {
    struct Row {
        const char* text;
        const char* filename;
        const char* title;
    };
    for (const Row& row : std::vector<Row>{
             {"# Plans\nmore", "Notes/a/x.txt", "Plans"},
             {"\n \n\t##Plans  \nmore", "Notes/x.txt", "Plans"},
             {"* [x] Call", "Notes/x.txt", "* [x] Call"},
             {"#\nmore", "Notes/a/x.md", "x"},
             {"", "Notes/a.b.txt", "a.b"},
             {"\xEF\xBB\xBF# Plans", "Notes/x.txt", "Plans"},
             {"# Plans", "Calendar/20190305.txt", "20190305"},
             {"# Plans\r\nmore", "Notes/x.txt", "Plans"},
         }) {
        CAPTURE(row.text);
        CHECK(titleOfNote({row.text, row.filename}).text == row.title);
    }
}

TEST_CASE("a long content is cut between characters, for display alone") {
    CHECK(shortened("abc", 3) == "abc");
    CHECK(shortened("abcd", 3) == "abc...");
    CHECK(shortened("e\xCC\x81"
                    "e\xCC\x81x",
                    2) ==
          "e\xCC\x81"
          "e\xCC\x81...");
}
