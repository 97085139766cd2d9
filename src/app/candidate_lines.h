// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "search/note_matcher.h"

namespace tessaly::app {

/// Tells the lines of a note that may match by its text as it is. Where a text of ASCII characters
/// is looked for, most notes need not be folded, and of the others only the lines that hold it. A
/// value that does not change; any thread.
class CandidateLines {
public:
    /// The matcher outlives it.
    explicit CandidateLines(const search::NoteMatcher& matcher);

    /// Whether they can be told; else all lines must be asked.
    bool canBeTold() const { return _canBeTold; }

    /// Whether bytes of any kind, a text or a name, hold none. Only where they can be told.
    bool areNoneIn(std::string_view bytes) const;

    /// Lines of a text, with a break between them, and which they were.
    struct Lines {
        std::string text;
        std::vector<std::size_t> indexes;  ///< from 0, in order
    };
    Lines of(std::string_view text) const;

private:
    const search::NoteMatcher& _matcher;
    bool _canBeTold;
    std::vector<std::string_view> _disguises;  ///< of letters that are looked for
};

}  // namespace tessaly::app
