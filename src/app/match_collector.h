// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/candidate_lines.h"
#include "app/matched_notes.h"
#include "grammar/line_scanner.h"
#include "search/local_days.h"
#include "search/note_matcher.h"
#include "store/note_reader.h"

namespace tessaly::app {

/// Takes the notes with matches out of those that one thread reads.
class MatchCollector {
public:
    /// What the collectors of one search share; all of it outlives them.
    struct Tools {
        const search::NoteMatcher& matcher;
        const CandidateLines& candidates;
        const NoteNames& names;
        search::LocalTimeOf localTimeOf;
        grammar::MarkerSettings markers;
        KeptText kept;
        std::size_t mostLines = search::everyLine;  ///< of a note
    };

    explicit MatchCollector(const Tools& tools);

    void add(const store::NoteFile& file);
    std::vector<MatchedNote> take() { return std::move(_notes); }

private:
    void addByLines(MatchedNote note, std::string_view text);
    void addWhole(MatchedNote note, std::string_view text);

    /// A text that is part of a note's or all of it, made ready to be asked.
    struct Prepared {
        std::string foldedCopy;
        std::vector<search::TaskPlace> tasks;
        search::SearchedNote note;
    };
    /// Into `prepared`, which must stay where it is, and `_matches`. False: there are none.
    bool match(const MatchedNote& note, std::string_view text, Prepared& prepared);

    const Tools _tools;
    const bool _goesByLines;  ///< only the lines that may match are asked
    search::LocalDays _localDays;
    grammar::NoteScanner _scanner;
    search::NoteMatches _matches;
    std::vector<MatchedNote> _notes;
};

}  // namespace tessaly::app
