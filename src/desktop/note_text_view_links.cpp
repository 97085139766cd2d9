// SPDX-License-Identifier: MIT
// What a text's links and pictures do where they are pointed at.
#include <QHelpEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QToolTip>

#include "desktop/note_images.h"
#include "desktop/note_layout.h"
#include "desktop/note_text_view.h"
#include "desktop/qt_text.h"

namespace tessaly::desktop {

void NoteTextView::setImages(NoteImages& images) {
    _layout->setImages(&images);
    connect(&images, &NoteImages::lookChanged, this, &NoteTextView::refreshPicture);
    connect(&images, &NoteImages::pictureDecoded, viewport(), qOverload<>(&QWidget::update));
}

void NoteTextView::refreshPicture(const QString& name) {
    keepSight([&] { _layout->forgetPicture(utf8(name)); });
    measureSight();
}

std::optional<ShownLink> NoteTextView::linkOrPictureAt(const QPointF& place) const {
    const auto link = linkAt(*_layout, inDocument(place));
    return link ? link : pictureAt(*_layout, inDocument(place));
}

/// Where markup is shown the user writes, and a click puts the caret.
std::optional<ShownLink> NoteTextView::openableAt(const QPointF& place,
                                                  Qt::KeyboardModifiers modifiers) const {
    auto link = linkAt(*_layout, inDocument(place));
    const bool isWithControl = modifiers == Qt::ControlModifier;
    const bool isOpenable =
        link && (isWithControl || (modifiers == Qt::NoModifier && link->markup == Markup::quiet));
    return isOpenable ? link : std::nullopt;
}

bool NoteTextView::pressLink(const QMouseEvent& event) {
    const auto link = event.button() == Qt::LeftButton
                          ? openableAt(event.position(), event.modifiers())
                          : std::nullopt;
    if (link) {
        _linkPress.begin(*link, event);
    }
    return link.has_value();
}

bool NoteTextView::releaseLink(QMouseEvent& event) {
    if (!_linkPress.isHeld()) {
        return false;
    }
    const LinkPress::End end = _linkPress.end(linkAt(*_layout, inDocument(event.position())));
    if (end.clicked) {
        Q_EMIT linkOpened(end.clicked->span);
    } else {
        QTextEdit::mousePressEvent(end.press.get());
        QTextEdit::mouseReleaseEvent(&event);
    }
    return true;
}

bool NoteTextView::openLinkAtCaret() {
    const auto link = linkAtCaret(textCursor());
    if (link) {
        Q_EMIT linkOpened(link->span);
    }
    return link.has_value();
}

bool NoteTextView::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto& help = static_cast<const QHelpEvent&>(*event);
        const auto link = linkAt(*_layout, inDocument(help.pos()));
        const QString tip = link ? linkToolTip(*link) : QString();
        if (tip.isEmpty()) {
            QToolTip::hideText();
        } else {
            QToolTip::showText(help.globalPos(), tip, viewport());
        }
        return true;
    }
    return QTextEdit::viewportEvent(event);
}

void NoteTextView::showLinkPointer(const QMouseEvent& event) {
    if (event.buttons() == Qt::NoButton && openableAt(event.position(), event.modifiers())) {
        viewport()->setCursor(Qt::PointingHandCursor);
    }
}

}  // namespace tessaly::desktop
