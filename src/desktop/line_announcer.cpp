// SPDX-License-Identifier: MIT
#include "desktop/line_announcer.h"

#include <QTextBlock>
#include <utility>

#include "app/line_words.h"
#include "desktop/note_editor.h"
#include "desktop/note_layout.h"
#include "desktop/qt_text.h"

namespace tessaly::desktop {

LineAnnouncer::LineAnnouncer(app::Services& services, NoteEditor& editor)
    : QObject(&editor), _services(services), _editor(editor) {
    // When there is nothing else to do: typing never waits for it.
    _timer.setSingleShot(true);
    _timer.setInterval(0);
    connect(&_timer, &QTimer::timeout, this, &LineAnnouncer::announce);
    connect(&_editor, &QTextEdit::cursorPositionChanged, &_timer, qOverload<>(&QTimer::start));
    connect(_editor.document(), &QTextDocument::contentsChanged, &_timer,
            qOverload<>(&QTimer::start));
}

NoteLayout& LineAnnouncer::layout() const {
    return static_cast<NoteLayout&>(*_editor.document()->documentLayout());
}

void LineAnnouncer::announce() {
    const QTextBlock block = _editor.textCursor().block();
    const app::LineLook look = layout().lookOf(block);
    const Line line{block.blockNumber(), look.kind, look.state, look.headingLevel};
    if (std::exchange(_told, line) != line) {
        _editor.setAccessibleDescription(wordsOf(block, look));
    }
}

QString LineAnnouncer::wordsOf(const QTextBlock& block, const app::LineLook& look) const {
    const std::string line = utf8(block.text());
    const auto nextLine = [next = block.next()]() mutable -> std::optional<std::string> {
        if (!next.isValid()) {
            return std::nullopt;
        }
        std::string text = utf8(next.text());
        next = next.next();
        return text;
    };
    const std::size_t below = app::subTasksBelow(line, nextLine, layout().markers());
    return qt(app::lineInWords(line, look, below, _services.today(), _services.dateStrings()));
}

}  // namespace tessaly::desktop
