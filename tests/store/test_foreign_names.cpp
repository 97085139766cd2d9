// SPDX-License-Identifier: MIT
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "base/temporary_name.h"
#include "base/utf8.h"
#include "store/conflict_patterns.h"
#include "store/foreign_names.h"
#include "store/note_names.h"
#include "support/log_capture.h"

using namespace tessaly;
using store::NameKind;

namespace {

constexpr std::string_view eAcute = "\xC3\xA9";
constexpr std::string_view eWithAccent = "e\xCC\x81";

std::string filled(std::string_view pattern, std::string_view e) {
    std::string name(pattern);
    for (auto at = name.find('?'); at != name.npos; at = name.find('?')) {
        name.replace(at, 1, e);
    }
    return name;
}

struct ConflictRow {
    std::string_view name;
    std::string_view original;
    std::string_view device;
    std::string_view client;
};

const ConflictRow conflictRows[] = {
    {"Plans.sync-conflict-20190306-101010-ABCDEF7.txt", "Plans.txt", "ABCDEF7", "Syncthing"},
    {"Plans.sync-conflict-20190306-101010.txt", "Plans.txt", "", "Syncthing"},
    {"Plans.sync-conflict-20190306-101010-.txt", "Plans.txt", "", "Syncthing"},
    {"Makefile.sync-conflict-20190306-101010-ABCDEFG", "Makefile", "ABCDEFG", "Syncthing"},
    {".sync-conflict-20190306-101010-ABCDEFG.hidden", ".hidden", "ABCDEFG", "Syncthing"},
    {"Plans (SFConflict ann@example.org 2019-03-06-10-10-10).txt", "Plans.txt", "ann@example.org",
     "Seafile"},
    {"Plans (SFConflict 2019-03-06-10-10-10).md", "Plans.md", "", "Seafile"},
    {"Plans_conflict-20190306-101010.txt", "Plans.txt", "", "Nextcloud"},
    {"Plans_conflict-ann-marie-20190306-101010.txt", "Plans.txt", "ann-marie", "Nextcloud"},
    {"Plans (conflicted copy 2019-03-06 101010).md", "Plans.md", "", "Nextcloud"},
    {"Plans (conflicted copy Ann Lee 2019-03-06 101010).md", "Plans.md", "Ann Lee", "Nextcloud"},
    {"Plans (case clash from 2019-03-06 101010).txt", "Plans.txt", "", "Nextcloud"},
    {"Plans (case clash from ann 2019-03-06 101010).txt", "Plans.txt", "ann", "Nextcloud"},
    {"Plans (Ann Lee’s conflicted copy 2019-03-06).txt", "Plans.txt", "Ann Lee", "Dropbox"},
    {"Plans (Ann's laptop (2)'s conflicted copy 2019-03-06).md", "Plans.md", "Ann's laptop (2)",
     "Dropbox"},
    {"Plans (ann conflicting copy 2019-03-06 2).txt", "Plans.txt", "ann", "Dropbox"},
    {"Plans (conflicted copy).txt", "Plans.txt", "", "Dropbox"},
    {"Plans (conflicted copy 3).txt", "Plans.txt", "", "Dropbox"},
    {"Plans (Ann's conflicted copy) (1).txt", "Plans.txt", "Ann", "Dropbox"},
    {"Plans (draft) (Ann's conflicted copy).txt", "Plans (draft).txt", "Ann", "Dropbox"},
    {"Plans (Copie en conflit de Ann 2019-03-06).txt", "Plans.txt", "Ann", "Dropbox"},
    {"Plans (In Konflikt stehende Kopie von Ann 2019-03-06).txt", "Plans.txt", "Ann", "Dropbox"},
    {"Plans (Anns in Konflikt stehende Kopie 2019-03-06).txt", "Plans.txt", "Ann", "Dropbox"},
    {"Plans (Copia conflictiva de Ann 2019-03-06).txt", "Plans.txt", "Ann", "Dropbox"},
    {"Plans (Copia en conflicto de Ann 2019-03-06) (2).txt", "Plans.txt", "Ann", "Dropbox"},
    {"Plans (Case Conflict).txt", "Plans.txt", "", "Dropbox"},
    {"Plans (Unicode Encoding Conflict).txt", "Plans.txt", "", "Dropbox"},
    {"Plans (White Space Conflict).txt", "Plans.txt", "", "Dropbox"},
    {"Plans (Whitespace Conflict).txt", "Plans.txt", "", "Dropbox"},
    {"Plans (Selective Sync Conflict 1).txt", "Plans.txt", "", "Dropbox"},
    {"Plans (case conflict).txt", "Plans.txt", "", "Dropbox"},
    {"Plans (conflicted 4).txt", "Plans.txt", "", "pCloud"},
    {"Plans.txt.conflicted", "Plans.txt", "", "pCloud"},
    {"To-do-ann-safeBackup-0012.md", "To-do.md", "ann", "OneDrive"},
    {"Plans.txt.conflict1", "Plans.txt", "", "rclone"},
    {"Plans.conflict12.txt", "Plans.txt", "", "rclone"},
    {"Plans.txt..path1", "Plans.txt", "", "rclone"},
    {"Plans.md..path2", "Plans.md", "", "rclone"},
    {"Plans (conflict #2_on_2019-03-06).md", "Plans.md", "", "Unison"},
    {"Plans (conflict_on_2019-03-06_was_deleted).md", "Plans.md", "", "Unison"},
    {"Plans.Conflict.txt", "Plans.txt", "", "Resilio"},
    {"Plans.Conflict3.txt", "Plans.txt", "", "Resilio"},
    {"Plans_annpc_Mar-06-1010-2019_CaseConflict_2.txt", "Plans.txt", "annpc", "Synology"},
    {"my_plans_annpc_Mar-06-1010-2019_UnicodeEncodingConflict.txt", "my_plans.txt", "annpc",
     "Synology"},
    // The original keeps the bytes it has, whatever they are.
    {"Caf? (Ren?'s conflicted copy 2019-03-06).txt", "Caf?.txt", "Ren?", "Dropbox"},
    {"caf\xE9.sync-conflict-20190306-101010-ABCDEFG.txt", "caf\xE9.txt", "ABCDEFG", "Syncthing"},
    {"two\nlines (conflicted).txt", "two\nlines.txt", "", "pCloud"},
    // Of several marks the last is taken off.
    {"Plans (conflicted).sync-conflict-20190306-101010-ABCDEFG.txt", "Plans (conflicted).txt",
     "ABCDEFG", "Syncthing"},
    {"Plans.sync-conflict-20190306-101010-ABCDEFG (Ann's conflicted copy).txt",
     "Plans.sync-conflict-20190306-101010-ABCDEFG.txt", "Ann", "Dropbox"},
    {"Plans-a-safeBackup-0001-b-safeBackup-0002.txt", "Plans-a-safeBackup-0001.txt", "b",
     "OneDrive"},
};

const std::vector<std::string_view> ordinaryNames[] = {
    {"Plans.txt", "20190305.txt", "~100 ideas.txt", "~$100 a month.txt", "~.txt", "#1 list.txt",
     "#.txt", "plans.tmp.txt", "My nextcloud.txt"},
    // What says too little.
    {"Draft (conflict).txt", "Conflict.txt", "The conflicted copy 2019-03-06.txt",
     "Juliet (Conflicts between families).txt", "Interview (conflicting copy editors).txt",
     "A case clash from 2019-03-06 101010.txt", "Plans (case clash from ann).txt",
     "sync-conflict-20190306-101010-ABCDEFG.txt", "Plans.sync-conflict-20190306.txt",
     "Plans.sync-conflict-20190306-101010-ABC.txt", "Plans (SFConflict).txt",
     "Plans_conflict-2019.txt", "Plans (Copie en conflit).txt", "conflicted.txt"},
    {"Plans (In Konflikt mit Ann 2019-03-06).txt", "Plans (Case Conflict of interest).txt",
     "Plans-safeBackup-0001.txt", "Plans-ann-safeBackup-1.txt", "Plans..path1.txt",
     "Plans..path3.txt", "Plans.conflict.txt", "Plans (conflict_on_monday).txt",
     "Plans_Conflict.txt", "Plans_ann_March_Conflict.txt"},
    // What is written in other letters.
    {"Plans.sync-conflict-20190306-101010-abcdefg.txt",
     "Plans (sfconflict 2019-03-06-10-10-10).txt", "Plans (Conflicted).txt"},
    // What users' own names are like more often than conflict copies.
    {"Plans 2.txt", "Plans (1).txt", "Plans-DESKTOP-UMS014A.txt"},
};

struct KindRow {
    NameKind kind;
    std::vector<std::string_view> names;
};

const KindRow kindRows[] = {
    {NameKind::ordinary, {"", "image.png", "~", "Plans.txt.TMP"}},
    {NameKind::hidden, {".", ".tmp", "._Plans.txt", ".Plans.txt.~1a2b", ".~lock.Plans.txt#"}},
    {NameKind::temporary, {"~syncthing~Plans.txt", "~$Plans.txt", "Plans.txt.tmp"}},
    {NameKind::backup, {"Plans.txt~", "#Plans.txt#", "4913"}},
    {NameKind::placeholder, {"Plans.txt.nextcloud"}},
};

/// `conflictCopyOf` among files of one folder.
struct CopyRow {
    std::string_view name;
    std::set<std::string_view> present;
    std::string_view original;  ///< empty: no copy
    std::string_view device;
};

const CopyRow copyRows[] = {
    {"Plans (conflicted).txt", {"Plans.txt"}, "Plans.txt", ""},
    {"Plans (conflicted).txt", {"plans.txt", "Plans.md", "Plans"}, "", ""},
    {"Plans (conflicted).txt", {"Plans (conflicted).txt"}, "", ""},
    {"Plans.txt", {"Plans.txt"}, "", ""},
    // Of a copy of a copy the note that is none is the original, if it is there.
    {"x (A's conflicted copy) (1) (B's conflicted copy).txt", {"x.txt"}, "x.txt", "B"},
    {"x (A's conflicted copy) (1) (B's conflicted copy).txt",
     {"x.txt", "x (A's conflicted copy) (1).txt"},
     "x.txt",
     "B"},
    {"x (A's conflicted copy) (1) (B's conflicted copy).txt",
     {"x (A's conflicted copy) (1).txt"},
     "x (A's conflicted copy) (1).txt",
     "B"},
    {"x (A's conflicted copy) (1) (B's conflicted copy).txt",
     {"x (A's conflicted copy).txt"},
     "",
     ""},
    {"x.txt.conflict1.conflict2", {"x.txt"}, "x.txt", ""},
    // Where the device begins only the files can tell; the longest name is the likeliest.
    {"Plans-DESKTOP-UMS014A-safeBackup-0001.txt", {"Plans.txt"}, "Plans.txt", "DESKTOP-UMS014A"},
    {"To-do-ann-safeBackup-0001.txt", {"To.txt", "To-do.txt"}, "To-do.txt", "ann"},
    {"my_plans_ann_pc_Mar-06-1010-2019_Conflict.txt", {"my_plans.txt"}, "my_plans.txt", "ann_pc"},
    {"a-b-safeBackup-0001-c-d-safeBackup-0002.txt", {"a.txt"}, "a.txt", "c-d"},
    {"-ann-safeBackup-0001.txt", {".txt"}, ".txt", "ann"},
    // One client decomposes names, another does not.
    {"Cafe\xCC\x81 (conflicted).txt", {"Caf\xC3\xA9.txt"}, "Caf\xC3\xA9.txt", ""},
};

void check(const ConflictRow& row, std::string_view e) {
    const std::string name = filled(row.name, e);
    CAPTURE(name);
    const auto conflict = store::conflictName(name);
    REQUIRE(conflict);
    CHECK(conflict->original == filled(row.original, e));
    CHECK(conflict->device == filled(row.device, e));
    CHECK(conflict->client == row.client);
    const bool isOfOriginal = conflict->deviceOf == store::DeviceOf::original;
    CHECK(isOfOriginal == (row.client == "Syncthing"));
}

void check(const CopyRow& row) {
    CAPTURE(row.name);
    const auto copy = store::conflictCopyOf(
        row.name, [&](std::string_view name) { return row.present.contains(name); });
    CHECK((copy ? copy->original : "") == row.original);
    CHECK((copy ? copy->device : "") == row.device);
}

}  // namespace

TEST_CASE("conflict copies are told by the names that clients give them") {
    for (const ConflictRow& row : conflictRows) {
        check(row, eAcute);
        check(row, eWithAccent);
    }
}

TEST_CASE("every pattern can be tried, and is tried for each name that it matches") {
    const auto patterns = store::conflictPatterns();
    for (std::size_t index = 0; index < patterns.size(); ++index) {
        const auto& pattern = patterns[index];
        CAPTURE(pattern.mark);
        const auto& regex = store::compiledConflictPattern(index);
        CAPTURE(regex.error());
        CHECK(regex.valid());
        int matches = 0;
        for (const ConflictRow& row : conflictRows) {
            if (!regex.find(base::toUtf16(row.name))) {
                continue;
            }
            CAPTURE(row.name);
            ++matches;
            CHECK(row.name.find(pattern.hint) != row.name.npos);
            CHECK(store::mayBeConflictName(row.name));
        }
        CHECK(matches > 0);
    }
}

TEST_CASE("a user's own names are notes like any other") {
    for (const auto& names : ordinaryNames) {
        for (const std::string_view name : names) {
            CAPTURE(name);
            CHECK(store::nameKind(name) == NameKind::ordinary);
            CHECK(store::isNoteFilename(name));
            CHECK_FALSE(store::conflictName(name));
        }
    }
}

TEST_CASE("a name tells what kind of file it is") {
    for (const KindRow& row : kindRows) {
        for (const std::string_view name : row.names) {
            CAPTURE(name);
            CHECK(store::nameKind(name) == row.kind);
            CHECK_FALSE(store::isNoteFilename(name));
        }
    }
    CHECK(store::nameKind(base::temporaryName("Plans.txt")) == NameKind::temporary);
    CHECK(store::nameOfPlaceholder("Plans.txt.nextcloud") == "Plans.txt");
    CHECK_FALSE(store::nameOfPlaceholder("Plans.txt"));
    CHECK_FALSE(store::nameOfPlaceholder(".nextcloud"));
}

TEST_CASE("a copy counts as one only beside a file that it is a version of") {
    for (const CopyRow& row : copyRows) {
        check(row);
    }
}

TEST_CASE("names made of marks end soon and break no pattern") {
    const tests::LogCapture log;
    for (const std::string_view part :
         {" (SFConflict ", " (conflicted copy ", "(a)(b) conflicted copy", "-a-safeBackup-0001",
          "_a_Mar-06-1010-2019_Conflict", "_conflict-a-20190306-101010", " (x (Case Conflict)",
          ".conflict1", " (In Konflikt stehende Kopie von ", "in Konflikt (((", "..path1"}) {
        std::string name;
        while (name.size() + part.size() <= store::maxFilenameBytes - 4) {
            name += part;
        }
        name += ".txt";
        CAPTURE(name);
        std::set<std::string> asked;
        std::size_t questions = 0;
        CHECK_FALSE(store::conflictCopyOf(name, [&](std::string_view original) {
            asked.emplace(original);
            ++questions;
            return false;
        }));
        // Composed names are asked for, too; these are composed.
        CHECK(questions <= 2 * asked.size());
        CHECK(asked.size() <= store::maxFilenameBytes);
    }
    CHECK(log.lines().empty());
}
