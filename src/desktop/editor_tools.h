// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QWidget>
#include <functional>

#include "app/commands.h"
#include "app/services.h"
#include "base/note_type.h"

namespace tessaly::app {
struct LookSpan;
}

namespace tessaly::desktop {

class NoteCompletion;
class NoteEditor;
class NoteImages;
class SpellingMarks;

/// What stands by an editor and knows nothing of how its note is kept: pictures, completion,
/// spelling, settings, what is told of the caret's line.
class EditorTools : public QObject {
    Q_OBJECT
public:
    struct Editors {
        NoteEditor& note;
        NoteEditor& version;  ///< shows pictures and links alone
    };
    /// `services` and the editors outlive it. `type` is that of the note that is open; `parent` is
    /// in sight while the editors are.
    EditorTools(app::Services& services, Editors editors, std::function<base::NoteType()> type,
                QWidget* parent);

    /// Settings or fonts have changed.
    void follow();
    /// Another note is opened.
    void startOver();
    /// False: the command is none of these tools'. For a note that can be edited.
    bool perform(app::CommandId command);
    void openLink(NoteEditor& editor);

Q_SIGNALS:
    /// In words for the user.
    void notice(const QString& text);
    void linkOpened(const tessaly::app::LookSpan& link);

private:
    void makeImages(QWidget* pane);
    void foldLine();

    app::Services& _services;
    const Editors _editors;
    NoteImages* _images = nullptr;
    NoteCompletion* _completion = nullptr;
    SpellingMarks* _spelling = nullptr;
};

}  // namespace tessaly::desktop
