// SPDX-License-Identifier: MIT
#include "grammar/line_scanner.h"

#include <algorithm>

#include "base/utf8.h"
#include "grammar/mark_finder.h"

namespace tessaly::grammar {

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
    _lineStart = text.size() - base::withoutByteOrderMark(text).size();
    _cursor = SignCursor(text, _lineStart);
    _nextIndex = 0;
    _done = _lineStart == text.size();
}

const ScannedLine* NoteScanner::next() {
    return _done ? nullptr : lineTo(_cursor.next());
}

const ScannedLine* NoteScanner::nextWithSign() {
    while (!_done) {
        const std::size_t sign = _cursor.next();
        if (sign == _text.size()) {
            _done = true;
        } else if (_text[sign] != '\n') {
            return lineTo(sign);
        } else {
            ++_nextIndex;
            _lineStart = sign + 1;
        }
    }
    return nullptr;
}

/// The line in which the cursor has come to `sign`, the first one, or the line's end.
const ScannedLine* NoteScanner::lineTo(std::size_t sign) {
    const bool isBare = sign == _text.size() || _text[sign] == '\n';
    const std::size_t end = isBare ? sign : std::min(_text.find('\n', sign), _text.size());
    _line.index = _nextIndex++;
    _line.start = _lineStart;
    _line.text = _text.substr(_lineStart, end - _lineStart);
    _line.line = classifyLine(_line.text, _settings);
    _line.marks = {};
    if (!isBare) {
        readMarks(sign);
    }
    _done = end == _text.size();
    _lineStart = end + 1;
    return &_line;
}

/// Leaves the cursor behind the line's end.
void NoteScanner::readMarks(std::size_t firstSign) {
    _marks.clear();
    MarkFinder finder(_line.text, _marks);
    const std::size_t end = _lineStart + _line.text.size();
    for (std::size_t sign = firstSign; sign < end; sign = _cursor.next()) {
        finder.sign(sign - _lineStart);
    }
    _line.marks = _marks;
}

}  // namespace tessaly::grammar
