// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <doctest/doctest.h>

#include "ports/folder_locks.h"
#include "support/on_threads.h"
#include "support/temp_folder.h"

namespace tessaly::tests {

using Paths = std::vector<std::string>;

/// Makes locks that know of no folder yet; `take` may wait as long as they like.
using MakeLocks = std::function<std::unique_ptr<ports::FolderLocks>()>;

inline Paths unfinishedOf(ports::FolderLocks& locks, const std::string& folder) {
    const auto lock = locks.take(folder);
    REQUIRE(lock);
    return (*lock)->unfinished();
}

inline void checkFirstHolder(ports::FolderLocks& locks, const std::string& folder) {
    CHECK(!locks.isUnfinished(folder));
    CHECK(unfinishedOf(locks, folder) == Paths{folder});
    // The first one has looked after nothing.
    CHECK(locks.isUnfinished(folder));
    {
        const auto lock = locks.take(folder);
        REQUIRE(lock);
        CHECK((*lock)->unfinished() == Paths{folder});
        (*lock)->finish();
        CHECK((*lock)->unfinished() == Paths{});
    }
    CHECK(!locks.isUnfinished(folder));
    CHECK(unfinishedOf(locks, folder) == Paths{});
    CHECK(unfinishedOf(locks, folder + "/other") == Paths{folder + "/other"});
}

inline void checkRemembering(ports::FolderLocks& locks, const std::string& folder) {
    const auto begin = [&](const Paths& folders) {
        const auto lock = locks.take(folder);
        REQUIRE(lock);
        for (const std::string& each : folders) {
            CHECK((*lock)->begin(each));
        }
        CHECK(!locks.isUnfinished(folder));
    };
    (*locks.take(folder))->finish();
    begin({folder + "/b", folder + "/a\n", folder + "/b"});
    CHECK(locks.isUnfinished(folder));
    begin({folder + "/a\n", folder + "/c"});
    CHECK(unfinishedOf(locks, folder) == Paths{folder + "/b", folder + "/a\n", folder + "/c"});
    {
        const auto lock = locks.take(folder);
        REQUIRE(lock);
        (*lock)->finish();
        CHECK((*lock)->begin(folder + "/d"));
        CHECK((*lock)->begin(std::string("/a\0b", 4)).failure().kind ==
              base::Failure::Kind::malformed);
    }
    CHECK(unfinishedOf(locks, folder) == Paths{folder + "/d"});
}

inline void checkPathsOfOneFolder(ports::FolderLocks& locks, const TempFolder& folder) {
    folder.mkdir("real/below");
    folder.link("link", "real");
    const auto held = locks.take(folder / "real");
    REQUIRE(held);
    struct Row {
        const char* path;
        bool isFree;
    };
    for (const Row& row : {
             Row{"real", false},
             Row{"real/", false},
             Row{"link", false},
             Row{"real/../link/below/..", false},
             Row{"missing/../real", false},
             Row{"real/below", true},
             Row{".", true},
         }) {
        CAPTURE(row.path);
        const auto other = locks.take(folder / row.path);
        CHECK(other.ok() == row.isFree);
        if (!other) {
            CHECK(other.failure().kind == base::Failure::Kind::unavailable);
            CHECK(other.failure().description.starts_with(folder / row.path));
        }
    }
    const auto missing = locks.take(folder / "link/missing/a");
    REQUIRE(missing);
    CHECK(!locks.take(folder / "real/missing/a/").ok());
    folder.mkdir("real/missing/a");
    CHECK(!locks.take(folder / "real/missing/a").ok());
    CHECK(locks.take(folder / std::string("a\0b", 3)).failure().kind ==
          base::Failure::Kind::malformed);
}

/// A lock that another thread holds is waited for, and no two have it at once.
inline void checkThreads(ports::FolderLocks& locks, const std::string& folder) {
    constexpr int rounds = 50;
    std::atomic<int> inside{0};
    std::atomic<int> most{0};
    std::atomic<int> done{0};
    onThreads(3, [&](std::size_t) {
        for (int i = 0; i < rounds; ++i) {
            const auto lock = locks.take(folder);
            if (!lock) {
                continue;
            }
            const int now = ++inside;
            most = now > most ? now : most.load();
            std::this_thread::yield();
            --inside;
            ++done;
        }
    });
    CHECK(most == 1);
    CHECK(done == 3 * rounds);
}

/// What all folder locks must do. `hasty` do not wait. Call it in a test case of its own.
inline void checkFolderLocks(const MakeLocks& patient, const MakeLocks& hasty) {
    const TempFolder folder;
    const std::string locked = folder.mkdir("notes");
    SUBCASE("the first holder is told to look everywhere") {
        checkFirstHolder(*hasty(), locked);
    }
    SUBCASE("what was begun is remembered until it is finished") {
        checkRemembering(*hasty(), locked);
    }
    SUBCASE("two paths of one folder give one lock") {
        checkPathsOfOneFolder(*hasty(), folder);
    }
    SUBCASE("threads exclude each other") {
        checkThreads(*patient(), locked);
    }
}

}  // namespace tessaly::tests
