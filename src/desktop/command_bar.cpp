// SPDX-License-Identifier: MIT
#include "desktop/command_bar.h"

#include <QAccessible>
#include <QAction>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "desktop/command_actions.h"
#include "desktop/command_bar_delegate.h"
#include "desktop/command_bar_model.h"
#include "desktop/floating_frame.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

constexpr int widestBar = 560;
constexpr int aboveBar = 84;
constexpr int besideBar = 16;
constexpr int mostRowsShown = 9;
constexpr int barPadding = 8;

struct RowStep {
    int key;
    int rows;
};
constexpr int pageOfRows = mostRowsShown - 1;
constexpr std::array rowSteps{RowStep{Qt::Key_Down, 1},
                              RowStep{Qt::Key_Up, -1},
                              RowStep{Qt::Key_Tab, 1},
                              RowStep{Qt::Key_Backtab, -1},
                              RowStep{Qt::Key_PageDown, pageOfRows},
                              RowStep{Qt::Key_PageUp, -pageOfRows}};

/// The commands that work while the bar is open: it would be a surprise if what lies below it were
/// changed.
bool worksOverBar(const app::CommandRow& row) {
    return row.group == app::CommandGroup::program || row.id == app::CommandId::quickOpen;
}

}  // namespace

CommandBar::CommandBar(QWidget* window, CommandActions& actions, app::QuickOpen& quickOpen)
    : QWidget(window),
      _window(window),
      _actions(actions),
      _quickOpen(quickOpen),
      _panel(new QWidget(this)),
      _field(new QLineEdit),
      _list(new QListView),
      _hint(new QLabel),
      _model(new CommandBarModel(this)) {
    makePanel();
    _window->installEventFilter(this);
    _field->installEventFilter(this);
    connect(_field, &QLineEdit::textEdited, this, &CommandBar::refresh);
    connect(_list, &QListView::clicked, this,
            [this](const QModelIndex& index) { choose(index.row()); });
    connect(&Theme::instance(), &Theme::changed, this, &CommandBar::dress);
    dress();
    hide();
}

void CommandBar::makePanel() {
    _field->setFrame(false);
    _list->setModel(_model);
    _list->setItemDelegate(new CommandBarDelegate(_list));
    _list->setFrameShape(QFrame::NoFrame);
    _list->setFocusPolicy(Qt::NoFocus);
    _list->setMouseTracking(true);
    _list->setUniformItemSizes(true);
    _list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    _list->setVerticalScrollMode(QListView::ScrollPerPixel);
    _list->viewport()->setAutoFillBackground(false);
    _list->setAccessibleName(trText("Results"));
    auto* column = new QVBoxLayout(_panel);
    column->setContentsMargins(0, barPadding, 0, barPadding);
    column->setSpacing(barPadding);
    column->addWidget(_field);
    column->addWidget(_list);
    column->addWidget(_hint);
}

void CommandBar::showCommands() {
    popUp(Mode::commands);
}

void CommandBar::showNotes() {
    popUp(Mode::notes);
}

void CommandBar::popUp(Mode mode) {
    if (!isVisible()) {
        _focusBefore = _window->focusWidget();
    }
    _mode = mode;
    const bool areCommands = mode == Mode::commands;
    const QString prompt =
        areCommands ? trText("Type a command") : trText("Type the name of a note, or a day");
    _field->setPlaceholderText(prompt);
    _field->setAccessibleName(areCommands ? trText("Command palette") : trText("Open quickly"));
    _field->clear();
    refresh();
    raise();
    show();
    _field->setFocus(Qt::PopupFocusReason);
}

void CommandBar::close() {
    hide();
    if (_focusBefore) {
        _focusBefore->setFocus(Qt::PopupFocusReason);
    }
}

void CommandBar::refresh() {
    const QString typed = _field->text();
    _model->setRows(_mode == Mode::commands ? commandBarRows(_actions, utf8(typed))
                                            : commandBarRows(_quickOpen, typed));
    _list->scrollToTop();
    setHint();
    place();
    setCurrent(0);
}

void CommandBar::setHint() {
    const bool isEmpty = _model->rowCount() == 0;
    if (_mode == Mode::notes) {
        _hint->setText(isEmpty ? trText("There are no notes yet. Type a title to make one.")
                               : trText("Enter opens · Shift+Enter makes a note · Esc closes"));
    } else {
        _hint->setText(isEmpty ? trText("No command that can be used now has these letters.")
                               : trText("Enter does it · Esc closes"));
    }
}

/// Below the top, in the middle, as high as its rows.
void CommandBar::place() {
    setGeometry(_window->rect());
    const int rows = std::min(_model->rowCount(), mostRowsShown);
    const int room = _window->height() - aboveBar - 2 * barPadding - _field->sizeHint().height() -
                     _hint->sizeHint().height() - 3 * barPadding;
    const int height = std::min(rows * CommandBarDelegate::rowHeight, std::max(room, 0));
    _list->setVisible(rows > 0);
    _list->setFixedHeight(height);
    const int width = std::min(widestBar, _window->width() - 2 * besideBar);
    _panel->setGeometry((_window->width() - width) / 2, aboveBar, width,
                        _panel->layout()->totalSizeHint().height());
    update();
}

void CommandBar::setCurrent(int row) {
    if (_model->rowCount() == 0) {
        return;
    }
    const QModelIndex index = _model->index(row);
    _list->setCurrentIndex(index);
    _list->scrollTo(index);
    // The field keeps the focus, so nobody else would say which row is meant.
    QAccessibleEvent focus(_list, QAccessible::Focus);
    focus.setChild(row);
    QAccessible::updateAccessibility(&focus);
}

void CommandBar::step(int rows) {
    const int last = _model->rowCount() - 1;
    const int current = _list->currentIndex().row();
    const bool isRound = rows == 1 || rows == -1;
    int next = current + rows;
    if (isRound && (next < 0 || next > last)) {
        next = next < 0 ? last : 0;
    }
    setCurrent(std::clamp(next, 0, std::max(last, 0)));
}

void CommandBar::choose(int row) {
    if (row < 0 || row >= _model->rowCount()) {
        return;
    }
    const auto choice = _model->row(row).choice;
    close();
    if (const auto* command = std::get_if<app::CommandId>(&choice)) {
        _actions.run(*command);
    } else if (const auto* place = std::get_if<app::Place>(&choice)) {
        Q_EMIT opened(*place);
    } else {
        Q_EMIT newNoteAsked(std::get<NewNote>(choice).title);
    }
}

void CommandBar::makeNote() {
    const QString title = _field->text().simplified();
    if (!title.isEmpty()) {
        close();
        Q_EMIT newNoteAsked(title);
    }
}

bool CommandBar::handleKey(const QKeyEvent& event) {
    const int key = event.key();
    if (key == Qt::Key_Escape) {
        close();
        return true;
    }
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        const bool isShifted = event.modifiers().testFlag(Qt::ShiftModifier);
        isShifted&& _mode == Mode::notes ? makeNote() : choose(_list->currentIndex().row());
        return true;
    }
    const auto found = std::ranges::find(rowSteps, key, &RowStep::key);
    if (found == rowSteps.end()) {
        return false;
    }
    step(found->rows);
    return true;
}

/// Keeps keys of commands that do not work over the bar from them.
void CommandBar::claim(QKeyEvent& event) const {
    const QKeySequence pressed(event.keyCombination());
    const bool isLet = std::ranges::any_of(app::commandRows(), [&](const app::CommandRow& row) {
        return worksOverBar(row) && _actions.action(row.id)->shortcuts().contains(pressed);
    });
    if (!isLet) {
        event.accept();
    }
}

bool CommandBar::eventFilter(QObject* watched, QEvent* event) {
    if (watched == _window && event->type() == QEvent::Resize && isVisible()) {
        place();
    }
    if (watched != _field) {
        return false;
    }
    switch (event->type()) {
        case QEvent::ShortcutOverride:
            claim(static_cast<QKeyEvent&>(*event));
            return event->isAccepted();
        case QEvent::KeyPress: return handleKey(static_cast<QKeyEvent&>(*event));
        default: return false;
    }
}

void CommandBar::mousePressEvent(QMouseEvent* event) {
    if (!_panel->geometry().contains(event->pos())) {
        close();
    }
}

void CommandBar::dress() {
    const Theme& theme = Theme::instance();
    const Colors& colors = theme.colors();
    _field->setFont(theme.uiFont(15));
    _field->setStyleSheet(
        QStringLiteral("QLineEdit { border: none; border-bottom: 1px solid %1; border-radius: 0; "
                       "margin: 0 12px; padding: 8px 8px 12px 8px; background: transparent; }")
            .arg(colors.line.name()));
    _hint->setFont(theme.uiFont(11));
    _hint->setContentsMargins(20, 0, 20, 0);
    QPalette muted = _hint->palette();
    muted.setColor(QPalette::WindowText, colors.text2);
    _hint->setPalette(muted);
    QPalette clear = _list->palette();
    clear.setColor(QPalette::Base, Qt::transparent);
    _list->setPalette(clear);
    update();
}

void CommandBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintFloatingFrame(painter, _panel->geometry());
}

}  // namespace tessaly::desktop
