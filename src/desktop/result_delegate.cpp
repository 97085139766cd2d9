// SPDX-License-Identifier: MIT
#include "desktop/result_delegate.h"

#include <QAbstractItemView>
#include <QPainter>
#include <QPainterPath>
#include <QTextLayout>
#include <algorithm>

#include "desktop/icons.h"
#include "desktop/qt_text.h"
#include "desktop/task_rows.h"
#include "desktop/theme.h"

namespace tessaly::desktop {
namespace {

using ResultKind = ResultModel::Kind;
using Texts = ResultModel::Texts;
using Position = search::NotesViewItemPosition;
using grammar::TodoType;

constexpr int resultLineHeight = 30;
constexpr int listedNoteHeight = 48;
constexpr int sectionHeight = 34;
constexpr int gapAboveGroup = 8;
constexpr int gapBelowRows = 4;  // within the frame
constexpr int frameMargin = 10;
constexpr qreal groupFrameRadius = 8;
constexpr int rowMargin = 4;  // from the frame to the selected row's ground
constexpr qreal resultRadius = 6;
constexpr int resultPadding = 10;  // from the frame to what stands at the row's start
constexpr int resultBoxSize = 17;
constexpr int resultTextStart = resultPadding + resultBoxSize + 8;  // from the frame

/// One row while it is painted. Places are those of a text that runs from left to right, until
/// they are drawn.
class ResultRowPainter {
public:
    ResultRowPainter(QPainter& painter, const QStyleOptionViewItem& option,
                     const ResultModel& model, int row)
        : _painter(painter),
          _option(option),
          _theme(Theme::instance()),
          _colors(_theme.colors()),
          _item(model.item(row)),
          _kind(model.kind(row)),
          _texts(model.texts(row)),
          _frame(option.rect.adjusted(frameMargin, 0, -frameMargin, 0)) {
        if (_kind == ResultKind::section) {
            _frame.setTop(_frame.top() + gapAboveGroup);
        }
        _inner = _frame;
        if (isLast()) {
            _inner.setBottom(_inner.bottom() - gapBelowRows);
        }
    }

    void paint() {
        _painter.setRenderHint(QPainter::Antialiasing);
        if (_kind == ResultKind::loading) {
            paintLine(_inner.adjusted(resultPadding, 0, -resultPadding, 0), _colors.text2);
            return;
        }
        paintFrame();
        if (_kind == ResultKind::section) {
            paintSection();
            return;
        }
        paintGround();
        _kind == ResultKind::listedNote ? paintListedNote() : paintRow();
    }

private:
    bool isLast() const { return _item.position == Position::last; }
    bool isSelected() const { return _option.state.testFlag(QStyle::State_Selected); }
    QRect mirrored(const QRect& place) const {
        return QStyle::visualRect(_option.direction, _option.rect, place);
    }

    /// The part of the group's frame that lies in the row; the rest of it is cut off.
    void paintFrame() {
        _painter.save();
        _painter.setClipRect(_option.rect);
        QRectF whole(_frame);
        constexpr qreal beyond = 2 * groupFrameRadius;
        whole.adjust(0.5, _kind == ResultKind::section ? 0.5 : -beyond, -0.5,
                     isLast() ? -0.5 : beyond);
        _painter.setPen(QPen(_colors.line, 1));
        _painter.setBrush(_colors.window);
        _painter.drawRoundedRect(whole, groupFrameRadius, groupFrameRadius);
        _painter.restore();
    }

    void paintGround() {
        const bool isHovered = _option.state.testFlag(QStyle::State_MouseOver);
        const bool isCurrent = _option.state.testFlag(QStyle::State_HasFocus);
        if (!isSelected() && !isHovered && !isCurrent) {
            return;
        }
        const QRectF ground = QRectF(_inner).adjusted(rowMargin + 0.5, 1.5, -rowMargin - 0.5, -0.5);
        _painter.setPen(isCurrent ? QPen(_colors.accent, 1) : QPen(Qt::NoPen));
        _painter.setBrush(isSelected() ? QBrush(_colors.rowSelected)
                          : isHovered  ? QBrush(_colors.rowHover)
                                       : QBrush(Qt::NoBrush));
        _painter.drawRoundedRect(ground, resultRadius, resultRadius);
    }

    void paintSection() {
        const QRect place = _inner.adjusted(resultPadding, 0, -resultPadding, 0);
        const bool isDay = _item.noteType == base::NoteType::calendar || _item.filename.empty();
        paintSignAt(place, isDay ? IconName::calendar : IconName::note);
        QRect words = place;
        words.setLeft(_frame.left() + resultTextStart);
        const QFont titleFont = _theme.uiFont(13, QFont::DemiBold);
        const int titleWidth =
            std::min(words.width(), QFontMetrics(titleFont).horizontalAdvance(_texts.title) + 1);
        drawElided(QRect(words.topLeft(), QSize(titleWidth, words.height())), _texts.title,
                   titleFont, _colors.text);
        constexpr int leastFolderWidth = 40;
        words.setLeft(words.left() + titleWidth + resultPadding);
        if (words.width() >= leastFolderWidth) {
            drawElided(words, _texts.folder, _theme.uiFont(11), _colors.text2, Qt::AlignRight);
        }
    }

    void paintSignAt(const QRect& place, IconName name) {
        constexpr int size = 16;
        const QRect sign(place.left(), place.center().y() - size / 2 + 1, size, size);
        paintIcon(_painter, QRectF(mirrored(sign)), name, _colors.text2);
    }

    void drawElided(const QRect& place, const QString& words, const QFont& font,
                    const QColor& color, Qt::Alignment side = Qt::AlignLeft) {
        _painter.setFont(font);
        _painter.setPen(color);
        const QString shown = QFontMetrics(font).elidedText(words, Qt::ElideRight, place.width());
        _painter.drawText(mirrored(place),
                          static_cast<int>(QStyle::visualAlignment(_option.direction, side) |
                                           Qt::AlignAbsolute | Qt::AlignVCenter) |
                              Qt::TextSingleLine,
                          shown);
    }

    void paintListedNote() {
        QRect upper = _inner.adjusted(resultTextStart, 5, -resultPadding, 0);
        upper.setHeight(20);
        const bool isDay = _item.noteType == base::NoteType::calendar;
        paintSignAt(upper.adjusted(resultPadding - resultTextStart, 0, 0, 0),
                    isDay ? IconName::calendar : IconName::note);
        drawElided(upper, _texts.title, _theme.uiFont(13, QFont::Medium), _colors.text);
        paintLine(upper.translated(0, upper.height() - 1), _colors.text2, 12);
    }

    void paintRow() {
        if (_kind == ResultKind::task) {
            const QRect box = ResultDelegate::boxPlace(_option.rect, _kind, Qt::LeftToRight);
            paintTaskBox(_painter, QRectF(mirrored(box)), _item.lineType,
                         _option.state.testFlag(QStyle::State_MouseOver));
        } else if (_kind == ResultKind::event) {
            paintSignAt(_inner.adjusted(resultPadding, 0, 0, 0), IconName::calendar);
        }
        const bool isOver =
            _item.lineType == TodoType::done || _item.lineType == TodoType::cancelled;
        const bool isQuiet = _kind == ResultKind::task && isOver;
        paintLine(_inner.adjusted(resultTextStart, 0, -resultPadding, 0),
                  isQuiet ? _colors.text2 : _colors.text);
    }

    QList<QTextLayout::FormatRange> formats(const QString& words, int hidden) const {
        QList<QTextLayout::FormatRange> ranges;
        const auto add = [&](int start, int length, const QTextCharFormat& format) {
            const int first = std::max(start - hidden, 0);
            const int end = std::min(start + length - hidden, static_cast<int>(words.size()));
            if (first < end) {
                ranges.append({first, end - first, format});
            }
        };
        if (_kind == ResultKind::task && _item.lineType == TodoType::cancelled) {
            QTextCharFormat struck;
            struck.setFontStrikeOut(true);
            add(hidden, static_cast<int>(words.size()), struck);
        } else if (_item.lineType != TodoType::done) {
            for (const Texts::Span& span : _texts.spans) {
                QTextCharFormat colored;
                colored.setForeground(span.kind == Texts::SpanKind::tag ? _colors.tag
                                                                        : _colors.date);
                add(span.start, span.length, colored);
            }
        }
        QTextCharFormat marked;
        marked.setBackground(_colors.mark);
        marked.setForeground(_colors.text);
        add(_texts.matchStart, _texts.matchLength, marked);
        return ranges;
    }

    /// The content on one line, the match always in sight.
    void paintLine(const QRect& place, const QColor& color, int pixelSize = 13) {
        const QFont font = _theme.uiFont(pixelSize);
        const QFontMetrics metrics(font);
        QString words = _texts.content;
        const QString ellipsis = QStringLiteral("…");
        int hidden = 0;
        const int matchEnd = _texts.matchStart + _texts.matchLength;
        if (metrics.horizontalAdvance(words) > place.width() &&
            metrics.horizontalAdvance(words.left(matchEnd) + ellipsis) > place.width()) {
            hidden = unitsToHide(words, metrics, place.width());
            words = ellipsis + words.mid(hidden);
            --hidden;
        }
        words = metrics.elidedText(words, Qt::ElideRight, place.width());
        QTextLayout layout(words, font);
        layout.setFormats(formats(words, hidden));
        layout.setCacheEnabled(false);
        layout.beginLayout();
        QTextLine line = layout.createLine();
        layout.endLayout();
        if (!line.isValid()) {
            return;
        }
        const qreal slack = place.width() - line.naturalTextWidth();
        const bool isMirrored = _option.direction == Qt::RightToLeft;
        const QRect drawn = mirrored(place);
        const QPointF start(drawn.left() + (isMirrored ? std::max(slack, 0.0) : 0),
                            drawn.top() + (drawn.height() - line.height()) / 2);
        _painter.setPen(color);
        layout.draw(&_painter, start - QPointF(line.x(), 0));
    }

    /// So much that the match stands near the start of what is left.
    int unitsToHide(const QString& words, const QFontMetrics& metrics, int width) const {
        int start = _texts.matchStart;
        const int end = _texts.matchStart + _texts.matchLength;
        const int room = width * 4 / 5;
        while (start > 0 && metrics.horizontalAdvance(words.mid(start - 1, end - start)) < room) {
            --start;
        }
        if (start > 0 && words.at(start).isLowSurrogate()) {
            --start;
        }
        return start;
    }

    QPainter& _painter;
    const QStyleOptionViewItem& _option;
    const Theme& _theme;
    const Colors& _colors;
    const search::SearchResultItem& _item;
    const ResultKind _kind;
    const Texts& _texts;
    QRect _frame;
    QRect _inner;  ///< without the gap below the group's last row
};

int heightOfRow(ResultKind kind) {
    switch (kind) {
        case ResultKind::section: return gapAboveGroup + sectionHeight;
        case ResultKind::listedNote: return listedNoteHeight;
        case ResultKind::task:
        case ResultKind::line:
        case ResultKind::event:
        case ResultKind::loading: break;
    }
    return resultLineHeight;
}

}  // namespace

void ResultDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
    const auto* model = qobject_cast<const ResultModel*>(index.model());
    if (model == nullptr) {
        return;
    }
    painter->save();
    QStyleOptionViewItem shown = option;
    const auto* view = qobject_cast<const QAbstractItemView*>(option.widget);
    shown.state.setFlag(QStyle::State_HasFocus,
                        view != nullptr && view->hasFocus() && view->currentIndex() == index);
    ResultRowPainter(*painter, shown, *model, index.row()).paint();
    painter->restore();
}

QSize ResultDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const {
    const auto* model = qobject_cast<const ResultModel*>(index.model());
    if (model == nullptr) {
        return {};
    }
    const bool isLast = model->item(index.row()).position == Position::last;
    constexpr int leastWidth = 120;
    return {leastWidth, heightOfRow(model->kind(index.row())) + (isLast ? gapBelowRows : 0)};
}

QRect ResultDelegate::boxPlace(const QRect& row, ResultModel::Kind kind,
                               Qt::LayoutDirection direction) {
    if (kind != ResultKind::task) {
        return {};
    }
    const QRect box(row.left() + frameMargin + resultPadding,
                    row.top() + (resultLineHeight - resultBoxSize) / 2, resultBoxSize,
                    resultBoxSize);
    return QStyle::visualRect(direction, row, box);
}

}  // namespace tessaly::desktop
