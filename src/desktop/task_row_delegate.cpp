// SPDX-License-Identifier: MIT
#include "desktop/task_row_delegate.h"

#include <QAbstractItemView>
#include <QLinearGradient>
#include <QPainter>
#include <QStyle>
#include <QTextLayout>
#include <QTextOption>
#include <algorithm>
#include <cmath>

#include "desktop/icons.h"
#include "desktop/theme.h"

namespace tessaly::desktop {
namespace {

using RowKind = TaskRow::Kind;

constexpr int rowSide = 14;
constexpr int indentWidth = 20;
constexpr int taskBoxSize = 17;
constexpr int boxGap = 10;  // between the box and the text
constexpr int taskPadding = 6;
constexpr int detailHeight = 16;
constexpr int buttonSize = 24;
constexpr int teachingIcon = 28;
constexpr int groupGap = 13;

const TaskRow& taskRowAt(const QModelIndex& index) {
    return static_cast<const TaskRowsModel*>(index.model())->row(index);
}

/// A row's rectangle without what sets it apart.
QRect ownRect(const TaskRow& row, const QRect& rect) {
    return row.isSetApart ? rect.adjusted(0, groupGap, 0, 0) : rect;
}

int taskLineHeight(int textSize) {
    return textSize + 6;
}

int textStart(const TaskRow& row) {
    return rowSide + row.indents * indentWidth + taskBoxSize + boxGap;
}

bool isClosed(const TaskRow& row) {
    return row.state == grammar::TodoType::done || row.state == grammar::TodoType::cancelled;
}

// Lays `layout` out in lines of one height, and returns how many they are.
int breakLines(QTextLayout& layout, int width, int height, int most) {
    int count = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid() && count < most;
         line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, count * height + (height - line.height()) / 2});
        ++count;
    }
    layout.endLayout();
    return count;
}

QTextOption wrappingOption(Qt::LayoutDirection direction, Qt::Alignment alignment) {
    QTextOption option{alignment};
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(direction);
    return option;
}

/// A task's text in its lines, the last cut where there are too many.
struct TaskText {
    QTextLayout layout;
    int lines = 0;
    bool isCut = false;
};

void layOutTask(TaskText& task, const QString& text, const QFont& font, int width, int most) {
    const int height = taskLineHeight(font.pixelSize());
    task.layout.setFont(font);
    task.layout.setTextOption(wrappingOption(Qt::LayoutDirectionAuto, Qt::AlignLeading));
    task.layout.setText(text);
    task.lines = breakLines(task.layout, width, height, most + 1);
    if (task.lines <= most) {
        return;
    }
    const int start = task.layout.lineAt(most - 1).textStart();
    task.isCut = true;
    task.layout.clearLayout();
    task.layout.setText(text.left(start) +
                        QFontMetrics(font).elidedText(text.mid(start), Qt::ElideRight, width));
    task.lines = breakLines(task.layout, width, height, most);
}

QList<QTextLayout::FormatRange> tagFormats(const TaskRow& row) {
    QList<QTextLayout::FormatRange> formats;
    if (isClosed(row)) {
        return formats;
    }
    for (const auto& [start, length] : row.tags) {
        QTextCharFormat format;
        format.setForeground(Theme::instance().colors().tag);
        formats.append({start, length, format});
    }
    return formats;
}

QFont taskFont(const TaskRow& row, int size) {
    QFont font = Theme::instance().uiFont(size);
    font.setStrikeOut(row.state == grammar::TodoType::cancelled);
    return font;
}

void paintGround(QPainter& painter, const QStyleOptionViewItem& option, bool isHovered) {
    const Theme& theme = Theme::instance();
    const bool isCurrent = option.state.testFlag(QStyle::State_HasFocus);
    if (!isCurrent && !isHovered) {
        return;
    }
    painter.setPen(isCurrent && theme.look().contrast == Theme::Contrast::high
                       ? QPen(theme.colors().accent, 1)
                       : QPen(Qt::NoPen));
    painter.setBrush(isCurrent ? theme.colors().rowSelected : theme.colors().rowHover);
    painter.drawRoundedRect(QRectF(option.rect).adjusted(6.5, 0.5, -6.5, -0.5), 7, 7);
}

void paintLine(QPainter& painter, const QStyleOptionViewItem& option, const QRect& place,
               const QString& text, const QFont& font, const QColor& color) {
    const QRect visual = QStyle::visualRect(option.direction, option.rect, place);
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(visual,
                     static_cast<int>(QStyle::visualAlignment(option.direction,
                                                              Qt::AlignLeft | Qt::AlignVCenter)) |
                         Qt::TextSingleLine,
                     QFontMetrics(font).elidedText(text, Qt::ElideRight, visual.width()));
}

int headingHeight(RowKind kind) {
    switch (kind) {
        case RowKind::title: return 72;
        case RowKind::day: return 54;
        case RowKind::overdue: return 36;
        default: return 30;
    }
}

QRect headingRect(const QStyleOptionViewItem& option, int height) {
    const QRect& row = option.rect;
    return {row.left() + rowSide, row.bottom() - height - 3, row.width() - 2 * rowSide, height};
}

/// The text fades before what lies on it.
void fadeInto(QPainter& painter, const QRect& place, Qt::LayoutDirection direction,
              const QColor& ground) {
    constexpr int fade = 24;
    const bool isMirrored = direction == Qt::RightToLeft;
    const int edge = isMirrored ? place.right() + 1 : place.left();
    const int far = isMirrored ? edge + fade : edge - fade;
    QLinearGradient veil(far, 0, edge, 0);
    QColor clear = ground;
    clear.setAlpha(0);
    veil.setColorAt(0, clear);
    veil.setColorAt(1, ground);
    painter.fillRect(QRect(std::min(edge, far), place.top() + 1, fade, place.height() - 2), veil);
}

void paintTitle(QPainter& painter, const QStyleOptionViewItem& option, const TaskRow& row) {
    constexpr int usualTitle = 26;
    constexpr int smallestTitle = 14;
    const QRect place = headingRect(option, 36);
    QFont font = Theme::instance().uiFont(usualTitle, QFont::Bold);
    font.setLetterSpacing(QFont::AbsoluteSpacing, -0.4);
    while (font.pixelSize() > smallestTitle &&
           QFontMetrics(font).horizontalAdvance(row.text) > place.width()) {
        font.setPixelSize(font.pixelSize() - 1);
    }
    paintLine(painter, option, place, row.text, font, Theme::instance().colors().text);
}

void paintDay(QPainter& painter, const QStyleOptionViewItem& option, const TaskRow& row,
              bool isHovered) {
    const Theme& theme = Theme::instance();
    QFont font = theme.uiFont(16, QFont::DemiBold);
    QStyleOptionViewItem ground = option;
    ground.rect.setTop(option.rect.bottom() - 32);
    paintGround(painter, ground, false);
    font.setUnderline(isHovered);
    const QRect place = headingRect(option, 26);
    paintLine(painter, option, place, row.text, font,
              row.isToday ? theme.colors().accent : theme.colors().text);
    const int beside = QFontMetrics(font).horizontalAdvance(row.text) + 10;
    if (beside < place.width()) {
        paintLine(painter, option, place.adjusted(beside, 2, 0, 2), row.detail, theme.uiFont(12),
                  theme.colors().text2);
    }
}

void paintOverdue(QPainter& painter, const QStyleOptionViewItem& option, const TaskRow& row,
                  bool isHovered) {
    const Theme& theme = Theme::instance();
    paintGround(painter, option, isHovered);
    const QRect place = option.rect.adjusted(rowSide, 0, -rowSide, 0);
    QRect arrow(place.left(), place.center().y() - 8, taskBoxSize, taskBoxSize);
    arrow = QStyle::visualRect(option.direction, option.rect, arrow);
    const IconName folded =
        option.direction == Qt::RightToLeft ? IconName::back : IconName::chevronRight;
    paintIcon(painter, arrow, row.isFolded ? folded : IconName::chevronDown, theme.colors().red);
    const QFont font = theme.uiFont(13, QFont::Medium);
    const QFont countFont = theme.uiFont(12, QFont::Medium);
    const int countWidth = QFontMetrics(countFont).horizontalAdvance(row.detail) + 2;
    paintLine(painter, option, place.adjusted(taskBoxSize + boxGap, 0, -countWidth, 0), row.text,
              font, theme.colors().red);
    paintLine(painter, option, place.adjusted(place.width() - countWidth, 0, 0, 0), row.detail,
              countFont, theme.colors().red);
}

void paintTeaching(QPainter& painter, const QStyleOptionViewItem& option, const TaskRow& row) {
    const Theme& theme = Theme::instance();
    const QRect place = option.rect.adjusted(2 * rowSide, 0, -2 * rowSide, 0);
    const QRectF sign(place.center().x() - teachingIcon / 2, place.top() + 32, teachingIcon,
                      teachingIcon);
    paintIcon(painter, sign, IconName::taskDone, theme.colors().text3);
    painter.setFont(theme.uiFont(13, QFont::DemiBold));
    painter.setPen(theme.colors().text2);
    const int top = place.top() + 32 + teachingIcon + 10;
    painter.drawText(QRect(place.left(), top, place.width(), 20), Qt::AlignCenter, row.text);
    painter.setFont(theme.uiFont(12));
    painter.drawText(QRect(place.left(), top + 24, place.width(), place.bottom() - top - 24),
                     static_cast<int>(Qt::AlignHCenter | Qt::AlignTop) | Qt::TextWordWrap,
                     row.detail);
}

int teachingHeight(const TaskRow& row, int width) {
    const QFontMetrics metrics(Theme::instance().uiFont(12));
    const QRect room(0, 0, std::max(80, width - 4 * rowSide), 2000);
    return 32 + teachingIcon + 34 +
           metrics.boundingRect(room, Qt::AlignHCenter | Qt::TextWordWrap, row.detail).height() +
           16;
}

void paintHint(QPainter& painter, const QStyleOptionViewItem& option, const TaskRow& row) {
    paintLine(painter, option, option.rect.adjusted(rowSide, 0, -rowSide, 0), row.text,
              Theme::instance().uiFont(13), Theme::instance().colors().text2);
}

}  // namespace

void TaskRowDelegate::setMeasure(int textSize, int mostLines) {
    _textSize = textSize;
    _mostLines = mostLines;
}

void TaskRowDelegate::setHovered(const QModelIndex& index, TaskRowPart part) {
    _hovered = index;
    _hoveredPart = part;
}

QRect TaskRowDelegate::partRect(const TaskRow& row, TaskRowPart part, const QRect& whole,
                                Qt::LayoutDirection direction) const {
    const QRect rect = ownRect(row, whole);
    const int middle = rect.top() + taskPadding + taskLineHeight(_textSize) / 2;
    QRect place;
    switch (part) {
        case TaskRowPart::none: return {};
        case TaskRowPart::body: return rect;
        case TaskRowPart::box:
            place = {rect.left() + textStart(row) - boxGap - taskBoxSize, middle - taskBoxSize / 2,
                     taskBoxSize, taskBoxSize};
            break;
        case TaskRowPart::schedule:
        case TaskRowPart::jump: {
            const int fromEnd = part == TaskRowPart::jump ? buttonSize : 2 * buttonSize;
            place = {rect.right() - rowSide + 4 - fromEnd, middle - buttonSize / 2, buttonSize,
                     buttonSize};
            break;
        }
    }
    return QStyle::visualRect(direction, rect, place);
}

TaskRowPart TaskRowDelegate::partAt(const TaskRow& row, const QRect& rect, const QPoint& point,
                                    Qt::LayoutDirection direction) const {
    if (!rect.contains(point)) {
        return TaskRowPart::none;
    }
    if (row.kind != RowKind::task) {
        return TaskRowPart::body;
    }
    // The box is easier to hit than it is to see.
    const QRect box = partRect(row, TaskRowPart::box, rect, direction).adjusted(-5, -5, 5, 5);
    if (box.contains(point)) {
        return TaskRowPart::box;
    }
    for (const TaskRowPart part : {TaskRowPart::schedule, TaskRowPart::jump}) {
        if (partRect(row, part, rect, direction).contains(point)) {
            return part;
        }
    }
    return TaskRowPart::body;
}

bool TaskRowDelegate::isCut(const TaskRow& row, int width) const {
    TaskText task;
    layOutTask(task, row.text, taskFont(row, _textSize), width - textStart(row) - rowSide,
               _mostLines);
    return task.isCut;
}

void TaskRowDelegate::paintButtons(QPainter& painter, const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const {
    const Colors& colors = Theme::instance().colors();
    const TaskRow& row = taskRowAt(index);
    const bool isCurrent = option.state.testFlag(QStyle::State_HasFocus);
    const QRect schedule = partRect(row, TaskRowPart::schedule, option.rect, option.direction);
    const QRect jump = partRect(row, TaskRowPart::jump, option.rect, option.direction);
    const QColor ground = isCurrent ? colors.rowSelected : colors.rowHover;
    const QRect both = schedule.united(jump);
    painter.fillRect(both.adjusted(0, 1, 0, -1), ground);
    fadeInto(painter, both, option.direction, ground);
    const struct {
        TaskRowPart part;
        QRect rect;
        IconName icon;
    } buttons[] = {{TaskRowPart::schedule, schedule, IconName::schedule},
                   {TaskRowPart::jump, jump, IconName::jump}};
    for (const auto& button : buttons) {
        const bool isHot = _hovered == index && _hoveredPart == button.part;
        paintIcon(painter, QRectF(button.rect).adjusted(4, 4, -4, -4), button.icon,
                  isHot ? colors.accent : colors.text2);
    }
}

void TaskRowDelegate::paintTask(QPainter& painter, const QStyleOptionViewItem& whole,
                                const QModelIndex& index) const {
    const Colors& colors = Theme::instance().colors();
    const TaskRow& row = taskRowAt(index);
    QStyleOptionViewItem option = whole;
    option.rect = ownRect(row, whole.rect);
    if (row.isSetApart) {
        painter.fillRect(whole.rect.left() + rowSide, whole.rect.top() + groupGap / 2,
                         whole.rect.width() - 2 * rowSide, 1, colors.line);
    }
    const bool isHovered = _hovered == index;
    paintGround(painter, option, isHovered);
    painter.setLayoutDirection(option.direction);
    paintTaskBox(painter, partRect(row, TaskRowPart::box, whole.rect, option.direction), row.state,
                 isHovered && _hoveredPart == TaskRowPart::box);
    const QRect place = option.rect.adjusted(textStart(row), taskPadding, -rowSide, -taskPadding);
    TaskText task;
    task.layout.setFormats(tagFormats(row));
    layOutTask(task, row.text, taskFont(row, _textSize), place.width(), _mostLines);
    if (option.direction == Qt::RightToLeft || row.text.isRightToLeft()) {
        task.layout.setTextOption(
            wrappingOption(Qt::LayoutDirectionAuto, option.direction == Qt::RightToLeft
                                                        ? Qt::AlignRight | Qt::AlignAbsolute
                                                        : Qt::AlignLeft | Qt::AlignAbsolute));
        breakLines(task.layout, place.width(), taskLineHeight(_textSize), task.lines);
    }
    painter.setPen(isClosed(row) ? colors.text2 : colors.text);
    task.layout.draw(&painter, QStyle::visualRect(option.direction, option.rect, place).topLeft());
    if (!row.detail.isEmpty()) {
        const QRect below(place.left(), place.top() + task.lines * taskLineHeight(_textSize),
                          place.width(), detailHeight);
        paintLine(painter, option, below, row.detail, Theme::instance().uiFont(11),
                  row.isOverdue ? colors.date : colors.text2);
    }
    if (isHovered) {
        paintButtons(painter, whole, index);
    }
}

void TaskRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
    const TaskRow& row = taskRowAt(index);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    switch (row.kind) {
        case RowKind::title: paintTitle(*painter, option, row); break;
        case RowKind::day: paintDay(*painter, option, row, _hovered == index); break;
        case RowKind::overdue: paintOverdue(*painter, option, row, _hovered == index); break;
        case RowKind::task: paintTask(*painter, option, index); break;
        case RowKind::hint: paintHint(*painter, option, row); break;
        case RowKind::teaching: paintTeaching(*painter, option, row); break;
    }
    painter->restore();
}

QSize TaskRowDelegate::sizeHint(const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
    const TaskRow& row = taskRowAt(index);
    const auto* const view = qobject_cast<const QAbstractItemView*>(option.widget);
    const int width = view != nullptr ? view->viewport()->width() : option.rect.width();
    if (row.kind == RowKind::teaching) {
        return {width, teachingHeight(row, width)};
    }
    if (row.kind != RowKind::task) {
        return {width, headingHeight(row.kind)};
    }
    TaskText task;
    layOutTask(task, row.text, taskFont(row, _textSize), width - textStart(row) - rowSide,
               _mostLines);
    const int extra = (row.detail.isEmpty() ? 0 : detailHeight) + (row.isSetApart ? groupGap : 0);
    return {width, std::max(1, task.lines) * taskLineHeight(_textSize) + extra + 2 * taskPadding};
}

}  // namespace tessaly::desktop
