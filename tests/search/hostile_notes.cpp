// SPDX-License-Identifier: MIT
#include "search/hostile_notes.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "base/utf8.h"
#include "grammar/note_title.h"

namespace tessaly::tests {

namespace {

using namespace std::string_view_literals;

constexpr std::array words{"call"sv,
                           "Call"sv,
                           "CALL"sv,
                           "bob"sv,
                           "Bob"sv,
                           "me"sv,
                           "meeting"sv,
                           "MEETING"sv,
                           "e"sv,
                           "-"sv,
                           "straße"sv,
                           "STRASSE"sv,
                           "STRAẞE"sv,
                           "über"sv,
                           "u\u0308ber"sv,
                           "ÜBER"sv,
                           "U\u0308BER"sv,
                           "ΣΊΣΥΦΟΣ"sv,
                           "σίσυφος"sv,
                           "σίσυφοσ"sv,
                           "Σ"sv,
                           "Москва"sv,
                           "МОСКВА"sv,
                           "и\u0306"sv,
                           "Й"sv,
                           "İstanbul"sv,
                           "ISTANBUL"sv,
                           "ıstanbul"sv,
                           "i\u0307"sv,
                           "日本"sv,
                           "会議"sv,
                           "한글"sv,
                           "\u1112\u1161\u11AB\u1100\u1173\u11AF"sv,
                           "हिन्दी"sv,
                           "क\u094D\u200Dष"sv,
                           "مرحبا"sv,
                           "👍🏽"sv,
                           "👨‍👩‍👧"sv,
                           "🇩🇪"sv,
                           "\u212B"sv,
                           "Å"sv,
                           "\u212A"sv,
                           "k"sv,
                           "x\u0338"sv,
                           "<\u0338"sv,
                           "=\u0338"sv,
                           "\u037E"sv,
                           "\u0301"sv,
                           "\0"sv,
                           "\u2028"sv,
                           "\u00A0"sv,
                           "\r"sv,
                           "\t"sv,
                           "a\u0323\u0307"sv,
                           "a\u0307\u0323"sv,
                           "\U00010400"sv,
                           "\U00010428"sv,
                           "ﬁ"sv,
                           "Ⅷ"sv,
                           "\uFEFF"sv};

constexpr std::array signs{"#work"sv,
                           "#Work"sv,
                           "#WORK/Plan"sv,
                           "#work/plan/a"sv,
                           "#work(x"sv,
                           "#work(A b)"sv,
                           "#wo"sv,
                           "x#work"sv,
                           "(#work)"sv,
                           "\"#work\""sv,
                           "#work,"sv,
                           "\u037E#work"sv,
                           "\u2000#work"sv,
                           "#work\u0301"sv,
                           "#straße"sv,
                           "#STRAẞE"sv,
                           "#u\u0308ber"sv,
                           "#Über"sv,
                           "#ΣΑΣ/α"sv,
                           "#İ"sv,
                           "#日本/会"sv,
                           "#日本"sv,
                           "@Bob"sv,
                           "@bob(x y)"sv,
                           "@bob.x"sv,
                           "@BOB/a"sv,
                           "#1"sv,
                           "#1a"sv,
                           ",x"sv,
                           "@done(2026-01-02)"sv,
                           "@done(2026-01-02 09:05 PM)"sv,
                           "@repeat(1/3)"sv,
                           "#-/"sv,
                           "##work"sv};

constexpr std::array tokens{"#work"sv,       "#WORK"sv,
                            "#work/plan"sv,  "#work/"sv,
                            "#work("sv,      "#work(a"sv,
                            "#wo"sv,         "#w"sv,
                            "#"sv,           "@"sv,
                            "@bob"sv,        "@bob(x"sv,
                            "@done"sv,       "@done(2026-01-02)"sv,
                            "#1"sv,          ",x"sv,
                            "#straße"sv,     "#u\u0308ber"sv,
                            "#ÜBER"sv,       "#σας"sv,
                            "#i\u0307"sv,    "#日本"sv,
                            "@2026-01-03"sv, "#work\u0301"sv};

constexpr std::array dates{">2026-01-05"sv,       ">2026-01-02"sv, "<2026-01-04"sv,
                           ">2026-02-31"sv,       "@2026-01-03"sv, "x>2026-01-06"sv,
                           ">2026-01-05\u0338"sv, ">2026-1-5"sv};

constexpr std::array openers{"* "sv,  "* [x] "sv,  "- [ ] "sv,   "- [-] "sv,     "* [>] "sv,
                             "1. "sv, "2) [x] "sv, "- "sv,       "\t* "sv,       "# "sv,
                             "> "sv,  "## "sv,     "\u00A0* "sv, "  \t- [x] "sv, "*"sv};

constexpr std::array folders{"notes"sv,           "work"sv, "Work/Über"sv, "calendar"sv,
                             "work/u\u0308ber"sv, "wor"sv,  "Notes/work"sv};

constexpr std::array noteFolders{""sv, "Work/"sv, "Work/Über/"sv, "workshop/"sv};

template <class List>
std::string anyOf(HostileNotes& random, const List& list) {
    return std::string(list[random.below(list.size())]);
}

std::string foldedAndTrimmed(std::string_view text) {
    const std::string folded = foldedByForce(text);
    return std::string(base::trimmed(folded));
}

std::vector<std::string> distinctWordsOf(std::string_view text) {
    std::vector<std::string> result;
    for (std::string_view rest = base::trimmed(text); !rest.empty();) {
        std::size_t end = 0;
        while (end < rest.size() && !base::isWhiteSpace(base::codePointAt(rest, end).value)) {
            end += base::codePointAt(rest, end).size;
        }
        const std::string one(rest.substr(0, end));
        if (std::find(result.begin(), result.end(), one) == result.end()) {
            result.push_back(one);
        }
        rest = base::trimmedStart(rest.substr(end));
    }
    return result;
}

}  // namespace

std::size_t HostileNotes::below(std::size_t bound) {
    return static_cast<std::size_t>(_random()) % bound;
}

std::string HostileNotes::word() {
    std::string word;
    do {
        switch (below(8)) {
            case 0: word = anyOf(*this, signs); break;
            case 1: word = anyOf(*this, dates); break;
            default: word = anyOf(*this, words);
        }
    } while (_isPlain && !base::isAscii(word));
    return word;
}

std::string HostileNotes::line() {
    std::string line = oneIn(3) ? "" : anyOf(*this, openers);
    for (std::size_t count = oneIn(60) ? 300 : below(6); count > 0; --count) {
        line += word();
        line += oneIn(6) ? "" : " ";
    }
    return line;
}

std::string HostileNotes::text() {
    std::string text;
    for (std::size_t count = below(14); count > 0; --count) {
        text += oneIn(7) ? anyOf(*this, std::array{""sv, " "sv, "\t\r"sv, "\u2003"sv}) : line();
        text += oneIn(5) ? "\r\n" : "\n";
    }
    return oneIn(2) ? text + line() : text;
}

base::Day HostileNotes::day() {
    using namespace std::chrono;
    return base::addDays(2026y / January / 1, static_cast<int>(below(8)));
}

PlainNote HostileNotes::note(std::size_t index) {
    _isPlain = oneIn(2);
    PlainNote note;
    note.text = text();
    note.changedDay = day();
    note.modified = base::Instant(std::chrono::hours(below(5)));
    note.created = base::Instant(std::chrono::hours(below(5)));
    if (oneIn(2)) {
        note.type = base::NoteType::calendar;
        note.day = base::addDays(day(), static_cast<int>(index) * 8);
        note.filename = base::fileText(*note.day) + ".txt";
        note.title = word() + " day";
    } else {
        const std::string name = "note " + std::to_string(1000 + index);
        note.filename = anyOf(*this, noteFolders) + name + ".txt";
        note.title = grammar::noteTitle(note.text, name);
    }
    return note;
}

std::vector<PlainNote> HostileNotes::notes(std::size_t count) {
    std::vector<PlainNote> notes;
    for (std::size_t i = 0; i < count; ++i) {
        notes.push_back(note(i));
    }
    _isPlain = false;
    std::stable_sort(notes.begin(), notes.end(), [](const PlainNote& a, const PlainNote& b) {
        return a.day != b.day ? a.day < b.day : a.filename < b.filename;
    });
    return notes;
}

/// Some characters of a note, or a word that may stand in none.
std::string HostileNotes::partOf(const std::vector<PlainNote>& notes) {
    const std::u32string text = base::toUtf32(notes[below(notes.size())].text);
    if (text.empty() || oneIn(3)) {
        return word();
    }
    const std::size_t start = below(text.size());
    std::string part;
    for (const char32_t c : text.substr(start, 1 + below(oneIn(2) ? 2 : 12))) {
        base::appendUtf8(part, c == '\n' && !oneIn(4) ? U' ' : c);
    }
    return part;
}

search::SearchQuery HostileNotes::query(const std::vector<PlainNote>& notes) {
    search::SearchQuery query;
    if (!oneIn(5)) {
        query.text =
            foldedAndTrimmed(oneIn(4) ? partOf(notes) + " " + partOf(notes) : partOf(notes));
    }
    query.words = distinctWordsOf(query.text);
    if (query.text.empty() || query.words.front() == query.text) {
        query.words.clear();
    }
    const auto fill = [&](std::vector<std::string>& texts, std::size_t oneInSo) {
        for (std::string text; oneIn(oneInSo);) {
            text = foldedAndTrimmed(partOf(notes));
            if (!text.empty()) {
                texts.push_back(text);
            }
        }
    };
    fill(query.phrases, 6);
    fill(query.excluded, 5);
    fill(query.titles, 12);
    while (oneIn(8)) {
        query.folders.push_back(foldedByForce(anyOf(*this, folders)));
    }
    query.kinds = oneIn(5) ? kinds() : search::LineKinds::all();
    query.days = days();
    return query;
}

search::LineKinds HostileNotes::kinds() {
    search::LineKinds kinds;
    for (const auto& [type, name] : base::EnumNames<grammar::TodoType>::rows) {
        if (grammar::isTask(type) && oneIn(2)) {
            kinds.add(type);
        }
    }
    return kinds;
}

search::DayRange HostileNotes::days() {
    search::DayRange range;
    if (oneIn(5)) {
        range.first = day();
        range.last = oneIn(3) ? std::nullopt : std::optional(base::addDays(*range.first, 2));
    }
    return range;
}

search::FilterConditions HostileNotes::filter() {
    search::FilterConditions filter;
    filter.isActive = oneIn(2);
    if (filter.isActive) {
        filter.kinds = oneIn(3) ? search::LineKinds::tasks() : kinds();
        if (oneIn(3)) {
            filter.kinds.add(grammar::TodoType::text);
        }
        filter.noteItem = !oneIn(3);
        filter.calendarItem = !oneIn(3);
        filter.days = days();
    }
    return filter;
}

Asked HostileNotes::asked(const std::vector<PlainNote>& notes) {
    Asked asked;
    asked.filter = filter();
    asked.markers.isDashTodo = oneIn(2);
    asked.markers.isNumbersTodo = oneIn(3);
    if (oneIn(4)) {
        asked.tag = foldedByForce(anyOf(*this, tokens));
    } else {
        asked.queries.push_back(query(notes));
    }
    if (oneIn(5)) {
        asked.queries.push_back(query(notes));
    }
    return asked;
}

}  // namespace tessaly::tests
