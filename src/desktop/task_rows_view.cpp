// SPDX-License-Identifier: MIT
#include "desktop/task_rows_view.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QToolTip>
#include <algorithm>
#include <utility>

#include "desktop/task_list_commands.h"
#include "desktop/task_row_menu.h"
#include "desktop/theme.h"

namespace tessaly::desktop {
namespace {

using app::CommandId;
using Kind = TaskRow::Kind;

}  // namespace

TaskRowsView::TaskRowsView(QWidget* parent)
    : QListView(parent), _model{new TaskRowsModel(this)}, _delegate{new TaskRowDelegate(this)} {
    setModel(_model);
    setItemDelegate(_delegate);
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setResizeMode(Adjust);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    setMouseTracking(true);
    viewport()->setAutoFillBackground(false);
    verticalScrollBar()->setSingleStep(24);
    connect(&Theme::instance(), &Theme::changed, this, [this] {
        scheduleDelayedItemsLayout();
        viewport()->update();
    });
}

void TaskRowsView::show(std::function<std::vector<TaskRow>(OverdueFold)> make, base::Day today) {
    _make = std::move(make);
    _today = today;
    refill();
}

void TaskRowsView::refill() {
    const QModelIndex current = currentIndex();
    const std::optional<TaskRow> was =
        current.isValid() ? std::optional{_model->row(current)} : std::nullopt;
    const auto firstDay = [this] {
        return _model->rowCount() > 0 ? _model->row(_model->index(0)).day : base::Day{};
    };
    const base::Day dayBefore = firstDay();
    const int scrolled = verticalScrollBar()->value();
    _delegate->setHovered({}, TaskRowPart::none);
    _pressed = {};
    _model->setRows(_make(_fold));
    if (firstDay() != dayBefore) {
        scrollToTop();
        return;
    }
    executeDelayedItemsLayout();
    verticalScrollBar()->setValue(scrolled);
    if (was) {
        keepCurrent(*was, current.row());
    }
}

void TaskRowsView::keepCurrent(const TaskRow& was, int row) {
    const auto found = _model->find(was);
    const int last = _model->rowCount() - 1;
    QModelIndex next = _model->index(found.value_or(std::clamp(row, 0, std::max(0, last))));
    while (next.isValid() && !next.flags().testFlag(Qt::ItemIsEnabled)) {
        next = next.siblingAtRow(next.row() - 1);
    }
    if (next.isValid()) {
        selectionModel()->setCurrentIndex(next, QItemSelectionModel::ClearAndSelect);
    }
}

void TaskRowsView::setColumn(int width, int margin) {
    _columnWidth = width;
    _columnMargin = margin;
}

void TaskRowsView::resizeEvent(QResizeEvent* event) {
    const int spare = std::max(_columnMargin, (width() - _columnWidth) / 2);
    if (viewportMargins().left() != spare) {
        setViewportMargins(spare, 0, spare, 0);
    }
    QListView::resizeEvent(event);
    // The base class looks at the height alone.
    if (event->size().width() != event->oldSize().width()) {
        scheduleDelayedItemsLayout();
    }
}

const TaskRow* TaskRowsView::currentRow() const {
    return currentIndex().isValid() ? &_model->row(currentIndex()) : nullptr;
}

const TaskRow* TaskRowsView::currentTask() const {
    const TaskRow* const row = currentRow();
    return row != nullptr && row->kind == Kind::task ? row : nullptr;
}

bool TaskRowsView::perform(CommandId command) {
    if (command == CommandId::undoTask) {
        Q_EMIT undoAsked();
        return true;
    }
    const TaskRow* const found = currentTask();
    if (found == nullptr) {
        return false;
    }
    // Whoever hears of it may show other rows at once.
    const TaskRow row = *found;
    if (const auto step = taskStepOf(command)) {
        Q_EMIT ticked(row.task, *step);
        return true;
    }
    if (const auto days = taskMoveOf(command)) {
        scheduleBy(row, *days * _count.spend());
        return true;
    }
    switch (command) {
        case CommandId::scheduleTask: askSchedule(currentIndex()); return true;
        case CommandId::scheduleToday: Q_EMIT scheduled({row.task}, _today); return true;
        case CommandId::jumpToSource: Q_EMIT jumped(row.place, row.task.lineIndex); return true;
        default: return false;
    }
}

void TaskRowsView::tick(const TaskRow& row) {
    Q_EMIT ticked(row.task, isDoneWith(row) ? app::TaskStep::reopen : app::TaskStep::complete);
}

void TaskRowsView::scheduleBy(const TaskRow& row, int days) {
    Q_EMIT scheduled({row.task}, base::addDays(row.day, days));
}

void TaskRowsView::askSchedule(const QModelIndex& index) {
    const QRect rect = visualRect(index);
    const TaskRow row = _model->row(index);
    const QRect anchor = _delegate->partRect(row, TaskRowPart::schedule, rect, layoutDirection());
    Q_EMIT scheduleAsked({row.task},
                         QRect(viewport()->mapToGlobal(anchor.topLeft()), anchor.size()));
}

void TaskRowsView::toggleOverdue() {
    _fold = _fold == OverdueFold::folded ? OverdueFold::open : OverdueFold::folded;
    refill();
}

void TaskRowsView::activateRow(const QModelIndex& index) {
    if (!index.isValid()) {
        return;
    }
    const TaskRow row = _model->row(index);
    switch (row.kind) {
        case Kind::task: Q_EMIT jumped(row.place, row.task.lineIndex); break;
        case Kind::day: Q_EMIT dayChosen(row.day); break;
        case Kind::overdue: toggleOverdue(); break;
        default: break;
    }
}

void TaskRowsView::keyPressEvent(QKeyEvent* event) {
    constexpr auto modifiers = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    const QString typed = event->modifiers() & modifiers ? QString() : event->text();
    if (_count.take(typed)) {
        return;
    }
    if (const auto command = taskCommandOfTyped(typed); command && perform(*command)) {
        _count.clear();
        return;
    }
    const int count = _count.spend();
    const TaskRow* const row = currentRow();
    const bool isOverdueHead = row != nullptr && row->kind == Kind::overdue;
    const auto step = [this, count](int key) {
        for (int i = 0; i < count; ++i) {
            QKeyEvent arrow(QEvent::KeyPress, key, Qt::NoModifier);
            QListView::keyPressEvent(&arrow);
        }
    };
    switch (typed == QLatin1String("j")   ? Qt::Key_Down
            : typed == QLatin1String("k") ? Qt::Key_Up
                                          : event->key()) {
        case Qt::Key_Down: step(Qt::Key_Down); return;
        case Qt::Key_Up: step(Qt::Key_Up); return;
        case Qt::Key_Home:
        case Qt::Key_End:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown: QListView::keyPressEvent(event); return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (typed.isEmpty()) {
                break;
            }
            activateRow(currentIndex());
            return;
        case Qt::Key_Space:
            if (currentTask() != nullptr) {
                tick(TaskRow(*currentTask()));
                return;
            }
            activateRow(currentIndex());
            return;
        case Qt::Key_Left:
        case Qt::Key_Right:
            if (isOverdueHead &&
                row->isFolded == ((event->key() == Qt::Key_Right) != isRightToLeft())) {
                toggleOverdue();
            }
            return;
        default: break;
    }
    event->ignore();
}

TaskRowsView::Hit TaskRowsView::hitAt(const QPoint& point) const {
    const QModelIndex index = indexAt(point);
    if (!index.isValid()) {
        return {};
    }
    return {index,
            _delegate->partAt(_model->row(index), visualRect(index), point, layoutDirection())};
}

void TaskRowsView::mousePressEvent(QMouseEvent* event) {
    _count.clear();
    _pressed = event->button() == Qt::LeftButton ? hitAt(event->position().toPoint()) : Hit{};
    QListView::mousePressEvent(event);
}

void TaskRowsView::mouseReleaseEvent(QMouseEvent* event) {
    const Hit pressed = std::exchange(_pressed, {});
    const Hit released = hitAt(event->position().toPoint());
    QListView::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton && released.index.isValid() &&
        released.index == pressed.index && released.part == pressed.part) {
        act(released);
    }
}

void TaskRowsView::act(const Hit& hit) {
    const TaskRow row = _model->row(hit.index);
    switch (hit.part) {
        case TaskRowPart::box: tick(row); break;
        case TaskRowPart::schedule: askSchedule(hit.index); break;
        case TaskRowPart::jump: activateRow(hit.index); break;
        case TaskRowPart::body:
            if (row.kind != Kind::task) {
                activateRow(hit.index);
            }
            break;
        case TaskRowPart::none: break;
    }
}

void TaskRowsView::mouseDoubleClickEvent(QMouseEvent* event) {
    const Hit hit = hitAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && hit.part == TaskRowPart::body &&
        _model->row(hit.index).kind == Kind::task) {
        activateRow(hit.index);
    }
}

void TaskRowsView::mouseMoveEvent(QMouseEvent* event) {
    const Hit hit = hitAt(event->position().toPoint());
    const bool isHeading = hit.index.isValid() && _model->row(hit.index).kind == Kind::day;
    viewport()->setCursor(isHeading ? Qt::PointingHandCursor : Qt::ArrowCursor);
    _delegate->setHovered(hit.index, hit.part);
    viewport()->update();
    // The base would select what is dragged over.
    if (event->buttons() == Qt::NoButton) {
        QListView::mouseMoveEvent(event);
    }
}

void TaskRowsView::leaveEvent(QEvent* event) {
    _delegate->setHovered({}, TaskRowPart::none);
    viewport()->update();
    QListView::leaveEvent(event);
}

void TaskRowsView::contextMenuEvent(QContextMenuEvent* event) {
    const bool isKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = isKey ? currentIndex() : indexAt(event->pos());
    if (!index.isValid()) {
        return;
    }
    if (index.flags().testFlag(Qt::ItemIsEnabled)) {
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    }
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    fillTaskRowMenu(
        *menu, _model->row(index), [this](CommandId id) { perform(id); },
        [this] { activateRow(currentIndex()); });
    if (menu->isEmpty()) {
        delete menu;
        return;
    }
    menu->popup(isKey ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos());
}

QString TaskRowsView::toolTipOf(const Hit& hit) const {
    if (!hit.index.isValid() || _model->row(hit.index).kind != Kind::task) {
        return {};
    }
    const TaskRow& row = _model->row(hit.index);
    if (hit.part == TaskRowPart::body) {
        return _delegate->isCut(row, viewport()->width()) ? row.text : QString();
    }
    return taskRowToolTip(row, hit.part);
}

bool TaskRowsView::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QListView::viewportEvent(event);
    }
    const auto* const help = static_cast<QHelpEvent*>(event);
    const Hit hit = hitAt(help->pos());
    // Text of the user's is no mark-up.
    QToolTip::showText(help->globalPos(), toolTipOf(hit).toHtmlEscaped(), viewport(),
                       hit.index.isValid() ? visualRect(hit.index) : QRect());
    return true;
}

}  // namespace tessaly::desktop
