// SPDX-License-Identifier: MIT
#include "desktop/editor_tools.h"

#include <utility>

#include "app/line_look.h"
#include "desktop/line_announcer.h"
#include "desktop/note_completion.h"
#include "desktop/note_editor.h"
#include "desktop/note_folding.h"
#include "desktop/note_images.h"
#include "desktop/qt_text.h"
#include "desktop/spelling_marks.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

using app::CommandId;

EditorTools::EditorTools(app::Services& services, Editors editors,
                         std::function<base::NoteType()> type, QWidget* parent)
    : QObject(parent), _services(services), _editors(editors) {
    makeImages(parent);
    _completion = new NoteCompletion(services, editors.note, std::move(type), this);
    _spelling = new SpellingMarks(services, editors.note);
    connect(_spelling, &SpellingMarks::notice, this, &EditorTools::notice);
    new LineAnnouncer(services, editors.note);
}

void EditorTools::makeImages(QWidget* pane) {
    store::DataStore& store = _services.dataStore();
    ports::MainQueue& mainQueue = _services.ports().mainQueue;
    _images = new NoteImages(
        {_services.ports().files,
         [&store](const std::string& name) { return store.pathOf(base::NoteType::images, name); },
         _services.ports().executor,
         [&mainQueue](base::Job job) { mainQueue.post(std::move(job)); }},
        pane);
    for (NoteEditor* editor : {&_editors.note, &_editors.version}) {
        editor->setImages(*_images);
        connect(editor, &NoteEditor::linkOpened, this, &EditorTools::linkOpened);
    }
}

void EditorTools::follow() {
    const settings::Globals& globals = _services.globals();
    const NoteEditor::Look look{Theme::instance().editorFont(
                                    globals.fontFamily(), globals.fontSize() + globals.fontDelta()),
                                static_cast<int>(globals.maxTextWidth()),
                                _services.markerSettings(), globals.isRenderingMarkdown()};
    for (NoteEditor* editor : {&_editors.note, &_editors.version}) {
        editor->setLook(look);
        editor->setMarkSettings({_services.markerSettings(), globals.defaultTodoCharacter()});
    }
    _editors.note.setLinkPaste(globals.isSmartMarkdownLink() ? NoteEditor::LinkPaste::overWords
                                                             : NoteEditor::LinkPaste::asText);
    _spelling->follow();
}

void EditorTools::startOver() {
    _images->startOver();
}

bool EditorTools::perform(CommandId command) {
    switch (command) {
        case CommandId::foldLine: foldLine(); return true;
        case CommandId::foldAll: _editors.note.folding().toggleAll(); return true;
        case CommandId::suggest: _completion->suggest(); return true;
        default: return false;
    }
}

/// The caret's line, or else the one that it belongs to.
void EditorTools::foldLine() {
    NoteFolding& folding = _editors.note.folding();
    if (const auto line = folding.nearest(_editors.note.textCursor().blockNumber())) {
        folding.toggle(*line);
    } else {
        Q_EMIT notice(trText("Nothing belongs to this line that could be folded."));
    }
}

void EditorTools::openLink(NoteEditor& editor) {
    if (!editor.openLinkAtCaret()) {
        Q_EMIT notice(trText("There is no link at the caret."));
    }
}

}  // namespace tessaly::desktop
