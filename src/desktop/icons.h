// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>

namespace tessaly::desktop {

/// Our stroke icons, 24 x 24, drawn in any colour at any size.
enum class IconName {
    calendar,
    week,
    inbox,
    recent,
    note,
    folder,
    folderOpen,
    archive,
    trash,
    view,
    hashtag,
    mention,
    preferences,
    help,
    search,
    plus,
    more,
    close,
    check,
    cancel,
    schedule,
    back,
    forward,
    chevronDown,
    chevronRight,
    sideBar,
    rightPane,
    list,
    open,
    filter,
    undo,
    warning,
    save,
    jump,
    overdue,
    task,
    taskDone,
    taskCancelled,
    taskScheduled,
    chevronLeft,
    arrowLeft,
    arrowRight
};

/// Sharp at every scale of the screen.
QIcon icon(IconName name, const QColor& color);
/// `size` in pixels that do not depend on the scale.
QPixmap iconPixmap(IconName name, const QColor& color, int size, qreal devicePixelRatio);
void paintIcon(QPainter& painter, const QRectF& place, IconName name, const QColor& color);

}  // namespace tessaly::desktop
