// SPDX-License-Identifier: MIT
#include "desktop/note_layout.h"

#include <QScopedValueRollback>
#include <QTextBlock>
#include <QTextDocument>
#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "app/link_target.h"
#include "desktop/block_lines.h"
#include "desktop/block_pictures.h"
#include "desktop/qt_text.h"

namespace tessaly::desktop {

namespace {

constexpr qreal leastColumn = 60;
constexpr QRectF everything(0, 0, 1e9, 1e9);
constexpr qreal pictureShare = 0.6;  ///< of the view's height
constexpr qreal leastPicture = 80;

bool showsPicture(const BlockLook& look, const std::string* name) {
    return std::any_of(look.line.spans.begin(), look.line.spans.end(), [&](const auto& span) {
        return span.kind == app::SpanKind::image &&
               (name == nullptr || app::pictureFile(span.target) == *name);
    });
}

}  // namespace

NoteLayout::NoteLayout(QTextDocument* document)
    : QAbstractTextDocumentLayout(document),
      _fences(*document, [this](int block) { forget(block); }),
      _folds(*document, _fences, [this](int block) { onHidden(block); }),
      _tables(*document, [this](const QTextBlock& block) {
          return app::lineLook(utf8(block.text()), app::FenceState::outside, _markers);
      }) {
    // An edit that changes nothing is told of in this way alone.
    connect(document, &QTextDocument::contentsChanged, this,
            [this] { _revision = this->document()->revision(); });
}

void NoteLayout::setSideRoom(qreal room) {
    if (std::exchange(_sideRoom, room) != room) {
        forgetAll();
    }
}

void NoteLayout::setMarkers(const grammar::MarkerSettings& markers) {
    _markers = markers;
    forgetAll();
}

void NoteLayout::setRendering(bool isRendering) {
    if (std::exchange(_isRendering, isRendering) != isRendering) {
        forgetAll();
    }
}

app::LineLook NoteLayout::lookOf(const QTextBlock& block) const {
    const int number = block.blockNumber();
    const auto before = isKnown(number) ? _fences.before(number) : app::FenceState::outside;
    return app::lineLook(utf8(block.text()), before, _markers);
}

void NoteLayout::restyle() {
    forgetAll();
}

void NoteLayout::setImages(NoteImages* images) {
    _images = images;
    forgetAll();
}

void NoteLayout::setViewHeight(qreal height) {
    if (std::exchange(_viewHeight, height) != height) {
        forgetBlocksWithPictures(nullptr);
    }
}

void NoteLayout::forgetPicture(const std::string& name) {
    forgetBlocksWithPictures(&name);
}

/// Of one picture, or of all.
void NoteLayout::forgetBlocksWithPictures(const std::string* name) {
    if (_images == nullptr || !isKnown(0)) {
        return;
    }
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        const BlockLook* look = BlockLook::of(block);
        if (look != nullptr && showsPicture(*look, name)) {
            forget(block.blockNumber());
        }
    }
    askForSize();
    Q_EMIT update(everything);
}

void NoteLayout::setShownMarkup(int block) {
    for (const int changed : {std::exchange(_shownMarkup, block), block}) {
        const QTextBlock text = document()->findBlockByNumber(changed);
        const BlockLook* look = text.isValid() ? BlockLook::of(text) : nullptr;
        if (isKnown(changed) && look != nullptr &&
            (look->markup == Markup::shown) != (changed == _shownMarkup)) {
            forget(changed);
            Q_EMIT update(everything);
        }
    }
}

void NoteLayout::setHoveredBox(int block) {
    repaintChanged(_hoveredBox, block);
}

void NoteLayout::setPointedBlock(int block) {
    repaintChanged(_pointedBlock, block);
}

void NoteLayout::repaintChanged(int& told, int block) {
    if (told != block) {
        for (const int changed : {std::exchange(told, block), block}) {
            if (isKnown(changed)) {
                repaint(changed);
            }
        }
    }
}

bool NoteLayout::changeFolds(const std::function<bool(NoteFolds& folds)>& change) {
    const bool isChanged = change(_folds);
    if (isChanged) {
        askForSize();
        Q_EMIT update(everything);
    }
    return isChanged;
}

void NoteLayout::onHidden(int block) {
    _heights.setMeasured(block, lineEstimate().heightOf(document()->findBlockByNumber(block)));
    forget(block);
}

void NoteLayout::repaint(int block) {
    Q_EMIT update(blockBoundingRect(document()->findBlockByNumber(block)));
}

bool NoteLayout::measure(qreal top, qreal bottom) {
    bool isNew = false;
    for (int block = blockAt(top); isKnown(block); ++block) {
        if (document()->documentMargin() + _heights.top(block) > bottom) {
            break;
        }
        isNew = isNew || !_heights.isMeasured(block);
        ensure(document()->findBlockByNumber(block));
    }
    return isNew;
}

int NoteLayout::blockAt(qreal y) const {
    return _heights.blockAt(y - document()->documentMargin());
}

void NoteLayout::tellSize() {
    if (std::exchange(_hasOtherSize, false)) {
        Q_EMIT documentSizeChanged(documentSize());
    }
}

void NoteLayout::askForSize() const {
    if (!std::exchange(_hasOtherSize, true)) {
        auto* self = const_cast<NoteLayout*>(this);
        QMetaObject::invokeMethod(self, &NoteLayout::tellSize, Qt::QueuedConnection);
    }
}

QSizeF NoteLayout::documentSize() const {
    return {std::max(0.0, document()->pageSize().width()),
            _heights.top(_heights.count()) + 2 * document()->documentMargin()};
}

QRectF NoteLayout::frameBoundingRect(QTextFrame* /*frame*/) const {
    return {QPointF(0, 0), documentSize()};
}

QRectF NoteLayout::blockBoundingRect(const QTextBlock& block) const {
    const int number = block.isValid() ? block.blockNumber() : -1;
    if (number < 0 || number >= _heights.count()) {
        return {};
    }
    ensure(block);
    return {0, document()->documentMargin() + _heights.top(number), columnWidth() + 2 * _sideRoom,
            _heights.height(number)};
}

void NoteLayout::documentChanged(int from, int /*removed*/, int added) {
    if (_isStyling) {
        return;
    }
    _revision = document()->revision();
    const int lastPosition = document()->characterCount() - 1;
    const int first = document()->findBlock(std::min(from, lastPosition)).blockNumber();
    const int last = document()->findBlock(std::min(from + added, lastPosition)).blockNumber();
    const int more = document()->blockCount() - _heights.count();
    const int oldCount = last - first + 1 - more;
    if (first < 0 || last < first || oldCount < 0 || first + oldCount > _heights.count()) {
        replaceBlocks(0, _heights.count(), document()->blockCount());
    } else {
        replaceBlocks(first, oldCount, last - first + 1);
    }
    askForSize();
    Q_EMIT update(everything);
}

void NoteLayout::replaceBlocks(int first, int oldCount, int newCount) {
    std::vector<float> estimates;
    estimates.reserve(static_cast<std::size_t>(newCount));
    const LineEstimate lines = lineEstimate();
    QTextBlock block = document()->findBlockByNumber(first);
    for (int i = 0; i < newCount; ++i, block = block.next()) {
        estimates.push_back(lines.heightOf(block));
        // Its lines may have more characters than it has.
        block.clearLayout();
    }
    _heights.replace(first, oldCount, estimates);
    _fences.replace(first, oldCount, newCount);
    _folds.replaced(first, oldCount, newCount);
    for (const int row : _tables.neighbours(first, newCount)) {
        _heights.forget(row);
    }
    for (int* const told : {&_shownMarkup, &_hoveredBox, &_pointedBlock}) {
        *told += *told >= first + oldCount ? newCount - oldCount : 0;
    }
}

/// Blocks may be asked for while an edit is being made, and before it is told of.
bool NoteLayout::isKnown(int block) const {
    return block >= 0 && block < _heights.count() && _heights.count() == document()->blockCount() &&
           _revision == document()->revision();
}

void NoteLayout::forget(int block) const {
    _heights.forget(block);
}

void NoteLayout::forgetAll() {
    _tables.forget();
    for (int block = 0; block < _heights.count(); ++block) {
        _heights.forget(block);
    }
    askForSize();
    Q_EMIT update(everything);
}

float NoteLayout::LineEstimate::heightOf(const QTextBlock& block) const {
    return block.isVisible()
               ? static_cast<float>(std::max(1.0, std::ceil(block.length() / letters)) * pitch)
               : 0;
}

NoteLayout::LineEstimate NoteLayout::lineEstimate() const {
    const QFont font = document()->defaultFont();
    return {std::max(1.0, columnWidth() / (font.pixelSize() * 0.5)), linePitch(font)};
}

void NoteLayout::ensure(const QTextBlock& block) const {
    const int number = block.blockNumber();
    if (!isKnown(number)) {
        return;
    }
    const app::FenceState before = _fences.before(number);
    if (_heights.isMeasured(number)) {
        return;
    }
    if (!block.isVisible()) {
        _heights.setMeasured(number, 0);
        return;
    }
    auto look = std::make_unique<BlockLook>();
    if (_isRendering) {
        look->line = lookOf(block);
    } else {
        look->line.kind = app::LineLook::Kind::plain;
    }
    look->markup = number == _shownMarkup ? Markup::shown : Markup::quiet;
    look->isRightToLeft = readsRightToLeft(look->line, block.text());
    look->opensFence = before == app::FenceState::outside;
    look->shape = shapeOf(look->line, block.text(), document()->defaultFont());
    look->shape.indent = std::min(look->shape.indent, columnWidth() / 2);
    addOtherLooks(block, *look);
    const double height = _heights.height(number);
    _heights.setMeasured(number, static_cast<float>(layOut(block, *look)));
    // Belongs to the block from here on.
    QTextBlock(block).setUserData(look.release());
    if (height != _heights.height(number)) {
        askForSize();
    }
}

/// What a line alone does not tell.
void NoteLayout::addOtherLooks(const QTextBlock& block, BlockLook& look) const {
    if (look.line.kind == app::LineLook::Kind::table) {
        _tables.align(block, look, columnWidth());
    }
    if (_images != nullptr && showsPicture(look, nullptr)) {
        const PictureRoom room{columnWidth() - look.shape.indent,
                               std::max(leastPicture, _viewHeight * pictureShare)};
        addPictures(look, block.text(), *_images, room, document()->defaultFont());
    }
}

qreal NoteLayout::layOut(const QTextBlock& block, const BlockLook& look) const {
    const QScopedValueRollback styling(_isStyling, true);
    const qreal height = layOutBlock(block, look, {columnWidth(), _sideRoom});
    // The document has taken the formats for a change, which it would tell of with the next one.
    document()->markContentsDirty(block.position(), block.length());
    return height;
}

qreal NoteLayout::columnWidth() const {
    return std::max(leastColumn, document()->pageSize().width() - 2 * _sideRoom);
}

}  // namespace tessaly::desktop
