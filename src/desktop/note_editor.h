// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QPlainTextEdit>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/text_range.h"
#include "desktop/document_edits.h"
#include "editor/edit.h"
#include "editor/editor_commands.h"
#include "editor/mark_action.h"

namespace tessaly::desktop {

/// Edits a plain text: lists go on by themselves, every gesture is one undo step, and typing is one
/// up to the end of a word or a pause. Keys that an action of the window has are left to it.
class NoteEditor : public QPlainTextEdit {
    Q_OBJECT
public:
    struct Look {
        QFont font;
        int textWidth = 720;  ///< widest that the column gets, in pixels
        bool operator==(const Look&) const = default;
    };
    enum class Editing { allowed, never };

    explicit NoteEditor(QWidget* parent = nullptr);

    void setLook(const Look& look);
    void setMarkSettings(const editor::MarkSettings& settings) { _markSettings = settings; }
    /// Text that is never edited can be selected and copied.
    void setEditing(Editing editing);
    bool canEdit() const { return _editing == Editing::allowed && !_isInPieces; }

    /// Another text, whose history begins. `shown` is an `app::shownText`. Lines that would hold
    /// the program up are shown in pieces; the text cannot be edited then, and `isInPieces`.
    void setText(const std::string& shown);
    bool isInPieces() const { return _isInPieces; }
    /// What the document holds; of a text in pieces, what was set.
    std::string text() const;
    /// Puts a text in the place of what is shown, changing what differs alone, as one undo step.
    /// The caret and what is seen stay where they are in the text.
    void replaceText(const std::string& shown);

    /// One undo step; false: there was nothing to change.
    bool mark(editor::MarkAction action);
    /// A new form of a line, which holds no line break; the same: leave it.
    using LineRewrite = std::function<std::string(const std::string& line)>;
    /// Rewrites every line that the selection touches, as one undo step; how many changed.
    int rewriteLines(const LineRewrite& rewrite);

    /// The lines that the selection touches, from 0.
    struct Lines {
        int first = 0;
        int last = 0;
    };
    Lines selectedLines() const;
    std::string lineText(int line) const;
    /// `column` in UTF-16 units, at most the line's length.
    void goToLine(int line, int column = 0);
    /// Of the caret, in global coordinates.
    QRect caretPlace() const;

    /// Ranges that are marked, in order, and which of them is the current one.
    void setMatches(std::vector<base::TextRange> matches, std::optional<std::size_t> current);

    /// In UTF-16 units; a key in a line of that length takes some 50 ms.
    static constexpr int longestLine = 64'000;

Q_SIGNALS:
    /// The user, undo or redo have changed the text; not said of `setText` and `replaceText`.
    void edited();
    /// In words for the user: why nothing was done.
    void notice(const QString& text);
    void escaped();

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    QMimeData* createMimeDataFromSelection() const override;
    void insertFromMimeData(const QMimeData* source) override;

private:
    /// What a run of keys that make one undo step does.
    enum class Run { none, typing, deleting, deletingForward };

    bool isWindowKey(const QKeyEvent& event) const;
    bool forwardMarginEvent(QEvent& event);
    QPointF inLine(QPointF place) const;
    void paintSelectedGaps(QPainter& painter, const QTextBlock& block, const QRectF& place) const;
    bool pressEditingKey(const QKeyEvent& event);
    void pressReturn(const QKeyEvent& event);
    void pressTab(editor::Indentation indentation);
    void pressDelete(Run run);
    void type(const QString& text);
    bool goesOn(Run run, const QString& text) const;
    /// Makes a change as a part of the undo step of the keys before, where it belongs there.
    void inRun(Run run, const QString& text, const std::function<void()>& change);
    /// What the selection's lines hold, where they begin, and the selection in them.
    struct LinesText {
        std::string text;
        int start = 0;
        base::TextRange selection;
    };
    LinesText selectedLinesText() const;
    /// An edit of the text that begins at `start`.
    void make(editor::Edit edit, int start);
    /// One undo step; the caret stays where it is in the text.
    void makeAroundCaret(const DocumentChanges& changes);
    void onContentsChange();
    void layOutColumn();
    void paintTheme();
    void showMatches();

    editor::MarkSettings _markSettings;
    int _textWidth = 720;
    Editing _editing = Editing::allowed;
    bool _isInPieces = false;
    std::string _piecesText;  ///< the whole text, while it is shown in pieces
    bool _isSetting = false;  ///< the program changes the text, not the user
    int _knownRevision = 0;
    std::vector<base::TextRange> _matches;
    std::optional<std::size_t> _currentMatch;

    Run _run = Run::none;
    QElapsedTimer _sinceKey;
    int _runPosition = 0;  ///< of the caret behind the last key of the run
    int _runRevision = 0;  ///< of the document, likewise
    bool _endsInBlank = false;
};

}  // namespace tessaly::desktop
