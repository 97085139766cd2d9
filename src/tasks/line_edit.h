// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/enum_names.h"
#include "base/failure.h"

namespace tessaly::tasks {

/// A change of one line of a text. Lines are without "\n" and without a "\r" at their end; those
/// that a text has are kept, and new lines get the text's own kind.
struct LineEdit {
    enum class Kind {
        replace,  ///< the line `before` becomes `after`
        remove,   ///< the line `before` goes
        insert,   ///< `after` becomes the line `newIndex` of the text as it will be
        append,   ///< `after` is added at the end, as text is added to a note
    };
    Kind kind = Kind::replace;
    std::size_t index = 0;     ///< replace, remove: of the line in the text as it was
    std::size_t newIndex = 0;  ///< of the line in the text as it will be; unused by remove
    std::string before;
    std::string after;
    /// insert: the line that stands before it in the text as it will be; where the text has
    /// changed, it is put behind that. Empty at the start of a text, and where nobody knows. Of
    /// edits that were made, also of other kinds; of a remove: in the text as it was.
    std::string anchor;
    /// How many lines like `after` (of a remove: like `before`) the text had before all its edits.
    std::size_t alike = 0;

    bool operator==(const LineEdit&) const = default;
};

struct EditedLines {
    std::string text;
    /// The edits as they were made: with the places and the anchors that they really had.
    std::vector<LineEdit> edits;
};

/// Whether all edits must find their lines, or those that cannot are left out.
enum class Strictness { allOrNothing, whatCanBe };

/// Makes all edits of a text at once; it has no byte-order mark. What follows the last line break
/// is a line unless it is empty. The text ends in a line break if it did before, or if its last
/// line is empty. A line to be replaced or removed is found by its index and text, else as the only
/// line with that text that no other edit takes; as many equal lines as there are edits of them are
/// taken in order.
/// An insert whose neighbour is not where it was goes behind the only line that is like `anchor`,
/// else as near to its place as the text allows: it never fails. Added lines come in order. Failure
/// `changed`, in words for the user, with `allOrNothing`: a line is not there, or there are several
/// like it.
base::Result<EditedLines> withEdits(std::string_view text, std::span<const LineEdit> edits,
                                    Strictness strictness = Strictness::allOrNothing);

/// The edits that take `edits`, as `withEdits` returned them, back from the text that they led to.
/// An appended line becomes one to remove. The lines are those from before; where nothing was left
/// of a text that ended in a line break, or all was new, that break is not.
std::vector<LineEdit> inverse(std::span<const LineEdit> edits);

/// Whether edits as `withEdits` returned them have been made in `text`, which others may have
/// changed since: whether it has more lines like one of the new ones than before, or, when no edit
/// makes more, fewer like one of the old ones. Edits that only move lines: whether more of them
/// stand behind their new neighbours than behind their old ones.
bool seemMade(std::string_view text, std::span<const LineEdit> edits);

}  // namespace tessaly::tasks

template <>
struct tessaly::base::EnumNames<tessaly::tasks::LineEdit::Kind> {
    using Kind = tasks::LineEdit::Kind;
    static constexpr std::array<EnumName<Kind>, 4> rows{{{Kind::replace, "replace"},
                                                         {Kind::remove, "remove"},
                                                         {Kind::insert, "insert"},
                                                         {Kind::append, "append"}}};
};
