// SPDX-License-Identifier: MIT
#include <array>
#include <random>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <doctest/doctest.h>

#include "base/graphemes.h"
#include "base/utf8.h"
#include "grammar/todo_helper.h"
#include "search/excerpt.h"
#include "search/folded_text.h"
#include "search/result_rows.h"

using namespace tessaly;
using namespace tessaly::search;
using namespace std::chrono_literals;

namespace {

constexpr base::Day today = 2019y / 3 / 5;

/// A note and what its views point to.
struct Note {
    base::NoteType type;
    std::string filename;
    std::string text;
    std::string title = grammar::noteTitle(text, filename);
    std::string foldedText = needsFolding(text) ? folded(text) : std::string();

    SearchedNote view() const {
        SearchedNote note;
        note.type = type;
        note.filename = filename;
        note.title = title;
        note.text = text;
        note.foldedText = foldedText.empty() ? std::string_view(text) : foldedText;
        if (type == base::NoteType::calendar) {
            note.day = base::dayFromFileText(std::string_view(filename).substr(0, 8));
        }
        return note;
    }
};

/// The lines that hold `needle`, of a folded text or one that needs no folding.
std::vector<LineMatch> linesWith(const SearchedNote& note, const std::string& needle) {
    std::vector<LineMatch> found;
    std::size_t start = 0;
    for (std::size_t index = 0; start <= note.foldedText.size(); ++index) {
        const std::size_t end = std::min(note.foldedText.find('\n', start), note.foldedText.size());
        const std::string line = folded(note.foldedText.substr(start, end - start));
        if (const auto at = line.find(needle); at != std::string::npos) {
            found.push_back({index, {start, end}, {start + at, start + at + needle.size()}});
        }
        start = end + 1;
    }
    return found;
}

NoteMatches rowsOf(std::vector<LineMatch> lines) {
    NoteMatches matches;
    matches.rows = matches.taskRows = lines.size();
    matches.lines = std::move(lines);
    return matches;
}

std::string highlighted(const SearchResultItem& row) {
    const std::size_t start = base::byteOffset(row.content, row.highlightRange.location);
    const std::size_t end = base::byteOffset(row.content, row.highlightRange.end());
    return row.content.substr(0, start) + "[" + row.content.substr(start, end - start) + "]" +
           row.content.substr(end);
}

class Rows {
public:
    explicit Rows(ResultRows::Options options = {}) : rows(_names, today, options) {}

private:
    const grammar::DateStringHelper _names{base::LocaleFormats("en_GB")};

public:
    ResultRows rows;
};

// The first ones need no folding.
constexpr std::size_t unfoldedPieces = 16;
const std::array<std::string_view, 24> pieces{"a",
                                              "B",
                                              "word ",
                                              " ",
                                              "\t",
                                              "\r",
                                              "?",
                                              "12",
                                              "\u6F22\u5B57",
                                              "\uD55C",
                                              "x\u0302",
                                              "\u0915\u094D\u0937\u093F",
                                              "\u0645\u0631",
                                              "\u0600",
                                              "\U0001F1E9\U0001F1EA",
                                              "\U0001F468\u200D\U0001F469\u200D\U0001F467",
                                              "e\u0301",
                                              "\u00C4",
                                              "stra\u00DFe",
                                              "\u0130",
                                              "\u03A3\u03C2",
                                              "\u0416",
                                              "\u1112\u1161\u11AB",
                                              "x\u0302\u0323"};

std::string randomText(std::mt19937& random, std::size_t most, std::size_t kinds = pieces.size()) {
    std::string text;
    for (std::size_t i = random() % (most + 1); i > 0; --i) {
        text += pieces[random() % kinds];
    }
    return text;
}

std::string replaced(std::string text, char from, std::string_view to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, 1, to);
    }
    return text;
}

}  // namespace

TEST_CASE("an excerpt shows the match with something before it") {
    struct Row {
        std::string line;      // "[" and "]" mark the match
        std::string expected;  // "~" stands for the ellipsis
    };
    // Sixty characters and more are written out by tens.
    const std::string tens = "123456789 ";
    const std::string five = tens + tens + tens + tens + "12345678 !";
    std::string wide;
    while (wide.size() < 118) {
        wide += "\u00E4";
    }
    for (const Row& row : std::vector<Row>{
             {"[x]" + wide, "[x]" + wide},
             {wide + "[x]", wide + "[x]"},
             {" \u0302[a] ", " \u0302[a]"},
             {"x\r[\n]y", "x[\r\n]y"},
             {"\t\tcall [Bob] \r", "call [Bob]"},
             {"call Bob", "[]call Bob"},
             {five + five.substr(0, 7) + "[end]", five + five.substr(0, 7) + "[end]"},
             {five + five.substr(0, 8) + "[end]",
              "~" + five.substr(2) + five.substr(0, 8) + "[end]"},
             {"[begin]" + five + five, "[begin]" + five + "1234~"},
             {five + "[x]" + five, "~" + five.substr(30) + "[x]" + five.substr(0, 37) + "~"},
             {five + "[" + five.substr(0, 45) + "]" + five,
              "~" + five.substr(37) + "[" + five.substr(0, 45) + "]~"},
             {five + "[" + five + five + "]", "~[" + five + five.substr(0, 8) + "]~"},
             {five + five, "[]" + five + five.substr(0, 9) + "~"},
         }) {
        const auto open = std::min(row.line.find('['), row.line.size());
        const auto close = std::min(row.line.find(']'), row.line.size());
        std::string plain = row.line;
        std::erase_if(plain, [](char c) { return c == '[' || c == ']'; });
        const Excerpt excerpt =
            excerptOf(plain, open < close ? Stretch{open, close - 1} : Stretch{});
        SearchResultItem shown;
        shown.content = excerpt.text;
        shown.highlightRange = excerpt.highlight;
        CAPTURE(row.line);
        CHECK(highlighted(shown) == replaced(row.expected, '~', "\u2026"));
    }
}

TEST_CASE("excerpts of any line hold whole characters and what was looked for") {
    std::mt19937 random(38);
    for (int round = 0; round < 3000; ++round) {
        const std::size_t kinds = round % 3 == 0 ? unfoldedPieces : pieces.size();
        const std::string line = randomText(random, round % 2 == 0 ? 30 : 200, kinds);
        const std::string whole = folded(line);
        const std::string needle = folded(base::trimmed(randomText(random, 2, kinds)));
        const auto at = whole.find(needle);
        if (at == std::string::npos || needle.empty()) {
            continue;
        }
        const Excerpt excerpt = excerptOf(line, unfolded(line, {at, at + needle.size()}));
        CAPTURE(line);
        CAPTURE(needle);
        CAPTURE(excerpt.text);
        if (!needsFolding(line)) {
            const Excerpt unhelped = excerptOf(line, {at, at + needle.size()});
            CHECK(unhelped.text == excerpt.text);
            CHECK(unhelped.highlight == excerpt.highlight);
        }

        std::string_view shown = excerpt.text;
        const bool isCutBefore = shown.starts_with("\u2026");
        const bool isCutBehind = shown.ends_with("\u2026");
        shown.remove_prefix(isCutBefore ? 3 : 0);
        shown.remove_suffix(isCutBehind ? 3 : 0);
        const auto start = line.find(shown);
        REQUIRE(start != std::string::npos);
        // Counted apart: an Arabic number sign takes in what stands behind it.
        const std::size_t length = base::graphemeCount(shown) + isCutBefore + isCutBehind;
        CHECK(length <= 60);
        CHECK((length == 60 || !(isCutBefore || isCutBehind)));
        CHECK((isCutBefore || base::trimmed(line).starts_with(base::trimmed(shown))));
        CHECK((isCutBehind || base::trimmed(line).ends_with(base::trimmed(shown))));

        const std::size_t from = base::byteOffset(excerpt.text, excerpt.highlight.location);
        const std::size_t to = base::byteOffset(excerpt.text, excerpt.highlight.end());
        const std::string_view text = excerpt.text;
        CHECK(folded(text.substr(from, to - from)).find(needle) != std::string::npos);
        const std::size_t before = isCutBefore ? 3 : 0;
        for (const std::size_t border :
             {start, start + shown.size(), start + from - before, start + to - before}) {
            CHECK(base::graphemeCount(line.substr(0, border)) +
                      base::graphemeCount(line.substr(border)) ==
                  base::graphemeCount(line));
        }
    }
}

TEST_CASE("a task's row is the record that the whole note gives") {
    std::mt19937 random(11);
    constexpr std::array<std::string_view, 9> openers{
        "* ", "\t* ", "\t\t- [x] ", "- [>] ", "# ", "\t\t\t", "", "1. [-] ", "> "};
    for (int round = 0; round < 200; ++round) {
        const bool isCalendar = random() % 3 == 0;
        Note note{isCalendar ? base::NoteType::calendar : base::NoteType::note,
                  isCalendar ? "20190305.txt" : "Work/plan.md", ""};
        for (std::size_t lines = random() % 12; lines > 0; --lines) {
            note.text += random() % 4 == 0 ? "\t\n" : "";
            note.text += openers[random() % openers.size()];
            note.text += random() % 2 == 0 ? "plain" : randomText(random, 8);
            note.text += random() % 3 == 0 ? " >2019-03-07 @repeat(1/2)\n" : " thing\n";
        }
        note = Note{note.type, note.filename, note.text};
        const SearchedNote view = note.view();
        std::vector<LineMatch> lines = linesWith(view, "thing");
        // Words apart stand behind the whole text.
        std::rotate(lines.begin(), lines.begin() + static_cast<long>(lines.size() / 2),
                    lines.end());
        Rows found;
        found.rows.addNote(view, rowsOf(lines));
        const SearchResults results = found.rows.take();
        const std::string path = std::string(base::folderName(note.type)) + "/" + note.filename;
        const auto expected = grammar::TodoHelper::parseNoteContent({note.text, path}, {});
        REQUIRE(results.items.size() == (lines.empty() ? 0 : lines.size() + 1));
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const SearchResultItem& row = results.items[i + 1];
            const auto& todo = std::get<grammar::Todo>(*row.object);
            const grammar::Todo& parsed = expected[lines[i].lineIndex];
            CAPTURE(note.text);
            CAPTURE(parsed.base);
            CHECK(row.title == parsed.content);
            CHECK(highlighted(row).find("[thing]") != std::string::npos);
            CHECK(todo.base == parsed.base);
            CHECK(todo.content == parsed.content);
            CHECK(todo.type == parsed.type);
            CHECK(todo.date == parsed.date);
            CHECK(todo.title == parsed.title);
            CHECK(todo.titleRange == parsed.titleRange);
            CHECK(todo.textRange == parsed.textRange);
            CHECK(todo.lineIndex == parsed.lineIndex);
            CHECK(todo.indentParentIndex == parsed.indentParentIndex);
            CHECK(todo.isRecurring == parsed.isRecurring);
            CHECK(todo.filename == parsed.filename);
        }
    }
}

TEST_CASE("a note's row shows the line that matched, or what the note begins with") {
    struct Row {
        std::string_view text;
        std::string_view needle;  // "": nothing is asked of lines; "-": only the title matched
        std::string_view content;
    };
    const auto check = [](base::NoteType type, const Row& row) {
        const Note note{type, "20190305.txt", std::string(row.text)};
        NoteMatches matches;
        matches.hasNoteRow = true;
        matches.rows = 1;
        if (row.needle != "-") {
            matches.noteLine = linesWith(note.view(), std::string(row.needle)).at(0);
        }
        Rows found;
        found.rows.addNote(note.view(), matches);
        const SearchResults results = found.rows.take();
        CAPTURE(row.text);
        REQUIRE(results.items.size() == 2);
        CHECK(results.items[1].title == note.title);
        CHECK(highlighted(results.items[1]) == row.content);
        CHECK(results.items[1].lineIndex.has_value() == (row.content.find("[]") != 0));
        CHECK(std::get<store::NoteModel>(*results.items[1].object).filename == note.filename);
        CHECK_FALSE(results.hasTodos);
    };
    using enum base::NoteType;
    check(note, {"# Trip\n\n- rent a car\n", "trip", "[Trip]"});
    check(note, {"# Trip\n\n- rent a car\n", "# t", "[# T]rip"});
    check(note, {"# Trip\n\n- rent a car\n", "car", "rent a [car]"});
    check(note, {"# Trip\n\n- rent a car\n", "", "[]rent a car"});
    check(note, {"# Trip\n\n- rent a car\n", "-", "[]rent a car"});
    check(note, {"# Trip\n", "-", "[]"});
    check(note, {"", "-", "[]"});
    check(note, {"\u1E9E\nE\u0301TE\u0301\n", "\u00E9t", "[E\u0301T]E\u0301"});
    check(calendar, {"\nSlept well\n", "-", "[]Slept well"});
}

TEST_CASE("groups have sections, places and numbers; rows beyond the most are counted") {
    const Note work{base::NoteType::note, "work.txt", "Work\n* call\n* call back\n* recall\n"};
    const Note trip{base::NoteType::note, "trip.txt", "Trip\n* call a cab\n"};
    const calendar::CachedCalendarItem event{"e", {}, {today}, {}, "\u0130 Call"};
    const auto render = [&](std::size_t most, bool isFinal) {
        Rows found({.most = most, .objects = ResultRows::Objects::left});
        found.rows.addNote(work.view(), rowsOf(linesWith(work.view(), "call")));
        found.rows.addNote(trip.view(), rowsOf(linesWith(trip.view(), "call")));
        found.rows.addItem(event, today, {4, 8});
        found.rows.addNote(trip.view(), {});
        found.rows.addItem(event, today, {4, 8});
        found.rows.addItem(event, base::addDays(today, 1), {0, 0});
        found.rows.beginList("Recent");
        found.rows.beginList("Recent");
        found.rows.addListedNote(trip.view());
        found.rows.addItem(event, base::addDays(today, 1), {0, 0});
        const SearchResults results = found.rows.results(isFinal);
        CHECK(results.hasTodos);
        CHECK(results.hasEvents);
        CHECK(results.total == 9);
        std::string text;
        std::int64_t id = 0;
        for (const SearchResultItem& row : results.items) {
            CHECK(row.id == ++id);
            CHECK(row.object == nullptr);
            const auto place = static_cast<std::size_t>(row.position);
            if (row.type == SearchResultType::loading) {
                text += "...";
                continue;
            }
            text += row.type == SearchResultType::section ? "\n" + row.title + " " : "";
            text += "FfiL"[place];
            CHECK((row.position == NotesViewItemPosition::firstInGroup) ==
                  (row.type == SearchResultType::section));
        }
        return text;
    };
    CHECK(render(0, true) ==
          "\nWork FfiL\nTrip FL\ntoday FfL\ntomorrow FL\nRecent FL\ntomorrow FL");
    CHECK(render(5, false) == "\nWork FfiL\nTrip FL\ntoday FL...");
    CHECK(render(2, true) == "\nWork FfL");

    Rows found;
    found.rows.addItem(event, today, {4, 8});
    const SearchResults results = found.rows.take();
    CHECK(highlighted(results.items[1]) == "\u0130 [Call]");
    CHECK(results.items[1].groupFilename == "20190305");
    CHECK(results.items[1].type == SearchResultType::event);
    CHECK(results.items[1].filename.empty());
}
