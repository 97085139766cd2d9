// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <map>
#include <utility>
#include <vector>

#include "app/note_address.h"

namespace tessaly::desktop {

class NoteTextView;

/// What is folded in the notes that were open, until the program ends. It is nowhere in the notes.
class KeptFolds {
public:
    /// Of the note that `view` shows.
    void keep(const app::NoteAddress& note, const NoteTextView& view);
    /// Folds the lines again whose text is what it was, at the same place.
    void bringBack(const app::NoteAddress& note, NoteTextView& view) const;

private:
    struct Head {
        int line;
        QString text;
    };
    using Key = std::pair<base::NoteType, std::string>;
    static Key keyOf(const app::NoteAddress& note) { return {note.type, note.filename}; }

    std::map<Key, std::vector<Head>> _heads;
};

}  // namespace tessaly::desktop
