// SPDX-License-Identifier: MIT
#include "grammar/line_scanner.h"

#include "grammar/mark_finder.h"

namespace tessaly::grammar {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

}  // namespace

void findMarks(std::string_view line, std::vector<Mark>& marks) {
    marks.clear();
    MarkFinder finder(line, marks);
    SignCursor signs(line, 0);
    for (std::size_t place = signs.next(); place < line.size(); place = signs.next()) {
        finder.sign(place);
    }
}

void NoteScanner::start(std::string_view text, const MarkerSettings& settings) {
    _text = text;
    _settings = settings;
    _lineStart = text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
    _cursor = SignCursor(text, _lineStart);
    _nextIndex = 0;
    _done = _lineStart == text.size();
}

const ScannedLine* NoteScanner::next() {
    if (_done) {
        return nullptr;
    }
    _signs.clear();
    std::size_t end = _cursor.next();
    while (end < _text.size() && _text[end] != '\n') {
        _signs.push_back(end - _lineStart);
        end = _cursor.next();
    }
    _line.index = _nextIndex++;
    _line.start = _lineStart;
    _line.text = _text.substr(_lineStart, end - _lineStart);
    _line.line = classifyLine(_line.text, _settings);
    _line.marks = {};
    if (!_signs.empty()) {
        readMarks();
    }
    _done = end == _text.size();
    _lineStart = end + 1;
    return &_line;
}

void NoteScanner::readMarks() {
    _marks.clear();
    MarkFinder finder(_line.text, _marks);
    for (const std::size_t place : _signs) {
        finder.sign(place);
    }
    _line.marks = _marks;
}

}  // namespace tessaly::grammar
