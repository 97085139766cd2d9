// SPDX-License-Identifier: MIT
#include "search/note_lines.h"

#include "base/utf8.h"
#include "grammar/todo_helper.h"
#include "store/paths.h"

namespace tessaly::search {

namespace {

std::string_view lineAt(std::string_view text, std::size_t start) {
    return text.substr(start, text.find('\n', start) - start);
}

}  // namespace

std::string_view NoteLines::textOf(const LineMatch& match) {
    if (!isFolded()) {
        return _note.text.substr(match.line.start, match.line.end - match.line.start);
    }
    if (match.lineIndex < _nextIndex) {
        _nextIndex = _nextStart = 0;
    }
    for (; _nextIndex < match.lineIndex; ++_nextIndex) {
        _nextStart += lineAt(_note.text, _nextStart).size() + 1;
    }
    return lineAt(_note.text, _nextStart);
}

Stretch NoteLines::matchIn(std::string_view line, const LineMatch& match) const {
    const Stretch found{match.match.start - match.line.start, match.match.end - match.line.start};
    return isFolded() && found.end > found.start ? unfolded(line, found) : found;
}

grammar::Todo NoteLines::todoOf(std::string_view line, std::size_t lineIndex) {
    const auto start = static_cast<std::size_t>(line.data() - _note.text.data());
    const std::string path = store::joined(base::folderName(_note.type), _note.filename);
    if (!_title) {
        _title = grammar::titleOfNote({_note.text, path});
    }
    passLinesUntil(start);
    grammar::findMarks(line, _marks);
    grammar::Todo todo =
        grammar::TodoHelper::todoOf({lineIndex, start, line, classOf(line), _marks}, _note.day);
    todo.title = _title->text;
    todo.titleRange = _title->range;
    todo.textRange = {_passedUnits, base::utf16Length(line)};
    todo.filename = path;
    for (const Outer& outer : _outer) {
        if (outer.indents < todo.indents && todo.type != grammar::TodoType::empty) {
            todo.indentParentIndex = outer.lineIndex;
        }
    }
    return todo;
}

void NoteLines::passLinesUntil(std::size_t start) {
    if (start < _passedBytes) {
        _passedLines = _passedBytes = _passedUnits = 0;
        _outer.clear();
    }
    const std::string_view passed = _note.text.substr(_passedBytes, start - _passedBytes);
    while (_passedBytes < start) {
        const std::string_view line = lineAt(_note.text, _passedBytes);
        passLine(line);
        _passedBytes += line.size() + 1;
    }
    _passedUnits += base::utf16Length(passed);
}

void NoteLines::passLine(std::string_view line) {
    const grammar::LineClass found = classOf(line);
    if (found.type != grammar::TodoType::empty) {
        while (!_outer.empty() && _outer.back().indents >= found.indents) {
            _outer.pop_back();
        }
        _outer.push_back({found.indents, _passedLines});
    }
    ++_passedLines;
}

}  // namespace tessaly::search
