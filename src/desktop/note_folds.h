// SPDX-License-Identifier: MIT
#pragma once

#include <QTextCursor>
#include <functional>
#include <optional>
#include <vector>

#include "app/line_outline.h"

class QTextBlock;
class QTextDocument;

namespace tessaly::desktop {

class FenceStates;

/// Which lines of a document are folded away below a heading or a list item. They stay in the text
/// and are not shown. A fold moves with its head, and never swallows a line that was seen: an edit
/// that would make it so unfolds it. Lines are block numbers.
class NoteFolds {
public:
    /// Document and fences outlive it. `onHidden` is told each block that is shown or hidden from
    /// now on, as its `isVisible` says.
    NoteFolds(QTextDocument& document, FenceStates& fences,
              std::function<void(int block)> onHidden);

    app::OutlineLine outlineOf(int block) const;
    /// The last block that belongs to one, folded or not; nothing: none does.
    std::optional<int> lastOf(int block) const;
    bool canFold(int block) const;
    bool isFolded(int block) const;
    /// Of folded ones, in no order.
    std::vector<int> heads() const;
    /// How many lines with words in them a block hides; 0: it is not folded.
    int hiddenBy(int block) const;

    // False: it was so.
    bool fold(int block);
    bool unfold(int block);
    /// Every heading, or, where there is none, every item on the outermost level.
    bool foldAll();
    bool unfoldAll();
    /// Unfolds what hides the block.
    bool reveal(int block);

    /// The document has `newCount` blocks now in the place of `oldCount` from `first` on; its
    /// fences have been told.
    void replaced(int first, int oldCount, int newCount);

private:
    struct Fold {
        QTextCursor head;
        int last = 0;
        int lines = 0;  ///< with words in them
    };
    app::OutlineLines lines() const;
    int lineBehind(int last) const;
    bool touches(int first, int last) const;
    void add(int block);
    Fold foldTo(const QTextBlock& head, int last) const;
    void forgetOutdated();
    /// Every block is hidden or seen as the folds have it.
    bool apply();

    QTextDocument& _document;
    FenceStates& _fences;
    const std::function<void(int)> _onHidden;
    std::vector<Fold> _folds;
};

}  // namespace tessaly::desktop
