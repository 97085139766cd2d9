// SPDX-License-Identifier: MIT
#include "desktop/note_editor.h"

#include <QAction>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QTextBlock>
#include <algorithm>
#include <utility>

#include "desktop/long_lines.h"
#include "desktop/note_folding.h"
#include "desktop/note_layout.h"
#include "desktop/note_pointer.h"
#include "desktop/qt_text.h"
#include "editor/smart_link.h"

namespace tessaly::desktop {

namespace {

using editor::Indentation;

QString withDocumentEnds(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    for (const char16_t end : {u'\r', u'\u2029', u'\uFDD0', u'\uFDD1'}) {
        text.replace(QChar(end), u'\n');
    }
    return text;
}

/// What a key press writes; empty: nothing.
QString writtenBy(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    const bool isCommand = modifiers == Qt::ControlModifier ||
                           modifiers == (Qt::ControlModifier | Qt::ShiftModifier) ||
                           modifiers == Qt::AltModifier;
    const QString text = event.text();
    if (text.isEmpty() || isCommand) {
        return {};
    }
    const QChar first = text.front();
    const bool isWritten = first.isPrint() || first.category() == QChar::Other_Format ||
                           first.category() == QChar::Other_PrivateUse || first.isSurrogate();
    return isWritten ? text : QString();
}

}  // namespace

NoteEditor::NoteEditor(QWidget* parent) : RecordedTextEdit(parent) {
    setAccessibleName(trText("Note"));
    connect(this, &NoteTextView::linesDropped, this, &NoteEditor::moveLines);
}

bool NoteEditor::mark(editor::MarkAction action) {
    if (!canEdit()) {
        return false;
    }
    if (moveFolded(action)) {
        return true;
    }
    const auto made = editor::mark(action, text(), selectionOf(textCursor()), _markSettings);
    if (!made) {
        Q_EMIT notice(qt(made.failure().description));
        return false;
    }
    if (*made) {
        make(**made, 0);
    }
    return made->has_value();
}

int NoteEditor::rewriteLines(Lines lines, const LineRewrite& rewrite) {
    if (!canEdit()) {
        return 0;
    }
    DocumentChanges changes;
    int count = 0;
    for (int line = lines.first; line <= lines.last; ++line) {
        const std::string before = lineText(line);
        const int start = document()->findBlockByNumber(line).position();
        DocumentChanges ofLine = changesBetween(before, rewrite(before));
        count += ofLine.empty() ? 0 : 1;
        for (DocumentChange& change : ofLine) {
            change.position += start;
            changes.push_back(std::move(change));
        }
    }
    if (count > 0) {
        edit([&] { moveCaretAlong(changes, [&] { makeChanges(*document(), changes); }); });
    }
    return count;
}

Lines NoteEditor::selectedLines() const {
    const QTextCursor caret = textCursor();
    const QTextBlock first = document()->findBlock(caret.selectionStart());
    QTextBlock last = document()->findBlock(caret.selectionEnd());
    // A selection that ends before a line's first character has nothing of that line.
    if (last != first && last.position() == caret.selectionEnd()) {
        last = last.previous();
    }
    return {first.blockNumber(), last.blockNumber()};
}

std::string NoteEditor::lineText(int line) const {
    return utf8(document()->findBlockByNumber(line).text());
}

bool NoteEditor::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride &&
        isWindowKey(static_cast<const QKeyEvent&>(*event))) {
        event->ignore();
        return false;
    }
    return RecordedTextEdit::event(event);
}

/// The base class would take keys for itself that are somebody's command, such as Ctrl+K.
bool NoteEditor::isWindowKey(const QKeyEvent& event) const {
    const QKeySequence pressed(event.keyCombination());
    const QList<QAction*> actions = window()->actions();
    return std::any_of(actions.begin(), actions.end(), [&](const QAction* action) {
        return action->isEnabled() && action->shortcuts().contains(pressed);
    });
}

void NoteEditor::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && !pointer().isDragging()) {
        Q_EMIT escaped();
        return;
    }
    if (canEdit()) {
        folding().beforeEdit(*event);
        if (pressEditingKey(*event)) {
            event->accept();
            return;
        }
    }
    edit([&] { RecordedTextEdit::keyPressEvent(event); });
}

/// False: the key is not for us.
bool NoteEditor::pressEditingKey(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers =
        event.modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier);
    const bool isPlain = modifiers == Qt::NoModifier;
    const bool isPlainOrShift = isPlain || modifiers == Qt::ShiftModifier;
    const int key = event.key();
    if (isPlainOrShift && (key == Qt::Key_Return || key == Qt::Key_Enter)) {
        pressReturn(event);
    } else if (isPlainOrShift && (key == Qt::Key_Tab || key == Qt::Key_Backtab)) {
        pressTab(isPlain ? Indentation::more : Indentation::less);
    } else if (isPlainOrShift && key == Qt::Key_Backspace) {
        pressDelete(TypingRun::Kind::deleting);
    } else if (isPlain && key == Qt::Key_Delete) {
        pressDelete(TypingRun::Kind::deletingForward);
    } else if (event.matches(QKeySequence::Undo)) {
        undo();
    } else if (event.matches(QKeySequence::Redo)) {
        redo();
    } else if (const QString written = writtenBy(event); !written.isEmpty()) {
        type(written);
    } else {
        return false;
    }
    return true;
}

NoteEditor::LinesText NoteEditor::selectedLinesText() const {
    const QTextCursor caret = textCursor();
    const int start = document()->findBlock(caret.selectionStart()).position();
    const QTextBlock last = document()->findBlock(caret.selectionEnd());
    const base::TextRange lines{
        static_cast<std::size_t>(start),
        static_cast<std::size_t>(last.position() + last.length() - 1 - start)};
    base::TextRange selection = selectionOf(caret);
    selection.location -= lines.location;
    return {utf8(selectedTextOf(cursorAt(*document(), lines))), start, selection};
}

void NoteEditor::make(editor::Edit change, int start) {
    change.range.location += static_cast<std::size_t>(start);
    change.selection.location += static_cast<std::size_t>(start);
    edit([&] {
        makeEdit(*document(), change);
        setTextCursor(cursorAt(*document(), change.selection));
    });
}

/// With Shift, a line that does not go on as the one before.
void NoteEditor::pressReturn(const QKeyEvent& event) {
    const bool isBare = event.modifiers().testFlag(Qt::ShiftModifier);
    const LinesText lines = selectedLinesText();
    const auto edit = isBare ? std::nullopt : editor::continueList(lines.text, lines.selection);
    make(edit.value_or(editor::Edit{lines.selection, "\n", {lines.selection.location + 1, 0}}),
         lines.start);
}

void NoteEditor::pressTab(Indentation indentation) {
    const LinesText lines = selectedLinesText();
    if (const auto edit = editor::indent(lines.text, lines.selection, indentation)) {
        make(*edit, lines.start);
    } else if (indentation == Indentation::more) {
        type(QStringLiteral("\t"));
    }
}

void NoteEditor::pressDelete(TypingRun::Kind kind) {
    inRun(kind, {}, [&] {
        QTextCursor caret = textCursor();
        if (kind == TypingRun::Kind::deleting) {
            caret.deletePreviousChar();
        } else {
            caret.deleteChar();
        }
        setTextCursor(caret);
    });
}

void NoteEditor::type(const QString& text) {
    inRun(TypingRun::Kind::typing, text, [&] {
        QTextCursor caret = textCursor();
        caret.insertText(text);
        setTextCursor(caret);
    });
}

void NoteEditor::inRun(TypingRun::Kind kind, const QString& text,
                       const std::function<void()>& change) {
    const Step step = _run.goesOn(kind, text, textCursor()) ? Step::same : Step::next;
    if (edit(change, step)) {
        _run.add(kind, text, textCursor());
        Q_EMIT typed(kind);
    } else {
        _run.end();
    }
}

void NoteEditor::inputMethodEvent(QInputMethodEvent* event) {
    const QString text = event->commitString();
    if (text.isEmpty()) {
        const int revision = document()->revision();
        RecordedTextEdit::inputMethodEvent(event);
        if (event->preeditString().isEmpty()) {
            _composedOver.reset();
        } else if (document()->revision() != revision) {
            _composedOver = document()->revision();
        }
        return;
    }
    // What was selected goes when composing begins, and comes back with what took its place.
    if (std::exchange(_composedOver, std::nullopt) == document()->revision()) {
        _run.add(TypingRun::Kind::typing, {}, textCursor());
    }
    inRun(TypingRun::Kind::typing, text, [&] { RecordedTextEdit::inputMethodEvent(event); });
}

QMimeData* NoteEditor::createMimeDataFromSelection() const {
    auto* copied = new QMimeData;
    copied->setText(selectedTextOf(textCursor()));
    return copied;
}

void NoteEditor::insertFromMimeData(const QMimeData* source) {
    if (!canEdit() || !source->hasText()) {
        return;
    }
    // By way of UTF-8, since what is no UTF-16 could not be saved as it stands.
    const QString text = documentText(utf8(withDocumentEnds(source->text())));
    if (longestLineOf(text) > longestLine) {
        Q_EMIT notice(trText("The text has a line that is too long to be edited here."));
        return;
    }
    const std::string selected = utf8(selectedTextOf(textCursor()));
    const auto link =
        _linkPaste == LinkPaste::overWords ? editor::linkOver(selected, utf8(text)) : std::nullopt;
    edit([&] {
        QTextCursor caret = textCursor();
        caret.insertText(link ? documentText(*link) : text);
        setTextCursor(caret);
    });
}

}  // namespace tessaly::desktop
