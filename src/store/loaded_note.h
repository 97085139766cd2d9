// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "base/shared_text.h"
#include "grammar/line_scanner.h"
#include "grammar/todo.h"
#include "ports/file_system.h"
#include "store/note_model.h"

namespace tessaly::store {

/// Where a task that carries a date of its own stands in its note's content, in bytes.
struct DatedLine {
    std::uint32_t start = 0;
    std::uint32_t length = 0;
    std::uint32_t lineIndex = 0;
    grammar::LineClass line;
};

/// A general note (or a folder of them) in full. A value: copied, not shared but for the bytes of
/// its content, which nobody changes.
struct LoadedNote {
    std::string title;
    std::string filename;  ///< relative to its kind's folder, with sub-folders
    /// Without a byte-order mark; empty when the file was not UTF-8.
    base::SharedText content;
    base::Instant contentChangedDate{};
    base::Instant contentCreatedDate{};
    std::vector<std::string> hashTags;
    std::vector<std::string> atTags;
    std::vector<DatedLine> datedLines;
    bool isFolder = false;

    /// The tasks that carry a date of their own. Made when asked for: a folder has tens of
    /// thousands, and as records they would take more memory than all the notes.
    std::vector<grammar::Todo> datedTodos() const;
};

/// What a thread that reads many notes uses for all of them.
struct LoadingTools {
    grammar::NoteScanner scanner;
    base::TextArena texts;
};

/// Makes a note of its content, which is as that of a `LoadedNote`.
LoadedNote loadNote(std::string filename, base::SharedText content, const ports::FileStamp& stamp,
                    const CountSettings& settings, grammar::NoteScanner& scanner);

/// Reads `bytes` into a note; its content lies in the arena.
LoadedNote loadNote(std::string filename, std::string_view bytes, const ports::FileStamp& stamp,
                    const CountSettings& settings, LoadingTools& tools);

}  // namespace tessaly::store
