// SPDX-License-Identifier: MIT
#include "grammar/line_scanner.h"

#include <algorithm>

#include "grammar/mark_finder.h"
#include "grammar/sign_positions.h"

namespace tessaly::grammar {

namespace {

/// Bytes turned into positions at a time: enough to amortise the call, little enough to stay in the
/// first cache together with the positions.
constexpr std::size_t windowSize = 16 * 1024;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

}  // namespace

void findMarks(std::string_view line, std::vector<Mark>& marks) {
    marks.clear();
    std::vector<std::uint32_t> signs;
    appendSignPositions(line, 0, line.size(), signs);
    MarkFinder finder(line, marks);
    for (const std::uint32_t place : signs) {
        finder.sign(place);
    }
}

void NoteScanner::start(std::string_view text, const MarkerSettings& settings) {
    _text = text;
    _settings = settings;
    _positions.clear();
    _nextPosition = 0;
    _scanned = text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
    _lineStart = _scanned;
    _nextIndex = 0;
    _done = _lineStart == text.size();
}

/// Reads a window more, and lets go of the positions before the current line.
void NoteScanner::fillPositions() {
    _positions.erase(_positions.begin(),
                     _positions.begin() + static_cast<std::ptrdiff_t>(_nextPosition));
    _nextPosition = 0;
    const std::size_t to = std::min(_scanned + windowSize, _text.size());
    appendSignPositions(_text, _scanned, to, _positions);
    _scanned = to;
}

const ScannedLine* NoteScanner::next() {
    if (_done) {
        return nullptr;
    }
    std::size_t signs = 0;  // of this line, seen so far
    std::size_t end = _text.size();
    for (;; ++signs) {
        while (_nextPosition + signs == _positions.size() && _scanned < _text.size()) {
            fillPositions();
        }
        if (_nextPosition + signs == _positions.size()) {
            _done = true;
            break;
        }
        const std::uint32_t place = _positions[_nextPosition + signs];
        if (_text[place] == '\n') {
            end = place;
            break;
        }
    }

    _line.index = _nextIndex++;
    _line.start = _lineStart;
    _line.text = _text.substr(_lineStart, end - _lineStart);
    _line.line = classifyLine(_line.text, _settings);
    _marks.clear();
    MarkFinder finder(_line.text, _marks);
    for (std::size_t i = 0; i < signs; ++i) {
        finder.sign(_positions[_nextPosition + i] - static_cast<std::uint32_t>(_lineStart));
    }
    _line.marks = _marks;
    _nextPosition += signs + (_done ? 0 : 1);
    _lineStart = end + 1;
    return &_line;
}

}  // namespace tessaly::grammar
