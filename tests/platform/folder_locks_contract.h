// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "ports/folder_locks.h"
#include "support/temp_folder.h"

namespace tessaly::tests {

using Paths = std::vector<std::string>;

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

/// What all folder locks must do. `locks` know of no folder yet, and do not wait. Call it in a test
/// case of its own.
inline void checkFolderLocks(ports::FolderLocks& locks) {
    const TempFolder folder;
    const std::string locked = folder.mkdir("notes");
    SUBCASE("the first holder is told to look everywhere") {
        checkFirstHolder(locks, locked);
    }
    SUBCASE("what was begun is remembered until it is finished") {
        checkRemembering(locks, locked);
    }
    SUBCASE("two paths of one folder give one lock") {
        checkPathsOfOneFolder(locks, folder);
    }
}

}  // namespace tessaly::tests
