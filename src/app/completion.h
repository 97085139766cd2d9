// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/line_look.h"
#include "base/day.h"
#include "base/locale_formats.h"
#include "base/note_type.h"
#include "base/text_range.h"
#include "editor/edit.h"
#include "grammar/todo.h"

namespace tessaly::app {

/// What can be completed in a note.
enum class CompletionKind : std::uint8_t { hashtag, mention, noteTitle, day };

/// The part of a line that stands before the caret and can be completed.
struct CompletionPlace {
    CompletionKind kind;
    /// UTF-16 units of the line, from the sign, or from behind "[[", to the caret.
    base::TextRange range;
    std::string typed;    ///< behind the sign or brackets; may be empty
    bool isWord = false;  ///< what is typed says already what is meant, and is more than a number
};

/// What a line cannot tell of itself.
struct LineContext {
    FenceState before = FenceState::outside;
    grammar::MarkerSettings markers;
};

/// What can be completed at a caret, in UTF-16 units of the line, which is UTF-8 without its end.
/// Nothing where the grammar would read no tag, link or schedule tag, whatever is written: in code,
/// fences, addresses and lines too long to be styled, and in the middle of a word. A day only where
/// a line that is no heading has no schedule tag yet. Linear in the line.
std::optional<CompletionPlace> completionPlace(std::string_view line, std::size_t caret,
                                               const LineContext& context);

/// The line's edit that puts `word` there, written without sign or brackets: a tag, a title or a
/// day as "2019-03-05". The letters of a tag that are typed already stay as they are. A title gets
/// the closing brackets that are missing, and the caret stands behind them.
editor::Edit completionEdit(std::string_view line, const CompletionPlace& place,
                            std::string_view word);

/// A mark of the program's own that a line could have next.
struct NextMark {
    std::string word;           ///< without the sign
    base::TextRange selection;  ///< of `word` in UTF-16 units, selected once it stands there
};

/// What tells which marks mean something in a line.
struct MarkContext {
    base::NoteType noteType = base::NoteType::note;
    base::LocalTime now;
    base::HourCycle hourCycle = base::HourCycle::twentyFour;
};

/// Those that begin with what is typed at a mention's place, and mean something there: when a done
/// task was done, and which of how many repeats an open task of a day is. None with nothing typed.
std::vector<NextMark> nextMarks(std::string_view line, const CompletionPlace& place,
                                const grammar::MarkerSettings& markers, const MarkContext& context);

/// As `completionEdit` of its word, with the selection of the mark.
editor::Edit markEdit(std::string_view line, const CompletionPlace& place, const NextMark& mark);

}  // namespace tessaly::app
