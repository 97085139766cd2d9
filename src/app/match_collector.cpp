// SPDX-License-Identifier: MIT
#include "app/match_collector.h"

#include <span>

#include "search/folded_text.h"
#include "search/result_rows.h"
#include "store/note_document.h"

namespace tessaly::app {
namespace {

// The lines of the matches, which are of a part of the note, as they are counted in all of it.
void renumber(search::NoteMatches& matches, std::span<const std::size_t> indexes) {
    const auto rename = [&](search::LineMatch& match) {
        match.lineIndex = indexes[match.lineIndex];
    };
    for (search::LineMatch& match : matches.lines) {
        rename(match);
    }
    if (matches.noteLine) {
        rename(*matches.noteLine);
    }
}

}  // namespace

// Where lines without a state are rows, it matters which one is the title's; records of lines need
// all of the text.
MatchCollector::MatchCollector(const Tools& tools)
    : _tools(tools),
      _goesByLines(tools.candidates.canBeTold() && !tools.matcher.filter().kinds.hasOther() &&
                   tools.kept == KeptText::matches),
      _localDays(tools.localTimeOf) {}

void MatchCollector::add(const store::NoteFile& file) {
    const NoteDay noteDay = noteDayOf(file);
    if (!noteDay.isNote) {
        return;
    }
    std::string name = _tools.names.nameOf(file, noteDay.day);
    const CandidateLines& candidates = _tools.candidates;
    // A title is part of the note's text, or its name.
    if (candidates.canBeTold() && candidates.areNoneIn(file.bytes) && candidates.areNoneIn(name)) {
        return;
    }
    const std::string_view text = store::decodedText(file.bytes).value_or(std::string_view());
    MatchedNote note = _tools.names.noteOf(file, noteDay.day, std::move(name), text);
    if (!_tools.matcher.days().isOpen()) {
        note.changedDay = _localDays(note.modified);
    }
    if (_goesByLines) {
        addByLines(std::move(note), text);
    } else {
        addWhole(std::move(note), text);
    }
}

void MatchCollector::addByLines(MatchedNote note, std::string_view text) {
    const CandidateLines::Lines lines = _tools.candidates.of(text);
    Prepared prepared;
    if (!match(note, lines.text, prepared)) {
        return;
    }
    if (search::ResultRows::needWholeText(_matches)) {
        addWhole(std::move(note), text);
        return;
    }
    note.matches = _matches;
    keepText(note, prepared.note, _tools.kept);
    renumber(note.matches, lines.indexes);
    _notes.push_back(std::move(note));
}

void MatchCollector::addWhole(MatchedNote note, std::string_view text) {
    Prepared prepared;
    if (match(note, text, prepared)) {
        note.matches = _matches;
        keepText(note, prepared.note, _tools.kept);
        _notes.push_back(std::move(note));
    }
}

bool MatchCollector::match(const MatchedNote& note, std::string_view text, Prepared& prepared) {
    prepared.foldedCopy = search::needsFolding(text) ? search::folded(text) : std::string();
    prepared.note = note.view();
    prepared.note.text = text;
    prepared.note.foldedText = prepared.foldedCopy.empty() ? text : prepared.foldedCopy;
    const search::Needle& asked = _tools.matcher.candidate();
    if (!asked.isIn(prepared.note.foldedText) && !asked.isIn(note.foldedTitle)) {
        return false;
    }
    prepared.tasks = search::tasksOf(text, prepared.note.foldedText, _tools.markers, _scanner);
    prepared.note.tasks = prepared.tasks;
    _tools.matcher.match(prepared.note, search::Collect::rows, _matches, _tools.mostLines);
    return _matches.rows + _matches.textRows > 0;
}

}  // namespace tessaly::app
