// SPDX-License-Identifier: MIT
#include <chrono>
#include <filesystem>
#include <initializer_list>
#include <set>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "base/sha256.h"
#include "platform/flock_folder_locks.h"
#include "platform/posix_file_changes.h"
#include "platform/posix_file_system.h"
#include "store/history.h"
#include "store/history_index.h"
#include "store/history_pruning.h"
#include "support/failing_files.h"
#include "support/temp_folder.h"

namespace tessaly::tests {
namespace {

using namespace std::chrono_literals;
using base::Failure;
using std::chrono::days;
using store::ChangeCause;
using store::HistoryEntry;
using store::HistoryLimits;

const base::Instant noon = std::chrono::sys_days{std::chrono::year{2019} / 3 / 5} + 12h;

struct HandClock : ports::Clock {
    base::Instant time = noon;
    base::Instant now() override { return time; }
    base::LocalTime local(base::Instant) override { return {}; }
};

struct Fixture {
    TempFolder folder;
    platform::PosixFileSystem files;
    platform::PosixFileChanges changes;
    platform::FlockFolderLocks locks{folder / "locks"};
    FailingFiles failing{files, changes, locks};
    HandClock clock;
    HistoryLimits limits{days{90}, 1000, 500, 1 << 20};
    store::History history{{failing, failing, failing, clock}, folder / "history", limits};

    std::vector<std::string> textsOf(const std::string& file) {
        std::vector<std::string> texts;
        const std::vector<HistoryEntry> entries = history.entries(file).value();
        for (const HistoryEntry& entry : entries) {
            const auto text = history.text(entry);
            texts.push_back(text ? *text : text.failure().description);
        }
        return texts;
    }

    std::set<std::string> storedTexts() const {
        std::set<std::string> names;
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(folder / "history/texts")) {
            if (!entry.is_directory()) {
                names.insert(entry.path().filename());
            }
        }
        return names;
    }
};

std::set<std::string> hashesOf(std::initializer_list<std::string_view> texts) {
    std::set<std::string> hashes;
    for (const std::string_view text : texts) {
        hashes.insert(base::sha256(text));
    }
    return hashes;
}

using Texts = std::vector<std::string>;

}  // namespace

TEST_CASE("history: an entry is read from its line as it was written") {
    struct Row {
        base::Instant time;
        std::string path;
        std::string_view timeText;
    };
    const Row rows[] = {
        {noon + 1ns, "/data/Notes/a.txt", "2019-03-05T12:00:00.000000001Z"},
        {base::Instant{-1ns}, "/tab\there\nand \\t", "1969-12-31T23:59:59.999999999Z"},
        {noon + 987654321ns, "/\xff\xc3\xa9\\", "2019-03-05T12:00:00.987654321Z"},
    };
    for (const Row& row : rows) {
        const HistoryEntry entry{row.time, ChangeCause::merged, base::sha256("x"), 1, row.path};
        const std::string line = store::lineOf(entry);
        CAPTURE(line);
        CHECK(line.starts_with(row.timeText));
        CHECK(line.find('\n') == line.size() - 1);
        CHECK(store::entryOfLine(line.substr(0, line.size() - 1)) == entry);
        CHECK(store::newestOf(line + line, row.path, 9) == std::vector{entry, entry});
    }
}

TEST_CASE("history: lines that are not understood are no entries") {
    const std::string good = store::lineOf({noon, {}, base::sha256("x"), 1, "/a"});
    struct Row {
        std::string_view from;
        std::string_view to;
    };
    const Row rows[] = {
        {"2019-03-05", "2019-02-30"},
        {"2019", "9999"},
        {"T12", "T24"},
        {"found", "lost"},
        {"\t1\t", "\t-1\t"},
        {"/a", "a"},
        {"/a", "/a\\"},
        {"/a", "/a\\x"},
        {"/a", ""},
        {"\t1\t", "\t1x\t"},
        {"000Z", "000+"},
    };
    for (const Row& row : rows) {
        std::string line = good.substr(0, good.size() - 1);
        line.replace(line.find(row.from), row.from.size(), row.to);
        CAPTURE(line);
        CHECK_FALSE(store::entryOfLine(line));
    }
}

TEST_CASE_FIXTURE(Fixture, "history: an index cut off anywhere costs the last entry at most") {
    REQUIRE(history.keepOld("/a", "one"));
    REQUIRE(history.keepOld("/a.txt", "two"));
    const std::string index = folder.read("history/index");
    for (std::size_t size = index.find('\n') + 1; size < index.size(); ++size) {
        CAPTURE(size);
        folder.write("history/index", index.substr(0, size));
        REQUIRE(history.keepOld("/a.txt", "three"));
        CHECK(textsOf("/a") == Texts{"one"});
        CHECK(history.entries().value().size() == 2);
        CHECK(textsOf("/a.txt") == Texts{"three"});
    }
}

TEST_CASE_FIXTURE(Fixture, "history: old bytes are kept once, new ones each time") {
    struct Row {
        ChangeCause cause;
        std::chrono::nanoseconds later;
        std::string bytes;
        std::size_t entries;
    };
    const Row rows[] = {
        {ChangeCause::found, 0s, "a", 1},       {ChangeCause::found, 1s, "a", 1},
        {ChangeCause::found, 2min, "a", 1},     {ChangeCause::found, 1s, "b", 2},
        {ChangeCause::found, 1s, "a", 3},       {ChangeCause::trashed, 1s, "a", 4},
        {ChangeCause::found, -5min, "a", 4},    {ChangeCause::unfinished, 1s, "a", 4},
        {ChangeCause::found, 24h * 50, "a", 5},
    };
    for (const Row& row : rows) {
        CAPTURE(row.entries);
        clock.time += row.later;
        REQUIRE(history.keepOld("/f", row.bytes, row.cause));
        CHECK(history.entries().value().size() == row.entries);
    }
    REQUIRE(history.keepNew("/f", "a", ChangeCause::added));
    CHECK(history.entries().value().front().cause == ChangeCause::added);
    REQUIRE(history.keepOld("/g", "a"));
    CHECK(history.entries("/f").value().size() == 6);
    CHECK(storedTexts() == hashesOf({"a", "b"}));
}

TEST_CASE_FIXTURE(Fixture, "history: what was kept young is put on the disk before it is lost") {
    REQUIRE(history.keepNew("/f", "a", ChangeCause::added));
    std::vector<std::string> synced;
    failing.before([&](int, std::string_view operation, const std::string& path) {
        if (operation == "sync") {
            synced.push_back(path.substr(path.rfind('/') + 1));
        }
    });
    clock.time += 59s;
    REQUIRE(history.keepOld("/f", "a"));
    CHECK(synced == Texts{base::sha256("a"), "index"});
    clock.time += 1s;
    REQUIRE(history.keepOld("/f", "a"));
    CHECK(synced.size() == 2);
}

TEST_CASE_FIXTURE(Fixture, "history: a text that a power cut has emptied is written again") {
    REQUIRE(history.keepNew("/f", "bytes", ChangeCause::added));
    const std::string hash = base::sha256("bytes");
    const std::string text = "history/texts/" + hash.substr(0, 2) + "/" + hash;
    for (const std::string_view broken : {"", "byt", "BYTES"}) {
        folder.write(text, broken);
        const auto read = history.text(history.find(hash).value());
        REQUIRE_FALSE(read);
        CHECK(read.failure().kind == Failure::Kind::malformed);
        REQUIRE(history.keepOld("/f", "bytes"));
        CHECK(folder.read(text) == "bytes");
    }
}

TEST_CASE_FIXTURE(Fixture, "history: a text is found by the beginning of its hash") {
    REQUIRE(history.keepOld("/f", "one"));
    REQUIRE(history.keepOld("/g", "one"));
    const std::string hash = base::sha256("one");
    std::string other = hash;
    other.back() = other.back() == '0' ? '1' : '0';
    const std::string index = folder.read("history/index");
    folder.write("history/index", index + store::lineOf({noon, {}, other, 3, "/h"}));
    std::string capitals = hash;
    for (char& c : capitals) {
        c = c >= 'a' ? static_cast<char>(c - 32) : c;
    }
    struct Row {
        std::string prefix;
        std::string found;  // the path, or nothing
        Failure::Kind failure = {};
    };
    const Row rows[] = {
        {hash, "/g"},
        {capitals, "/g"},
        {other, "/h"},
        {hash.substr(0, 4), "", Failure::Kind::malformed},
        {hash.substr(0, 3), "", Failure::Kind::malformed},
        {"", "", Failure::Kind::malformed},
        {hash.substr(0, 8) + "g", "", Failure::Kind::malformed},
        {hash + "0", "", Failure::Kind::notFound},
        {std::string(64, '0'), "", Failure::Kind::notFound},
    };
    for (const Row& row : rows) {
        CAPTURE(row.prefix);
        const auto found = history.find(row.prefix);
        CHECK(found.ok() == !row.found.empty());
        if (found) {
            CHECK(found->path == row.found);
        } else {
            CHECK(found.failure().kind == row.failure);
        }
    }
}

TEST_CASE_FIXTURE(Fixture, "history: forgetting takes the texts that nothing names any longer") {
    REQUIRE(history.keepOld("/f", "shared"));
    REQUIRE(history.keepOld("/f", "only f"));
    REQUIRE(history.keepOld("/g", "shared"));
    REQUIRE(history.keepOld("/h", "of a later version"));
    std::string index = folder.read("history/index");
    index.replace(index.rfind("found"), 5, "later");
    folder.write("history/index", index);
    folder.write("history/.~index.abcdefgh~", "torn");
    CHECK(history.clear("/f").value() == 2);
    CHECK(textsOf("/g") == Texts{"shared"});
    CHECK(storedTexts() == hashesOf({"shared", "of a later version"}));
    CHECK(folder.names("history") == Texts{"index", "texts"});
    CHECK(folder.read("history/index").ends_with("/h\n"));
    CHECK(history.clear("/f").value() == 0);
    CHECK(history.clear().value() == 1);
    CHECK(history.entries().value().empty());
    CHECK(storedTexts().empty());
    CHECK(folder.read("history/index").empty());
}

TEST_CASE("history: the old go, and the oldest of the rest until there is room") {
    struct Kept {
        int age;  // days
        std::string text;
        std::uint64_t bytes;
        std::string path = "/f";
    };
    struct Row {
        const char* what;
        std::vector<Kept> kept;
        std::string_view left;  // the first letters of the texts
    };
    // Room for texts of 1000 − 500 bytes.
    const Row rows[] = {
        {"all fit", {{3, "a", 200}, {2, "b", 200}, {1, "c", 100}}, "abc"},
        {"too old", {{91, "a", 1}, {90, "b", 1}, {0, "c", 1}}, "bc"},
        {"clock went back", {{1, "a", 1}, {95, "b", 1}, {0, "c", 1}}, "abc"},
        {"clock went ahead", {{-9, "a", 1}, {95, "b", 1}, {0, "c", 1}}, "ac"},
        {"oldest first", {{3, "a", 200}, {2, "b", 300}, {1, "c", 1}}, "bc"},
        {"one text counts once", {{3, "a", 300}, {2, "a", 300}, {1, "b", 200}}, "aab"},
        {"it goes with its last entry",
         {{4, "a", 300}, {3, "b", 200}, {2, "a", 300}, {1, "c", 100}},
         "ac"},
        {"the change that is made",
         {{2, "a", 300, "/g"}, {1, "b", 200}, {0, "c", 200, "/g"}},
         "ac"},
        {"no more than that",
         {{3, "a", 400, "/g"}, {2, "b", 400, "/g"}, {1, "c", 400, "/g"}},
         "bc"},
    };
    for (const Row& row : rows) {
        CAPTURE(row.what);
        std::string index = "not understood\n";
        for (const Kept& kept : row.kept) {
            index += store::lineOf(
                {noon - days{kept.age}, {}, base::sha256(kept.text), kept.bytes, kept.path});
        }
        const HistoryLimits limits{days{90}, 1000, 500, 1 << 20};
        const std::string left = store::pruned(index, limits, noon, "/g");
        CHECK(left.starts_with("not understood\n"));
        std::string letters;
        for (const std::string_view line : store::linesOf(left)) {
            const auto entry = store::entryOfLine(line.substr(0, line.size() - 1));
            for (const char letter : std::string_view("abc")) {
                letters += entry && entry->hash == base::sha256(std::string(1, letter))
                               ? std::string(1, letter)
                               : "";
            }
        }
        CHECK(letters == row.left);
    }
}

TEST_CASE("history: an index that is too long loses its oldest lines of any kind") {
    const HistoryLimits limits{days{90}, 1000, 500, 1000};
    std::string index(400, 'x');
    index += "\n";
    const HistoryEntry entry{noon, {}, base::sha256("a"), 1, "/f"};
    for (int i = 0; i < 6; ++i) {
        index += store::lineOf(entry);
    }
    CHECK(store::isPruningDue(index.size(), {}, entry, limits));
    const std::string left = store::pruned(index, limits, noon, "/g");
    CHECK(left.size() <= 750);
    CHECK(left == index.substr(index.size() - left.size()));
    CHECK_FALSE(store::isPruningDue(left.size(), {}, entry, limits));
}

TEST_CASE_FIXTURE(Fixture,
                  "history: it is pruned on a new day, and when a day's texts pass a step") {
    clock.time = noon - days{91};
    REQUIRE(history.keepOld("/f", "old"));
    clock.time = noon;
    folder.write("history/texts/ab/.~x.abcdefgh~", "torn");
    folder.write("history/texts/README", "not ours");
    REQUIRE(history.keepOld("/f", "new"));
    CHECK(textsOf("/f") == Texts{"new"});
    std::set<std::string> stored = hashesOf({"new"});
    stored.insert("README");
    CHECK(storedTexts() == stored);

    // A day's entries of 600 bytes each, where two are more than there is room for.
    const std::string big[] = {std::string(600, 'a'), std::string(600, 'b'), std::string(600, 'c')};
    for (const std::string& text : big) {
        REQUIRE(history.keepNew(std::string("/") + text[0], text, ChangeCause::added));
    }
    CHECK(textsOf("/f").empty());
    CHECK(textsOf("/b").empty());
    CHECK(textsOf("/c") == Texts{big[2]});
}

TEST_CASE_FIXTURE(Fixture, "history: a clock that is ahead makes nothing old") {
    REQUIRE(history.keepOld("/f", "ours"));
    const auto today = files.read(folder / "history/index")->stamp.modified;
    clock.time = today;
    REQUIRE(history.keepOld("/f", "today's"));
    clock.time = today + days{4000};
    REQUIRE(history.keepOld("/g", "theirs"));
    CHECK(textsOf("/f") == Texts{"today's"});
}

TEST_CASE_FIXTURE(Fixture, "history: kept means kept, whatever fails or dies on the way") {
    struct Killed {};
    for (const bool dies : {false, true}) {
        bool passed = false;
        for (int call = 0; !passed; ++call) {
            CAPTURE(dies);
            CAPTURE(call);
            REQUIRE(call < 100);
            // Each round begins a day, so that it prunes as well.
            clock.time += 24h;
            const std::string bytes = "text " + std::to_string(call);
            failing.failAt(dies ? -1 : call, Failure::Kind::noSpace);
            failing.before([&](int number, std::string_view, const std::string&) {
                if (dies && number == call) {
                    throw Killed{};
                }
            });
            bool kept = false;
            try {
                kept = history.keepOld("/f", bytes).ok();
                passed = failing.calls() <= call;
            } catch (const Killed&) {
            }
            failing.heal();
            if (!kept) {
                REQUIRE(history.keepOld("/f", bytes));
            }
            CHECK(textsOf("/f").front() == bytes);
        }
        clock.time += 24h;
        REQUIRE(history.keepOld("/f", "last"));
        std::set<std::string> named;
        const std::vector<HistoryEntry> entries = history.entries().value();
        for (const HistoryEntry& entry : entries) {
            named.insert(entry.hash);
        }
        CHECK(storedTexts() == named);
    }
}

}  // namespace tessaly::tests
