// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessaly::editor {

/// The number of the item behind one with these digits; nothing where that goes past 64 bits.
std::optional<std::uint64_t> numberAfter(std::string_view digits);

/// Logs that there is no number after that of `line`: "Could not increment numberin text: " with
/// the line, of a long one its beginning.
void logNoNumberAfter(std::string_view line);

/// The characters of white space that a line begins with.
std::size_t indentationOf(std::string_view line);

/// Numbers items as they follow each other. An item continues the numbered line before it at the
/// same indentation (`indentationOf`); lines indented deeper do not part the two, nor do blank
/// ones, any other line does.
class Numbering {
public:
    /// Continues the lists that stand before byte `place` of a text, the start of a line. A blank
    /// line there ends those before it.
    static Numbering before(std::string_view text, std::size_t place);

    /// The number of an item that comes next; 1 also where none can be worked out, which is logged.
    std::uint64_t next(std::size_t indentation) const;

    /// Notes a line that comes next, which holds no "\n".
    void pass(std::string_view line);

private:
    struct Item {
        std::size_t indentation;
        std::optional<std::uint64_t> next;
        std::string line;  ///< for the log, where `next` is nothing
    };
    std::vector<Item>
        _items;  // that lists may go on from, each indented deeper than the one before
};

}  // namespace tessaly::editor
