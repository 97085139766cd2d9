// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "base/text_range.h"
#include "desktop/line_moves.h"
#include "desktop/recorded_text_edit.h"
#include "desktop/typing_run.h"
#include "editor/edit.h"
#include "editor/editor_commands.h"
#include "editor/mark_action.h"

class QMenu;

namespace tessaly::desktop {

/// Edits a plain text: lists go on by themselves, every gesture is one undo step, and typing is one
/// up to the end of a word or a pause. Keys that an action of the window has are left to it.
class NoteEditor : public RecordedTextEdit {
    Q_OBJECT
public:
    explicit NoteEditor(QWidget* parent = nullptr);

    void setMarkSettings(const editor::MarkSettings& settings) { _markSettings = settings; }
    /// Whether an address that is pasted over words becomes their link.
    enum class LinkPaste { asText, overWords };
    void setLinkPaste(LinkPaste paste) { _linkPaste = paste; }
    /// One undo step; false: there was nothing to change.
    bool mark(editor::MarkAction action);
    /// A new form of a line, which holds no line break; the same: leave it.
    using LineRewrite = std::function<std::string(const std::string& line)>;
    /// Rewrites every line that the selection touches, as one undo step; how many are others then,
    /// or would be, if that were not refused.
    int rewriteLines(const LineRewrite& rewrite) { return rewriteLines(selectedLines(), rewrite); }

    /// Those that the selection touches.
    Lines selectedLines() const;
    /// As `rewriteLines` of the selection.
    int rewriteLines(Lines lines, const LineRewrite& rewrite);
    std::string lineText(int line) const;
    /// Moves lines as one undo step; those that are folded stay so.
    void moveLines(Lines lines, LineTarget target);
    /// Makes an edit of the text that begins at `start`, in UTF-16 units, with what is selected
    /// then. One undo step.
    void make(editor::Edit change, int start);

    /// Who may show the context menu with entries of its own: true, it will, by `popUpMenu`. Both
    /// places are the menu's, in the text and in global coordinates.
    using MenuHelper = std::function<bool(int position, const QPoint& place)>;
    void setMenuHelper(MenuHelper helper) { _menuHelper = std::move(helper); }
    /// Shows the context menu, with what `addFirst` puts on its top.
    void popUpMenu(const QPoint& place, const std::function<void(QMenu& menu)>& addFirst = {});

Q_SIGNALS:
    /// A key or an input method has written or deleted something, and the caret is behind it.
    void typed(tessaly::desktop::TypingRun::Kind kind);
    void escaped();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    QMimeData* createMimeDataFromSelection() const override;
    void insertFromMimeData(const QMimeData* source) override;

private:
    bool isWindowKey(const QKeyEvent& event) const;
    bool pressEditingKey(const QKeyEvent& event);
    void pressReturn(const QKeyEvent& event);
    void pressTab(editor::Indentation indentation);
    void pressDelete(TypingRun::Kind kind);
    void type(const QString& text);
    /// Makes a change as a part of the undo step of the keys before, where it belongs there.
    void inRun(TypingRun::Kind kind, const QString& text, const std::function<void()>& change);
    /// What the selection's lines hold, where they begin, and the selection in them.
    struct LinesText {
        std::string text;
        int start = 0;
        base::TextRange selection;
    };
    LinesText selectedLinesText() const;
    QMenu* makeMenu();
    bool openBoxMenu(const QPoint& place);
    void goToLineEnd(int line);
    bool moveFolded(editor::MarkAction action);
    void addLinkActions(QMenu& menu, const std::optional<ShownLink>& link);

    TypingRun _run;
    std::optional<int> _composedOver;  ///< the revision in which a selection made room for it
    editor::MarkSettings _markSettings;
    LinkPaste _linkPaste = LinkPaste::overWords;
    MenuHelper _menuHelper;
    std::optional<ShownLink> _menuLink;  ///< that the menu is asked for at
};

}  // namespace tessaly::desktop
