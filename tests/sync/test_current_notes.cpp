// SPDX-License-Identifier: MIT
#include <algorithm>
#include <sstream>

#include <doctest/doctest.h>

#include "sync/current_notes.h"
#include "sync_fixture.h"

namespace tessaly::sync {
namespace {

using Kind = ports::FolderEntry::Kind;
using namespace std::chrono_literals;

constexpr base::Instant lookedAt{1000s};

/// "a.txt" is a file, "sub/" a folder, "a.txt@2" a file of another date, "a.txt@1,2" one with
/// another change time, "a.txt%" one that was emptied.
ports::SurveyedEntry entry(std::string text) {
    ports::SurveyedEntry entry{{{}, Kind::file}, {7, 100, {}, {}, {}}, false};
    int date = 1;
    int changed = 0;
    if (const std::size_t at = text.find('@'); at != text.npos) {
        std::istringstream(text.substr(at + 1)) >> date;
        const std::size_t comma = text.find(',');
        if (comma != text.npos) {
            std::istringstream(text.substr(comma + 1)) >> changed;
        }
        text.resize(at);
    }
    if (text.ends_with('/')) {
        entry.kind = Kind::folder;
        text.pop_back();
    } else if (text.ends_with('%')) {
        entry.isPlaceholder = true;
        entry.stamp.size = 1;
        text.pop_back();
    }
    entry.name = text;
    entry.stamp.modified = base::Instant(std::chrono::seconds(date));
    entry.stamp.changed = base::Instant(std::chrono::seconds(changed));
    return entry;
}

std::vector<ports::SurveyedEntry> entries(const std::string& words) {
    std::vector<ports::SurveyedEntry> all;
    std::istringstream stream(words);
    for (std::string word; stream >> word;) {
        all.push_back(entry(word));
    }
    return all;
}

std::string joinedLines(std::vector<std::string> lines) {
    std::sort(lines.begin(), lines.end());
    std::string text;
    for (const std::string& line : lines) {
        text += (text.empty() ? "" : " ") + line;
    }
    return text;
}

/// Notes as told, "?" doubtful ones, ">" new folders, "*" placeholders, "o" placeholders gone.
std::string text(const CurrentNotes::Differences& differences) {
    std::vector<std::string> lines;
    for (const auto& note : differences.notes) {
        lines.push_back(tests::toldText(note, "/data/Notes"));
    }
    for (const auto& note : differences.doubtful) {
        lines.push_back("?" + tests::toldText(note, "/data/Notes").substr(1));
    }
    for (const std::string& folder : differences.newFolders) {
        lines.push_back(">" + folder);
    }
    for (const std::string& file : differences.placeholders) {
        lines.push_back("*" + file.substr(12));
    }
    for (const std::string& file : differences.placeholdersGone) {
        lines.push_back("o" + file.substr(12));
    }
    return joinedLines(lines);
}

std::vector<CurrentNotes::Found> changesBetween(const std::string& before,
                                                const std::string& after) {
    std::map<std::string, CurrentNotes::Found> found;
    for (const auto& old : entries(before)) {
        found[old.name] = {old.name, std::nullopt};
    }
    for (const auto& now : entries(after)) {
        found[now.name] = {now.name, now};
    }
    std::vector<CurrentNotes::Found> all;
    for (const auto& [name, one] : found) {
        all.push_back(one);
    }
    return all;
}

struct Row {
    const char* before;
    const char* after;
    const char* told;
};

/// By a look at the folder and by looks at its names: both must tell the same, and then nothing.
void check(const Row& row) {
    CAPTURE(std::string(row.before));
    CAPTURE(std::string(row.after));
    CurrentNotes whole;
    CurrentNotes single;
    for (CurrentNotes* notes : {&whole, &single}) {
        notes->reset("/data");
        notes->replaceFolder("Notes", entries(row.before), lookedAt);
        for (const auto& found : entries(row.before)) {
            if (found.kind == Kind::folder) {
                notes->replaceFolder("Notes/" + found.name, entries("in.txt"), lookedAt);
            }
        }
    }
    const std::string told = row.told;
    CHECK(text(whole.replaceFolder("Notes", entries(row.after), lookedAt)) == told);
    const auto changes = changesBetween(row.before, row.after);
    CHECK(text(single.replaceEntries("Notes", changes, lookedAt)) == told);
    CHECK(whole.files() == single.files());
    for (CurrentNotes* notes : {&whole, &single}) {
        auto again = notes->replaceFolder("Notes", entries(row.after), lookedAt);
        again.newFolders.clear();  // those that nobody has looked at yet
        CHECK(text(again) == "");
    }
}

constexpr const char copyOfA[] = "a.sync-conflict-20190305-101010-ABCDEFG.txt";

}  // namespace

TEST_CASE("what differs from what was held is told, and nothing else") {
    for (const Row& row : {
             Row{"", "", ""},
             {"", "b.txt a.md", "+a.md +b.txt"},
             {"a.txt b.txt", "b.txt", "-a.txt"},
             {"a.txt b.txt", "a.txt b.txt", ""},
             {"a.txt@1", "a.txt@2", "~a.txt"},
             {"a.txt@1,1", "a.txt@1,2", "?a.txt"},
             {"", ".hidden.txt a.png _attachments/ a.txt~ x.tmp .~a.txt.123~", ""},
             {"", "_Ideas.txt", "+_Ideas.txt"},
             // Folders; a date of theirs is nothing.
             {"", "sub/", "+sub/ >Notes/sub"},
             {"sub/@1", "sub/@2", ""},
             {"sub/ sub-a.txt", "sub-a.txt", "-sub/ -sub/in.txt"},
             {"sub.txt/", "sub.txt", "+sub.txt -sub.txt/ -sub.txt/in.txt"},
             {"a.txt", "a.txt/", "+a.txt/ -a.txt >Notes/a.txt"},
         }) {
        check(row);
    }
}

TEST_CASE("a conflict copy is a note only while no note that it is a version of is there") {
    const std::string copy = copyOfA;
    const auto checkCopies = [](const std::string& before, const std::string& after,
                                const std::string& told) {
        check({before.c_str(), after.c_str(), told.c_str()});
    };
    checkCopies("a.txt b.txt", "a.txt b.txt " + copy, "~a.txt!");
    checkCopies("a.txt b.txt " + copy, "a.txt b.txt", "~a.txt");
    checkCopies("a.txt " + copy, copy, "+" + copy + " -a.txt!");
    checkCopies("b.txt " + copy, "a.txt b.txt " + copy, "+a.txt! -" + copy);
    checkCopies("", copy, "+" + copy);
    checkCopies("a.txt " + copy, "a.txt " + copy + "@2", "");
    checkCopies("a.txt", "a.txt a.txt.conflict1", "~a.txt!");
    checkCopies("a.txt a.txt.conflict1", "a.txt.conflict1", "-a.txt!");
}

TEST_CASE("placeholders are no notes, but a note that was emptied is not gone") {
    for (const Row& row : {
             Row{"", "a.txt.nextcloud", "*a.txt.nextcloud"},
             {"a.txt.nextcloud", "a.txt", "+a.txt oa.txt.nextcloud"},
             {"a.txt", "a.txt.nextcloud", "*a.txt.nextcloud -a.txt"},
             {"a.txt.nextcloud@1", "a.txt.nextcloud@2", "*a.txt.nextcloud"},
             {"", "a.png.nextcloud", ""},
             {"", "a.txt%", "*a.txt"},
             {"a.txt%", "a.txt", "+a.txt oa.txt"},
             {"a.txt", "a.txt%", "*a.txt"},
             {"a.txt%", "", "oa.txt"},
         }) {
        check(row);
    }
    CurrentNotes notes;
    notes.reset("/data");
    const auto look = [&](const char* found) {
        return text(notes.replaceFolder("Notes", entries(found), lookedAt));
    };
    CHECK(look("a.txt@1,1") == "+a.txt");
    CHECK(look("a.txt%@9") == "*a.txt");
    CHECK(look("a.txt%@9") == "");
    CHECK(look("a.txt@1,5") == "?a.txt oa.txt");
    CHECK(look("a.txt%@9") == "*a.txt");
    CHECK(look("a.txt@3") == "oa.txt ~a.txt");
}

TEST_CASE("a file that was looked at right after a change may have been changed once more") {
    const auto look = [](base::Instant first, const char* told) {
        CurrentNotes notes;
        notes.reset("/data");
        notes.replaceFolder("Notes", entries("a.txt@1,990"), first);
        CHECK(text(notes.replaceFolder("Notes", entries("a.txt@1,990"), lookedAt)) == told);
        CHECK(text(notes.replaceFolder("Notes", entries("a.txt@1,990"), lookedAt)) == "");
    };
    look(base::Instant{990s + 5ms}, "?a.txt");
    look(base::Instant{990s - 5ms}, "?a.txt");
    look(base::Instant{991s}, "");
    look(base::Instant{1s}, "");
}

TEST_CASE("a folder is held only below one that is") {
    CurrentNotes notes;
    notes.reset("/data");
    const auto replace = [&](const char* folder, const char* found) {
        return text(notes.replaceFolder(folder, entries(found), lookedAt));
    };
    CHECK(replace("Notes/sub", "a.txt") == "");
    CHECK(replace("Notes", "sub/ sub-a/ b.txt") == "+b.txt +sub-a/ +sub/ >Notes/sub >Notes/sub-a");
    CHECK(replace("Notes/b.txt", "a.txt") == "");
    CHECK(replace("Notes/sub", "a.txt deep/") == "+sub/a.txt +sub/deep/ >Notes/sub/deep");
    CHECK(replace("Notes/sub/deep", "c.txt") == "+sub/deep/c.txt");
    CHECK(replace("Notes/sub-a", "d.txt") == "+sub-a/d.txt");
    CHECK(notes.files() == 4);
    CHECK(text(notes.removeFolder("Notes/sub")) == "-sub/a.txt -sub/deep/ -sub/deep/c.txt");
    CHECK(notes.files() == 2);
    CHECK(text(notes.replaceEntries("Notes/sub", changesBetween("", "x.txt"), lookedAt)) == "");
    // It was held, is there still, and must be looked at.
    CHECK(text(notes.replaceEntries("Notes", changesBetween("", "sub/"), lookedAt)) ==
          ">Notes/sub");
}

}  // namespace tessaly::sync
