// SPDX-License-Identifier: MIT
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "base/locale_formats.h"
#include "support/log_capture.h"
#include "sync/conflict_manager.h"
#include "versions_fixture.h"

namespace tessaly::tests {
namespace {

using Kind = base::Failure::Kind;

constexpr const char* firstCopy = "Plans (Ann's conflicted copy 2019-03-06).md";
constexpr const char* secondCopy = "Plans (Bob's conflicted copy 2019-03-05).md";

/// What stands on the screen.
class Screen : public sync::ConflictManagerDelegate {
public:
    void showVersion(const sync::ConflictBar& bar, const base::Result<std::string>& text) override {
        _bar = bar;
        _text = text ? *text : "cannot be read";
    }
    void hideConflictBar() override { _bar.reset(); }

    std::string title() const { return _bar ? _bar->showOtherVersionTitle : "no bar"; }
    const std::optional<sync::ConflictBar>& bar() const { return _bar; }
    const std::string& text() const { return _text; }

private:
    std::optional<sync::ConflictBar> _bar;
    std::string _text;
};

struct Fixture : VersionsFixture {
    LogCapture log;
    base::LocaleFormats formats{"en_GB"};
    Screen screen;
    sync::ConflictManager manager{{versions, formats, clock}};

    /// The note and two copies, looked at.
    Fixture() {
        write("Plans.md", "ours\n");
        write(firstCopy, "Ann's\n", 10);
        write(secondCopy, "Bob's\n", 20);
        manager.setDelegate(&screen);
        manager.setSelectedNoteUrl(note);
        manager.checkForConflicts();
        log.clear();
    }

    bool keep(int index) {
        for (int i = 0; i < index; ++i) {
            manager.showOtherVersion();
        }
        return manager.chooseThisVersion();
    }

    std::string text() const { return folder.read("data/Notes/Plans.md"); }

    std::size_t failuresLogged() const {
        return static_cast<std::size_t>(
            std::count_if(log.lines().begin(), log.lines().end(), [](const std::string& line) {
                return line.starts_with("error while resolving conflicts ");
            }));
    }

    bool isNothingLost() { return isSafe("ours\n") && isSafe("Ann's\n") && isSafe("Bob's\n"); }
};

}  // namespace

TEST_CASE_FIXTURE(Fixture, "conflict manager: the bar goes through all versions and round") {
    struct Row {
        std::string title;
        const char* text;
        const char* device;
    };
    for (const Row& row : {Row{"1/3", "ours\n", ""}, Row{"2/3", "Ann's\n", "Ann"},
                           Row{"3/3", "Bob's\n", "Bob"}, Row{"1/3", "ours\n", ""}}) {
        CHECK(screen.title() == row.title);
        CHECK(screen.text() == row.text);
        CHECK(screen.bar()->deviceName == row.device);
        manager.showOtherVersion();
    }
    CHECK(log.lines() == Texts(4, "update version selection isconflict: true"));
    log.clear();
    manager.checkForConflicts();
    CHECK(screen.title() == "1/3");
    CHECK(log.lines() ==
          Texts{"checking for conflicts again", "update version selection isconflict: true"});
}

TEST_CASE_FIXTURE(Fixture, "conflict manager: the date is told in the user's words") {
    const auto date = platform::parseTime("2019-03-05T14:07:33").value().instant;
    const auto age = date.time_since_epoch() - clock.now().time_since_epoch();
    REQUIRE(age.count() == 0);
    std::filesystem::last_write_time(
        note, std::filesystem::file_time_type(std::chrono::file_clock::from_sys(date)));
    manager.checkForConflicts();
    CHECK(screen.bar()->modificationDate == "Modified 5 Mar 2019, 14:07:33 on:");
}

TEST_CASE("conflict manager: the version that is chosen is all there is") {
    struct Row {
        int index;
        const char* text;
        const char* line;
    };
    for (const Row& row : {Row{0, "ours\n", "Resolving current version"},
                           Row{1, "Ann's\n", "Resolving other version"},
                           Row{2, "Bob's\n", "Resolving other version"}}) {
        CAPTURE(row.index);
        Fixture f;
        const auto before = f.files.read(f.note)->stamp;
        CHECK(f.keep(row.index));
        CHECK(f.text() == row.text);
        CHECK(f.names() == Texts{"Plans.md"});
        CHECK(f.isNothingLost());
        CHECK(f.screen.title() == "no bar");
        CHECK(f.manager.conflictedNotes().empty());
        CHECK(f.manager.conflictedVersionSelectionIndex() == 0);
        REQUIRE(f.log.lines().size() == static_cast<std::size_t>(row.index) + 2);
        CHECK(f.log.lines().end()[-2] == row.line);
        CHECK(f.log.lines().back() == "checking for conflicts again");
        CHECK((f.files.read(f.note)->stamp == before) == (row.index == 0));
        CHECK(f.manager.chooseThisVersion());
        CHECK(f.text() == row.text);
    }
    Fixture f;
    CHECK(f.manager.chooseText("joined\n"));
    CHECK(f.text() == "joined\n");
    CHECK(f.names() == Texts{"Plans.md"});
    CHECK(f.isNothingLost());
}

TEST_CASE("conflict manager: of a note that is gone under its name a copy can be kept") {
    Fixture f;
    std::filesystem::remove(f.note);
    f.write("Plans.md..path1", "first\n");
    f.manager.checkForConflicts();
    CHECK(f.screen.title() == "1/3");
    CHECK(f.manager.conflictedNotes().front().isConflict);
    CHECK(f.keep(0));
    CHECK(f.text() == "first\n");
    CHECK(f.names() == Texts{"Plans.md"});
    CHECK(f.isSafe("Ann's\n"));
}

TEST_CASE("conflict manager: what changed since it was looked at is neither replaced nor removed") {
    using Change = std::function<void(Fixture&)>;
    struct Row {
        std::string what;
        Change change;
        int index;
        const char* kept;    ///< the note's text behind
        std::size_t copies;  ///< that are left
    };
    const Change changeNote = [](Fixture& f) { f.write("Plans.md", "ours, later\n"); };
    const Change changeCopy = [](Fixture& f) { f.write(firstCopy, "Ann's, later\n"); };
    const Row rows[] = {
        {"the note, another is kept", changeNote, 1, "ours, later\n", 2},
        {"the note, it is kept", changeNote, 0, "ours, later\n", 2},
        {"a copy, the note is kept", changeCopy, 0, "ours\n", 1},
        {"a copy, it is kept", changeCopy, 1, "Ann's\n", 1},
        {"a copy, the other is kept", changeCopy, 2, "Bob's\n", 1},
        {"a copy comes", [](Fixture& f) { f.write("Plans (conflicted).md", "new\n"); }, 1,
         "Ann's\n", 1},
    };
    for (const Row& row : rows) {
        CAPTURE(row.what);
        Fixture f;
        const std::size_t versions = f.names().size();
        row.change(f);
        CHECK_FALSE(f.keep(row.index));
        CHECK(f.text() == row.kept);
        CHECK(f.names().size() == row.copies + 1);
        CHECK(f.manager.conflictedNotes().size() == row.copies + 1);
        CHECK(f.failuresLogged() == (f.isSafe("new\n") ? 0 : 1));
        CHECK(f.isSafe("Bob's\n"));
        CHECK(f.screen.title() == "1/" + std::to_string(row.copies + 1));
        CHECK(f.manager.chooseThisVersion());
        CHECK(f.text() == row.kept);
        CHECK(versions == 3);
    }
}

TEST_CASE("conflict manager: what could not be read is neither kept nor removed") {
    for (const int unreadable : {0, 1}) {
        for (const int kept : {0, 1, 2}) {
            CAPTURE(unreadable);
            CAPTURE(kept);
            Fixture f;
            const std::string file = unreadable == 0 ? f.note : f.root + "/Notes/" + firstCopy;
            f.failing.before([&](int, std::string_view operation, const std::string& path) {
                if (operation == "read" && path == file) {
                    f.failing.failThis(Kind::unavailable);
                }
            });
            f.manager.checkForConflicts();
            f.log.clear();
            CHECK_FALSE(f.keep(kept));
            CHECK(f.failuresLogged() == 1);
            const bool isBobGone = unreadable == 1 && kept != 1;
            CHECK(f.names().size() == (isBobGone ? 2 : 3));
            CHECK(f.text() == (isBobGone && kept == 2 ? "Bob's\n" : "ours\n"));
            CHECK(f.folder.read("data/Notes/" + std::string(firstCopy)) == "Ann's\n");
            CHECK(f.isNothingLost());
        }
    }
}

TEST_CASE("conflict manager: whatever fails or dies in the middle, no version is lost") {
    struct Killed {};
    for (const bool isKilled : {false, true}) {
        bool isPassed = false;
        for (int call = 0; !isPassed; ++call) {
            CAPTURE(isKilled);
            CAPTURE(call);
            REQUIRE(call < 200);
            Fixture f;
            f.failing.failAt(isKilled ? -1 : call, Kind::noSpace);
            f.failing.before([&](int now, std::string_view, const std::string&) {
                if (isKilled && now == call) {
                    throw Killed{};
                }
            });
            try {
                static_cast<void>(f.keep(1));
            } catch (const Killed&) {
            }
            isPassed = f.failing.calls() <= call;
            f.failing.heal();
            CHECK(f.isNothingLost());
            const std::string text = f.text();
            const bool isWhole = text == "ours\n" || text == "Ann's\n";
            CHECK(isWhole);
            // Kept once more, whichever it is: a second run resolves.
            f.manager.checkForConflicts();
            CHECK(f.manager.chooseThisVersion());
            CHECK(f.names() == Texts{"Plans.md"});
            CHECK(f.text() == text);
            CHECK(f.isNothingLost());
        }
    }
}

TEST_CASE_FIXTURE(Fixture, "conflict manager: no note, no folder, no conflict: no bar") {
    manager.setSelectedNoteUrl(std::nullopt);
    manager.checkForConflicts();
    CHECK(screen.title() == "no bar");
    CHECK(log.lines() == Texts{"checking for conflicts again"});
    manager.showOtherVersion();
    CHECK(log.lines().back() == "update version selection isconflict: false");
    CHECK(manager.chooseThisVersion());
    manager.setSelectedNoteUrl(write("Alone.md", "alone\n"));
    manager.checkForConflicts();
    CHECK(screen.title() == "no bar");
    CHECK(manager.chooseText("lost\n"));
    CHECK(folder.read("data/Notes/Alone.md") == "alone\n");
    CHECK(failuresLogged() == 0);
    manager.setSelectedNoteUrl(root + "/gone/Alone.md");
    manager.checkForConflicts();
    CHECK(screen.title() == "no bar");
    CHECK_FALSE(manager.chooseThisVersion());
    CHECK(failuresLogged() == 2);
}

}  // namespace tessaly::tests
