// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "desktop/document_edits.h"
#include "desktop/note_text_view.h"

namespace tessaly::desktop {

class DocumentHistory;

/// A text that a user edits and others change, too: undo takes back what the user did alone. Lines
/// are never longer than can be edited.
class RecordedTextEdit : public NoteTextView {
    Q_OBJECT
public:
    enum class Editing { allowed, never };

    explicit RecordedTextEdit(QWidget* parent = nullptr);

    /// Text that is never edited can be selected and copied.
    void setEditing(Editing editing);
    bool canEdit() const { return _editing == Editing::allowed && !_isInPieces; }

    /// Another text, whose history begins. `shown` is an `app::shownText`. Lines that would hold
    /// the program up are shown in pieces; the text cannot be edited then, and `isInPieces`.
    void setText(const std::string& shown);
    bool isInPieces() const { return _isInPieces; }
    /// What the document holds; of a text in pieces, what was set.
    std::string text() const;
    /// Puts a text in the place of what is shown, changing what differs alone. It is what others
    /// have made of the text, and stays when the user's steps around it are taken back. The caret
    /// and what is seen stay where they are in the text.
    void replaceText(const std::string& shown);

    /// Changes that the user has asked for, as one undo step. False: a line would have got too
    /// long, and the text is as it was.
    bool changeText(const DocumentChanges& changes);

    // In the place of the base's; of what the user did alone.
    bool canUndo() const;
    bool canRedo() const;
    void undo();
    void redo();
    void cut();

    /// In UTF-16 units; a key in a line of that length takes some 50 ms. What would make a longer
    /// one is not done.
    static constexpr int longestLine = 160'000;

Q_SIGNALS:
    /// The user, undo or redo have changed the text; not said of `setText` and `replaceText`.
    void edited();
    /// In words for the user: why nothing was done.
    void notice(const QString& text);

protected:
    /// Whether a change is a part of the undo step before.
    enum class Step { next, same };
    /// Makes a change, each block of edits being a step. False: a line would have got too long, and
    /// text and caret are as they were.
    bool edit(const std::function<void()>& change, Step step = Step::next);
    /// Where `make` makes these changes, the caret stays where it is in the text.
    void moveCaretAlong(const DocumentChanges& changes, const std::function<void()>& make);

private:
    struct Caret {
        int anchor = 0;
        int position = 0;
    };
    Caret caret() const;
    void setCaret(Caret caret);
    void goThroughHistory(std::optional<int> (DocumentHistory::*way)());

    DocumentHistory* const _history;
    Editing _editing = Editing::allowed;
    bool _isInPieces = false;
    std::string _piecesText;  ///< the whole text, while it is shown in pieces
    bool _isRefused = false;  ///< the last change would have made a line too long
};

}  // namespace tessaly::desktop
