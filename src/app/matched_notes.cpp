// SPDX-License-Identifier: MIT
#include "app/matched_notes.h"

#include <algorithm>
#include <tuple>

#include "base/utf8.h"
#include "grammar/note_title.h"
#include "search/folded_text.h"
#include "search/note_lines.h"
#include "search/result_rows.h"
#include "store/note_names.h"

namespace tessaly::app {
namespace {

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
    note.modified = file.stamp.modified;
    note.created = file.stamp.created;
    return note;
}

void keepText(MatchedNote& note, const search::SearchedNote& searched, KeptText kept) {
    if (kept == KeptText::matches && !search::ResultRows::needWholeText(note.matches)) {
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
