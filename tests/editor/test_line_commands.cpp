// SPDX-License-Identifier: MIT
#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "base/enum_names.h"
#include "base/utf8.h"
#include "editor/edit.h"
#include "editor/editor_commands.h"
#include "editor/mark_records.h"
#include "editor/selection_map.h"
#include "grammar/line_action.h"
#include "marked_text.h"
#include "support/log_capture.h"

// In here, so that `link` is the action and not the system's function.
namespace tessaly::editor {

using enum MarkAction;
using base::TextRange;
using base::TodoCharacter;

namespace {

std::string after(MarkAction action, std::string_view notation, const MarkSettings& settings = {}) {
    const auto shown = tests::readMarked(notation);
    const auto edit = mark(action, shown.text, shown.selection, settings);
    REQUIRE(edit.ok());
    return *edit ? tests::writtenMarked(edited(shown.text, **edit), (*edit)->selection)
                 : std::string(notation);
}

struct Row {
    const char* before;
    const char* after;
};

void check(MarkAction action, std::initializer_list<Row> rows, const MarkSettings& settings = {}) {
    CAPTURE(base::rawValue(action));
    for (const Row& row : rows) {
        CAPTURE(row.before);
        CHECK(after(action, row.before, settings) == row.after);
    }
}

constexpr MarkSettings settingsWith(TodoCharacter character) {
    return {{.isAsteriskTodo = false}, character};
}

constexpr MarkAction unnumbered[] = {heading1,       heading2,      heading3,   heading4,
                                     todo,           unorderedList, markAsDone, markAsScheduled,
                                     markAsCanceled, shiftRight,    shiftLeft,  quote};

}  // namespace

TEST_CASE("tasks and lists: the marker is put in, takes the place of another prefix, or goes") {
    check(todo, {{"|Buy", "* [ ] |Buy"},
                 {"Bu|y", "* [ ] Bu|y"},
                 {"\tBuy|", "\t* [ ] Buy|"},
                 {"|", "* [ ] |"},
                 {"\t|\r\n", "\t* [ ] |\r\n"},
                 {"* [ ] {Buy}", "{Buy}"},
                 {"  - [>] |Buy\r\nb", "|Buy\r\nb"},
                 {"* Buy |it", "* [ ] Buy |it"},
                 {"|* Buy", "|* [ ] Buy"},
                 {"## Bu|y", "* [ ] Bu|y"},
                 {"\t> |Buy", "* [ ] |Buy"},
                 {"12) [x] |Buy", "* [ ] |Buy"},
                 {"*Bu|y", "* [ ] *Bu|y"},
                 {"* [X] |Buy", "* [ ] [X] |Buy"},
                 {"a\xE2\x80\xA8* [ ] |b", "* [ ] a\xE2\x80\xA8* [ ] |b"}});
    check(unorderedList, {{"|Buy", "* |Buy"},
                          {"- |Buy", "|Buy"},
                          {"* [ ] |Buy", "* |Buy"},
                          {"* [X] |Buy", "[X] |Buy"},
                          {"\t1. Bu|y", "* Bu|y"},
                          {"- - |a", "- |a"},
                          {"# {Plans}\r\n", "* {Plans}\r\n"}});
    check(numberedTodo, {{"|Buy", "1. [ ] |Buy"},
                         {"3) [-] B|uy", "B|uy"},
                         {"3. B|uy", "1. [ ] B|uy"},
                         {"\t* [x] {Buy}", "1. [ ] {Buy}"},
                         {"*   {Buy}", "  1. [ ] {Buy}"}});
    check(
        orderedList,
        {{"|Buy", "1. |Buy"}, {"3. [ ] |Buy", "|Buy"}, {"7) |Buy", "|Buy"}, {"> |Buy", "1. |Buy"}});
    check(quote, {{"> no|te", "no|te"},
                  {"\t> note|", "note|"},
                  {"\t|note", "\t> |note"},
                  {"* [x] |note", "> |note"},
                  {">|note", "> >|note"}});
}

TEST_CASE("headings leave boxes alone and change their level") {
    check(heading1, {{"|Plans", "# |Plans"}, {"# |Plans", "|Plans"}, {"|", "# |"}, {"# |", "|"}});
    check(heading2, {{"* Pl|ans", "## Pl|ans"},
                     {"## Plans|", "Plans|"},
                     {"# Plans|", "## Plans|"},
                     {"  #### Plans|\r\n", "## Plans|\r\n"},
                     {"- [x] |Plans", "## [x] |Plans"},
                     {"  |Plans", "##   |Plans"},
                     {"#Plans|", "## #Plans|"}});
    check(heading3, {{"3. |é😀", "### |é😀"}, {"### |é😀", "|é😀"}});
    check(heading4, {{"> {a}", "#### {a}"}, {"#### {a}", "{a}"}});
}

TEST_CASE("lines shift by one character, whatever it is") {
    check(shiftRight, {{"|a", "\t|a"}, {"\t* {a}\r\n", "\t\t* {a}\r\n"}, {"|", "\t|"}});
    check(shiftLeft, {{"\t\t|a", "\t|a"},
                      {"  a|\r\n", " a|\r\n"},
                      {"|\ta", "|a"},
                      {"a|", "a|"},
                      {"|\r\n", "|\r\n"},
                      {"\xC2\xA0* a|", "* a|"},
                      {"{  a\nb\n\tc}", "{ a\nb\nc}"}});
}

TEST_CASE("the state commands take completion tags off, and the selection stays with its words") {
    check(markAsDone, {{"* [ ] |Pay", "* [x] |Pay"},
                       {"* [x] P|ay @done(2019-05-21)", "* P|ay @done(2019-05-21)"},
                       {"3. {Pay}", "3. [x] {Pay}"},
                       {"Pay|", "Pay|"},
                       {"> [ ] Pay|", "> [ ] Pay|"}});
    check(markAsCanceled,
          {{"* Pa|y @done(2019-05-21 09:05) {now}\r\n", "* [-] Pay {now}\r\n"},
           {"* [x] é@done(2019-05-21) {to @done(2019-05-22) day}", "* [-] é {to day}"},
           {"* a @do|ne(2019-05-21) b", "* [-] a| b"},
           {"\t- [-] {Pay}", "\t- {Pay}"}});
    check(markAsScheduled, {{"* [x] Do|ne thing", "* [x] Do|ne thing"},
                            {"{* [ ] a\n* [-] b\n* [>] c}", "{* [>] a\n* [-] b\n* c}"}});
}

TEST_CASE("every line that the selection touches is changed by itself") {
    check(todo, {{"a\n{b\n* [x] c\r\n\r\n> d}\ne", "a\n* [ ] {b\nc\r\n\r\n* [ ] d}\ne"},
                 // A selection that ends at a line's start does not touch the line.
                 {"{a\r\n}b", "* [ ] {a\r\n}b"},
                 {"a\n{b\nc\n}", "a\n* [ ] {b\n* [ ] c\n}"},
                 {"a{\n}b", "* [ ] a{\n}b"},
                 {"a\n|b", "a\n* [ ] |b"},
                 {"a\n|", "a\n* [ ] |"},
                 // Blank lines stay, unless there are only such.
                 {"{a\n \t\n\n}b", "* [ ] {a\n \t\n\n}b"},
                 {"a\n{\n\t}\nb", "a\n* [ ] {\n\t* [ ] }\nb"}});
    check(shiftRight, {{"x\n{a\n\r\nb}", "x\n\t{a\n\r\n\tb}"}});
}

TEST_CASE("a place never comes to stand inside a character whose end is that of another") {
    CHECK(movedPlace("xyz\xC3\xA9", "\xC4\xA9", 1) == 0);
    CHECK(movedPlace("xyz\xC3\xA9", "\xC4\xA9", 5) == 2);
}

TEST_CASE("the settings choose the marker") {
    const MarkSettings dashTodo{{.isAsteriskTodo = false, .isDashTodo = true},
                                TodoCharacter::number};
    for (const MarkSettings& settings : {dashTodo, settingsWith(TodoCharacter::dash)}) {
        check(todo, {{"|a", "- [ ] |a"}, {"* [ ] |a", "|a"}}, settings);
        check(unorderedList, {{"|a", "- |a"}, {"* |a", "|a"}}, settings);
    }
    const MarkSettings number = settingsWith(TodoCharacter::number);
    check(todo, {{"1. a\n|b", "1. a\n2. [ ] |b"}, {"4. [x] |b", "|b"}, {"* [ ] |b", "1. [ ] |b"}},
          number);
    check(unorderedList, {{"|a", "* |a"}}, number);
    check(todo, {{"|a", "* [ ] |a"}}, {{}, TodoCharacter::dash});
}

TEST_CASE("items go on from the number before them") {
    check(orderedList, {{"1. a\n|b", "1. a\n2. |b"},
                        {"9) [x] a\r\n|b", "9) [x] a\r\n10. |b"},
                        {"{a\nb}", "1. {a\n2. b}"},
                        {"{a\n\n\tb\n\tc\nd}", "1. {a\n\n\t1. b\n\t2. c\n2. d}"},
                        {"3. a\n\t1. b\n\ttext\n|c", "3. a\n\t1. b\n\ttext\n4. |c"},
                        {"3. a\n\t1. b\ntext\n\t|c", "3. a\n\t1. b\ntext\n\t1. |c"},
                        {"3. a\ntext\n|c", "3. a\ntext\n1. |c"},
                        {"\t3. a\n|c", "\t3. a\n1. |c"},
                        {"3. a\n  \n|c", "3. a\n  \n1. |c"},
                        {"3. a\n\t|1.c", "3. a\n\t1. |1.c"},
                        {"1. a\n{2. b\nc}", "1. a\n{b\n1. c}"},
                        {"99999999999. a\n|$1n", "99999999999. a\n100000000000. |$1n"}});
    check(numberedTodo, {{"{a\nb\nc\nd\ne\nf\ng\nh\ni\nj\nk}",
                          "1. [ ] {a\n2. [ ] b\n3. [ ] c\n4. [ ] d\n5. [ ] e\n6. [ ] f\n7. [ ] g\n"
                          "8. [ ] h\n9. [ ] i\n10. [ ] j\n11. [ ] k}"}});
    const tests::LogCapture log;
    check(orderedList, {{"18446744073709551615. a\n|b", "18446744073709551615. a\n1. |b"}});
    CHECK(log.lines() ==
          std::vector<std::string>{"Could not increment numberin text: 18446744073709551615. a"});
}

TEST_CASE("what no pattern should be asked is refused, and so is a selection beside the text") {
    const auto kindOf = [](const std::string& text, TextRange selection) {
        const auto edit = mark(todo, text, selection, {});
        REQUIRE_FALSE(edit.ok());
        return edit.failure().kind;
    };
    const auto many = [](char c) { return std::string(100'000, c); };
    for (const std::string& line : {many('#'), many('1') + ". a", many('\t') + "a", many(' ')}) {
        CHECK(kindOf("\n" + line, {1, 0}) == base::Failure::Kind::tooLarge);
    }
    const std::string prose = many('a');
    CHECK(after(todo, "* " + prose + "|") == "* [ ] " + prose + "|");
    CHECK(after(markAsDone, many('1') + ". a|").ends_with("1. [x] a|"));
    for (const TextRange range : {TextRange{5, 0}, {4, 1}, {0, 5}, {1, ~std::size_t{0}}}) {
        CHECK(kindOf("a😀b", range) == base::Failure::Kind::malformed);
    }
    CHECK(kindOf("a😀b", {2, 0}) == base::Failure::Kind::malformed);
    CHECK(kindOf("a😀b", {0, 2}) == base::Failure::Kind::malformed);
}

namespace {

constexpr std::string_view pieces[] = {
    "* ", "- ",       "3. ",          "12) ", "> ",
    "# ", "### ",     "[ ] ",         "[x] ", "[>] ",
    "*",  "\t",       "   ",          "\r",   "n",
    "😀",  "\xC2\xA0", "\xE2\x80\xA8", "$1",   " @done(2019-05-21)",
    "\n", "\n",       "Buy",          "é",    "                        "};

struct Case {
    std::string text;
    std::size_t start;  ///< of the selection, in bytes
    std::size_t end;

    TextRange selection() const {
        return {base::utf16Length(text.substr(0, start)),
                base::utf16Length(text.substr(start, end - start))};
    }
    /// A selection that ends where a line begins does not touch that line.
    bool touches(std::size_t lineStart, std::size_t lineEnd) const {
        return start <= lineEnd && (end > lineStart || (end == start && end == lineStart));
    }
};

Case randomCase(std::mt19937& random) {
    std::string text;
    std::vector<std::size_t> places{0};
    for (std::size_t left = random() % 16; left > 0; --left) {
        text += pieces[random() % std::size(pieces)];
        places.push_back(text.size());
    }
    const std::size_t one = places[random() % places.size()];
    const std::size_t other = places[random() % places.size()];
    return {text, std::min(one, other), std::max(one, other)};
}

/// The line after the whole record, which is asked about all of the line.
std::string ruled(MarkAction action, std::string_view line) {
    const std::string_view body = line.substr(0, line.size() - (line.ends_with('\r') ? 1 : 0));
    const MarkRecord& record = recordOf(action);
    return (record.state != nullptr ? grammar::applied(*record.state, body)
                                    : grammar::applied(record.rules, body))
        .append(line.substr(body.size()));
}

enum class BlankLines { stay, change };
std::string expected(MarkAction action, const Case& given, BlankLines blank) {
    std::string result;
    bool changesText = false;
    for (std::size_t start = 0; start <= given.text.size();) {
        const std::size_t end = std::min(given.text.find('\n', start), given.text.size());
        const std::string line = given.text.substr(start, end - start);
        const bool isBlank = base::trimmed(line).empty();
        const bool isTouched = given.touches(start, end);
        changesText = changesText || (isTouched && !isBlank);
        result +=
            isTouched && (!isBlank || blank == BlankLines::change) ? ruled(action, line) : line;
        result += given.text.substr(end, 1);
        start = end + 1;
    }
    return changesText || blank == BlankLines::change ? result
                                                      : expected(action, given, BlankLines::change);
}

void checkPlace(const std::string& text, std::size_t units) {
    REQUIRE(base::utf16Length(text.substr(0, base::byteOffset(text, units))) == units);
}

}  // namespace

TEST_CASE("random texts: the touched lines become what the whole record says, no others change") {
    std::mt19937 random(20190521);
    for (int i = 0; i < 3'000; ++i) {
        const Case given = randomCase(random);
        CAPTURE(tests::writtenMarked(given.text, given.selection()));
        for (const MarkAction action : unnumbered) {
            CAPTURE(base::rawValue(action));
            const auto edit = mark(action, given.text, given.selection(), {});
            REQUIRE(edit.ok());
            const std::string result = *edit ? edited(given.text, **edit) : given.text;
            REQUIRE(result == expected(action, given, BlankLines::stay));
            if (*edit) {
                checkPlace(result, (*edit)->selection.location);
                checkPlace(result, (*edit)->selection.end());
                REQUIRE((given.start != given.end || (*edit)->selection.length == 0));
            }
        }
    }
}

}  // namespace tessaly::editor
