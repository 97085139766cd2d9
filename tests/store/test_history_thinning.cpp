// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "base/sha256.h"
#include "platform/flock_folder_locks.h"
#include "platform/posix_file_changes.h"
#include "platform/posix_file_system.h"
#include "store/history.h"
#include "store/safe_files.h"
#include "support/failing_files.h"
#include "support/sanitized.h"
#include "support/temp_folder.h"

namespace tessaly::tests {
namespace {

using namespace std::chrono_literals;

/// Where each takes several times as long, which looks for other faults than these.
constexpr unsigned oneCaseIn = isSanitized ? 4 : 1;
using base::Failure;
using store::ChangeCause;
using store::HistoryEntry;
using store::HistoryLimits;
using Texts = std::vector<std::string>;

const base::Instant noon = std::chrono::sys_days{std::chrono::year{2019} / 3 / 5} + 12h;

struct Killed {};

struct HandClock : ports::Clock {
    base::Instant time = noon;
    base::Instant now() override { return time; }
    base::LocalTime local(base::Instant) override { return {}; }
};

/// A program that changes notes, with a history object of its own on the folder that all share.
struct Process {
    Process(ports::FileSystem& files, ports::FileChanges& changes, ports::FolderLocks& locks,
            ports::Clock& clock, const TempFolder& folder, const HistoryLimits& limits)
        : history({files, changes, locks, clock}, folder / "history", limits),
          safe({files, changes, locks, history}),
          root(folder / "data") {}

    bool write(const std::string& name, const std::string& text, ChangeCause cause) {
        const auto give = [&](std::string_view) -> base::Result<std::optional<std::string>> {
            return std::optional(text);
        };
        return safe.edit(root, root + "/" + name, give, cause).ok();
    }

    store::History history;
    store::SafeFiles safe;
    const std::string root;
};

struct Machine {
    TempFolder folder;
    platform::PosixFileSystem files;
    platform::PosixFileChanges changes;
    platform::FlockFolderLocks locks{folder / "locks"};
    FailingFiles failing{files, changes, locks};
    HandClock clock;

    std::unique_ptr<Process> start(const HistoryLimits& limits = {}) {
        return std::make_unique<Process>(failing, failing, failing, clock, folder, limits);
    }

    std::set<std::string> storedTexts() const {
        std::set<std::string> names;
        if (!folder.exists("history/texts")) {
            return names;
        }
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(folder / "history/texts")) {
            if (!entry.is_directory()) {
                names.insert(entry.path().filename());
            }
        }
        return names;
    }
};

/// What a history should tell of a file, oldest first, from all that was ever kept of it.
struct Kept {
    base::Instant time;
    ChangeCause cause;
    std::string text;
    bool operator==(const Kept&) const = default;
};

std::vector<Kept> thinned(const std::vector<Kept>& all) {
    const auto tenMinutesOf = [](const Kept& kept) {
        return std::chrono::floor<std::chrono::minutes>(kept.time).time_since_epoch() / 10min;
    };
    std::vector<Kept> left;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const bool isLastTwo = i + 2 >= all.size();
        if (isLastTwo || all[i].cause != ChangeCause::typed ||
            all[i + 1].cause != ChangeCause::typed ||
            tenMinutesOf(all[i]) != tenMinutesOf(all[i + 1])) {
            left.push_back(all[i]);
        }
    }
    return left;
}

std::vector<Kept> toldBy(const store::History& history, const std::string& file) {
    std::vector<Kept> told;
    const std::vector<HistoryEntry> entries = history.entries(file).value();
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
        told.push_back({entry->time, entry->cause, history.text(*entry).value()});
    }
    return told;
}

std::set<std::string> hashesNamedBy(const store::History& history) {
    std::set<std::string> named;
    const std::vector<HistoryEntry> entries = history.entries().value();
    for (const HistoryEntry& entry : entries) {
        named.insert(entry.hash);
    }
    return named;
}

void checkAllIsStored(const Machine& machine, const store::History& history) {
    const std::set<std::string> stored = machine.storedTexts();
    for (const std::string& hash : hashesNamedBy(history)) {
        CHECK(stored.contains(hash));
    }
}

/// Two programs and a stranger change two notes; what they held is written down as well.
class RandomLife {
public:
    explicit RandomLife(unsigned seed) : _random(seed) {
        for (const std::string& name : _names) {
            _machine.folder.write("data/" + name, "before " + name);
        }
        for (auto& process : _processes) {
            process = _machine.start(HistoryLimits{.thinnedLines = 7});
        }
    }

    void step() {
        constexpr std::array<std::chrono::nanoseconds, 10> pauses{0s,  800ms, 800ms, 800ms, 800ms,
                                                                  20s, 3min,  11min, -4min, 26h};
        _machine.clock.time += pauses[below(pauses.size())];
        const std::string name = _names[below(2)];
        // Some texts come again, in the same file or in the other one.
        _texts += below(3) == 0 ? 0 : 1;
        const std::string text = "text " + std::to_string(_texts - below(std::min(_texts, 3UL)));
        if (below(12) == 0) {
            _machine.folder.write("data/" + name, text);
            return;
        }
        if (below(25) == 0) {
            _processes[below(2)] = _machine.start(HistoryLimits{.thinnedLines = 7});
        }
        const ChangeCause cause = below(9) == 0 ? ChangeCause::added : ChangeCause::typed;
        save(name, text, cause);
    }

    void check() {
        for (const std::string& name : _names) {
            const std::vector<Kept> expected = thinned(_kept[name]);
            for (const auto& process : _processes) {
                CHECK(toldBy(process->history, process->root + "/" + name) == expected);
            }
        }
        checkAllIsStored(_machine, _processes[0]->history);
    }

    /// A day later all that nothing names is gone.
    void checkNextDay() {
        _machine.clock.time += 24h;
        save(_names[0], "the next day's", ChangeCause::typed);
        check();
        CHECK(_machine.storedTexts() == hashesNamedBy(_processes[1]->history));
    }

private:
    std::size_t below(std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(_random);
    }

    void save(const std::string& name, const std::string& text, ChangeCause cause) {
        const std::string before = _machine.folder.read("data/" + name);
        if (before != text) {
            std::vector<Kept>& kept = _kept[name];
            if (kept.empty() || kept.back().text != before) {
                kept.push_back({_machine.clock.time, ChangeCause::found, before});
            }
            kept.push_back({_machine.clock.time, cause, text});
        }
        REQUIRE(_processes[below(2)]->write(name, text, cause));
    }

    std::mt19937 _random;
    const std::array<std::string, 2> _names{"one.txt", "other.txt"};
    Machine _machine;
    std::array<std::unique_ptr<Process>, 2> _processes;
    std::map<std::string, std::vector<Kept>> _kept;
    std::size_t _texts = 1;
};

/// Types a row of texts, of which one call fails, or kills the program, which then is started anew.
/// Returns whether the call was never reached.
bool typeThrough(int call, bool kills) {
    Machine machine;
    machine.folder.write("data/note.txt", "before");
    // So few that the index is written anew in between.
    const HistoryLimits limits{.thinnedLines = 3};
    auto process = machine.start(limits);
    const Process reader(machine.files, machine.changes, machine.locks, machine.clock,
                         machine.folder, limits);
    if (kills) {
        machine.failing.before([&](int number, std::string_view, const std::string&) {
            if (number == call) {
                throw Killed{};
            }
        });
    } else {
        machine.failing.failAt(call, Failure::Kind::noSpace);
    }
    for (int i = 0; i < 8; ++i) {
        machine.clock.time += 800ms;
        const std::string text = "typed " + std::to_string(i);
        const std::string before = machine.folder.read("data/note.txt");
        try {
            [[maybe_unused]] const bool done = process->write("note.txt", text, ChangeCause::typed);
        } catch (const Killed&) {
            process = machine.start(limits);
        }
        const auto told = toldBy(reader.history, reader.root + "/note.txt");
        const auto holds = [&](const std::string& one) {
            return std::any_of(told.begin(), told.end(),
                               [&](const Kept& kept) { return kept.text == one; });
        };
        const std::string now = machine.folder.read("data/note.txt");
        CHECK((now == text || now == before));
        CHECK((holds("before") || now == "before"));
        CHECK((holds(before) || now == before));
        CHECK(hashesNamedBy(reader.history).size() <= 6);
        checkAllIsStored(machine, reader.history);
    }
    const bool passed = machine.failing.calls() <= call;
    machine.failing.heal();
    machine.clock.time += 24h;
    REQUIRE(process->write("note.txt", "the next day's", ChangeCause::typed));
    CHECK(machine.storedTexts() == hashesNamedBy(reader.history));
    return passed;
}

}  // namespace

TEST_CASE("history: of what is typed, stays what went before and the last of each ten minutes") {
    for (unsigned seed = 0; seed < 12; seed += oneCaseIn) {
        CAPTURE(seed);
        RandomLife life(seed);
        for (int i = 0; i < 150; ++i) {
            CAPTURE(i);
            life.step();
            life.check();
        }
        life.checkNextDay();
    }
}

TEST_CASE("history: whatever fails or dies while one types, every entry has its text") {
    for (const bool kills : {false, true}) {
        CAPTURE(kills);
        for (int call = 0;; call += static_cast<int>(oneCaseIn)) {
            CAPTURE(call);
            REQUIRE(call < 1000);
            if (typeThrough(call, kills)) {
                break;
            }
        }
    }
}

TEST_CASE("history: a text goes when that is on the disk which has thinned it out") {
    Machine machine;
    machine.folder.write("data/note.txt", "before");
    const auto process = machine.start();
    const auto other = machine.start();
    bool isIndexOnDisk = true;
    int removed = 0;
    int readIndex = 0;
    machine.failing.before([&](int, std::string_view operation, const std::string& path) {
        const bool isIndex = path == machine.folder / "history/index";
        readIndex += isIndex && operation == "read" ? 1 : 0;
        isIndexOnDisk = isIndex && operation == "append" ? false
                        : isIndex && operation == "sync" ? true
                                                         : isIndexOnDisk;
        if (operation == "remove" && path.starts_with(machine.folder / "history/texts/")) {
            CHECK(isIndexOnDisk);
            ++removed;
        }
    });
    for (int i = 0; i < 50; ++i) {
        machine.clock.time += 800ms;
        REQUIRE(process->write("note.txt", std::to_string(i), ChangeCause::typed));
        // What stood there first, the last two, and one that awaits the next save.
        CHECK(machine.storedTexts().size() <= 4);
    }
    CHECK(removed == 47);
    CHECK(readIndex == 1);
    REQUIRE(other->history.keepNew("/other", "of another program", ChangeCause::added));
    readIndex = 0;
    machine.clock.time += 800ms;
    REQUIRE(process->write("note.txt", "last", ChangeCause::typed));
    CHECK(readIndex == 1);
    CHECK(toldBy(other->history, other->root + "/note.txt").size() == 3);
}

TEST_CASE("history: the index does not grow with what is thinned out") {
    Machine machine;
    machine.folder.write("data/note.txt", "before");
    const auto process = machine.start(HistoryLimits{.thinnedLines = 10});
    for (int i = 0; i < 60; ++i) {
        machine.clock.time += 800ms;
        REQUIRE(process->write("note.txt", std::to_string(i), ChangeCause::typed));
        const std::string index = machine.folder.read("history/index");
        // Three that stand, and those until the next save looks for them.
        CHECK(std::count(index.begin(), index.end(), '\n') <= 3 + 11);
    }
}

}  // namespace tessaly::tests
