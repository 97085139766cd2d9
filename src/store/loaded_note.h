// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "base/day.h"
#include "grammar/todo.h"
#include "ports/file_system.h"
#include "store/note_model.h"

namespace tessaly::store {

/// A general note (or a folder of them) in full. A value: copied, not shared.
struct LoadedNote {
    std::string title;
    std::string filename;  ///< relative to its kind's folder, with sub-folders
    std::string content;   ///< without a byte-order mark; empty when the file was not UTF-8
    base::Instant contentChangedDate{};
    base::Instant contentCreatedDate{};
    std::vector<std::string> hashTags;
    std::vector<std::string> atTags;
    std::vector<grammar::Todo> datedTodos;  ///< the tasks that carry a date of their own
    bool isFolder = false;
};

/// Reads `bytes` into a note; `scanner` is the calling thread's.
LoadedNote loadNote(std::string filename, std::string_view bytes, const ports::FileStamp& stamp,
                    const CountSettings& settings, grammar::NoteScanner& scanner);

}  // namespace tessaly::store
