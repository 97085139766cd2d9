// SPDX-License-Identifier: MIT
#include "desktop/result_list.h"

#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <algorithm>
#include <map>
#include <utility>

#include "desktop/list_anchor.h"
#include "desktop/qt_text.h"
#include "desktop/result_delegate.h"
#include "desktop/task_list_commands.h"
#include "desktop/theme.h"
#include "grammar/calendar_day.h"

namespace tessaly::desktop {
namespace {

using app::CommandId;
using ResultKind = ResultModel::Kind;
using Tasks = std::vector<tasks::TaskReference>;

app::Place placeOfRow(const search::SearchResultItem& row) {
    if (row.noteType != base::NoteType::calendar) {
        return app::Place::ofNote(row.filename);
    }
    const auto day = grammar::dayOfCalendarFilename(row.filename);
    return day ? app::Place::ofDay(*day) : app::Place::ofNote(row.filename);
}

/// What happens to a task whose box is clicked.
CommandId commandOfBox(grammar::TodoType state) {
    const bool isOver = state == grammar::TodoType::done || state == grammar::TodoType::cancelled;
    return isOver ? CommandId::reopenTask : CommandId::completeTask;
}

}  // namespace

ResultList::ResultList(QWidget* parent) : QListView(parent), _model(new ResultModel(this)) {
    setModel(_model);
    setItemDelegate(new ResultDelegate(this));
    setFrameShape(NoFrame);
    setSelectionMode(ExtendedSelection);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    verticalScrollBar()->setSingleStep(20);
    setEditTriggers(NoEditTriggers);
    setMouseTracking(true);
    viewport()->setAutoFillBackground(false);
    setAccessibleName(trText("List of results"));
    connect(&Theme::instance(), &Theme::changed, viewport(), qOverload<>(&QWidget::update));
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &ResultList::askForMore);
}

void ResultList::setView(const app::ListView& view) {
    const bool isAnother = view.rows == app::ListView::Rows::ofAnother;
    const ListAnchor held(*this);
    const int oldCurrent = isAnother ? -1 : currentIndex().row();
    if (isAnother) {
        unmark();
        setCurrentIndex({});
        clearSelection();
    }
    const std::vector<int> newRows = _model->show(view.results.items);
    executeDelayedItemsLayout();
    if (isAnother) {
        setCurrentIndex({});
        verticalScrollBar()->setValue(0);
        return;
    }
    if (oldCurrent >= 0) {
        restoreCurrent(oldCurrent, newRows);
    }
    held.restore(*this, newRows);
}

void ResultList::restoreCurrent(int oldCurrent, const std::vector<int>& newRows) {
    const bool hasGone = newRows[static_cast<std::size_t>(oldCurrent)] < 0;
    const QModelIndex current = _model->index(rowInPlaceOf(oldCurrent, newRows, *_model));
    const bool isAlone = !selectionModel()->hasSelection();
    selectionModel()->setCurrentIndex(current, hasGone && isAlone && !_isMarking
                                                   ? QItemSelectionModel::ClearAndSelect
                                                   : QItemSelectionModel::NoUpdate);
}

std::vector<int> ResultList::selectedRows() const {
    std::vector<int> rows;
    const QModelIndexList selected = selectionModel()->selectedIndexes();
    std::transform(selected.begin(), selected.end(), std::back_inserter(rows),
                   [](const QModelIndex& index) { return index.row(); });
    if (rows.empty() && currentIndex().isValid()) {
        rows.push_back(currentIndex().row());
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

std::vector<int> ResultList::selectedTaskRows() const {
    std::vector<int> rows = selectedRows();
    std::erase_if(rows, [this](int row) { return _model->kind(row) != ResultKind::task; });
    return rows;
}

Tasks ResultList::selectedTasks() const {
    Tasks tasks;
    for (const int row : selectedTaskRows()) {
        tasks.push_back(_model->reference(row));
    }
    return tasks;
}

QRect ResultList::selectionAnchor() const {
    const QRect place = visualRect(currentIndex()).intersected(viewport()->rect());
    const QRect shown = place.isEmpty() ? viewport()->rect().adjusted(0, 0, 0, -1) : place;
    return {viewport()->mapToGlobal(shown.topLeft()), shown.size()};
}

bool ResultList::perform(CommandId command) {
    if (command == CommandId::jumpToSource) {
        return open(currentIndex().row(), OpenFocus::follows);
    }
    if (const auto days = taskMoveOf(command)) {
        return shift(*days);
    }
    const Tasks tasks = selectedTasks();
    if (tasks.empty()) {
        return false;
    }
    if (command == CommandId::scheduleTask) {
        Q_EMIT scheduleAsked(tasks, selectionAnchor());
    } else if (taskStepOf(command)) {
        Q_EMIT gesture(command, tasks);
    } else {
        return false;
    }
    return true;
}

/// Tasks without a day go from today.
bool ResultList::shift(int days) {
    std::map<base::Day, Tasks> byDay;
    for (const int row : selectedTaskRows()) {
        const base::Day day = _model->item(row).day.value_or(_today);
        byDay[base::addDays(day, days)].push_back(_model->reference(row));
    }
    for (const auto& [day, tasks] : byDay) {
        Q_EMIT scheduled(tasks, day);
    }
    return !byDay.empty();
}

void ResultList::enter() {
    setFocus(Qt::OtherFocusReason);
    if (!currentIndex().isValid()) {
        moveBy(1);
    }
}

/// Over rows that one can be on; from nowhere, to the first or the last of them.
void ResultList::moveBy(int rows) {
    const int step = rows < 0 ? -1 : 1;
    int row =
        currentIndex().isValid() ? currentIndex().row() : (step > 0 ? -1 : _model->rowCount());
    int last = -1;
    for (int left = std::abs(rows); left > 0;) {
        row += step;
        if (row < 0 || row >= _model->rowCount()) {
            break;
        }
        if (_model->isSelectable(row)) {
            last = row;
            --left;
        }
    }
    if (last < 0) {
        return;
    }
    const QModelIndex next = _model->index(last);
    selectionModel()->setCurrentIndex(
        next, _isMarking ? QItemSelectionModel::NoUpdate : QItemSelectionModel::ClearAndSelect);
    scrollTo(next);
}

void ResultList::mark() {
    const QModelIndex current = currentIndex();
    if (!current.isValid()) {
        return;
    }
    if (!std::exchange(_isMarking, true)) {
        selectionModel()->select(current, QItemSelectionModel::Select);
    } else {
        selectionModel()->select(current, QItemSelectionModel::Toggle);
    }
    moveBy(1);
}

void ResultList::unmark() {
    _isMarking = false;
    _count.clear();
}

bool ResultList::open(int row, OpenFocus focus) {
    if (row < 0 || _model->item(row).filename.empty()) {
        return false;
    }
    const search::SearchResultItem item = _model->item(row);
    Q_EMIT opened(placeOfRow(item), item.lineIndex, focus);
    return true;
}

/// The letters of the list; a number before one of those that move does it so many times.
bool ResultList::performLetter(const QString& letter) {
    if (letter.size() != 1) {
        return false;
    }
    if (_count.take(letter)) {
        return true;
    }
    const int count = _count.spend();
    switch (letter.front().unicode()) {
        case 'j': moveBy(count); break;
        case 'k': moveBy(-count); break;
        case 'x':
        case ' ': mark(); break;
        case 'd': perform(CommandId::completeTask); break;
        case '-': perform(CommandId::cancelTask); break;
        case 's': perform(CommandId::scheduleTask); break;
        case '>': shift(count); break;
        case '<': shift(-count); break;
        case 't': scheduleToday(); break;
        case 'e': open(currentIndex().row(), OpenFocus::follows); break;
        case 'o': open(currentIndex().row(), OpenFocus::stays); break;
        case 'u': Q_EMIT gesture(CommandId::undoTask, {}); break;
        case '/': Q_EMIT searchAsked(); break;
        case '?': Q_EMIT gesture(CommandId::showShortcuts, {}); break;
        default: return false;
    }
    return true;
}

void ResultList::scheduleToday() {
    if (const Tasks tasks = selectedTasks(); !tasks.empty()) {
        Q_EMIT scheduled(tasks, _today);
    }
}

void ResultList::keyPressEvent(QKeyEvent* event) {
    const auto modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool isPlain = modifiers == Qt::NoModifier || modifiers == Qt::ShiftModifier;
    if (isPlain && performLetter(event->text())) {
        event->accept();
        return;
    }
    _count.clear();
    switch (isPlain ? event->key() : 0) {
        case Qt::Key_Return:
        case Qt::Key_Enter: open(currentIndex().row(), OpenFocus::follows); return;
        case Qt::Key_Escape: escape(); return;
        case Qt::Key_Menu: showMenu(selectionAnchor().bottomLeft()); return;
        default: break;
    }
    if (modifiers == Qt::NoModifier &&
        (event->key() == Qt::Key_Down || event->key() == Qt::Key_Up)) {
        moveBy(event->key() == Qt::Key_Down ? 1 : -1);
        return;
    }
    QListView::keyPressEvent(event);
}

void ResultList::escape() {
    if (_isMarking || selectionModel()->selectedIndexes().size() > 1) {
        unmark();
        selectionModel()->select(currentIndex(), QItemSelectionModel::ClearAndSelect);
        return;
    }
    Q_EMIT left();
}

int ResultList::taskBoxAt(const QPoint& place) const {
    const QModelIndex index = indexAt(place);
    if (!index.isValid()) {
        return -1;
    }
    constexpr int reach = 5;  // around the box
    const QRect box =
        ResultDelegate::boxPlace(visualRect(index), _model->kind(index.row()), layoutDirection());
    const bool isHit = box.isValid() && box.adjusted(-reach, -reach, reach, reach).contains(place);
    return isHit ? index.row() : -1;
}

void ResultList::mousePressEvent(QMouseEvent* event) {
    const QPoint place = event->position().toPoint();
    if (const int row = taskBoxAt(place); event->button() == Qt::LeftButton && row >= 0) {
        _isTicking = true;
        Q_EMIT gesture(commandOfBox(_model->item(row).lineType), {_model->reference(row)});
        return;
    }
    if (event->button() == Qt::LeftButton) {
        unmark();
    }
    QListView::mousePressEvent(event);
}

void ResultList::mouseReleaseEvent(QMouseEvent* event) {
    if (std::exchange(_isTicking, false)) {
        return;
    }
    QListView::mouseReleaseEvent(event);
    const QModelIndex index = indexAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && event->modifiers() == Qt::NoModifier &&
        index.isValid() && index == currentIndex()) {
        open(index.row(), OpenFocus::stays);
    }
}

void ResultList::mouseDoubleClickEvent(QMouseEvent* event) {
    if (taskBoxAt(event->position().toPoint()) >= 0) {
        _isTicking = true;  // the first click has done it
        return;
    }
    if (const QModelIndex index = indexAt(event->position().toPoint()); index.isValid()) {
        open(index.row(), OpenFocus::follows);
    }
}

void ResultList::contextMenuEvent(QContextMenuEvent* event) {
    showMenu(event->globalPos());
}

void ResultList::showMenu(const QPoint& place) {
    if (selectedTaskRows().empty()) {
        return;
    }
    QMenu menu(this);
    for (const CommandId id :
         {CommandId::completeTask, CommandId::cancelTask, CommandId::reopenTask,
          CommandId::scheduleTask, CommandId::taskLater, CommandId::taskEarlier,
          CommandId::taskWeekLater, CommandId::taskWeekEarlier, CommandId::jumpToSource}) {
        QAction* action = menu.addAction(trText(app::commandRow(id).text));
        connect(action, &QAction::triggered, this, [this, id] { perform(id); });
    }
    menu.exec(place);
}

void ResultList::resizeEvent(QResizeEvent* event) {
    QListView::resizeEvent(event);
    askForMore();
}

/// Before the end is in sight.
void ResultList::askForMore() {
    const QScrollBar* bar = verticalScrollBar();
    if (bar->value() + 2 * viewport()->height() >= bar->maximum()) {
        Q_EMIT moreWanted();
    }
}

}  // namespace tessaly::desktop
