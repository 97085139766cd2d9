// SPDX-License-Identifier: MIT
#include "desktop/typing_run.h"

#include <QTextCursor>
#include <QTextDocument>

namespace tessaly::desktop {

namespace {

constexpr qint64 typingPause = 1000;  // milliseconds

}  // namespace

bool TypingRun::goesOn(Kind kind, const QString& text, const QTextCursor& caret) const {
    const bool isNewWord =
        kind == Kind::typing && _endsInBlank && !text.isEmpty() && !text.front().isSpace();
    return kind == _kind && !isNewWord && !caret.hasSelection() && caret.position() == _position &&
           caret.document()->revision() == _revision && _sinceKey.elapsed() <= typingPause;
}

void TypingRun::add(Kind kind, const QString& text, const QTextCursor& caret) {
    _kind = kind;
    _position = caret.position();
    _revision = caret.document()->revision();
    _endsInBlank = !text.isEmpty() && text.back().isSpace();
    _sinceKey.start();
}

}  // namespace tessaly::desktop
