// SPDX-License-Identifier: MIT
#include "desktop/kept_folds.h"

#include <QTextBlock>
#include <QTextDocument>

#include "desktop/note_layout.h"
#include "desktop/note_text_view.h"

namespace tessaly::desktop {

namespace {

NoteLayout& layoutOf(const NoteTextView& view) {
    return static_cast<NoteLayout&>(*view.document()->documentLayout());
}

}  // namespace

void KeptFolds::keep(const app::NoteAddress& note, const NoteTextView& view) {
    std::vector<Head> heads;
    for (const int line : layoutOf(view).folds().heads()) {
        heads.push_back({line, view.document()->findBlockByNumber(line).text()});
    }
    if (heads.empty()) {
        _heads.erase(keyOf(note));
    } else {
        _heads[keyOf(note)] = std::move(heads);
    }
}

void KeptFolds::bringBack(const app::NoteAddress& note, NoteTextView& view) const {
    const auto kept = _heads.find(keyOf(note));
    if (kept == _heads.end()) {
        return;
    }
    layoutOf(view).changeFolds([&](NoteFolds& folds) {
        bool isChanged = false;
        for (const Head& head : kept->second) {
            const QTextBlock block = view.document()->findBlockByNumber(head.line);
            const bool isSame = block.isValid() && block.text() == head.text;
            isChanged = (isSame && folds.fold(head.line)) || isChanged;
        }
        return isChanged;
    });
}

}  // namespace tessaly::desktop
