// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QString>

class QTextCursor;

namespace tessaly::desktop {

/// Which keys make one undo step: those that write up to the end of a word, or that delete in one
/// direction, with no pause, and neither caret nor text changed by anything else between them.
class TypingRun {
public:
    enum class Kind { none, typing, deleting, deletingForward };

    /// Whether a key that writes `text`, or deletes, belongs to the keys before.
    bool goesOn(Kind kind, const QString& text, const QTextCursor& caret) const;
    /// Such a key was pressed, and the caret is behind what it did.
    void add(Kind kind, const QString& text, const QTextCursor& caret);
    void end() { _kind = Kind::none; }

private:
    Kind _kind = Kind::none;
    QElapsedTimer _sinceKey;
    int _position = 0;  ///< of the caret behind the last key
    int _revision = 0;  ///< of the document, likewise
    bool _endsInBlank = false;
};

}  // namespace tessaly::desktop
