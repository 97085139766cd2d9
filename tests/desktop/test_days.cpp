// SPDX-License-Identifier: MIT
#include <QAbstractItemModelTester>
#include <QLineEdit>
#include <QListView>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <optional>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "desktop/day_pane_view.h"
#include "desktop/month_model.h"
#include "desktop/qt_text.h"
#include "desktop/schedule_popover.h"
#include "desktop/small_calendar.h"
#include "desktop/week_agenda_view.h"

using namespace tessaly;
using namespace tessaly::desktop;

namespace {

base::Day dayOf(std::string_view text) {
    return *base::dayFromTagText(text);
}

const base::Day tuesday = dayOf("2019-03-05");

store::NoteTask taskOf(std::string note, std::size_t line, grammar::TodoType state,
                       std::string content, std::optional<base::Day> noteDay = tuesday) {
    store::NoteTask task;
    task.type = noteDay ? base::NoteType::calendar : base::NoteType::note;
    task.filename = std::move(note);
    task.noteDay = noteDay;
    task.day = noteDay;
    task.todo.type = state;
    task.todo.content = std::move(content);
    task.todo.base = "* " + task.todo.content;
    task.todo.lineIndex = line;
    task.todo.title = "Budget 2019";
    return task;
}

app::DayPane today() {
    using enum grammar::TodoType;
    app::DayPane pane;
    pane.day = tuesday;
    pane.heading = "Tuesday, 5 March";
    pane.relative = "today";
    pane.tasks = {taskOf("20190305.txt", 2, open, "Call Bob >2019-03-05"),
                  taskOf("20190305.txt", 3, done, "Send slides @done(2019-03-05 10:12 AM)")};
    pane.scheduled = {taskOf("Work/Budget.md", 7, open, "Check figures", std::nullopt)};
    pane.overdue = {taskOf("20190301.txt", 0, open, "Old one", dayOf("2019-03-01"))};
    pane.overdueTotal = 3;
    return pane;
}

app::WeekAgenda week() {
    app::WeekAgenda agenda;
    agenda.heading = "Week 10";
    for (int i = 0; i < 7; ++i) {
        const base::Day day = base::addDays(dayOf("2019-03-04"), i);
        app::DayPane pane;
        pane.day = day;
        pane.heading = base::tagText(day);
        agenda.days.push_back(day == tuesday ? today() : pane);
    }
    agenda.days[3].tasks = {
        taskOf("20190307.txt", 0, grammar::TodoType::open, "Dentist", dayOf("2019-03-07"))};
    return agenda;
}

const grammar::DateStringHelper english{base::LocaleFormats{"en_GB"}};

/// What the rows tell, a line each, in the order it was told.
class Told {
public:
    explicit Told(const TaskRowsView& view) {
        QObject::connect(&view, &TaskRowsView::ticked,
                         [this](const auto& task, app::TaskStep step) {
                             const char* const names[] = {"complete", "cancel", "reopen"};
                             add(std::string(names[static_cast<int>(step)]) + " " + nameOf(task));
                         });
        QObject::connect(&view, &TaskRowsView::scheduleAsked,
                         [this](const auto& tasks, QRect) { add("ask " + nameOf(tasks.front())); });
        QObject::connect(&view, &TaskRowsView::scheduled, [this](const auto& tasks, base::Day day) {
            add(base::tagText(day) + " " + nameOf(tasks.front()));
        });
        QObject::connect(
            &view, &TaskRowsView::jumped, [this](const app::Place& place, std::size_t line) {
                add("jump " + (place.filename.empty() ? base::tagText(place.day) : place.filename) +
                    ":" + std::to_string(line));
            });
        QObject::connect(&view, &TaskRowsView::dayChosen,
                         [this](base::Day day) { add("day " + base::tagText(day)); });
        QObject::connect(&view, &TaskRowsView::undoAsked, [this] { add("undo"); });
    }
    std::string take() { return std::exchange(_lines, {}); }

private:
    static std::string nameOf(const tasks::TaskReference& task) {
        return task.note.filename + ":" + std::to_string(task.lineIndex) + " " + *task.text;
    }
    void add(const std::string& line) { _lines += line + "\n"; }
    std::string _lines;
};

QListView& listIn(QWidget& view) {
    return *view.findChild<QListView*>();
}

std::string spokenRows(QWidget& view) {
    const QAbstractItemModel& model = *listIn(view).model();
    std::string rows;
    for (int i = 0; i < model.rowCount(); ++i) {
        rows += utf8(model.index(i, 0).data(Qt::AccessibleTextRole).toString()) + "\n";
    }
    return rows;
}

std::string currentText(QWidget& view) {
    return utf8(listIn(view).currentIndex().data().toString());
}

struct KeyRow {
    const char* keys;  // typed one after the other, from the row "Call Bob"
    std::string told;
};

TEST_CASE("rows of a day say state, text and day, and fold what is overdue") {
    DayPaneView view{english};
    view.resize(292, 600);
    view.show(today(), tuesday);
    const QAbstractItemModelTester tester{listIn(view).model(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal};
    const std::string tasks =
        "open task, Call Bob, today\ndone task, Send slides, today\n"
        "open task, Check figures, today, Budget 2019\n";
    CHECK(spokenRows(view) == "3 overdue tasks, folded\n" + tasks);
    listIn(view).setCurrentIndex(listIn(view).model()->index(0, 0));
    QTest::keyClick(&listIn(view), Qt::Key_Right);
    CHECK(spokenRows(view) ==
          "3 overdue tasks, unfolded\noverdue task, Old one, Fri, 1 Mar\nand 2 more\n" + tasks);
    QTest::keyClick(&listIn(view), Qt::Key_Return);
    CHECK(spokenRows(view) == "3 overdue tasks, folded\n" + tasks);
    app::DayPane empty;
    empty.day = dayOf("2019-03-06");
    view.show(empty, tuesday);
    CHECK(spokenRows(view).starts_with("No tasks for this day. Write"));
}

TEST_CASE("keys act on the current task and nothing else") {
    DayPaneView view{english};
    view.resize(292, 600);
    view.show(today(), tuesday);
    Told told{view.rows()};
    const std::string bob = "20190305.txt:2 * Call Bob >2019-03-05\n";
    const KeyRow rows[] = {
        {"d", "complete " + bob},
        {"-", "cancel " + bob},
        {"r", "reopen " + bob},
        {"s", "ask " + bob},
        {"t", "2019-03-05 " + bob},
        {">", "2019-03-06 " + bob},
        {"<", "2019-03-04 " + bob},
        {"12>>", "2019-03-17 " + bob + "2019-03-06 " + bob},
        {"o", "jump 2019-03-05:2\n"},
        {"\r", "jump 2019-03-05:2\n"},
        {" ", "complete " + bob},
        {"j ", "reopen 20190305.txt:3 * Send slides @done(2019-03-05 10:12 AM)\n"},
        {"2jo", "jump Work/Budget.md:7\n"},
        {"kd", ""},
        {"u", "undo\n"},
    };
    for (const KeyRow& row : rows) {
        CAPTURE(row.keys);
        listIn(view).setCurrentIndex(listIn(view).model()->index(1, 0));
        for (const char key : std::string_view{row.keys}) {
            QTest::keyClick(&listIn(view), key);
        }
        CHECK(told.take() == row.told);
    }
}

TEST_CASE("box, buttons and text of a row each do their own, mirrored too") {
    for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        CAPTURE(direction);
        DayPaneView view{english};
        view.setLayoutDirection(direction);
        view.resize(292, 600);
        view.show(today(), tuesday);
        static_cast<QWidget&>(view).show();
        QListView& list = listIn(view);
        Told told{view.rows()};
        const QRect row = list.visualRect(list.model()->index(3, 0));
        const auto click = [&](int fromStart) {
            const int x =
                direction == Qt::RightToLeft ? row.right() - fromStart : row.left() + fromStart;
            QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, {x, row.top() + 15});
        };
        click(22);
        click(120);
        click(row.width() - 46);
        click(row.width() - 22);
        QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, row.center());
        const std::string figures = "Work/Budget.md:7 * Check figures\n";
        CHECK(told.take() == "complete " + figures + "ask " + figures +
                                 "jump Work/Budget.md:7\njump Work/Budget.md:7\n");
    }
}

TEST_CASE("the current row survives new rows, and stays near when its task has gone") {
    DayPaneView view{english};
    view.resize(292, 600);
    view.show(today(), tuesday);
    listIn(view).setCurrentIndex(listIn(view).model()->index(2, 0));
    app::DayPane other = today();
    other.tasks.insert(other.tasks.begin(),
                       taskOf("20190305.txt", 1, grammar::TodoType::open, "New"));
    view.show(other, tuesday);
    CHECK(currentText(view) == "Send slides");
    other.tasks.pop_back();
    view.show(other, tuesday);
    CHECK(currentText(view) == "Check figures");
    other.scheduled.clear();
    view.show(other, tuesday);
    CHECK(currentText(view) == "Call Bob");
}

TEST_CASE("the rows of tasks follow whatever a view shows") {
    TaskRowsModel model;
    const QAbstractItemModelTester tester{&model,
                                          QAbstractItemModelTester::FailureReportingMode::Fatal};
    QListView view;
    view.setModel(&model);
    app::DayPane empty;
    empty.day = tuesday;
    app::DayPane changed = today();
    changed.tasks.front().todo.type = grammar::TodoType::done;
    const TaskRowContext folded{tuesday, OverdueFold::folded, english};
    const TaskRowContext open{tuesday, OverdueFold::open, english};
    const std::vector<TaskRow> shown[] = {rowsOf(today(), folded), rowsOf(today(), open),
                                          rowsOf(changed, open),   rowsOf(empty, folded),
                                          rowsOf(week(), open),    {},
                                          rowsOf(week(), folded),  rowsOf(today(), folded)};
    for (const std::vector<TaskRow>& rows : shown) {
        model.setRows(rows);
        CHECK(model.rowCount() == static_cast<int>(rows.size()));
        for (int row = 0; row < model.rowCount(); ++row) {
            const TaskRow& expected = rows[static_cast<std::size_t>(row)];
            CHECK(model.find(expected) == row);
            CHECK(model.index(row).data() == expected.text);
        }
        view.setCurrentIndex(model.index(model.rowCount() - 1));
    }
}

TEST_CASE("keys lead through the week's days, past what cannot be acted on") {
    WeekAgendaView view{english};
    view.resize(900, 700);
    view.show(week(), tuesday);
    Told told{view.rows()};
    listIn(view).setCurrentIndex(listIn(view).model()->index(1, 0));
    std::string way;
    for (int i = 0; i < 7; ++i) {
        way += currentText(view) + "; ";
        QTest::keyClick(&listIn(view), Qt::Key_Down);
    }
    CHECK(way ==
          "2019-03-04; Tuesday, 5 March; Overdue; Call Bob; Send slides; Check figures; "
          "2019-03-06; ");
    CHECK(currentText(view) == "2019-03-07");
    QTest::keyClick(&listIn(view), Qt::Key_Return);
    QTest::keyClicks(&listIn(view), QStringLiteral("j>"));
    CHECK(told.take() == "day 2019-03-07\n2019-03-08 20190307.txt:0 * Dentist\n");
}

TEST_CASE("a month's weeks hold each of its days once, whatever the week begins with") {
    for (const auto first : {base::DayOfWeek::monday, base::DayOfWeek::sunday}) {
        MonthModel month{first, base::LocaleFormats{"en_GB"}, nullptr};
        const QAbstractItemModelTester tester{
            &month, QAbstractItemModelTester::FailureReportingMode::Fatal};
        QTableView view;
        view.setModel(&month);
        month.setToday(tuesday);
        for (const char* text : {"2019-03-01", "2019-02-01", "2020-02-01", "2019-09-01"}) {
            CAPTURE(text);
            const base::Day start = dayOf(text);
            const std::chrono::year_month shown{start.year(), start.month()};
            month.setMonth(shown);
            for (base::Day day = start; day.month() == start.month(); day = base::addDays(day, 1)) {
                CHECK(month.dayAt(month.indexOf(day)) == day);
            }
            view.setCurrentIndex(month.indexOf(start));
        }
    }
}

TEST_CASE("the calendar goes by days, weeks and months, over their edges") {
    SmallCalendar calendar{base::DayOfWeek::monday, base::LocaleFormats{"en_GB"}};
    calendar.setToday(tuesday);
    QTableView& table = *calendar.findChild<QTableView*>();
    const struct {
        Qt::LayoutDirection direction;
        std::vector<Qt::Key> keys;
        std::string from;
        std::string expected;
    } rows[] = {{Qt::LeftToRight, {Qt::Key_Left, Qt::Key_Up}, "2019-03-05", "2019-02-25"},
                {Qt::LeftToRight, {Qt::Key_Right, Qt::Key_Down}, "2019-03-31", "2019-04-08"},
                {Qt::RightToLeft, {Qt::Key_Right}, "2019-03-01", "2019-02-28"},
                {Qt::LeftToRight, {Qt::Key_PageUp}, "2019-03-31", "2019-02-28"},
                {Qt::LeftToRight, {Qt::Key_PageDown}, "2019-12-31", "2020-01-31"},
                {Qt::LeftToRight, {Qt::Key_PageDown, Qt::Key_Home}, "2019-12-31", "2019-03-05"}};
    for (const auto& row : rows) {
        CAPTURE(row.from);
        calendar.setLayoutDirection(row.direction);
        calendar.select(dayOf(row.from));
        for (const Qt::Key key : row.keys) {
            QTest::keyClick(&table, key);
        }
        CHECK(base::tagText(calendar.selectedDay()) == row.expected);
    }
    std::string taken;
    QObject::connect(&calendar, &SmallCalendar::taken,
                     [&](base::Day day) { taken += base::tagText(day) + " "; });
    QTest::keyClick(&table, Qt::Key_Return);
    // The fourth row's first cell is the week's number.
    QTest::mouseClick(table.viewport(), Qt::LeftButton, {},
                      table.visualRect(table.model()->index(4, 0)).center());
    QTest::mouseClick(table.viewport(), Qt::LeftButton, {},
                      table.visualRect(table.model()->index(4, 2)).center());
    CHECK(taken == "2019-03-05 2019-03-19 ");
}

struct Asked {
    QWidget window;
    QLineEdit before{&window};
    std::string taken;
    QPointer<SchedulePopover> popover;

    explicit Asked(QRect anchor = {40, 40, 100, 24}, QSize size = {900, 700}) {
        window.resize(size);
        window.show();
        window.activateWindow();
        before.setFocus();
        anchor.moveTopLeft(window.mapToGlobal(anchor.topLeft()));
        ScheduleContext context;
        context.today = tuesday;
        context.formats = base::LocaleFormats{"en_GB"};
        popover = SchedulePopover::popUp(
            &window, anchor, context, [this](base::Day day) { taken += base::tagText(day) + " "; });
    }
    QLineEdit& field() { return *popover->findChild<QLineEdit*>(); }
    QRect panel() { return field().parentWidget()->geometry(); }
    bool isOpen() { return popover && popover->isVisible(); }
};

TEST_CASE("the popover takes what was typed, chosen by arrows or found in the calendar") {
    const struct {
        QString typed;
        std::vector<Qt::Key> keys;
        std::string taken;
        bool isOpen;
    } rows[] = {
        {QStringLiteral("fri"), {Qt::Key_Return}, "2019-03-08 ", false},
        {QStringLiteral("w12"), {Qt::Key_Return}, "2019-03-18 ", false},
        {QStringLiteral("nonsense"), {Qt::Key_Return}, "", true},
        {QString(), {Qt::Key_Return}, "", true},
        {QStringLiteral("fri"), {Qt::Key_Escape}, "", false},
        {QString(), {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}, "2019-03-06 ", false},
        {QStringLiteral("fri"), {Qt::Key_PageDown, Qt::Key_Return}, "2019-04-08 ", false},
        {QStringLiteral("fri"),
         {Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Right, Qt::Key_Return},
         "2019-03-09 ",
         false},
        {QString(), {Qt::Key_Backtab, Qt::Key_Down, Qt::Key_Escape}, "", false},
    };
    for (const auto& row : rows) {
        CAPTURE(utf8(row.typed));
        Asked asked;
        QTest::keyClicks(&asked.field(), row.typed);
        for (const Qt::Key key : row.keys) {
            QTest::keyClick(asked.window.focusWidget(), key);
        }
        CHECK(asked.taken == row.taken);
        CHECK(asked.isOpen() == row.isOpen);
        CHECK((asked.window.focusWidget() == &asked.before) != row.isOpen);
    }
}

TEST_CASE("the popover stays inside the window, beside what it belongs to") {
    const QRect anchors[] = {
        {40, 40, 100, 24}, {860, 60, 30, 24}, {40, 660, 100, 24}, {860, 660, 30, 24}};
    for (const QRect& anchor : anchors) {
        Asked asked{anchor};
        const QRect panel = asked.panel();
        CAPTURE(anchor.left());
        CAPTURE(anchor.top());
        CHECK(asked.window.rect().contains(panel));
        CHECK_FALSE(panel.intersects(anchor));
    }
}

TEST_CASE("a click beside the popover closes it, one inside does not") {
    Asked asked;
    const QRect panel = asked.panel();
    QTest::mouseClick(asked.popover, Qt::LeftButton, {}, panel.topLeft() + QPoint(4, 4));
    CHECK(asked.isOpen());
    QTest::mouseClick(asked.popover, Qt::LeftButton, {}, panel.bottomRight() + QPoint(40, 20));
    CHECK_FALSE(asked.isOpen());
    CHECK(asked.taken.empty());
}

}  // namespace
