// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "base/todo_character.h"
#include "grammar/sign_cursor.h"
#include "grammar/todo.h"

namespace tessaly::grammar {

/// What a line is, and where its parts lie in it. Offsets are bytes from the line's start.
struct LineClass {
    TodoType type = TodoType::empty;
    base::TodoCharacter marker = base::TodoCharacter::asterisk;  ///< of a task or list line
    bool hasBox = false;
    std::uint32_t indents = 0;
    std::uint32_t headingLevel = 0;
    std::uint32_t boxStart = 0;  ///< where the box stands or would stand, in a task or list line
    std::uint32_t contentStart = 0;  ///< behind marker and box or opener; 0 for other lines
};

/// What a mark in a line is.
enum class MarkKind : std::uint8_t { hashtag, mention, scheduleTag, backLink, plainDate, doneTag };

/// A tag in a line, in bytes from the line's start. Hashtags and mentions: the sign, the name and
/// the argument. Date and completion tags: with the one white-space character before them, if any.
struct Mark {
    MarkKind kind;
    std::uint32_t start;
    std::uint32_t end;
};

/// A line as a scan of a whole text meets it; valid during the visit only.
struct ScannedLine {
    std::size_t index;      ///< from 0
    std::size_t start;      ///< byte offset in the text
    std::string_view text;  ///< without "\n", with a "\r" before it
    LineClass line;
    std::span<const Mark> marks;  ///< by position; a date may also lie in a mention
};

/// Classifies one line, which must hold no "\n". Linear in its length. This and the marks agree
/// with the patterns of `patterns.h` on every UTF-8 text; bytes that are no UTF-8 read as U+FFFD.
LineClass classifyLine(std::string_view line, const MarkerSettings& settings);

/// The content of a classified line: from `contentStart` to the first line terminator of any kind
/// (a carriage return, U+2028 …), or, of a line without a marker or opener, all of it but a
/// carriage return at its end.
std::string_view contentOf(std::string_view line, const LineClass& found);

/// Finds the marks of one line, which must hold no "\n", in order of position. Linear in its
/// length. `marks` is emptied first; giving the same vector again saves allocations.
void findMarks(std::string_view line, std::vector<Mark>& marks);

/// Reads a whole text line by line. Keeps its buffers from text to text, so a thread that reads
/// many notes uses one scanner for all. Not for two threads at once.
class NoteScanner {
public:
    /// Begins with a text of less than 4 GiB, which must outlive the scan.
    void start(std::string_view text, const MarkerSettings& settings);

    /// The next line, valid until the call after; null behind the last. A text that ends in a line
    /// break has a last empty line, an empty text has no lines. A byte-order mark at the start of
    /// the text belongs to no line, though `start` counts its bytes.
    const ScannedLine* next();

    /// The next line that holds a mark's sign, "#", "@", "<" or ">", and so may have marks; null
    /// when no such line is left. For those who only look for marks: the other lines cost nothing
    /// but their count. May be mixed with `next`.
    const ScannedLine* nextWithSign();

private:
    const ScannedLine* lineTo(std::size_t sign);
    void readMarks(std::size_t firstSign);

    std::string_view _text;
    MarkerSettings _settings;
    SignCursor _cursor;
    ScannedLine _line{};
    std::vector<Mark> _marks;
    std::size_t _lineStart = 0;
    std::size_t _nextIndex = 0;
    bool _done = true;
};

}  // namespace tessaly::grammar
