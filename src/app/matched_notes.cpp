// SPDX-License-Identifier: MIT
#include "app/matched_notes.h"

#include <algorithm>
#include <array>
#include <tuple>

#include "base/utf8.h"
#include "grammar/note_title.h"
#include "search/folded_text.h"
#include "search/note_lines.h"
#include "store/note_document.h"
#include "store/note_names.h"

namespace tessaly::app {
namespace {

/// A character beyond ASCII that folding makes an ASCII one of.
struct Disguise {
    char letter;
    std::string_view character;
};

// The Greek question mark, the capital I with a dot, the Kelvin sign and the Greek grave accent;
// there are no others.
constexpr std::array<Disguise, 4> disguises{
    {{';', "\u037E"}, {'i', "\u0130"}, {'k', "\u212A"}, {'`', "\u1FEF"}}};

// "notes/work" of "Work/Plans.txt".
std::string foldedFolderOf(base::NoteType type, std::string_view filename) {
    std::string folder{base::folderName(type)};
    if (const auto slash = filename.rfind('/'); slash != std::string_view::npos) {
        folder.append("/").append(filename.substr(0, slash));
    }
    return search::folded(folder);
}

// Copies the line of a match, as it stands in the text, to the end of `kept`; the match lies there
// from then on.
void keepLine(search::LineMatch& match, search::NoteLines& lines, std::string& kept) {
    const std::string_view line = lines.textOf(match);
    const search::Stretch found = lines.matchIn(line, match);
    const std::size_t start = kept.size();
    kept.append(line).append("\n");
    match.line = {start, start + line.size()};
    match.match = {start + found.start, start + found.end};
}

// The row of a note in which nothing is marked shows how the note begins.
bool isMarked(const std::optional<search::LineMatch>& match) {
    return match && match->match.end > match->match.start;
}

std::string keptLines(const search::SearchedNote& note, search::NoteMatches& matches) {
    search::NoteLines lines(note, {});
    std::string kept;
    if (matches.noteLine) {
        keepLine(*matches.noteLine, lines, kept);
    }
    for (search::LineMatch& match : matches.lines) {
        keepLine(match, lines, kept);
    }
    return kept;
}

}  // namespace

search::SearchedNote MatchedNote::view() const {
    search::SearchedNote note;
    note.type = type;
    note.filename = filename;
    note.title = title;
    note.foldedTitle = foldedTitle;
    note.foldedFolder = foldedFolder;
    note.day = day;
    note.changedDay = changedDay;
    note.text = text;
    note.foldedText = foldedCopy.empty() ? text : foldedCopy;
    return note;
}

NoteDay noteDayOf(const store::NoteFile& file) {
    if (file.type != base::NoteType::calendar) {
        return {};
    }
    const auto day = store::dayOfCalendarFilename(file.filename);
    return {day, day.has_value()};
}

std::string NoteNames::nameOf(const store::NoteFile& file, std::optional<base::Day> day) const {
    return day ? _names.relativeDay(*day, _today) : std::string(store::baseName(file.filename));
}

MatchedNote NoteNames::noteOf(const store::NoteFile& file, std::optional<base::Day> day,
                              std::string name, std::string_view text) const {
    MatchedNote note;
    note.type = file.type;
    note.filename = file.filename;
    note.title = day ? std::move(name) : grammar::noteTitle(text, name);
    note.foldedTitle = search::folded(note.title);
    note.foldedFolder = foldedFolderOf(file.type, file.filename);
    note.day = day;
    note.changedDay = _clock.local(file.stamp.modified).day;
    note.modified = file.stamp.modified;
    note.created = file.stamp.created;
    return note;
}

TextVerdict::TextVerdict(const search::NoteMatcher& matcher, std::string_view asked, Asks asks)
    : _matcher(matcher), _isAscii(base::isAscii(asked)), _isOfLines(asks == Asks::lines) {
    const std::string lower = search::folded(asked);
    for (const Disguise& disguise : disguises) {
        if (lower.find(disguise.letter) != std::string::npos) {
            _disguises.push_back(disguise.character);
        }
    }
}

bool TextVerdict::isHopeless(std::string_view foldedText) const {
    return _isOfLines && _matcher.isTextHopeless(foldedText);
}

// Folding makes ASCII characters of no others but those in disguise, and brings no two together
// that were apart: an ASCII text that is not in a note is not in its folded text either.
bool TextVerdict::isHopelessAsItIs(std::string_view bytes) const {
    return _isAscii && isHopeless(bytes) &&
           std::none_of(_disguises.begin(), _disguises.end(), [&](std::string_view character) {
               return bytes.find(character) != std::string_view::npos;
           });
}

// A title is part of the note's text or its name: where both are hopeless, it is, too.
void MatchCollector::add(const store::NoteFile& file) {
    const NoteDay noteDay = noteDayOf(file);
    if (!noteDay.isNote) {
        return;
    }
    std::string name = _tools.names.nameOf(file, noteDay.day);
    const TextVerdict& verdict = _tools.verdict;
    if (!verdict.isHopelessAsItIs(file.bytes) || !verdict.isHopelessAsItIs(name)) {
        addText(file, noteDay.day, std::move(name));
    }
}

void MatchCollector::addText(const store::NoteFile& file, std::optional<base::Day> day,
                             std::string name) {
    const std::string_view text = store::decodedText(file.bytes).value_or(std::string_view());
    const std::string foldedCopy =
        search::needsFolding(text) ? search::folded(text) : std::string();
    const std::string_view foldedText = foldedCopy.empty() ? text : foldedCopy;
    if (_tools.verdict.isHopeless(foldedText) && _tools.verdict.isHopeless(search::folded(name))) {
        return;
    }
    MatchedNote note = _tools.names.noteOf(file, day, std::move(name), text);
    const auto tasks = search::tasksOf(text, foldedText, _tools.markers, _scanner);
    search::SearchedNote searched = note.view();
    searched.text = text;
    searched.foldedText = foldedText;
    searched.tasks = tasks;
    _tools.matcher.match(searched, search::NoteMatcher::Collect::rows, _matches);
    if (_matches.rows + _matches.textRows > 0) {
        note.matches = _matches;
        keepText(note, searched, _tools.kept);
        _notes.push_back(std::move(note));
    }
}

void keepText(MatchedNote& note, const search::SearchedNote& searched, KeptText kept) {
    const bool showsMore = note.matches.hasNoteRow && !isMarked(note.matches.noteLine);
    if (kept == KeptText::matches && !showsMore) {
        note.text = keptLines(searched, note.matches);
        return;
    }
    note.text = searched.text;
    if (searched.foldedText.data() != searched.text.data()) {
        note.foldedCopy = searched.foldedText;
    }
}

void sortNotes(std::vector<const MatchedNote*>& notes, base::SortType sortBy) {
    const auto place = [](const MatchedNote& note) {
        return std::tuple(note.day, std::string_view(note.filename));
    };
    std::sort(notes.begin(), notes.end(), [&](const MatchedNote* a, const MatchedNote* b) {
        const search::NoteSortKey keyA = a->sortKey();
        const search::NoteSortKey keyB = b->sortKey();
        return search::comesBefore(keyA, keyB, sortBy) ||
               (!search::comesBefore(keyB, keyA, sortBy) && place(*a) < place(*b));
    });
}

}  // namespace tessaly::app
