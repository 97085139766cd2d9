// SPDX-License-Identifier: MIT
#include "search/note_walk.h"

#include <algorithm>
#include <span>

#include "base/utf8.h"
#include "search/task_day.h"

namespace tessaly::search {

namespace {

std::size_t startOfLine(std::string_view text, std::size_t place) {
    return place == 0 ? 0 : text.rfind('\n', place - 1) + 1;
}

std::size_t endOfLine(std::string_view text, std::size_t place) {
    return std::min(text.find('\n', place), text.size());
}

/// Tasks lie apart in a text that is mostly passed over: their lines are asked for in good time.
void fetchAhead(std::string_view text, std::span<const TaskPlace> tasks, std::size_t task) {
    constexpr std::size_t ahead = 3;
    if (task + ahead < tasks.size()) {
        __builtin_prefetch(text.data() + tasks[task + ahead].start);
    }
}

/// The line that a general note's title is made of: the first that is not blank.
std::size_t titleLineOf(const SearchedNote& note) {
    if (note.type != base::NoteType::note) {
        return Needle::npos;
    }
    const std::string_view text = note.foldedText;
    return startOfLine(text, text.size() - base::trimmedStart(text).size());
}

}  // namespace

NoteWalk::NoteWalk(const Asked& asked, const SearchedNote& note, Others others, Collect collect,
                   std::size_t mostLines, NoteMatches& matches)
    : _asked(asked),
      _note(note),
      _text(note.foldedText),
      _others(others),
      _collect(collect),
      _mostLines(mostLines),
      _detail(collect == Collect::rows ? LineTest::Detail::rank : LineTest::Detail::whether),
      _matches(matches),
      _titleLine(others.areRows ? titleLineOf(note) : Needle::npos) {}

void NoteWalk::run() {
    if (!_asked.test.isHopeless() && (wantsOthers() || !_note.tasks.empty())) {
        if (_asked.test.isSeeking()) {
            searchText();
        } else {
            readLines();
        }
    }
    addNoteRow();
}

/// Whether a further line without a state could make a difference.
bool NoteWalk::wantsOthers() const {
    const bool isSure = _collect == Collect::counts && _others.titleMatches;
    return _others.areRows || (_others.mayGiveRow && _noteRank != Rank::whole && !isSure);
}

void NoteWalk::searchText() {
    for (;;) {
        const std::size_t found = _asked.test.candidate().find(_text, _place);
        if (found == Needle::npos) {
            return;
        }
        if (goToTask(found)) {
            const TaskPlace& task = _note.tasks[_task++];
            takeTask(task);
            _place = task.end() + 1;
        } else {
            if (wantsOthers()) {
                const Stretch line = lineAround(found);
                takeOther(line);
                _place = line.end + 1;
            }
            if (!wantsOthers()) {
                searchTasks();
                return;
            }
        }
    }
}

void NoteWalk::readLines() {
    while (wantsOthers() && _place < _text.size()) {
        if (goToTask(_place)) {
            const TaskPlace& task = _note.tasks[_task++];
            takeTask(task);
            _place = task.end() + 1;
        } else {
            const Stretch line{_place, endOfLine(_text, _place)};
            if (!base::trimmedStart(textOf(line)).empty()) {
                takeOther(line);
            }
            _place = line.end + 1;
        }
    }
    searchTasks();
}

void NoteWalk::searchTasks() {
    const Needle& candidate = _asked.test.candidate();
    for (; _task < _note.tasks.size(); ++_task) {
        const TaskPlace& task = _note.tasks[_task];
        fetchAhead(_text, _note.tasks, _task);
        if (_asked.tasks.has(task.todoType()) &&
            (candidate.empty() || candidate.isIn(_text.substr(task.start, task.length)))) {
            takeTask(task);
        }
    }
}

/// Passes over the tasks before `place`; whether that lies in one, the one that comes next then.
bool NoteWalk::goToTask(std::size_t place) {
    const auto& tasks = _note.tasks;
    while (_task < tasks.size() && tasks[_task].end() < place) {
        ++_task;
    }
    return _task < tasks.size() && tasks[_task].start <= place;
}

Stretch NoteWalk::lineAround(std::size_t place) const {
    return {startOfLine(_text, place), endOfLine(_text, place)};
}

/// Of a task whose line holds the candidate.
void NoteWalk::takeTask(const TaskPlace& task) {
    if (!_asked.tasks.has(task.todoType())) {
        return;
    }
    const std::string_view text = _text.substr(task.start, task.length);
    const Rank rank = _asked.test.rankOfCandidate(text, _detail);
    if (rank == Rank::none) {
        return;
    }
    if (!_asked.days.isOpen()) {
        const auto day = dayOfTask(text, _note.day);
        if (!day || !_asked.days.holds(*day)) {
            return;
        }
    }
    const Stretch line{task.start, task.end()};
    addRow({task.lineIndex, line, highlightIn(line, rank), task.todoType(), {}}, rank);
}

/// Of a line without a state that holds the candidate.
void NoteWalk::takeOther(const Stretch& line) {
    const Rank rank = _asked.test.rankOfCandidate(textOf(line), _detail);
    if (rank == Rank::none) {
        return;
    }
    if (_others.areRows && line.start != _titleLine) {
        addRow(otherMatch(line, rank), rank);
    } else if (_others.mayGiveRow && rank < _noteRank) {
        takeForNote(line, rank);
    }
}

void NoteWalk::takeForNote(const Stretch& line, Rank rank) {
    _noteRank = rank;
    if (_collect == Collect::rows) {
        _matches.noteLine = otherMatch(line, rank);
    }
}

void NoteWalk::addRow(const LineMatch& match, Rank rank) {
    ++(isTextRow(rank) ? _matches.textRows : _matches.rows);
    ++(isTextRow(rank) ? _matches.textTaskRows : _matches.taskRows);
    const auto index = static_cast<std::size_t>(rank);
    if (_collect == Collect::rows && _kept[index] < _mostLines) {
        ++_kept[index];
        _matches.lines.push_back(match);
        _matches.lines.back().rank = static_cast<std::uint8_t>(rank);
    }
}

void NoteWalk::addNoteRow() {
    _matches.hasNoteRow = _others.titleMatches || _noteRank != Rank::none;
    if (_matches.hasNoteRow) {
        ++(isTextRow(_noteRank) ? _matches.textRows : _matches.rows);
    }
}

std::string_view NoteWalk::textOf(const Stretch& line) const {
    return _text.substr(line.start, line.end - line.start);
}

LineMatch NoteWalk::otherMatch(const Stretch& line, Rank rank) {
    if (_collect == Collect::counts) {
        return {};
    }
    return {indexOfLineAt(line.start), line, highlightIn(line, rank), grammar::TodoType::text,
            static_cast<std::uint8_t>(rank)};
}

Stretch NoteWalk::highlightIn(const Stretch& line, Rank rank) const {
    if (_collect == Collect::counts) {
        return {};
    }
    const Stretch found = _asked.test.highlight(textOf(line), rank);
    return {line.start + found.start, line.start + found.end};
}

/// Tasks know their index, so only the lines behind the last of them are counted.
std::size_t NoteWalk::indexOfLineAt(std::size_t start) {
    if (_task > 0 && _note.tasks[_task - 1].start > _countedStart) {
        _countedStart = _note.tasks[_task - 1].start;
        _countedIndex = _note.tasks[_task - 1].lineIndex;
    }
    const std::string_view between = _text.substr(_countedStart, start - _countedStart);
    _countedIndex += static_cast<std::size_t>(std::count(between.begin(), between.end(), '\n'));
    _countedStart = start;
    return _countedIndex;
}

}  // namespace tessaly::search
