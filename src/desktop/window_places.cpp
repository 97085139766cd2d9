// SPDX-License-Identifier: MIT
// Where the window is: days, notes and weeks, and the way between them.
#include <QStackedWidget>
#include <utility>

#include <fmt/format.h>

#include "app/schedule_text.h"
#include "base/localisation.h"
#include "desktop/command_bar.h"
#include "desktop/day_pane_view.h"
#include "desktop/header_bar.h"
#include "desktop/main_window.h"
#include "desktop/note_editor.h"
#include "desktop/note_pane.h"
#include "desktop/qt_text.h"
#include "desktop/schedule_popover.h"
#include "desktop/side_bar_pane.h"
#include "desktop/week_agenda_view.h"
#include "store/note_names.h"

namespace tessaly::desktop {

using app::Place;

namespace {

app::NoteAddress addressOf(const Place& place) {
    if (place.kind == Place::Kind::note) {
        return {base::NoteType::note, place.filename, std::nullopt};
    }
    return {base::NoteType::calendar, store::calendarFilename(place.day), place.day};
}

QString capitalised(QString text) {
    if (!text.isEmpty()) {
        text[0] = text[0].toUpper();
    }
    return text;
}

/// "Tuesday, 5 March"; of another year, with that.
QString dayTitle(base::Day day, base::Day today, const base::LocaleFormats& formats) {
    return capitalised(
        qt(formats.day(day, day.year() == today.year() ? "EEEEdMMMM" : "EEEEdMMMMyyyy")));
}

}  // namespace

void MainWindow::go(const Place& place, std::optional<std::size_t> line) {
    if (showPlace(place, line)) {
        _places.go(place);
        showHeader();
    }
}

/// False: the note that is open cannot be saved, and stays.
bool MainWindow::showPlace(const Place& place, std::optional<std::size_t> line) {
    if (place.kind == Place::Kind::week) {
        if (!_note->saveNow() && !makeReadyToEnd()) {
            return false;
        }
        _middle->setCurrentWidget(_week);
        refreshDays();
        _week->rows().setFocus();
    } else {
        if (!_note->show(addressOf(place), line)) {
            if (!makeReadyToEnd()) {
                return false;
            }
            _note->leave();
            _note->show(addressOf(place), line);
        }
        _middle->setCurrentWidget(_note);
        if (place.kind == Place::Kind::day) {
            selectDay(place.day);
        }
    }
    _sideBar->setCurrent(place);
    updateEditing();
    return true;
}

void MainWindow::updateEditing() {
    const auto open = _note->current();
    const bool isGoing =
        open && open->type == base::NoteType::note && _services.noteMoves().isGoing(open->filename);
    _note->editor().setEditing(isGoing ? NoteEditor::Editing::never : NoteEditor::Editing::allowed);
}

void MainWindow::showCurrentPlace() {
    if (showPlace(_places.current(), std::nullopt)) {
        showHeader();
    }
}

void MainWindow::goDays(int days) {
    const Place& place = _places.current();
    if (place.kind == Place::Kind::week) {
        go(Place::ofWeek(base::addDays(place.day, 7 * days)));
    } else {
        const base::Day day = place.kind == Place::Kind::day ? place.day : _selectedDay;
        go(Place::ofDay(base::addDays(day, days)));
    }
}

void MainWindow::pickDate() {
    const ScheduleContext context{_today, _services.globals().firstDayOfWeek(),
                                  _services.dateStrings().formats(), _selectedDay,
                                  trText("Go to date")};
    const QRect header{_header->mapToGlobal(QPoint(0, 0)), _header->size()};
    SchedulePopover::popUp(this, QRect(header.center().x(), header.top(), 1, header.height()),
                           context, [this](base::Day day) { go(Place::ofDay(day)); });
}

void MainWindow::selectDay(base::Day day) {
    _selectedDay = day;
    _services.globals().runTime().selectDate(day);
    _dayViews.requestDay(day, [this](const app::DayPane& pane) {
        _dayPane->show(pane, _today);
        showHeader();
    });
}

QString MainWindow::weekInWords(base::Day day) const {
    return qt(fmt::format(fmt::runtime(base::tr("Week {}")),
                          app::weekNumber(day, _services.globals().firstDayOfWeek())));
}

/// "Week 10 · 5 open tasks"; of a day near today, with what it is called: "Tomorrow · Week 10".
QString MainWindow::daySubtitle(base::Day day) const {
    QStringList parts{weekInWords(day)};
    const auto& names = _services.dateStrings();
    const std::string relative = names.relativeDay(day, _today);
    if (day != _today && relative != names.dayHeader(day)) {
        parts.prepend(capitalised(qt(relative)));
    }
    const auto note = _services.noteCache().calendarNotes()->find(day);
    if (const int open = note ? note->model.numOpenTodos + note->model.numOpenNoteTodos : 0) {
        parts.append(qt(fmt::format(fmt::runtime(base::trPlural("{} open task", "{} open tasks",
                                                                static_cast<unsigned long>(open))),
                                    names.formats().number(open))));
    }
    return parts.join(QStringLiteral("  ·  "));
}

void MainWindow::showHeader() {
    const Place& place = _places.current();
    const auto& names = _services.dateStrings();
    QString title;
    QString subtitle;
    bool isToday = false;
    switch (place.kind) {
        case Place::Kind::day:
            title = dayTitle(place.day, _today, names.formats());
            subtitle = daySubtitle(place.day);
            isToday = place.day == _today;
            break;
        case Place::Kind::week:
            title = weekInWords(place.day);
            subtitle = qt(names.formats().day(place.day, "MMMMyyyy"));
            break;
        case Place::Kind::note:
            title = _note->title();
            subtitle = qt(place.filename.substr(0, place.filename.find_last_of('/') + 1));
            subtitle.chop(1);
            break;
    }
    _header->setTitle(title);
    _header->setSubtitle(subtitle);
    _header->setDayArrows(place.kind != Place::Kind::note);
    _header->setTodayButton(!isToday);
    setWindowTitle(title + QStringLiteral(" – Tessaly"));
    updateCommands();
}

void MainWindow::refreshDays() {
    selectDay(_selectedDay);
    const Place& place = _places.current();
    if (_middle->currentWidget() == _week) {
        const base::Day day = place.kind == Place::Kind::week ? place.day : _selectedDay;
        _dayViews.requestWeek(
            day, [this](const app::WeekAgenda& agenda) { _week->show(agenda, _today); });
    }
}

/// Midnight has passed, the machine was asleep, or the clock was set.
void MainWindow::noticeNewDay() {
    if (const base::Day today = _services.today(); today != _today) {
        const bool wasToday = _selectedDay == std::exchange(_today, today);
        if (wasToday && !_note->isAncestorOf(focusWidget())) {
            go(Place::ofDay(today));
        }
        refreshDays();
        showHeader();
    }
}

void MainWindow::noteRenamed(const std::string& from, const std::string& to) {
    const Place before = _places.current();
    _places.renamed(from, to);
    if (_places.current() != before) {
        if (_note->current() && !to.empty()) {
            // Under the new name, with what was typed meanwhile; a note that cannot be saved stays
            // open as it is, and is saved there when it can be.
            if (_note->saveNow()) {
                _note->follow(addressOf(_places.current()));
            }
        } else {
            _note->leave();  // saved before its file went, and not typed into since
        }
        showCurrentPlace();
    }
}

void MainWindow::newNote(const std::string& folder, const std::string& title) {
    const Title kind = title.empty() ? Title::asked : Title::given;
    _organiser.newNote({title.empty() ? base::tr("New note") : title, folder, {}},
                       [this, kind](const app::OrganisedNotes& made) { showNewNote(made, kind); });
}

void MainWindow::showNewNote(const app::OrganisedNotes& made, Title title) {
    if (made.isFailure) {
        tell(qt(made.text), true);
        return;
    }
    go(Place::ofNote(made.to));
    NoteEditor& editor = _note->editor();
    QTextCursor cursor = editor.textCursor();
    cursor.movePosition(title == Title::asked ? QTextCursor::Start : QTextCursor::End);
    if (title == Title::asked) {  // it is the first thing to be typed
        cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::MoveAnchor, 2);
        cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    }
    editor.setTextCursor(cursor);
    editor.setFocus();
}

}  // namespace tessaly::desktop
