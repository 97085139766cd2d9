// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <string_view>

#include "search/day_range.h"
#include "search/line_kinds.h"
#include "search/line_test.h"
#include "search/note_matches.h"
#include "search/searched_note.h"

namespace tessaly::search {

/// What is kept of a note's matches.
enum class Collect { rows, counts };
/// Stands for any number of lines.
inline constexpr std::size_t everyLine = std::numeric_limits<std::size_t>::max();

/// One note, looked through for the lines that match.
///
/// As long as lines without a state are wanted, the whole text is searched for the test's
/// candidate, or without one line by line. Once they are not, because the note is sure to have its
/// own row, only the lines of tasks are looked at: a letter that stands in every line costs hardly
/// more than the tasks there are, and a word that stands nowhere what it takes to read the text.
class NoteWalk {
public:
    /// What is asked of lines.
    struct Asked {
        const LineTest& test;
        LineKinds tasks;  ///< states whose tasks are rows
        const DayRange& days;
    };
    /// What becomes of lines without a state, in this note.
    struct Others {
        bool areRows = false;       ///< each is one, but for the title's line
        bool mayGiveRow = false;    ///< they give the note's row, those that are none themselves
        bool titleMatches = false;  ///< the note has its row even without them
    };

    /// All outlive it; `matches` is empty. Of each rank at most so many lines are kept.
    NoteWalk(const Asked& asked, const SearchedNote& note, Others others, Collect collect,
             std::size_t mostLines, NoteMatches& matches);

    void run();

private:
    using Rank = LineTest::Rank;

    void searchText();
    void readLines();
    void searchTasks();

    bool wantsOthers() const;
    bool goToTask(std::size_t place);
    Stretch lineAround(std::size_t place) const;

    void takeTask(const TaskPlace& task);
    void takeOther(const Stretch& line);
    void takeForNote(const Stretch& line, Rank rank);
    void addRow(const LineMatch& match, Rank rank);
    void addNoteRow();

    bool isTextRow(Rank rank) const { return rank == Rank::apart && _asked.test.isOfTag(); }
    std::string_view textOf(const Stretch& line) const;
    LineMatch otherMatch(const Stretch& line, Rank rank);
    Stretch highlightIn(const Stretch& line, Rank rank) const;
    std::size_t indexOfLineAt(std::size_t start);

    const Asked& _asked;
    const SearchedNote& _note;
    const std::string_view _text;
    const Others _others;
    const Collect _collect;
    const std::size_t _mostLines;
    const LineTest::Detail _detail;
    NoteMatches& _matches;

    std::size_t _place = 0;  // a line's start: those before are done
    std::size_t _task = 0;   // the first task not before it
    Rank _noteRank = Rank::none;
    std::array<std::size_t, 2> _kept{};     // lines, by rank
    std::size_t _titleLine = Needle::npos;  // where it begins; only where others are rows
    // A line, with its index, at or before those yet to be counted.
    std::size_t _countedStart = 0;
    std::size_t _countedIndex = 0;
};

}  // namespace tessaly::search
