// SPDX-License-Identifier: MIT
#include "search/result_rows.h"

#include <memory>

#include "base/utf8.h"
#include "search/excerpt.h"
#include "search/note_lines.h"

namespace tessaly::search {

namespace {

SearchResultItem rowOf(const SearchedNote& note, SearchResultType type) {
    SearchResultItem row;
    row.type = type;
    row.filename = note.filename;
    row.groupFilename = note.filename;
    row.noteType = note.type;
    row.day = note.day;
    return row;
}

SearchResultItem sectionOf(const SearchedNote& note) {
    SearchResultItem section = rowOf(note, SearchResultType::section);
    section.title = note.title;
    return section;
}

void setExcerpt(SearchResultItem& row, std::string_view line, Stretch match) {
    Excerpt excerpt = excerptOf(line, match);
    row.content = std::move(excerpt.text);
    row.highlightRange = excerpt.highlight;
}

/// Markers and boxes tell a reader nothing: they are shown only where the match lies in them.
void setExcerpt(SearchResultItem& row, std::string_view line, std::string_view content,
                Stretch match) {
    const auto start = static_cast<std::size_t>(content.data() - line.data());
    const bool isInContent = match.start >= start && match.end <= start + content.size();
    if (isInContent || match.start == match.end) {
        const std::size_t behind = isInContent ? start : match.start;
        setExcerpt(row, content, {match.start - behind, match.end - behind});
    } else {
        setExcerpt(row, line, match);
    }
}

std::string_view firstLine(std::string_view text) {
    return text.substr(0, text.find('\n'));
}

/// What a note begins with, its title aside.
std::string_view previewOf(const SearchedNote& note) {
    std::string_view text = base::trimmedStart(note.text);
    if (note.type == base::NoteType::note) {
        text.remove_prefix(firstLine(text).size());
        text = base::trimmedStart(text);
    }
    return firstLine(text);
}

bool isMarked(const std::optional<LineMatch>& line) {
    return line && line->match.end > line->match.start;
}

bool isTitleLine(const SearchedNote& note, const LineMatch& match) {
    return note.type == base::NoteType::note &&
           base::trimmedStart(note.foldedText.substr(0, match.line.start)).empty();
}

}  // namespace

ResultRows::ResultRows(const grammar::DateStringHelper& names, base::Day today, Options options)
    : _names(names), _today(today), _options(options) {
    _results.agendaDate = options.agendaDate;
}

bool ResultRows::needWholeText(const NoteMatches& matches) {
    return matches.hasNoteRow && !isMarked(matches.noteLine);
}

bool ResultRows::isFull() const {
    return _options.most != 0 && _shown == _options.most;
}

void ResultRows::count(const NoteMatches& matches) {
    _results.total += matches.rows;
    _results.hasTodos = _results.hasTodos || matches.taskRows > 0;
}

void ResultRows::addNote(const SearchedNote& note, const NoteMatches& matches) {
    count(matches);
    if (isFull() || matches.rows == 0) {
        return;
    }
    beginGroup(sectionOf(note));
    NoteLines lines(note, _options.counting.markers);
    if (matches.hasNoteRow) {
        addMatchedNote(note, matches.noteLine, lines);
    }
    for (const LineMatch& match : matches.lines) {
        if (isFull()) {
            break;
        }
        addLine(note, match, lines);
    }
}

void ResultRows::addMatchedNote(const SearchedNote& note, const std::optional<LineMatch>& match,
                                NoteLines& lines) {
    // Any line matches what asks nothing of lines: the title again would be no news.
    if (!match || (!isMarked(match) && isTitleLine(note, *match))) {
        addNoteRow(note, previewOf(note), {}, std::nullopt);
    } else {
        const std::string_view line = lines.textOf(*match);
        addNoteRow(note, line, lines.matchIn(line, *match), match->lineIndex);
    }
}

void ResultRows::addNoteRow(const SearchedNote& note, std::string_view line, Stretch match,
                            std::optional<std::size_t> lineIndex) {
    SearchResultItem row = rowOf(note, SearchResultType::note);
    row.title = note.title;
    row.lineIndex = lineIndex;
    const auto found = grammar::classifyLine(line, _options.counting.markers);
    setExcerpt(row, line, grammar::contentOf(line, found), match);
    if (_options.objects == Objects::made) {
        row.object = std::make_shared<FoundObject>(
            store::NoteModel(row.filename, note.type, note.text, _options.counting, _scanner));
    }
    add(std::move(row));
}

void ResultRows::addLine(const SearchedNote& note, const LineMatch& match, NoteLines& lines) {
    const bool isCalendar = note.type == base::NoteType::calendar;
    SearchResultItem row =
        rowOf(note, isCalendar ? SearchResultType::calendarTodo : SearchResultType::noteTodo);
    const std::string_view line = lines.textOf(match);
    const std::string_view content = grammar::contentOf(line, lines.classOf(line));
    row.title = content;
    row.lineIndex = match.lineIndex;
    row.lineType = match.type;
    setExcerpt(row, line, content, lines.matchIn(line, match));
    if (_options.objects == Objects::made) {
        row.object = std::make_shared<FoundObject>(lines.todoOf(line, match.lineIndex));
    }
    add(std::move(row));
}

void ResultRows::addItem(const calendar::CachedCalendarItem& item, base::Day day,
                         Stretch matchInFoldedTitle) {
    ++_results.total;
    _results.hasEvents = true;
    if (isFull()) {
        return;
    }
    SearchResultItem row;
    row.type = item.calendarItem.kind == ports::CalendarItem::Kind::event
                   ? SearchResultType::event
                   : SearchResultType::reminder;
    row.groupFilename = base::fileText(day);
    row.day = day;
    if (const std::pair group(row.type, day); _items != group) {
        SearchResultItem section = row;
        section.type = SearchResultType::section;
        section.title = _names.relativeDay(day, _today);
        beginGroup(std::move(section));
        _items = group;
    }
    row.title = item.title;
    setExcerpt(row, item.title, unfolded(item.title, matchInFoldedTitle));
    if (_options.objects == Objects::made) {
        row.object = std::make_shared<FoundObject>(item);
    }
    add(std::move(row));
}

void ResultRows::beginList(std::string heading) {
    SearchResultItem section;
    section.type = SearchResultType::section;
    section.title = std::move(heading);
    beginGroup(std::move(section));
}

void ResultRows::addListedNote(const SearchedNote& note) {
    ++_results.total;
    if (!isFull()) {
        addNoteRow(note, previewOf(note), {}, std::nullopt);
    }
}

void ResultRows::beginGroup(SearchResultItem section) {
    section.position = NotesViewItemPosition::firstInGroup;
    _section = std::move(section);
    _items.reset();
}

void ResultRows::add(SearchResultItem row) {
    auto& items = _results.items;
    if (_section) {
        _groupStart = items.size();
        items.push_back(*std::exchange(_section, std::nullopt));
        items.back().id = static_cast<std::int64_t>(items.size());
    } else if (items.size() - _groupStart > 1) {
        items.back().position = items.size() - _groupStart == 2 ? NotesViewItemPosition::first
                                                                : NotesViewItemPosition::inBetween;
    }
    row.position = NotesViewItemPosition::last;
    items.push_back(std::move(row));
    items.back().id = static_cast<std::int64_t>(items.size());
    ++_shown;
}

SearchResults ResultRows::results(bool isFinal) const {
    SearchResults results = _results;
    if (!isFinal) {
        SearchResultItem loading;
        loading.type = SearchResultType::loading;
        loading.id = static_cast<std::int64_t>(results.items.size()) + 1;
        results.items.push_back(std::move(loading));
    }
    return results;
}

SearchResults ResultRows::take() {
    _section.reset();
    _items.reset();
    _groupStart = _shown = 0;
    return std::exchange(_results, {});
}

}  // namespace tessaly::search
