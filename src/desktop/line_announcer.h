// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QTimer>

#include "app/line_look.h"
#include "app/services.h"

class QTextBlock;

namespace tessaly::desktop {

class NoteEditor;
class NoteLayout;

/// Tells assistive programs what the caret's line is that they cannot see: a task and its state, a
/// heading. It is the editor's description, which screen readers say when it changes: as the caret
/// comes to a line, or the line becomes something else, but not with each letter.
class LineAnnouncer : public QObject {
    Q_OBJECT
public:
    /// Belongs to the editor. `services` outlive it.
    LineAnnouncer(app::Services& services, NoteEditor& editor);

private:
    /// What a line is, but for its words.
    struct Line {
        int block = -1;
        app::LineLook::Kind kind = app::LineLook::Kind::text;
        grammar::TodoType state = grammar::TodoType::empty;
        std::size_t headingLevel = 0;
        bool operator==(const Line&) const = default;
    };

    NoteLayout& layout() const;
    void announce();
    QString wordsOf(const QTextBlock& block, const app::LineLook& look) const;

    app::Services& _services;
    NoteEditor& _editor;
    QTimer _timer;
    Line _told;
};

}  // namespace tessaly::desktop
