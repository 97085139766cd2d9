// SPDX-License-Identifier: MIT
// What the commands do in the window.
#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QStackedWidget>
#include <QUrl>
#include <algorithm>
#include <cmath>
#include <filesystem>

#include "base/localisation.h"
#include "desktop/command_actions.h"
#include "desktop/command_bar.h"
#include "desktop/day_pane_view.h"
#include "desktop/header_bar.h"
#include "desktop/list_pane.h"
#include "desktop/main_window.h"
#include "desktop/note_editor.h"
#include "desktop/note_pane.h"
#include "desktop/qt_text.h"
#include "desktop/search_field.h"
#include "desktop/shortcuts_window.h"
#include "desktop/side_bar_pane.h"
#include "desktop/theme.h"
#include "desktop/week_agenda_view.h"
#include "desktop/window_tasks.h"

namespace tessaly::desktop {

using app::CommandGroup;
using app::CommandId;
using app::Place;
using Pane = WindowPanes::Pane;

void MainWindow::bindCommands() {
    _actions->bind(CommandGroup::go, [this](CommandId command) { runGo(command); });
    _actions->bind(CommandGroup::note, [this](CommandId command) { runOnNote(command); });
    _actions->bind(CommandGroup::task, [this](CommandId command) { runOnTasks(command); });
    for (const CommandGroup group : {CommandGroup::edit, CommandGroup::format}) {
        _actions->bind(group, [this](CommandId command) { _note->perform(command); });
    }
    _actions->bind(CommandGroup::view, [this](CommandId command) { runView(command); });
    _actions->bind(CommandId::palette, [this] { _commandBar->showCommands(); });
    _actions->bind(CommandId::showShortcuts, [this] { ShortcutsWindow::popUp(this, *_actions); });
    _actions->bind({CommandId::closeWindow, CommandId::quit}, [this](CommandId) { close(); });
}

void MainWindow::perform(CommandId command) {
    _actions->run(command);
}

void MainWindow::runGo(CommandId command) {
    switch (command) {
        case CommandId::goPreviousDay: return goDays(-1);
        case CommandId::goNextDay: return goDays(1);
        case CommandId::goToDate: return pickDate();
        case CommandId::quickOpen: return _commandBar->showNotes();
        case CommandId::search: _panes->setShown(Pane::sideBar, true); return _searchField->enter();
        case CommandId::showInbox: return showList({"//inbox", {}, base::tr("Inbox")});
        case CommandId::showRecent: return showList({"//recent", {}, base::tr("Recent")});
        default: runGoToPlace(command);
    }
}

/// Who asks for a place by its command wants to write there.
void MainWindow::runGoToPlace(CommandId command) {
    switch (command) {
        case CommandId::goToday: go(Place::ofDay(_today)); break;
        case CommandId::goWeek: go(Place::ofWeek(_selectedDay)); break;
        case CommandId::goBack:
            _places.back();
            showCurrentPlace();
            break;
        case CommandId::goForward:
            _places.forward();
            showCurrentPlace();
            break;
        default: return;
    }
    focusPane(Pane::middle);
}

void MainWindow::runOnNote(CommandId command) {
    if (command == CommandId::newNote) {
        return newNote(_sideBar->currentFolder());
    }
    if (command == CommandId::newFolder) {
        _panes->setShown(Pane::sideBar, true);
        return _sideBar->newFolder();
    }
    const auto open = _note->current();
    if (!open) {
        return;
    }
    if (command == CommandId::archiveDone) {
        return _tasks->archive({open->type, open->filename});
    }
    if (command == CommandId::openFolder) {
        return openFolderOf(open->type, open->filename);
    }
    const auto note = generalNote();
    if (!note) {
        return tell(trText("A day's note keeps its name and place."), true);
    }
    switch (command) {
        case CommandId::renameNote:
            _panes->setShown(Pane::sideBar, true);
            return _sideBar->renameNote(*note);
        case CommandId::moveNote: return _sideBar->moveNote(*note);
        case CommandId::trashNote: return _sideBar->trashNote(*note);
        case CommandId::copyNoteLink: return copyNoteLink(*note);
        default: return;
    }
}

/// A list that has the keys has the command, too; else the note has it.
void MainWindow::runOnTasks(CommandId command) {
    if (command == CommandId::undoTask) {
        return _tasks->undoLast();
    }
    const auto pane = _panes->paneOf(focusWidget());
    if (pane == Pane::list && _list->perform(command)) {
        return;
    }
    if (pane == Pane::right && _dayPane->rows().perform(command)) {
        return;
    }
    if (_middle->currentWidget() == _week) {
        _week->rows().perform(command);
    } else {
        _note->perform(command);
    }
}

void MainWindow::runView(CommandId command) {
    switch (command) {
        case CommandId::toggleSideBar: return _panes->toggle(Pane::sideBar);
        case CommandId::toggleList:
            if (!_panes->isShown(Pane::list) && _list->request() == app::ListRequest{}) {
                return runGo(CommandId::showInbox);
            }
            return _panes->toggle(Pane::list);
        case CommandId::toggleRightPane: return _panes->toggle(Pane::right);
        case CommandId::nextPane: return stepPane(1);
        case CommandId::previousPane: return stepPane(-1);
        case CommandId::largerText: return changeTextSize(1);
        case CommandId::smallerText: return changeTextSize(-1);
        case CommandId::usualText: return changeTextSize(-_services.globals().fontDelta());
        case CommandId::toggleSpelling: return toggleSpelling();
        case CommandId::fullScreen: return setWindowState(windowState() ^ Qt::WindowFullScreen);
        case CommandId::saveView: _list->perform(command); return;
        default: return;
    }
}

void MainWindow::updateCommands() {
    const auto pane = _panes->paneOf(focusWidget());
    const auto open = _note->current();
    const bool isNoteShown = _middle->currentWidget() == _note && open.has_value();
    app::CommandState state;
    state.canGoBack = _places.canGoBack();
    state.canGoForward = _places.canGoForward();
    state.hasNoteFile = isNoteShown;
    state.hasText = isNoteShown;
    state.hasTask = isNoteShown || _middle->currentWidget() == _week || pane == Pane::list ||
                    pane == Pane::right;
    state.hasList = _panes->isShown(Pane::list);
    _actions->setState(state);
    _header->setCanGo(state.canGoBack, state.canGoForward);
}

void MainWindow::changeTextSize(int step) {
    settings::Globals& globals = _services.globals();
    // Steps that nobody could see would have to be taken back one by one.
    const auto usual = static_cast<int>(std::lround(globals.fontSize()));
    const int size = std::clamp(usual + globals.fontDelta() + step, Theme::smallestEditorFont,
                                Theme::largestEditorFont);
    const bool isOther = size - usual != globals.fontDelta();
    if (isOther && globals.set("fontDelta", std::to_string(size - usual))) {
        _note->restyle();
    }
}

void MainWindow::toggleSpelling() {
    const bool isOn = !_services.globals().isCheckingSpelling();
    const auto set = _services.globals().set("isCheckingSpelling", isOn ? "on" : "off");
    if (!set) {
        return tell(qt(set.failure().description), true);
    }
    _note->restyle();
    tell(isOn ? trText("Spelling is checked.") : trText("Spelling is not checked."));
}

void MainWindow::focusPane(Pane pane) {
    switch (pane) {
        case Pane::sideBar: return _sideBar->focusTree();
        case Pane::list: return _list->enterList();
        case Pane::middle:
            return _middle->currentWidget() == _week ? _week->rows().setFocus()
                                                     : _note->editor().setFocus();
        case Pane::right: return _dayPane->rows().setFocus();
    }
}

void MainWindow::stepPane(int step) {
    focusPane(_panes->next(_panes->paneOf(focusWidget()).value_or(Pane::middle), step));
}

void MainWindow::openFolderOf(base::NoteType type, const std::string& filename) {
    const auto path = _services.dataStore().pathOf(type, filename);
    const std::string folder =
        path ? path->substr(0, path->find_last_of('/')) : _services.dataStore().root();
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(qt(folder)))) {
        tell(trText("No program opened the folder %1").arg(qt(folder)), true);
    }
}

void MainWindow::openTrash() {
    if (!QDesktopServices::openUrl(QUrl(QStringLiteral("trash:///")))) {
        tell(trText("No program opened the trash. Its notes are also in the history: "
                    "tessaly history"),
             true);
    }
}

void MainWindow::copyNoteLink(const std::string& filename) {
    const QByteArray encoded = QUrl::toPercentEncoding(qt(filename));
    QApplication::clipboard()->setText(
        QStringLiteral("tessaly://x-callback-url/openNote?fileName=") +
        QString::fromLatin1(encoded));
    tell(trText("Copied the note's link."));
}

}  // namespace tessaly::desktop
