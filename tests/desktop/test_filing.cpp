// SPDX-License-Identifier: MIT
// Notes that are made, go and come back in the window, and the work that it shows.
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <memory>
#include <string>

#include <doctest/doctest.h>

#include "desktop/note_editor.h"
#include "desktop/side_bar_tree.h"
#include "desktop/status_line.h"
#include "desktop/window_fixture.h"

using namespace tessaly;
using namespace tessaly::desktop;
using app::LongWork;
using tests::until;
using tests::WindowFixture;

TEST_CASE("a note that goes to the trash takes what was typed with it, and comes back with it") {
    WindowFixture user{"-- Notes/Plans.txt\n# Plans\n-- Notes/Other.txt\nother\n"};
    user.start();
    user.openNote("Plans.txt");
    user.press("Ctrl+End");
    user.type("unsaved");
    user.window().perform(app::CommandId::trashNote);
    // Before the note is gone: this would be in no file.
    CHECK_FALSE(user.editor().canEdit());
    user.type("late");
    CHECK(user.shown() == "# Plans\nunsaved");
    CHECK(user.wordsLike("“Plans” is ") != std::nullopt);
    CHECK(user.textOf("Notes/Plans.txt") == "-");
    CHECK(until([&] { return user.editor().canEdit(); }));
    std::string back = "# Plans\nunsaved";
    SUBCASE("back") {
        user.click("Undo");
        CHECK(user.wordsLike("“Plans” is back") != std::nullopt);
        CHECK(WindowFixture::row(user.view<SideBarTree>(), "Plans").isValid());
        user.openNote("Plans.txt");
        user.press("Ctrl+End");
        user.type("!");
        back += "!";
    }
    SUBCASE("another one has its place") {
        back = "another\n";
        user.write("Notes/Plans.txt", back);
        user.click("Undo");
        CHECK(user.wordsLike("“Plans.txt” stays in the trash") != std::nullopt);
    }
    CHECK(user.textOf("Notes/Plans.txt", back) == back);
}

TEST_CASE("what is done is archived in the background, and comes back") {
    const std::string before = "* [x] Done\n* Open";
    WindowFixture user{"-- Notes/Plans.txt\n* [x] Done\n"};
    user.start();
    user.openNote("Plans.txt");
    user.press("Ctrl+End");
    user.type("* Open");
    user.window().perform(app::CommandId::archiveDone);
    CHECK(user.wordsLike("Archived the processed") != std::nullopt);
    CHECK(until([&] { return user.shown().starts_with("* Open"); }));
    user.click("Undo");
    CHECK(user.textOf("Notes/Plans.txt", before) == before);
    CHECK(user.shown(before) == before);
}

TEST_CASE("tasks of several days go on a day by one key, and come back by one") {
    WindowFixture user{"-- Calendar/20190305.txt\n* Call >2019-03-07\n* Ask\n"};
    user.start();
    user.press("Ctrl+Home");
    user.press("Shift+Down");
    user.press("Shift+End");
    user.window().perform(app::CommandId::taskLater);
    CHECK(user.wordsLike("Scheduled 2 tasks to several days") != std::nullopt);
    CHECK(user.textOf("Calendar/20190306.txt") != "-");
    CHECK(user.textOf(WindowFixture::friday) != "-");
    user.click("Undo");
    CHECK(user.textOf(WindowFixture::today, "* Call >2019-03-07\n* Ask\n") ==
          "* Call >2019-03-07\n* Ask\n");
    CHECK(user.textOf("Calendar/20190306.txt", "-") == "-");
    CHECK(user.textOf(WindowFixture::friday, "-") == "-");
}

namespace {

QStringList wordsOf(const StatusLine& line) {
    QStringList words;
    for (const QLabel* label : line.findChildren<QLabel*>()) {
        words.append(label->text());
    }
    return words;
}

}  // namespace

TEST_CASE("work that takes its time is shown until it ends, and cancelled by the button") {
    StatusLine line;
    const LongWork* cancelled = nullptr;
    QObject::connect(&line, &StatusLine::cancelled,
                     [&](const LongWork* work) { cancelled = work; });
    const auto load = std::make_shared<LongWork>("Reading", LongWork::Cancel::possible);
    const auto move = std::make_shared<LongWork>("Moving", LongWork::Cancel::possible);
    const auto index =
        std::make_shared<LongWork>("Writing", LongWork::Cancel::possible, LongWork::Count::none);
    line.begin(load);
    CHECK_FALSE(line.isVisible());
    REQUIRE(until([&] { return line.isVisible(); }));
    line.begin(move);
    move->tellTotal(10);
    move->tell(4);
    REQUIRE(until([&] { return wordsOf(line).join(u' ').startsWith(u"Moving 4 of 10"); }));
    QTest::mouseClick(line.findChild<QPushButton*>(), Qt::LeftButton);
    CHECK(cancelled == move.get());
    CHECK(move->cancelled());
    CHECK_FALSE(load->cancelled());
    CHECK(wordsOf(line).front() == QStringLiteral("Cancelling…"));
    line.end(move.get());
    CHECK(wordsOf(line).front() == QStringLiteral("Reading"));
    line.begin(index);
    CHECK(wordsOf(line) == QStringList{QStringLiteral("Writing"), QString()});
    line.end(load.get());
    CHECK(line.isVisible());
    line.end(index.get());
    CHECK_FALSE(line.isVisible());
}
