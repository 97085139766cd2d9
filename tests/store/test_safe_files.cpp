// SPDX-License-Identifier: MIT
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "platform/fixed_clock.h"
#include "platform/flock_folder_locks.h"
#include "platform/posix_file_changes.h"
#include "platform/posix_file_system.h"
#include "store/history.h"
#include "store/safe_files.h"
#include "support/failing_files.h"
#include "support/temp_folder.h"

namespace tessaly::tests {
namespace {

using base::Done;
using base::Failure;
using base::Result;
using store::ChangeCause;
using store::HistoryEntry;
using Texts = std::vector<std::string>;

constexpr std::string_view temporary = "/.~note.txt.abcdefgh~";

struct Killed {};

struct Fixture {
    TempFolder folder;
    platform::PosixFileSystem files;
    platform::PosixFileChanges changes;
    platform::FlockFolderLocks locks{folder / "locks"};
    platform::FixedClock clock{platform::parseTime("2019-03-05T14:07:33").value()};
    FailingFiles failing{files, changes, locks};
    store::History history{{failing, failing, failing, clock}, folder / "history"};
    store::SafeFiles safe{{failing, failing, failing, history}};
    std::string root = folder.mkdir("data");
    std::string notes = folder.mkdir("data/Notes");
    std::string note = folder.write("data/Notes/note.txt", "old\n");

    Result<bool> addLine(const std::string& line = "new\n") {
        return safe.edit(
            root, note,
            [&](std::string_view bytes) {
                return Result<std::optional<std::string>>(std::string(bytes) + line);
            },
            ChangeCause::added);
    }

    Result<Done> trash() {
        return safe.trash(root, note, [this](const std::string& file) {
            return changes.move(file, folder.mkdir("trash") + "/note.txt");
        });
    }

    /// The bytes of a file; nothing when it is not there.
    std::optional<std::string> bytesOf(const std::string& file) {
        const auto read = files.read(file);
        return read ? std::optional(read->bytes) : std::nullopt;
    }

    Texts keptTexts(std::optional<ChangeCause> cause = std::nullopt) {
        Texts texts;
        const std::vector<HistoryEntry> entries = history.entries().value();
        for (const HistoryEntry& entry : entries) {
            if (!cause || entry.cause == *cause) {
                texts.push_back(history.text(entry).value());
            }
        }
        return texts;
    }

    bool isKept(const std::string& text) {
        const Texts texts = keptTexts();
        return std::find(texts.begin(), texts.end(), text) != texts.end();
    }

    /// As another program does it that knows nothing of us.
    void append(std::string_view line) const {
        std::ofstream(note, std::ios::app | std::ios::binary) << line;
    }

    /// A temporary file of the note; returns its path.
    std::string leave(std::string_view bytes) const {
        return folder.write("data/Notes" + std::string(temporary), bytes);
    }

    /// As a process does that dies with these bytes in a temporary file of the note.
    std::string die(std::string_view bytes) {
        REQUIRE(locks.take(root).value()->begin(notes));
        return leave(bytes);
    }
};

/// What is done to the note, and what is in its place before and after.
struct Operation {
    const char* name;
    std::optional<std::string> before;
    std::optional<std::string> after;
    std::function<bool(Fixture&)> run;
};

const Operation operations[] = {
    {"edit", "old\n", "old\nnew\n", [](Fixture& f) { return f.addLine().ok(); }},
    {"create", {}, "new\n", [](Fixture& f) { return f.safe.create(f.root, f.note, "new\n").ok(); }},
    {"trash", "old\n", {}, [](Fixture& f) { return f.trash().ok(); }},
    {"remove", "old\n", {}, [](Fixture& f) { return f.safe.remove(f.root, f.note).ok(); }},
    {"move",
     "old\n",
     {},
     [](Fixture& f) {
         return f.safe.move(f.root, f.note, f.folder.mkdir("data/.Trash") + "/note.txt").ok();
     }},
};

/// What holds after `operation`, however it went.
void checkNothingLost(Fixture& f, const Operation& operation) {
    const auto now = f.bytesOf(f.note);
    const bool isWhole = now == operation.before || now == operation.after;
    CHECK(isWhole);
    for (const std::string& name : f.folder.names("data/Notes")) {
        const bool isNamed = name == "note.txt" || name.starts_with(".~");
        CHECK(isNamed);
    }
    if (operation.before && now != operation.before) {
        const bool isSafe = f.isKept(*operation.before) ||
                            f.bytesOf(f.folder / "trash/note.txt") == operation.before ||
                            f.bytesOf(f.root + "/.Trash/note.txt") == operation.before;
        CHECK(isSafe);
    }
}

/// Whether the operation got through before its call number `call` was reached.
bool runTo(int call, const Operation& operation, const std::function<void(Fixture&)>& arm) {
    CAPTURE(operation.name);
    CAPTURE(call);
    Fixture f;
    if (!operation.before) {
        std::filesystem::remove(f.note);
    }
    arm(f);
    bool done = false;
    bool passed = false;
    try {
        done = operation.run(f);
        passed = f.failing.calls() <= call;
    } catch (const Killed&) {
    }
    f.failing.heal();
    checkNothingLost(f, operation);
    // What a process has finished before it was killed need not be possible again.
    if (!done && f.bytesOf(f.note) != operation.after) {
        CHECK(operation.run(f));
    }
    CHECK(f.bytesOf(f.note) == operation.after);
    checkNothingLost(f, operation);
    REQUIRE(f.safe.settle(f.root));
    for (const std::string& name : f.folder.names("data/Notes")) {
        CHECK(name == "note.txt");
    }
    CHECK(f.keptTexts(ChangeCause::unfinished).empty());
    return passed;
}

}  // namespace

TEST_CASE("safe files: whatever call fails or kills, nothing is lost, and the next one is tidy") {
    for (const Operation& operation : operations) {
        for (const bool kills : {false, true}) {
            CAPTURE(kills);
            int call = 0;
            const auto kill = [&](Fixture& f, std::string_view name, const std::string& file) {
                if (file == f.note && (name == "replace" || name == "create")) {
                    f.leave(operation.after->substr(0, operation.after->size() / 2));
                }
                throw Killed{};
            };
            const auto arm = [&](Fixture& f) {
                if (!kills) {
                    f.failing.failAt(call, Failure::Kind::noSpace);
                    return;
                }
                f.failing.before([&](int number, std::string_view name, const std::string& file) {
                    if (number == call) {
                        kill(f, name, file);
                    }
                });
            };
            while (!runTo(call, operation, arm)) {
                REQUIRE(++call < 100);
            }
        }
    }
}

TEST_CASE("safe files: a line that another program adds at any moment is not lost, nor is ours") {
    bool passed = false;
    for (int call = 0; !passed; ++call) {
        CAPTURE(call);
        REQUIRE(call < 100);
        Fixture f;
        f.failing.before([&](int number, std::string_view, const std::string&) {
            if (number == call) {
                f.append("theirs\n");
            }
        });
        REQUIRE(f.addLine().ok());
        passed = f.failing.calls() <= call;
        f.failing.heal();
        const std::string bytes = f.bytesOf(f.note).value();
        CHECK(bytes.starts_with("old\n"));
        CHECK(bytes.find("new\n") != bytes.npos);
        CHECK((bytes.find("theirs\n") != bytes.npos) == !passed);
        CHECK(f.folder.names("data/Notes") == Texts{"note.txt"});
    }
}

TEST_CASE_FIXTURE(Fixture, "safe files: a file that never stands still is left to its writer") {
    std::string written = "old\n";
    failing.before([&](int, std::string_view name, const std::string&) {
        if (name == "replace") {
            append("x\n");
            written += "x\n";
        }
    });
    const auto edited = addLine();
    REQUIRE_FALSE(edited);
    CHECK(edited.failure().kind == Failure::Kind::unavailable);
    CHECK(bytesOf(note) == written);
    CHECK(folder.names("data/Notes") == Texts{"note.txt"});
    CHECK_FALSE(locks.isUnfinished(root));
}

TEST_CASE_FIXTURE(Fixture, "safe files: what refuses or changes nothing leaves no trace") {
    using Edited = Result<std::optional<std::string>>;
    using Edit = std::function<Edited(std::string_view)>;
    struct Row {
        const char* what;
        std::string file;
        Edit edit;
        std::optional<Failure::Kind> failure;
    };
    const auto giving = [](const Edited& result) {
        return Edit([result](std::string_view) { return result; });
    };
    const Row rows[] = {
        {"no change", note, giving(std::optional<std::string>()), {}},
        {"same bytes", note, giving(std::optional<std::string>("old\n")), {}},
        {"refused", note, giving(Failure{Failure::Kind::malformed, "no"}),
         Failure::Kind::malformed},
        {"huge", note, giving(std::optional(std::string(ports::maxFileBytes + 1, 'x'))),
         Failure::Kind::tooLarge},
        {"missing", root + "/no.txt", giving(std::optional<std::string>("x")),
         Failure::Kind::notFound},
    };
    for (const Row& row : rows) {
        CAPTURE(row.what);
        const auto edited = safe.edit(root, row.file, row.edit, ChangeCause::added);
        CHECK(edited.ok() == !row.failure);
        const bool isAsTold = edited ? !*edited : edited.failure().kind == row.failure;
        CHECK(isAsTold);
    }
    const std::string there = folder.write("data/Notes/there.txt", "there");
    CHECK(safe.create(root, note, "other").failure().kind == Failure::Kind::exists);
    CHECK(safe.remove(root, note, &there).failure().kind == Failure::Kind::changed);
    CHECK(safe.move(root, note, there).failure().kind == Failure::Kind::exists);
    CHECK(bytesOf(note) == "old\n");
    CHECK(bytesOf(there) == "there");
    CHECK(keptTexts().empty());
}

TEST_CASE("safe files: a file is removed only with all its bytes in the history") {
    for (const bool isExpected : {false, true}) {
        CAPTURE(isExpected);
        Fixture f;
        bool isWritten = false;
        f.failing.before([&](int, std::string_view name, const std::string& file) {
            if (name == "remove" && file == f.note && !isWritten) {
                isWritten = true;
                f.append("theirs\n");
            }
        });
        const std::string expected = "old\n";
        const auto removed = f.safe.remove(f.root, f.note, isExpected ? &expected : nullptr);
        CHECK(removed.ok() == !isExpected);
        CHECK(f.bytesOf(f.note).has_value() == isExpected);
        const auto left = isExpected ? f.bytesOf(f.note) : f.keptTexts().front();
        CHECK(left == "old\ntheirs\n");
    }
}

TEST_CASE("safe files: what a dead process left is kept unless it is known, then removed") {
    struct Row {
        const char* what;
        std::string bytes;
        bool isKept;
    };
    const Row rows[] = {
        {"not begun", "", false},        {"cut off", "old\nne", false},
        {"whole", "old\nnew\n", false},  {"what came out", "old\n", false},
        {"another's", "theirs\n", true}, {"another's line", "old\nnew\ntheirs\n", true},
    };
    for (const Row& row : rows) {
        CAPTURE(row.what);
        Fixture f;
        REQUIRE(f.addLine());
        f.die(row.bytes);
        REQUIRE(f.locks.isUnfinished(f.root));
        REQUIRE(f.safe.settle(f.root));
        CHECK(f.folder.names("data/Notes") == Texts{"note.txt"});
        CHECK(f.bytesOf(f.note) == "old\nnew\n");
        CHECK(f.keptTexts(ChangeCause::unfinished) == (row.isKept ? Texts{row.bytes} : Texts{}));
        CHECK(f.history.entries().value().front().path == f.note);
        CHECK_FALSE(f.locks.isUnfinished(f.root));
    }
}

TEST_CASE_FIXTURE(Fixture, "safe files: of a link whose removal was cut off nothing is left") {
    REQUIRE(locks.take(root).value()->begin(notes));
    folder.link("data/Notes" + std::string(temporary), "note.txt");
    folder.link("data/Notes/.~gone.txt.abcdefgh~", "nowhere");
    REQUIRE(safe.settle(root));
    CHECK(folder.names("data/Notes") == Texts{"note.txt"});
    CHECK(bytesOf(note) == "old\n");
}

TEST_CASE("safe files: the first change since the machine came up settles the whole data folder") {
    struct Row {
        std::string_view folder;
        bool isSettled;
    };
    const Row rows[] = {
        {"data", true},          {"data/Notes", true},         {"data/Notes/a/b", true},
        {"data/Calendar", true}, {"data/.Trash/a", true},      {"data/Filters", true},
        {"data/Images", true},   {"data/Notes/.git/a", false}, {"data/other", false},
        {"elsewhere", false},
    };
    Fixture f;
    f.folder.link("data/Notes/link", f.folder.mkdir("elsewhere"));
    for (const Row& row : rows) {
        f.folder.write(std::string(row.folder) + std::string(temporary), "left over");
    }
    REQUIRE(f.addLine());
    for (const Row& row : rows) {
        CAPTURE(row.folder);
        CHECK(f.folder.exists(std::string(row.folder) + std::string(temporary)) != row.isSettled);
    }
}

TEST_CASE_FIXTURE(Fixture, "safe files: what fails to be settled is settled later") {
    REQUIRE(addLine());
    bool passed = false;
    for (int call = 0; !passed; ++call) {
        CAPTURE(call);
        REQUIRE(call < 100);
        const std::string left = die("theirs\n");
        failing.failAt(call, Failure::Kind::denied);
        const bool isSettled = safe.settle(root).ok();
        passed = failing.calls() <= call;
        failing.heal();
        const bool isSafe = isKept("theirs\n") || bytesOf(left) == "theirs\n";
        CHECK(isSafe);
        CHECK(locks.isUnfinished(root) == !isSettled);
        REQUIRE(safe.settle(root));
        CHECK(isKept("theirs\n"));
        CHECK_FALSE(bytesOf(left));
        REQUIRE(history.clear());
    }
}

TEST_CASE_FIXTURE(Fixture,
                  "safe files: what a lost race leaves behind is settled with the change") {
    bool isLost = false;
    failing.before([&](int, std::string_view name, const std::string& file) {
        if (name == "replace" && file == note && !isLost) {
            isLost = true;
            leave("theirs\n");
            failing.failThis(Failure::Kind::changed);
        }
    });
    REQUIRE(addLine());
    CHECK(bytesOf(note) == "old\nnew\n");
    CHECK(folder.names("data/Notes") == Texts{"note.txt"});
    CHECK(keptTexts(ChangeCause::unfinished) == Texts{"theirs\n"});
}

TEST_CASE_FIXTURE(Fixture, "safe files: what cannot be settled is in no change's way") {
    REQUIRE(addLine());
    const std::string left = die("theirs\n");
    failing.before([&](int, std::string_view, const std::string& file) {
        if (file == left) {
            failing.failThis(Failure::Kind::denied);
        }
    });
    REQUIRE(addLine("newer\n"));
    CHECK(bytesOf(note) == "old\nnew\nnewer\n");
    CHECK(bytesOf(left) == "theirs\n");
    CHECK(locks.isUnfinished(root));
    failing.heal();
    REQUIRE(addLine("newest\n"));
    CHECK_FALSE(bytesOf(left));
    CHECK(isKept("theirs\n"));
}

TEST_CASE_FIXTURE(Fixture, "safe files: a note that is a link is tidied up where it leads to") {
    const std::string target = folder.write("elsewhere/real.txt", "old\n");
    note = folder.link("data/Notes/link.txt", target);
    failing.before([&](int, std::string_view name, const std::string& file) {
        if (name == "replace" && file == note) {
            folder.write("elsewhere/.~real.txt.abcdefgh~", "theirs\n");
            throw Killed{};
        }
    });
    CHECK_THROWS_AS(static_cast<void>(addLine()), Killed);
    failing.heal();
    REQUIRE(addLine());
    CHECK(folder.read("elsewhere/real.txt") == "old\nnew\n");
    CHECK(std::filesystem::is_symlink(note));
    CHECK(folder.names("elsewhere") == Texts{"real.txt"});
    CHECK(keptTexts(ChangeCause::unfinished) == Texts{"theirs\n"});
}

}  // namespace tessaly::tests
