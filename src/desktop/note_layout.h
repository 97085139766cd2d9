// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractTextDocumentLayout>
#include <QPointer>
#include <QRectF>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "desktop/block_heights.h"
#include "desktop/block_style.h"
#include "desktop/fence_states.h"
#include "desktop/note_folds.h"
#include "desktop/note_images.h"
#include "desktop/table_layout.h"
#include "grammar/todo.h"

namespace tessaly::desktop {

struct PaintedBlock;

/// Lays out a note as Markdown looks, out of the plain text and nothing else: what it makes of the
/// text enters neither text nor undo. A block is looked at when it is drawn, pointed at or
/// asked for; how high the others are is guessed. All places are in pixels of the document.
class NoteLayout : public QAbstractTextDocumentLayout {
    Q_OBJECT
public:
    explicit NoteLayout(QTextDocument* document);

    /// Room on both sides of the text, which markup may hang out into.
    void setSideRoom(qreal room);
    void setMarkers(const grammar::MarkerSettings& markers);
    /// Whether Markdown is shown as what it means; else each line stands as it is written.
    void setRendering(bool isRendering);
    /// Colours or fonts have changed.
    void restyle();
    /// Where pictures come from; null, or gone: none are shown.
    void setImages(NoteImages* images);
    /// Of the view, of which a picture takes no more than a part.
    void setViewHeight(qreal height);
    /// More is known of a picture below the folder of images.
    void forgetPicture(const std::string& name);
    /// The block whose markup is shown; -1: none.
    void setShownMarkup(int block);
    /// The block whose box the pointer is on; -1: none.
    void setHoveredBox(int block);
    /// The block that the pointer is in, which shows its handle; -1: none.
    void setPointedBlock(int block);

    const NoteFolds& folds() const { return _folds; }
    /// Does something to the folds; false: nothing has come of it.
    bool changeFolds(const std::function<bool(NoteFolds& folds)>& change);

    /// What a line is, also where that is not shown.
    app::LineLook lookOf(const QTextBlock& block) const;
    const grammar::MarkerSettings& markers() const { return _markers; }

    /// Draws over a block's text, whose layout stands at its own place.
    using Overlay = std::function<void(QPainter& painter, const QTextBlock& block)>;
    void setOverlay(Overlay overlay) { _overlay = std::move(overlay); }

    /// Lays out what lies between; false: all of it was.
    bool measure(qreal top, qreal bottom);
    bool isMeasured(int block) const { return _heights.isMeasured(block); }
    int blockAt(qreal y) const;
    /// The text of a block, without the room on its sides.
    QRectF columnOf(const QTextBlock& block) const;
    /// Whether the block, which the document has, lies within a fence.
    app::FenceState fenceBefore(int block) const { return _fences.before(block); }
    /// The block whose box is there; -1: none.
    int boxAt(const QPointF& place) const;
    /// Where the box of a task is drawn; empty: there is none.
    QRectF boxOf(int block) const;
    bool isRightToLeft(int block) const;
    /// Before the line: what folds it, and what it is moved by. Empty: the line has none.
    QRectF handleOf(int block) const;
    /// Behind a folded line: how much it hides; empty: it is not folded.
    QRectF foldMarkOf(int block) const;
    /// Tells how large the document is at once, which is otherwise told once a turn.
    void tellSize();

    void draw(QPainter* painter, const PaintContext& context) override;
    int hitTest(const QPointF& point, Qt::HitTestAccuracy accuracy) const override;
    int pageCount() const override { return 1; }
    QSizeF documentSize() const override;
    QRectF frameBoundingRect(QTextFrame* frame) const override;
    QRectF blockBoundingRect(const QTextBlock& block) const override;

protected:
    void documentChanged(int from, int removed, int added) override;

private:
    bool isKnown(int block) const;
    void forgetAll();
    void forget(int block) const;
    void replaceBlocks(int first, int oldCount, int newCount);
    /// Of text that nobody has looked at yet.
    struct LineEstimate {
        qreal letters = 1;  ///< in a line
        qreal pitch = 0;
        float heightOf(const QTextBlock& block) const;
    };
    LineEstimate lineEstimate() const;
    void onHidden(int block);
    PaintedBlock paintedBlock(const QTextBlock& block, const BlockLook& look) const;
    const BlockLook* shownLook(const QTextBlock& block) const;
    void ensure(const QTextBlock& block) const;
    /// How high it is.
    qreal layOut(const QTextBlock& block, const BlockLook& look) const;
    qreal columnWidth() const;
    void addOtherLooks(const QTextBlock& block, BlockLook& look) const;
    void forgetBlocksWithPictures(const std::string* name);
    void askForSize() const;
    void repaint(int block);
    void repaintChanged(int& told, int block);

    // What is found out when it is asked for.
    mutable BlockHeights _heights;
    mutable FenceStates _fences;
    NoteFolds _folds;
    mutable TableLayout _tables;
    mutable bool _isStyling = false;
    mutable bool _hasOtherSize = false;

    grammar::MarkerSettings _markers;
    QPointer<NoteImages> _images;
    qreal _viewHeight = 600;
    bool _isRendering = true;
    Overlay _overlay;
    qreal _sideRoom = 24;
    int _shownMarkup = -1;
    int _hoveredBox = -1;
    int _pointedBlock = -1;
    int _revision = 0;  ///< of the document, when it was told of last
};

}  // namespace tessaly::desktop
