// SPDX-License-Identifier: MIT
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>
#include <sys/xattr.h>

#include "store/data_store.h"
#include "store/paths.h"
#include "store_fixture.h"
#include "support/log_capture.h"

using namespace tessaly;
using base::Failure;
using base::NoteType;
using base::WriteMode;
using tests::HookedChanges;
using tests::LogCapture;
using tests::StoreFixture;

namespace {

using Hook = HookedChanges::Hook;
using Files = std::vector<std::string>;

constexpr const char* dayFile = "data/Calendar/20190305.txt";
constexpr const char* strayFile = "data/Calendar/20190305 2.txt";

/// Does something once, just before the first change of this kind below the data folder.
Hook once(const StoreFixture& fixture, std::string_view awaited, std::function<void()> act) {
    return [&fixture, awaited, act = std::move(act), done = false](
               std::string_view operation, const std::string& path) mutable {
        if (!done && operation == awaited && path.starts_with(fixture.root)) {
            done = true;
            act();
        }
        return std::optional<Failure>();
    };
}

/// Whether the history has `bytes` as a text of `file`.
bool isKept(StoreFixture& fixture, const std::string& file, std::string_view bytes) {
    const auto entries = fixture.history.entries(fixture.folder / file);
    REQUIRE(entries);
    for (const store::HistoryEntry& entry : *entries) {
        const auto text = fixture.history.text(entry);
        if (text && *text == bytes) {
            return true;
        }
    }
    return false;
}

}  // namespace

TEST_CASE("text is added to the file's text, and its other bytes stay") {
    const auto row = [](std::optional<std::string> before, WriteMode mode, std::string_view text,
                        std::string_view after, bool changed) {
        CAPTURE(after);
        StoreFixture fixture;
        const std::string file = "data/Notes/sub/Plans.txt";
        if (before) {
            fixture.folder.write(file, *before);
        }
        int completed = 0;
        std::string seen;
        const auto added = fixture.store.addText(text, NoteType::note, "sub/Plans.txt", mode, [&] {
            ++completed;
            seen = fixture.folder.exists(file) ? fixture.folder.read(file) : "";
            // The queue is left: another operation is possible from here.
            CHECK(fixture.store.createNote(NoteType::note, "Next.txt", "").ok());
        });
        REQUIRE(added);
        CHECK(*added == changed);
        CHECK(completed == 1);
        CHECK(seen == after);
        CHECK(fixture.folder.exists(file) == (before || changed));
    };
    row("old\n", WriteMode::append, "new", "old\nnew\n", true);
    row("\xEF\xBB\xBFold\r\n", WriteMode::prepend, "a\nb",
        "\xEF\xBB\xBF"
        "a\r\nb\r\nold\r\n",
        true);
    row("\xEF\xBB\xBF", WriteMode::append, "\xEF\xBB\xBFnew", "\xEF\xBB\xBFnew", true);
    row("\xEF\xBB\xBFold", WriteMode::overwrite, "new", "\xEF\xBB\xBFnew", true);
    row("old", WriteMode::overwrite, "", "", true);
    row("old", WriteMode::append, "", "old", false);
    row("same", WriteMode::overwrite, "same", "same", false);
    row("", WriteMode::prepend, "new", "new\n", true);
    row(std::nullopt, WriteMode::append, "new", "new", true);
    row(std::nullopt, WriteMode::append, "", "", false);
    row(std::nullopt, WriteMode::prepend, "new", "new", true);
}

TEST_CASE("a note that comes or goes while text is added to it still gets the text") {
    StoreFixture fixture;
    fixture.folder.mkdir("data/Calendar");
    const auto add = [&] {
        return fixture.store.addText("ours", NoteType::calendar, "20190305.txt", WriteMode::append);
    };
    fixture.changes.before =
        once(fixture, "create", [&] { fixture.folder.write(dayFile, "theirs"); });
    CHECK(add().ok());
    CHECK(fixture.folder.read(dayFile) == "theirs\nours");

    fixture.changes.before =
        once(fixture, "replace", [&] { fixture.folder.write(dayFile, "rewritten\n"); });
    CHECK(add().ok());
    CHECK(fixture.folder.read(dayFile) == "rewritten\nours\n");

    fixture.changes.before = once(
        fixture, "replace", [&] { CHECK(fixture.disk.remove(fixture.folder / dayFile).ok()); });
    CHECK(add().ok());
    CHECK(fixture.folder.read(dayFile) == "ours");
}

TEST_CASE("text that cannot be added leaves everything as it was, and one line in the log") {
    const auto row = [](NoteType type, std::string_view name, std::string_view text,
                        Failure::Kind expected, std::string_view words) {
        CAPTURE(name);
        StoreFixture fixture;
        fixture.folder.write("data/Notes/Latin.txt", "caf\xE9");
        fixture.folder.write("data/Notes/Far.txt.nextcloud", "");
        fixture.folder.mkdir("data/Notes/Folder.txt");
        LogCapture log;
        int completed = 0;
        const auto added =
            fixture.store.addText(text, type, name, WriteMode::append, [&] { ++completed; });
        REQUIRE_FALSE(added);
        CHECK(added.failure().kind == expected);
        CHECK(completed == 0);
        REQUIRE(log.lines().size() == 1);
        CHECK(log.lines()[0].starts_with("Could not make a filename or write a note "));
        CHECK(log.lines()[0].find(words) != std::string::npos);
        CHECK(fixture.folder.read("data/Notes/Latin.txt") == "caf\xE9");
        CHECK(fixture.folder.names("data/Notes") ==
              Files{"Far.txt.nextcloud", "Folder.txt", "Latin.txt"});
    };
    row(NoteType::note, "Latin.txt", "new", Failure::Kind::malformed, "Latin.txt: Content empty");
    row(NoteType::note, "New.txt", "\xFF", Failure::Kind::malformed,
        "New.txt: Could not convert content to .utf8 data");
    row(NoteType::note, "Far.txt", "new", Failure::Kind::unavailable, "Far.txt: the sync client");
    row(NoteType::note, "Folder.txt", "new", Failure::Kind::notAFile, "Folder.txt");
    row(NoteType::note, "../x.txt", "new", Failure::Kind::outside, "../x.txt");
    row(NoteType::none, "x.txt", "new", Failure::Kind::outside, "x.txt");
}

TEST_CASE("nothing is written over a sync client's placeholder, nor is it taken away") {
    StoreFixture fixture(StoreFixture::Root::chosen);
    const std::string file = fixture.folder.write("share/org.example/Notes/Far.txt", " ");
    if (::setxattr(file.c_str(), "user.nextcloud.hydrate_exec", "nextcloud", 9, 0) != 0) {
        MESSAGE("skipped: no extended attributes here");
        return;
    }
    fixture.folder.write("share/org.example/Notes/Near.txt.nextcloud", " ");
    const std::string& root = fixture.root;
    const auto anyText = [](std::string_view) { return std::optional<std::string>("new"); };
    const ports::FileContents read{" ", fixture.files.survey(store::parentOf(file))->at(0).stamp};
    const auto refusal = [](const auto& result) {
        return result.ok() ? std::nullopt : std::optional(result.failure().kind);
    };
    using Operation = std::function<std::optional<Failure::Kind>()>;
    const auto add = [&](WriteMode mode) {
        return [&, mode] {
            return refusal(fixture.store.addText("new", NoteType::note, "Far.txt", mode));
        };
    };
    const auto push = [&](const char* name) {
        return [&, name] {
            fixture.cloudContainer = [&] { return fixture.folder / "cloud"; };
            return refusal(fixture.store.pushToCloudDrive(NoteType::note, name));
        };
    };
    const std::pair<const char*, Operation> rows[] = {
        {"append", add(WriteMode::append)},
        {"prepend", add(WriteMode::prepend)},
        {"overwrite", add(WriteMode::overwrite)},
        {"delete a range",
         [&] {
             return refusal(fixture.store.deleteRange(NoteType::note, "Far.txt", {0, 1}));
         }},
        {"edit",
         [&] {
             return refusal(fixture.safeFiles.edit(root, file, anyText, store::ChangeCause::added));
         }},
        {"trash",
         [&] {
             return refusal(fixture.safeFiles.trash(
                 root, file, [&](const std::string& path) { return fixture.disk.remove(path); }));
         }},
        {"remove", [&] { return refusal(fixture.safeFiles.remove(root, file)); }},
        {"replace what was read before",
         [&] { return refusal(fixture.disk.replace(file, read, "new")); }},
        {"remove what was read before", [&] { return refusal(fixture.disk.remove(file, &read)); }},
        {"push to another folder", push("Far.txt")},
        {"push a shell that has a name of its own", push("Near.txt.nextcloud")},
    };
    LogCapture log;
    for (const auto& row : rows) {
        const auto& what = row.first;
        CAPTURE(what);
        CHECK(row.second() == Failure::Kind::unavailable);
        CHECK(fixture.folder.read("share/org.example/Notes/Far.txt") == " ");
        CHECK(fixture.folder.exists("share/org.example/Notes/Near.txt.nextcloud"));
    }
}

TEST_CASE("a range is deleted from the text, or the log tells why not") {
    const auto row = [](const std::string& before, base::TextRange range,
                        std::optional<std::string> expected, const std::string& after,
                        const std::string& words) {
        CAPTURE(before);
        StoreFixture fixture;
        fixture.folder.write(dayFile, before);
        LogCapture log;
        const auto deleted =
            fixture.store.deleteRange(NoteType::calendar, "20190305.txt", range, expected);
        CHECK(deleted.ok() == words.empty());
        CHECK(fixture.folder.read(dayFile) == after);
        CHECK(log.lines() == (words.empty() ? Files{} : Files{words}));
    };
    row("abc\r\ndef", {3, 2}, "\r\n", "abcdef", "");
    row("\xEF\xBB\xBFone\r\ntwo\r\n", {0, 5}, "one\r\n", "\xEF\xBB\xBFtwo\r\n", "");
    row("abc", {1, 0}, {}, "abc", "");
    row("abc", {1, 3}, {}, "abc",
        "Failed to delete range: '{1, 3}' in 20190305.txt. Error = the range goes past the end of "
        "the text");
    row("\xEF\xBB\xBF"
        "abc",
        {3, 1}, {},
        "\xEF\xBB\xBF"
        "abc",
        "Failed to delete range: '{3, 1}' in 20190305.txt. Error = the range goes past the end of "
        "the text");
    row("abc", {0, 3}, "abd", "abc",
        "Failed to delete range: '{0, 3}' in 20190305.txt. Error = another text stands there now");
    row("\xFF", {0, 0}, {}, "\xFF",
        "Failed to delete range: '{0, 0}' in 20190305.txt. Error = Content empty");

    StoreFixture fixture;
    LogCapture log;
    CHECK_FALSE(fixture.store.deleteRange(NoteType::note, "None.txt", {12, 30}).ok());
    REQUIRE(log.lines().size() == 1);
    CHECK(log.lines()[0].starts_with("Failed to delete range: '{12, 30}' in None.txt. Error = "));
}

TEST_CASE("a range is looked for in the text that is there when it is deleted") {
    StoreFixture fixture;
    fixture.folder.write(dayFile, "one\ntwo\n");
    fixture.changes.before =
        once(fixture, "replace", [&] { fixture.folder.write(dayFile, "new\none\ntwo\n"); });
    CHECK_FALSE(
        fixture.store.deleteRange(NoteType::calendar, "20190305.txt", {4, 4}, "two\n").ok());
    CHECK(fixture.folder.read(dayFile) == "new\none\ntwo\n");
}

TEST_CASE("a stray calendar file becomes part of its day's note") {
    const auto row = [](std::string_view stray, std::optional<std::string> before,
                        const std::string& bytes, std::string_view after) {
        CAPTURE(stray);
        CAPTURE(after);
        StoreFixture fixture;
        if (before) {
            fixture.folder.write(dayFile, *before);
        }
        const std::string file = "data/Calendar/" + std::string(stray);
        fixture.folder.write(file, bytes);
        LogCapture log;
        const auto merged = fixture.store.mergeDisconnectedCalendarNote(stray);
        REQUIRE(merged);
        CHECK(base::fileText(*merged) == "20190305");
        CHECK(fixture.folder.read(dayFile) == after);
        CHECK(fixture.folder.names("data/Calendar") == Files{"20190305.txt"});
        if (before) {
            CHECK(log.lines() == Files{"seems its possible to merge it and it belongs to: " +
                                       fixture.root + "/Calendar/20190305.txt"});
            CHECK(isKept(fixture, file, bytes));
        } else {
            CHECK(log.lines().empty());
        }
    };
    row("20190305 2.txt", "old\n", "stray\n", "old\nstray\n");
    row("20190305 2.txt", "old\r\n", "\xEF\xBB\xBFstray\n", "old\r\nstray\r\n");
    row("2019-3-5.txt", "old", "stray", "old\nstray");
    row("20190305.md", "", "stray", "stray");
    row("20190305 2.txt", "old\n", "", "old\n");
    row("20190305 2.txt", "old\nstray\nmore\n", "stray\n", "old\nstray\nmore\n");
    row("20190305 2.txt", "old strays\n", "stray", "old strays\nstray\n");
    row("20190305 2.txt", std::nullopt, "stray\r\n", "stray\r\n");
    row("20190305 2.txt", std::nullopt, "caf\xE9", "caf\xE9");
}

TEST_CASE("a stray that cannot be merged stays, and so does its day") {
    const auto row = [](std::string_view name, std::string_view day, std::string_view stray,
                        std::vector<std::string_view> lines) {
        CAPTURE(name);
        StoreFixture fixture;
        fixture.folder.write(dayFile, day);
        const std::string file = "data/Calendar/" + std::string(name);
        if (!stray.empty()) {
            fixture.folder.write(file, stray);
        }
        LogCapture log;
        CHECK_FALSE(fixture.store.mergeDisconnectedCalendarNote(name).ok());
        CHECK(fixture.folder.read(dayFile) == day);
        CHECK((stray.empty() || fixture.folder.read(file) == stray));
        REQUIRE(log.lines().size() == lines.size());
        for (std::size_t line = 0; line < lines.size(); ++line) {
            CHECK(log.lines()[line].starts_with(lines[line]));
        }
    };
    constexpr std::string_view possible = "seems its possible to merge it and it belongs to: ";
    constexpr std::string_view failed = "Could not merge disconnected calendar notes: ";
    row("20190305 2.txt", "old", "caf\xE9", {possible, failed});
    row("20190305 2.txt", "caf\xE9", "stray", {possible, failed});
    row("20190305 2.txt", "old", "", {possible, failed});
    row("20190231 2.txt", "old", "stray", {});
    row("Notes 2019.txt", "old", "stray", {});
    row("../Notes/20190305 2.txt", "old", "", {});
}

TEST_CASE("a stray waits for a day's note that has not been downloaded") {
    StoreFixture fixture;
    fixture.folder.write(std::string(dayFile) + ".nextcloud", "");
    fixture.folder.write(strayFile, "stray");
    LogCapture log;
    CHECK_FALSE(fixture.store.mergeDisconnectedCalendarNote("20190305 2.txt").ok());
    CHECK(fixture.folder.names("data/Calendar") ==
          Files{"20190305 2.txt", "20190305.txt.nextcloud"});
    REQUIRE(log.lines().size() == 1);
    CHECK(log.lines()[0].starts_with("Could not merge disconnected calendar notes: "));
}

TEST_CASE("a stray or day that changes during the merge loses nothing") {
    StoreFixture fixture;
    const auto merge = [&] {
        return fixture.store.mergeDisconnectedCalendarNote("20190305 2.txt");
    };
    fixture.folder.write(strayFile, "stray\n");
    fixture.changes.before =
        once(fixture, "move", [&] { fixture.folder.write(dayFile, "came\n"); });
    CHECK(merge().ok());
    CHECK(fixture.folder.read(dayFile) == "came\nstray\n");
    CHECK_FALSE(fixture.folder.exists(strayFile));

    fixture.folder.write(strayFile, "second\n");
    fixture.changes.before =
        once(fixture, "replace", [&] { fixture.folder.write(strayFile, "second\nthird\n"); });
    LogCapture log;
    CHECK_FALSE(merge().ok());
    CHECK(fixture.folder.read(dayFile) == "came\nstray\nsecond\n");
    CHECK(fixture.folder.read(strayFile) == "second\nthird\n");
    REQUIRE(log.lines().size() == 2);
    CHECK(log.lines()[1].starts_with("could not delete the extra note: "));
}

TEST_CASE("a merge that a full disk interrupts at any call ends right when it is run again") {
    for (const bool exists : {true, false}) {
        for (int call = 0;; ++call) {
            CAPTURE(call);
            StoreFixture fixture;
            if (exists) {
                fixture.folder.write(dayFile, "old\n");
            }
            fixture.folder.write(strayFile, "stray\n");
            bool reached = false;
            fixture.changes.before = HookedChanges::fullAt(call, reached);
            LogCapture log;
            const auto merged = fixture.store.mergeDisconnectedCalendarNote("20190305 2.txt");
            fixture.changes.before = nullptr;
            CHECK(log.lines().size() <= (exists ? 2U : 1U));
            if (!merged) {
                CHECK(fixture.folder.read(strayFile) == "stray\n");
                CHECK(fixture.store.mergeDisconnectedCalendarNote("20190305 2.txt").ok());
            }
            CHECK(fixture.folder.read(dayFile) == (exists ? "old\nstray\n" : "stray\n"));
            CHECK(fixture.folder.names("data/Calendar") == Files{"20190305.txt"});
            if (!reached) {
                break;
            }
        }
    }
}
