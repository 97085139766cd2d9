// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "grammar/line_scanner.h"
#include "grammar/note_title.h"
#include "grammar/todo.h"
#include "search/folded_text.h"
#include "search/note_matcher.h"

namespace tessaly::search {

/// Finds the lines of one note that matched in its text, and makes records of them. Lines in
/// growing order are found in one walk over the note.
class NoteLines {
public:
    /// The note's texts outlive this object.
    NoteLines(const SearchedNote& note, const grammar::MarkerSettings& markers)
        : _note(note), _markers(markers) {}

    /// The line as it stands in the text, without its "\n".
    std::string_view textOf(const LineMatch& match);
    /// Where in that the match lies: whole characters where the note had to be folded.
    Stretch matchIn(std::string_view line, const LineMatch& match) const;

    grammar::LineClass classOf(std::string_view line) const {
        return grammar::classifyLine(line, _markers);
    }

    /// The record that reading the whole note gives of the line, which is as `textOf` returned it.
    grammar::Todo todoOf(std::string_view line, std::size_t lineIndex);

private:
    /// A line that is passed, under which others may be indented.
    struct Outer {
        std::size_t indents;
        std::size_t lineIndex;
    };

    bool isFolded() const { return _note.foldedText.data() != _note.text.data(); }
    void passLinesUntil(std::size_t start);
    void passLine(std::string_view line);

    const SearchedNote& _note;
    const grammar::MarkerSettings _markers;
    std::size_t _nextIndex = 0;  // of the line at which the walk of `textOf` stands
    std::size_t _nextStart = 0;

    // The walk of `todoOf` stands before this line.
    std::size_t _passedLines = 0;
    std::size_t _passedBytes = 0;
    std::size_t _passedUnits = 0;
    std::vector<Outer> _outer;  // with growing indents
    std::optional<grammar::NoteTitle> _title;
    std::vector<grammar::Mark> _marks;
};

}  // namespace tessaly::search
