// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/day.h"
#include "base/note_type.h"
#include "base/sort_type.h"
#include "grammar/date_string_helper.h"
#include "grammar/line_scanner.h"
#include "ports/clock.h"
#include "search/note_matcher.h"
#include "search/note_order.h"
#include "store/note_reader.h"

namespace tessaly::app {

/// How much of a note's text must be kept when its file's bytes go: most rows are made of the lines
/// that matched, the records behind rows of all lines.
enum class KeptText { matches, whole };

/// A note with matches, on its own.
struct MatchedNote {
    base::NoteType type = base::NoteType::none;
    std::string filename;  ///< relative to its kind's folder
    std::string title;
    std::string foldedTitle;
    std::string foldedFolder;
    std::optional<base::Day> day;
    base::Day changedDay{};
    base::Instant modified{};
    base::Instant created{};
    /// Either all of the text, or the lines that matched, one after the other; `matches` tells
    /// where.
    std::string text;
    /// Empty where the matches lie in `text` itself.
    std::string foldedCopy;
    search::NoteMatches matches;

    search::SearchedNote view() const;
    search::NoteSortKey sortKey() const { return {foldedTitle, modified, created}; }
};

/// Gives a note, once its matches are known, what is kept of the texts in which they lie.
void keepText(MatchedNote& note, const search::SearchedNote& searched, KeptText kept);

/// Makes notes of files that are read.
class NoteNames {
public:
    /// Both outlive it. Days are named relative to `today`.
    NoteNames(const grammar::DateStringHelper& names, ports::Clock& clock, base::Day today)
        : _names(names), _clock(clock), _today(today) {}

    /// What the note is called, its text left out of account: its day's name, else its file's.
    std::string nameOf(const store::NoteFile& file, std::optional<base::Day> day) const;
    /// The note without text and matches; `name` is as `nameOf` has it.
    MatchedNote noteOf(const store::NoteFile& file, std::optional<base::Day> day, std::string name,
                       std::string_view text) const;

private:
    const grammar::DateStringHelper& _names;
    ports::Clock& _clock;
    const base::Day _today;
};

/// Tells by its text that a note need not be looked at. A value that does not change; any thread.
class TextVerdict {
public:
    /// Whether anything is asked of lines, or only of notes as such: then no text tells.
    enum class Asks { lines, notesOnly };

    /// The matcher outlives it. `asked`: all that it looks for, in one text.
    TextVerdict(const search::NoteMatcher& matcher, std::string_view asked, Asks asks);

    /// Whether neither a line nor a title that is part of the text can match.
    bool isHopeless(std::string_view foldedText) const;
    /// The same of text that is not folded, or of bytes of any kind. False: perhaps.
    bool isHopelessAsItIs(std::string_view bytes) const;

private:
    const search::NoteMatcher& _matcher;
    const bool _isAscii;  // all that is asked
    const bool _isOfLines;
    std::vector<std::string_view> _disguises;  // of letters that are asked
};

/// Takes the notes with matches out of those that one thread reads.
class MatchCollector {
public:
    /// What the collectors of one search share; all of it outlives them.
    struct Tools {
        const search::NoteMatcher& matcher;
        const TextVerdict& verdict;
        const NoteNames& names;
        grammar::MarkerSettings markers;
        KeptText kept;
    };

    explicit MatchCollector(const Tools& tools) : _tools(tools) {}

    void add(const store::NoteFile& file);
    std::vector<MatchedNote> take() { return std::move(_notes); }

private:
    void addText(const store::NoteFile& file, std::optional<base::Day> day, std::string name);

    const Tools _tools;
    grammar::NoteScanner _scanner;
    search::NoteMatches _matches;
    std::vector<MatchedNote> _notes;
};

/// The day of a calendar note. A file in the calendar's folder that is of no day is no note.
struct NoteDay {
    std::optional<base::Day> day;
    bool isNote = true;
};
NoteDay noteDayOf(const store::NoteFile& file);

/// In the order of `sortBy`; what that leaves open: general notes by file name, then days.
void sortNotes(std::vector<const MatchedNote*>& notes, base::SortType sortBy);

}  // namespace tessaly::app
