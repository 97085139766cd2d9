// SPDX-License-Identifier: MIT
#pragma once

#include <QTextCursor>
#include <functional>
#include <optional>

class QKeyEvent;

namespace tessaly::desktop {

class NoteLayout;
class NoteTextView;

/// What the caret has to do with lines that are folded away: keys go past them, and whatever else
/// brings the caret among them, or changes a line at their edge, unfolds them first.
class NoteFolding {
public:
    /// Both outlive it.
    NoteFolding(NoteTextView& view, NoteLayout& layout);

    bool canToggle(int line) const;
    /// The line that can be folded or unfolded, or else the nearest above that it belongs to.
    std::optional<int> nearest(int line) const;
    /// A caret that would not be seen goes to the line's end.
    void toggle(int line);
    /// Unfolds all, or, where nothing is folded, folds all headings, else all items.
    void toggleAll();

    /// To be called when the caret is somewhere else.
    void caretMoved();
    /// To be called before a key that edits the text does so.
    void beforeEdit(const QKeyEvent& event);
    /// `press` is what the key does otherwise.
    void pressKey(const QKeyEvent& event, const std::function<void()>& press);

private:
    void leaveHidden(QTextCursor before, const QKeyEvent& event);

    NoteTextView& _view;
    NoteLayout& _layout;
    bool _isMoving = false;
};

}  // namespace tessaly::desktop
