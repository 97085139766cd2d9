// SPDX-License-Identifier: MIT
#include "desktop/note_pointer.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextDocument>
#include <algorithm>
#include <utility>

#include "desktop/note_folding.h"
#include "desktop/note_layout.h"
#include "desktop/note_text_view.h"

namespace tessaly::desktop {

namespace {

constexpr int scrollEvery = 30;  // ms
constexpr int scrollEdge = 28;
constexpr int scrollStep = 10;

}  // namespace

NotePointer::NotePointer(NoteTextView& view, NoteLayout& layout) : _view(view), _layout(layout) {
    _scrolling.setInterval(scrollEvery);
    connect(&_scrolling, &QTimer::timeout, this, &NotePointer::scrollAtEdge);
    connect(_view.document(), &QTextDocument::contentsChanged, this, &NotePointer::letGoWhenStale);
}

QPointF NotePointer::inDocument(const QPointF& place) const {
    return place + QPointF(0, _view.verticalScrollBar()->value());
}

int NotePointer::boxAt(const QPointF& place) const {
    return _layout.boxAt(inDocument(place));
}

NotePointer::Spot NotePointer::spotAt(const QPointF& place) const {
    if (const int box = boxAt(place); box >= 0) {
        return {Part::box, box};
    }
    const QPointF spot = inDocument(place);
    const int line = _layout.blockAt(spot.y());
    if (_layout.foldMarkOf(line).contains(spot)) {
        return {Part::foldMark, line};
    }
    return _layout.handleOf(line).adjusted(-2, -3, 2, 3).contains(spot) ? Spot{Part::handle, line}
                                                                        : Spot{};
}

bool NotePointer::press(const QMouseEvent& event) {
    if (_drag) {
        cancelDrag();
        return true;
    }
    _revision = _view.document()->revision();
    _pressed = event.button() == Qt::LeftButton ? spotAt(event.position()) : Spot{};
    _pressedAt = event.position();
    return _pressed.part != Part::none;
}

bool NotePointer::move(const QMouseEvent& event) {
    _place = event.position();
    if (_pressed.part == Part::none) {
        if (event.buttons() == Qt::NoButton) {
            point(_place);
        }
        return false;
    }
    const bool isFar = (_place - _pressedAt).manhattanLength() >= QApplication::startDragDistance();
    if (!_drag && isFar && !_view.isReadOnly() && _pressed.part != Part::foldMark) {
        _drag.emplace(_layout, _pressed.line, inDocument(_pressedAt));
        _layout.setHoveredBox(-1);
        _view.viewport()->setCursor(Qt::ClosedHandCursor);
        _scrolling.start();
    }
    if (_drag) {
        drag();
    }
    return true;
}

void NotePointer::drag() {
    _drag->moveTo(inDocument(_place));
    _view.viewport()->update();
}

bool NotePointer::release(const QMouseEvent& event) {
    const Spot pressed = std::exchange(_pressed, {});
    if (const auto dragged = std::exchange(_drag, std::nullopt)) {
        _scrolling.stop();
        _view.viewport()->update();
        if (dragged->isMove()) {
            Q_EMIT dropped(dragged->lines(), dragged->target());
        }
        point(event.position());
    } else if (pressed.part != Part::none && pressed == spotAt(event.position())) {
        if (pressed.part == Part::box) {
            Q_EMIT boxClicked(pressed.line);
        } else {
            Q_EMIT foldClicked(pressed.line);
        }
    }
    return pressed.part != Part::none;
}

void NotePointer::cancelDrag() {
    _drag.reset();
    _pressed = {};
    _scrolling.stop();
    _view.viewport()->update();
    point(_place);
}

/// What is held is a line by its number, which may be another line's now.
void NotePointer::letGoWhenStale() {
    const bool isHeld = _pressed.part != Part::none;
    if (isHeld && _revision != _view.document()->revision()) {
        cancelDrag();
    }
}

void NotePointer::leave() {
    if (!_drag) {
        _layout.setHoveredBox(-1);
        _layout.setPointedBlock(-1);
    }
}

void NotePointer::point(const QPointF& place) {
    const int line = _layout.blockAt(inDocument(place).y());
    const bool isReadOnly = _view.isReadOnly();
    const bool hasHandle = !isReadOnly || _view.folding().canToggle(line);
    Spot spot = hasHandle ? spotAt(place) : Spot{};
    if (isReadOnly && spot.part == Part::box) {
        spot = {};
    }
    _layout.setHoveredBox(spot.part == Part::box ? spot.line : -1);
    _layout.setPointedBlock(hasHandle ? line : -1);
    _view.viewport()->setCursor(spot.part == Part::none ? Qt::IBeamCursor : Qt::PointingHandCursor);
}

void NotePointer::scrollAtEdge() {
    const qreal bottom = _view.viewport()->height();
    const int step = _place.y() < scrollEdge            ? -scrollStep
                     : _place.y() > bottom - scrollEdge ? scrollStep
                                                        : 0;
    if (step != 0 && _drag) {
        QScrollBar& bar = *_view.verticalScrollBar();
        bar.setValue(bar.value() + step);
        drag();
    }
}

void NotePointer::paint(QPainter& painter) const {
    if (_drag) {
        _drag->paint(painter);
    }
}

}  // namespace tessaly::desktop
