// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QMenu>
#include <QTest>
#include <QToolButton>
#include <chrono>
#include <csignal>
#include <utility>

#include <sys/resource.h>

#include "desktop/conflict_bar.h"
#include "desktop/header_bar.h"
#include "desktop/list_pane.h"
#include "desktop/note_editor.h"
#include "desktop/note_pane.h"
#include "desktop/pictures/stage.h"
#include "desktop/qt_text.h"
#include "desktop/search_field.h"
#include "desktop/search_options.h"
#include "desktop/shortcuts_window.h"
#include "desktop/toast.h"

namespace tessaly::pictures {

namespace {

using app::CommandId;

constexpr base::Day today{std::chrono::year{2019}, std::chrono::March, std::chrono::day{5}};

template <class Widget>
Widget& partOf(Stage& stage) {
    return *stage.window().findChild<Widget*>();
}

void showToday(Stage& stage) {
    stage.goTo(today);
    stage.take(QStringLiteral("today"));
}

void showNote(Stage& stage) {
    stage.goTo("Work/Website relaunch.txt");
    stage.take(QStringLiteral("note"));
}

void showHebrewNote(Stage& stage) {
    stage.goTo("Home/Recipes.txt");
    stage.take(QStringLiteral("hebrew-note"));
}

void showWeek(Stage& stage) {
    stage.window().go(app::Place::ofWeek(today));
    stage.settle(400);
    stage.take(QStringLiteral("week"));
    stage.goTo(today);
}

void search(Stage& stage, const QString& words) {
    stage.window().perform(CommandId::search);
    stage.settle(50);
    stage.type(words);
}

void endSearch(Stage& stage) {
    partOf<desktop::SearchField>(stage).clear();
    stage.window().perform(CommandId::toggleList);
    stage.goTo(today);
}

void showSearch(Stage& stage) {
    stage.goTo(today);
    search(stage, QStringLiteral("budget"));
    stage.take(QStringLiteral("search"));
    endSearch(stage);
}

void showNothingFound(Stage& stage) {
    search(stage, QStringLiteral("zeppelin"));
    stage.take(QStringLiteral("nothing-found"));
    endSearch(stage);
}

void showOptions(Stage& stage) {
    search(stage, QStringLiteral("budget"));
    for (auto* button : partOf<desktop::ListPane>(stage).findChildren<QToolButton*>()) {
        if (button->isVisible()) {
            button->click();
            break;
        }
    }
    stage.settle();
    stage.take(QStringLiteral("search-options"));
    stage.window().findChild<desktop::SearchOptions*>()->hide();
    endSearch(stage);
}

void showInbox(Stage& stage) {
    stage.window().perform(CommandId::showInbox);
    stage.settle(400);
    partOf<desktop::ListPane>(stage).enterList();
    stage.take(QStringLiteral("inbox"));
    endSearch(stage);
}

void showTag(Stage& stage) {
    stage.window().showList({"#website", {}, "#website"});
    stage.settle(400);
    stage.goTo("Work/Website relaunch.txt");
    stage.take(QStringLiteral("tag"));
    endSearch(stage);
}

void showPalette(Stage& stage) {
    stage.window().perform(CommandId::palette);
    stage.take(QStringLiteral("palette"));
    stage.type(QStringLiteral("ta"));
    stage.take(QStringLiteral("palette-typed"));
    stage.press(Qt::Key_Escape);
}

void showQuickOpen(Stage& stage) {
    stage.window().perform(CommandId::quickOpen);
    stage.settle();
    stage.type(QStringLiteral("bu"));
    stage.take(QStringLiteral("quick-open"));
    stage.press(Qt::Key_Escape);
}

/// The caret into the line that holds `words`.
void putCaret(Stage& stage, const QString& words) {
    desktop::NoteEditor& editor = partOf<desktop::NotePane>(stage).editor();
    editor.setFocus();
    editor.moveCursor(QTextCursor::Start);
    editor.find(words);
    editor.moveCursor(QTextCursor::EndOfBlock);
}

void showSchedule(Stage& stage) {
    stage.goTo(today);
    putCaret(stage, QStringLiteral("printer"));
    stage.window().perform(CommandId::scheduleTask);
    stage.settle();
    stage.type(QStringLiteral("fri"));
    stage.take(QStringLiteral("schedule"));
    stage.press(Qt::Key_Escape);
    stage.window().perform(CommandId::goToDate);
    stage.settle();
    stage.take(QStringLiteral("go-to-date"));
    stage.press(Qt::Key_Escape);
}

void showCompletion(Stage& stage) {
    stage.goTo(today);
    putCaret(stage, QStringLiteral("printer"));
    desktop::NoteEditor& editor = partOf<desktop::NotePane>(stage).editor();
    for (const auto& [typed, name] : {std::pair{" #", "completion-first"},
                                      {"h", "completion"},
                                      {"ome >fri", "completion-day"}}) {
        stage.type(QString::fromLatin1(typed));
        stage.settle();
        stage.take(QString::fromLatin1(name));
    }
    while (editor.canUndo()) {
        editor.undo();
    }
    stage.settle();
}

void showFind(Stage& stage) {
    stage.goTo(today);
    stage.window().perform(CommandId::replace);
    stage.settle();
    stage.type(QStringLiteral("the"));
    stage.take(QStringLiteral("find"));
    stage.press(Qt::Key_Escape);
}

void showToast(Stage& stage) {
    stage.goTo("Work/Website relaunch.txt");
    putCaret(stage, QStringLiteral("Choose the pictures"));
    stage.window().perform(CommandId::scheduleToday);
    auto& toast = partOf<desktop::Toast>(stage);
    (void)QTest::qWaitFor([&] { return toast.isVisible(); });
    stage.settle();
    stage.take(QStringLiteral("toast"));
    stage.window().perform(CommandId::undoTask);
    stage.settle(700);
    toast.hide();
}

void showConflict(Stage& stage) {
    stage.goTo("Home/Garden.txt");
    stage.settle(400);
    stage.take(QStringLiteral("conflict"));
    const auto buttons = partOf<desktop::ConflictBarView>(stage).findChildren<QAbstractButton*>();
    for (auto* button : buttons.first(2)) {  // the other version, and what differs
        button->click();
        stage.settle(600);
    }
    stage.take(QStringLiteral("differences"));
    stage.goTo(today);
}

void showMenu(Stage& stage) {
    for (auto* button : partOf<desktop::HeaderBar>(stage).findChildren<QToolButton*>()) {
        if (QMenu* menu = button->menu()) {
            menu->popup(button->mapToGlobal(QPoint(0, button->height())));
            stage.settle();
            stage.take(QStringLiteral("menu"), menu);
            for (QAction* action : menu->actions()) {
                if (QMenu* inner = action->menu()) {
                    inner->popup(QPoint(20, 20));
                    stage.settle(100);
                    stage.take(QStringLiteral("menu-inner"), inner);
                    inner->close();
                    break;
                }
            }
            menu->close();
        }
    }
}

void showShortcuts(Stage& stage) {
    stage.window().perform(CommandId::showShortcuts);
    stage.settle();
    auto* shortcuts = stage.window().findChild<desktop::ShortcutsWindow*>();
    stage.take(QStringLiteral("shortcuts"), shortcuts);
    shortcuts->close();
    stage.window().activateWindow();
    stage.settle();
}

void showNarrow(Stage& stage) {
    stage.goTo(today);
    stage.window().perform(CommandId::showInbox);
    stage.window().resize(860, 560);
    stage.settle(400);
    stage.take(QStringLiteral("narrow"));
    stage.window().resize(1280, 800);
    endSearch(stage);
}

/// Nothing can be written any more: the last of all.
void showSaveFailed(Stage& stage) {
    stage.window().activateWindow();
    stage.goTo("Ideas.txt");
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlim_t before = std::exchange(limit.rlim_cur, 0);
    setrlimit(RLIMIT_FSIZE, &limit);
    putCaret(stage, QStringLiteral("benches"));
    stage.type(QStringLiteral(" in the town"));
    stage.settle(2500);
    limit.rlim_cur = before;  // pictures are written, too
    setrlimit(RLIMIT_FSIZE, &limit);
    stage.take(QStringLiteral("save-failed"));
}

void showFirstDay(Stage& stage) {
    stage.settle(1500);
    stage.take(QStringLiteral("first-day"));
}

void showFirstWeek(Stage& stage) {
    stage.window().go(app::Place::ofWeek(today));
    stage.settle(400);
    stage.take(QStringLiteral("first-week"));
}

void showEmptyInbox(Stage& stage) {
    stage.window().perform(CommandId::showInbox);
    stage.settle(400);
    stage.take(QStringLiteral("empty-inbox"));
}

}  // namespace

std::vector<View> demoViews() {
    return {{"today", showToday},
            {"note", showNote},
            {"hebrew-note", showHebrewNote},
            {"week", showWeek},
            {"search", showSearch},
            {"nothing-found", showNothingFound},
            {"search-options", showOptions},
            {"inbox", showInbox},
            {"tag", showTag},
            {"palette", showPalette},
            {"quick-open", showQuickOpen},
            {"schedule", showSchedule},
            {"completion", showCompletion},
            {"find", showFind},
            {"toast", showToast},
            {"conflict", showConflict},
            {"menu", showMenu},
            {"shortcuts", showShortcuts},
            {"narrow", showNarrow},
            {"save-failed", showSaveFailed}};
}

std::vector<View> emptyViews() {
    return {{"first-day", showFirstDay},
            {"first-week", showFirstWeek},
            {"empty-inbox", showEmptyInbox}};
}

}  // namespace tessaly::pictures
