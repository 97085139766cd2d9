// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/note_type.h"
#include "grammar/line_scanner.h"

namespace tessaly::store {

/// A completed task line with a repeat tag, in a note that has arrived.
struct FinishedRepeat {
    base::NoteType type;
    std::string filename;
    std::size_t lineIndex;  ///< from 0
    std::string line;
};

/// Adds those of a note, in line order; `scanner` is the calling thread's.
void addFinishedRepeats(base::NoteType type, const std::string& filename, std::string_view content,
                        const grammar::MarkerSettings& settings, grammar::NoteScanner& scanner,
                        std::vector<FinishedRepeat>& found);

}  // namespace tessaly::store
