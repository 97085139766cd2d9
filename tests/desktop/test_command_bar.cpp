// SPDX-License-Identifier: MIT
#include <QAbstractItemModelTester>
#include <QApplication>
#include <QLineEdit>
#include <QListView>
#include <QTest>

#include <doctest/doctest.h>

#include "app/planner.h"
#include "desktop/command_actions.h"
#include "desktop/command_bar.h"

using namespace tessaly;
using app::CommandId;

namespace {

/// A window with a field that has the focus, and a bar over it.
struct BarWindow {
    explicit BarWindow(app::Services& services) : quickOpen(services) {
        actions.bind(
            {CommandId::goToday, CommandId::goWeek, CommandId::completeTask, CommandId::markBold},
            [this](CommandId id) { done.push_back(id); });
        actions.bind(CommandId::quickOpen, [this] { bar.showNotes(); });
        window.resize(900, 600);
        window.show();
        (void)QTest::qWaitForWindowActive(&window);
        field.setFocus();
    }

    QLineEdit& input() { return *bar.findChild<QLineEdit*>(); }
    QStringList shown() {
        const QAbstractItemModel& model = *bar.findChild<QListView*>()->model();
        QStringList rows;
        for (int i = 0; i < model.rowCount(); ++i) {
            rows.append(model.index(i, 0).data().toString());
        }
        return rows;
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    void type(const QString& text) { QTest::keyClicks(&input(), text); }

    QWidget window;
    QLineEdit field{&window};
    desktop::CommandActions actions{&window};
    app::QuickOpen quickOpen;
    desktop::CommandBar bar{&window, actions, quickOpen};
    std::vector<CommandId> done;
};

}  // namespace

TEST_CASE("the palette lists what can be done, does it, and gives the focus back") {
    tests::Planner planner;
    BarWindow w{planner.services()};
    const QAbstractItemModelTester tester{w.bar.findChild<QListView*>()->model(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal};
    w.bar.showCommands();
    CHECK(w.input().hasFocus());
    // Without a note there is nothing to make bold, and no task to complete.
    CHECK(w.shown() == QStringList{QStringLiteral("Go to Today"), QStringLiteral("Go to This Week"),
                                   QStringLiteral("Open Quickly…")});
    w.type(QStringLiteral("week"));
    w.key(Qt::Key_Return);
    CHECK(w.done == std::vector{CommandId::goWeek});
    CHECK_FALSE(w.bar.isVisible());
    CHECK(w.field.hasFocus());

    w.actions.setState({.hasText = true, .hasTask = true});
    w.bar.showCommands();
    CHECK(w.shown().size() == 5);
    CHECK(w.shown().first() == QStringLiteral("Go to This Week"));
    w.key(Qt::Key_Up);  // round to the last
    w.key(Qt::Key_Return);
    CHECK(w.done.back() == CommandId::markBold);
}

TEST_CASE("keys do not reach what lies below the bar") {
    tests::Planner planner;
    BarWindow w{planner.services()};
    w.actions.setState({.hasText = true, .hasTask = true});
    w.key(Qt::Key_B, Qt::ControlModifier);
    CHECK(w.done == std::vector{CommandId::markBold});
    w.bar.showCommands();
    w.key(Qt::Key_B, Qt::ControlModifier);
    CHECK(w.done.size() == 1);
    w.key(Qt::Key_O, Qt::ControlModifier);
    CHECK(w.input().accessibleName() == QStringLiteral("Open quickly"));
    w.key(Qt::Key_Escape);
    CHECK(w.field.hasFocus());
}

TEST_CASE("quick open opens a note, or makes one") {
    tests::Planner planner;
    planner.write("-- Notes/Work/web.txt\n# Website relaunch\n-- Notes/w.txt\n# Wood\n");
    planner.services().noteCache().load();
    planner.services().noteCache().waitUntilIdle();
    BarWindow w{planner.services()};
    const QAbstractItemModelTester tester{w.bar.findChild<QListView*>()->model(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal};
    std::vector<app::Place> opened;
    QStringList made;
    QObject::connect(&w.bar, &desktop::CommandBar::opened, &w.bar,
                     [&](const app::Place& place) { opened.push_back(place); });
    QObject::connect(&w.bar, &desktop::CommandBar::newNoteAsked, &w.bar,
                     [&](const QString& title) { made.append(title); });

    w.bar.showNotes();
    w.type(QStringLiteral("rel"));
    w.key(Qt::Key_Return);
    CHECK(opened == std::vector{app::Place::ofNote("Work/web.txt")});

    w.bar.showNotes();
    w.type(QStringLiteral("Web "));
    w.key(Qt::Key_Return, Qt::ShiftModifier);
    w.bar.showNotes();
    w.type(QStringLiteral("Quite new"));
    w.key(Qt::Key_Return);
    CHECK(made == QStringList{QStringLiteral("Web"), QStringLiteral("Quite new")});

    w.bar.showNotes();
    w.key(Qt::Key_Return, Qt::ShiftModifier);
    CHECK(made.size() == 2);
    QTest::mouseClick(&w.bar, Qt::LeftButton, {}, QPoint(5, 590));
    CHECK_FALSE(w.bar.isVisible());
}
