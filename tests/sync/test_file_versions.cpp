// SPDX-License-Identifier: MIT
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "support/failure_kind.h"
#include "versions_fixture.h"

namespace tessaly::tests {
namespace {

using Kind = base::Failure::Kind;
using Names = std::vector<std::string>;

Names namesOf(const std::vector<ports::FileVersion>& versions) {
    Names names;
    for (const ports::FileVersion& version : versions) {
        names.push_back(version.url.substr(version.url.rfind('/') + 1));
    }
    return names;
}

}  // namespace

TEST_CASE("file versions: whose copy it is, and who wrote which version") {
    struct Row {
        std::string copy;
        const char* client;
        const char* device;         ///< of the copy
        const char* currentDevice;  ///< of the version with the plain name
    };
    const Row rows[] = {
        {"Plans.sync-conflict-20190306-101010-ABCDEF7.md", "Syncthing", "", "ABCDEF7"},
        {"Plans.sync-conflict-20190306-101010.md", "Syncthing", "", ""},
        {"Plans (conflicted copy Ann Lee 2019-03-06 101010).md", "Nextcloud", "Ann Lee", ""},
        {"Plans (Ann's laptop (2)'s conflicted copy 2019-03-06).md", "Dropbox", "Ann's laptop (2)",
         ""},
        {"Plans (SFConflict ann@example.org 2019-03-06-10-10-10).md", "Seafile", "ann@example.org",
         ""},
        {"Plans-DESKTOP1-safeBackup-0001.md", "OneDrive", "DESKTOP1", ""},
        {"Plans.md.conflict1", "rclone", "", ""},
        {"Plans.md..path2", "rclone", "", ""},
        {"Plans.md.conflicted", "pCloud", "", ""},
        {"Plans (conflict #2_on_2019-03-06).md", "Unison", "", ""},
    };
    for (const bool isCurrentThere : {true, false}) {
        for (const Row& row : rows) {
            CAPTURE(row.copy);
            CAPTURE(isCurrentThere);
            VersionsFixture f;
            const std::string copy = f.write(row.copy, "theirs\n", 5);
            f.write("Other (conflicted copy 2019-03-06 101010).md", "another's\n");
            if (isCurrentThere) {
                f.write("Plans.md", "ours\n");
            }
            const auto found = f.versions.versionsOfItem(f.note).value();
            REQUIRE(found.unresolved.size() == 1);
            const ports::FileVersion& version = found.unresolved.front();
            CHECK(version.url == copy);
            CHECK(version.client == row.client);
            CHECK(version.localizedNameOfSavingComputer == row.device);
            CHECK(version.isConflict);
            CHECK(version.modificationDate == f.files.read(copy)->stamp.modified);
            CHECK(f.versions.contents(version).value() == "theirs\n");
            if (isCurrentThere) {
                CHECK(found.current->localizedNameOfSavingComputer == row.currentDevice);
                CHECK_FALSE(found.current->isConflict);
            } else {
                CHECK(failureKind(found.current) == Kind::notFound);
            }
        }
    }
}

TEST_CASE_FIXTURE(VersionsFixture,
                  "file versions: the latest copy first, and it tells the device") {
    write("Plans.md", "ours\n");
    write("Plans.sync-conflict-20190308-101010-OLDOLDO.md", "3\n", 30);
    write("Plans.sync-conflict-20190306-101010-NEWNEWN.md", "2\n", 20);
    write("Plans (conflicted copy 2019-03-06 101010).md", "1\n", 10);
    const auto found = versions.versionsOfItem(note).value();
    CHECK(namesOf(found.unresolved) == Names{"Plans (conflicted copy 2019-03-06 101010).md",
                                             "Plans.sync-conflict-20190306-101010-NEWNEWN.md",
                                             "Plans.sync-conflict-20190308-101010-OLDOLDO.md"});
    CHECK(found.current->localizedNameOfSavingComputer == "NEWNEWN");
}

TEST_CASE("file versions: which names beside a note are versions of it") {
    const std::string composed = "\xC3\xA4";
    const std::string decomposed = "a\xCC\x88";
    struct Row {
        std::string what;
        Names there;
        std::string item;
        Names copies;
        std::optional<Kind> failure;  ///< of the current version
    };
    const Row rows[] = {
        {"none", {"a.md", "a 2.md", "a (1).md", "a (Conflicts).md"}, "a.md", {}, {}},
        {"a copy's copy is the note's",
         {"a.md", "a (conflicted).md", "a (conflicted).conflict1.md"},
         "a.md",
         {"a (conflicted).conflict1.md", "a (conflicted).md"},
         {}},
        {"not the copy's",
         {"a.md", "a (conflicted).md", "a (conflicted).conflict1.md"},
         "a (conflicted).md",
         {},
         {}},
        {"unless that is all there is",
         {"a (conflicted).md", "a (conflicted).conflict1.md"},
         "a (conflicted).md",
         {"a (conflicted).conflict1.md"},
         {}},
        {"a note of its own", {"a.md", "b (conflicted).md"}, "a.md", {}, {}},
        {"hidden ones", {"a.md", ".a (conflicted).md"}, "a.md", {}, {}},
        {"spelt apart",
         {composed + ".md", decomposed + " (conflicted).md"},
         composed + ".md",
         {decomposed + " (conflicted).md"},
         {}},
        {"asked for in another spelling",
         {decomposed + ".md", decomposed + " (conflicted).md"},
         composed + ".md",
         {decomposed + " (conflicted).md"},
         {}},
        {"not downloaded",
         {"a.md.nextcloud", "a (conflicted).md"},
         "a.md",
         {"a (conflicted).md"},
         Kind::unavailable},
        {"a folder",
         {"a.md/x", "a (conflicted).md"},
         "a.md",
         {"a (conflicted).md"},
         Kind::notAFile},
        {"nothing", {"b.md"}, "a.md", {}, Kind::notFound},
    };
    for (const Row& row : rows) {
        CAPTURE(row.what);
        VersionsFixture f;
        int minutes = 100;
        for (const std::string& name : row.there) {
            f.write(name, name, --minutes);
        }
        const auto found = f.versions.versionsOfItem(f.root + "/Notes/" + row.item).value();
        CHECK(namesOf(found.unresolved) == row.copies);
        CHECK(failureKind(found.current) == row.failure);
    }
    VersionsFixture f;
    CHECK(failureKind(f.versions.versionsOfItem(f.root + "/gone/a.md")) == Kind::notFound);
}

TEST_CASE("file versions: a note is replaced only if it is what was read") {
    struct Row {
        std::string what;
        std::optional<std::string> there;
        std::optional<std::string> expected;
        std::optional<Kind> failure;
        std::optional<std::string> after;
    };
    const Row rows[] = {
        {"as read", "old", "old", {}, "new"},
        {"changed", "other", "old", Kind::changed, "other"},
        {"done already", "new", "old", {}, "new"},
        {"gone since", {}, "old", Kind::changed, {}},
        {"gone before", {}, {}, {}, "new"},
        {"come since", "other", {}, Kind::changed, "other"},
    };
    for (const Row& row : rows) {
        CAPTURE(row.what);
        VersionsFixture f;
        if (row.there) {
            f.write("Plans.md", *row.there);
        }
        const auto done =
            f.versions.replaceItem(f.note, "new", row.expected ? &*row.expected : nullptr);
        CHECK(failureKind(done) == row.failure);
        const auto now = f.files.read(f.note);
        CHECK((now ? std::optional(now->bytes) : std::nullopt) == row.after);
        if (row.there && row.there != row.after) {
            CHECK(f.isKept(*row.there));
        }
    }
}

TEST_CASE_FIXTURE(VersionsFixture, "file versions: a copy goes only as it was read") {
    write("Plans.md", "ours\n");
    const std::string copy = write("Plans (conflicted).md", "theirs\n");
    const auto version = versions.unresolvedConflictVersionsOfItem(note)->front();
    write("Plans (conflicted).md", "theirs, later\n");
    CHECK(failureKind(versions.removeVersion(version, "theirs\n")) == Kind::changed);
    CHECK(folder.read("data/Notes/Plans (conflicted).md") == "theirs, later\n");
    CHECK(versions.removeVersion(version, "theirs, later\n"));
    CHECK(names() == Names{"Plans.md"});
    CHECK(isKept("theirs, later\n"));
    CHECK(versions.removeVersion(version, "theirs, later\n"));
}

}  // namespace tessaly::tests
