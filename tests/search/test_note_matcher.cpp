// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "base/utf8.h"
#include "grammar/char_classes.h"
#include "grammar/note_title.h"
#include "search/brute_force.h"
#include "search/hostile_notes.h"
#include "search/note_matcher.h"

namespace tessaly::tests {

namespace {

using search::Collect;
using search::NoteMatcher;
using search::NoteMatches;
using search::SearchedNote;

/// A note made ready, with what the view points to.
class Prepared {
public:
    enum class Copy { asNeeded, always };

    Prepared(const PlainNote& note, const grammar::MarkerSettings& markers, Copy copy)
        : _title(search::folded(note.title)), _folder(folderOf(note)), _note(note) {
        if (copy == Copy::always || search::needsFolding(note.text)) {
            _copy = search::folded(note.text);
            _isCopied = true;
        }
        grammar::NoteScanner scanner;
        _tasks = search::tasksOf(note.text, foldedText(), markers, scanner);
    }

    std::string_view foldedText() const { return _isCopied ? _copy : _note.text; }
    SearchedNote view() const {
        return {_note.type, _note.filename,   _note.title, _title,       _folder,
                _note.day,  _note.changedDay, _note.text,  foldedText(), _tasks};
    }

private:
    static std::string folderOf(const PlainNote& note) {
        const std::size_t slash = note.filename.rfind('/');
        const std::string below =
            slash == std::string::npos ? "" : "/" + note.filename.substr(0, slash);
        return search::folded(std::string(base::folderName(note.type)) + below);
    }

    std::string _title;
    std::string _folder;
    std::string _copy;
    bool _isCopied = false;
    std::vector<search::TaskPlace> _tasks;
    const PlainNote& _note;
};

NoteMatcher matcherOf(const Asked& asked) {
    return asked.tag.empty() ? NoteMatcher(asked.queries, asked.filter)
                             : NoteMatcher::forTags({asked.tag}, asked.filter, asked.queries);
}

FoundLine found(const search::LineMatch& line) {
    return {line.lineIndex, line.rank, line.type};
}

FoundRows rowsOf(const NoteMatches& matches) {
    FoundRows rows;
    rows.hasNoteRow = matches.hasNoteRow;
    std::transform(matches.lines.begin(), matches.lines.end(), std::back_inserter(rows.lines),
                   found);
    if (matches.noteLine) {
        rows.noteLine = found(*matches.noteLine);
    }
    return rows;
}

struct Counts {
    std::size_t rows = 0;
    std::size_t taskRows = 0;
    std::size_t textRows = 0;
    std::size_t textTaskRows = 0;

    bool operator==(const Counts&) const = default;
};

Counts countsOf(const NoteMatches& matches) {
    return {matches.rows, matches.taskRows, matches.textRows, matches.textTaskRows};
}

Counts countsOf(const FoundRows& rows, const Asked& asked) {
    const auto isText = [&](int rank) { return rank > 0 && !asked.tag.empty(); };
    Counts counts;
    for (const FoundLine& line : rows.lines) {
        ++(isText(line.rank) ? counts.textRows : counts.rows);
        ++(isText(line.rank) ? counts.textTaskRows : counts.taskRows);
    }
    if (rows.hasNoteRow) {
        ++(rows.noteLine && isText(rows.noteLine->rank) ? counts.textRows : counts.rows);
    }
    return counts;
}

/// Whether the places are those of the line, and of what was looked for in it.
bool isPlacedRightly(const search::LineMatch& match, std::string_view text, const Asked& asked) {
    std::size_t start = 0;
    for (std::size_t i = 0; i < match.lineIndex; ++i) {
        start = text.find('\n', start) + 1;
    }
    if (match.line != search::Stretch{start, std::min(text.find('\n', start), text.size())} ||
        match.match.start < match.line.start || match.match.end > match.line.end) {
        return false;
    }
    const std::string shown =
        foldedByForce(text.substr(match.match.start, match.match.end - match.match.start));
    if (!asked.tag.empty()) {
        return shown == foldedByForce(asked.tag);
    }
    for (const search::SearchQuery& query : asked.queries) {
        if (!query.text.empty()) {
            return match.rank == 0 ? shown == query.text
                                   : std::find(query.words.begin(), query.words.end(), shown) !=
                                         query.words.end();
        }
    }
    for (const search::SearchQuery& query : asked.queries) {
        if (!query.phrases.empty()) {
            return shown == query.phrases.front();
        }
    }
    return match.match == search::Stretch{start, start};
}

std::string inShort(const NoteMatches& matches) {
    std::string text = matches.hasNoteRow ? "note " : "";
    text += matches.noteLine ? std::to_string(matches.noteLine->lineIndex) + " " : "";
    for (const search::LineMatch& line : matches.lines) {
        text += std::to_string(line.lineIndex) +
                (line.rank > 0 ? "/" + std::to_string(line.rank) : "") + " ";
    }
    return std::string(base::trimmedEnd(text));
}

/// What is wrong with the answer for one note; empty: nothing.
std::string faultOf(const PlainNote& note, const Asked& asked, Prepared::Copy copy) {
    const Prepared prepared(note, asked.markers, copy);
    const NoteMatcher matcher = matcherOf(asked);
    const FoundRows expected = searchByForce(note, asked);
    NoteMatches matches;
    matcher.match(prepared.view(), Collect::rows, matches);
    if (rowsOf(matches) != expected) {
        return "rows";
    }
    if (countsOf(matches) != countsOf(expected, asked)) {
        return "counts of rows";
    }
    for (const search::LineMatch& line : matches.lines) {
        if (!isPlacedRightly(line, prepared.foldedText(), asked)) {
            return "place of line " + std::to_string(line.lineIndex);
        }
    }
    if (matches.noteLine && !isPlacedRightly(*matches.noteLine, prepared.foldedText(), asked)) {
        return "place of the note's line";
    }
    const bool isAnyLine = !expected.lines.empty() || expected.noteLine;
    if (isAnyLine && !matcher.candidate().isIn(prepared.foldedText())) {
        return "candidate";
    }
    matcher.match(prepared.view(), Collect::counts, matches);
    const bool isCounted = countsOf(matches) == countsOf(expected, asked) &&
                           matches.hasNoteRow == expected.hasNoteRow && matches.lines.empty() &&
                           !matches.noteLine;
    return isCounted ? "" : "counts alone";
}

/// The note without the lines that the fault does not need.
PlainNote shrunk(PlainNote note, const Asked& asked, Prepared::Copy copy) {
    for (std::size_t start = 0; start < note.text.size();) {
        const std::size_t end = std::min(note.text.find('\n', start), note.text.size() - 1) + 1;
        PlainNote shorter = note;
        shorter.text.erase(start, end - start);
        if (faultOf(shorter, asked, copy).empty()) {
            start = end;
        } else {
            note = shorter;
        }
    }
    return note;
}

void check(const PlainNote& note, const Asked& asked, Prepared::Copy copy) {
    const std::string fault = faultOf(note, asked, copy);
    if (!fault.empty()) {
        const std::string how = copy == Prepared::Copy::always ? "copied" : "as needed";
        FAIL_CHECK(fault << " of " << shown(shrunk(note, asked, copy)) << "\n"
                         << shown(asked) << "\n"
                         << how);
    }
}

}  // namespace

TEST_CASE("what a note gives for a query") {
    struct Row {
        std::string_view query;
        std::string_view text;
        std::string_view rows;  ///< lines with their rank when it is not 0; "note" with its line
    };
    constexpr std::array rows{
        Row{"bob", "* call Bob\n- [x] bob", "note 0 1"},
        Row{"bob", "no\n* call\nBOB\nbob", "note 2"},
        Row{"call bob", "al\n* bob called\n* call bob\n", "2 1/1"},
        Row{"call bob", "bob, call\nnothing\ncall bob", "note 2"},
        Row{"call bob", "* call\nbob", ""},
        Row{"\"call bob\"", "* bob call\n* call bob", "1"},
        Row{"\"al\nbob\"", "nix\nal\nbob", ""},
        Row{"call -bob", "* call bob\n* call al", "1"},
        Row{"is:done", "* [x] a\n* b\nc", "0"},
        Row{"is:open bob", "bob\n* bob", "1"},
        Row{"-bob", "bob\n\n \nal\n* bob\n* al", "note 3 5"},
        Row{"on:2019-03-05", "* a >2019-03-05\n* b\n* c >2019-03-06", "0"},
        Row{"after:2019-03-05", "* a >2019-03-05\n* b\n* c >2019-03-06\nd", "note 3 2"},
        Row{"title:nix", "nix\n* a", "note"},
        Row{"title:al", "nix\n* a", ""},
        Row{"title:nix a", "nix\n* a\n* b", "1"},
        Row{"in:work", "nix\n* a", "note"},
        Row{"in:wor", "nix\n* a", ""},
    };
    for (const Row& row : rows) {
        PlainNote note;
        note.filename = "Work/a.txt";
        note.text = row.text;
        note.title = grammar::noteTitle(note.text, "a");
        note.changedDay = std::chrono::year(2020) / 1 / 1;
        const Asked asked{{search::readQuery(row.query, base::dayFromTagText)}, {}, {}, {}};
        CAPTURE(row.query);
        CAPTURE(row.text);
        const Prepared prepared(note, asked.markers, Prepared::Copy::asNeeded);
        NoteMatches matches;
        matcherOf(asked).match(prepared.view(), Collect::rows, matches);
        CHECK(inShort(matches) == row.rows);
    }
}

// Tags are looked for in folded lines.
TEST_CASE("folding moves no border of a tag") {
    constexpr char32_t end = 0x20000;
    for (char32_t c = 0x80; c < end; ++c) {
        std::string character;
        base::appendUtf8(character, c);
        const std::string folded = search::folded(character);
        for (std::size_t at = 0; at < folded.size() && folded != character;) {
            const base::CodePoint part = base::codePointAt(folded, at);
            at += part.size;
            if (grammar::classesOf(part.value) != grammar::classesOf(c) ||
                grammar::isLineTerminator(part.value) != grammar::isLineTerminator(c) ||
                std::u32string_view(U"#@<>()/").find(part.value) != std::u32string_view::npos) {
                FAIL_CHECK("U+" << std::hex << static_cast<unsigned>(c));
            }
        }
    }
}

TEST_CASE("the rows of a note are those that each of its lines gives by itself") {
    std::size_t found = 0;
    for (unsigned seed = 1; seed <= 20; ++seed) {
        HostileNotes hostile(seed);
        const std::vector<PlainNote> notes = hostile.notes(16);
        for (int i = 0; i < 20; ++i) {
            const Asked asked = hostile.asked(notes);
            for (const PlainNote& note : notes) {
                check(note, asked,
                      hostile.oneIn(4) ? Prepared::Copy::always : Prepared::Copy::asNeeded);
                found += searchByForce(note, asked).lines.empty() ? 0 : 1;
            }
        }
    }
    // Queries that find nothing would prove nothing.
    CHECK(found > 500);
}

}  // namespace tessaly::tests
