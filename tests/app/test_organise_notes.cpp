// SPDX-License-Identifier: MIT
#include <filesystem>
#include <set>
#include <string>
#include <system_error>

#include <doctest/doctest.h>

#include "app/organise_notes.h"
#include "app/planner.h"
#include "store/data_store.h"

using namespace tessaly;
using base::Failure;
using tests::Planner;

namespace {

constexpr const char* notes =
    "-- Notes/Plans.txt\n"
    "# Plans\n"
    "* Call Bob\n"
    "-- Notes/Ideas.md\n"
    "Ideas\n"
    "-- Notes/Tasks.txt\n"
    "* Buy milk\n"
    "-- Notes/Work/Plans.txt\n"
    "# Work plans\n"
    "-- Notes/Work/Deep/Note.txt\n"
    "deep\n"
    "-- Notes/Home/Garden.txt\n"
    "# Garden\n";

using Operation = base::Result<std::string> (*)(app::Services&, const std::string&,
                                                const std::string&);

base::Result<std::string> rename(app::Services& services, const std::string& a,
                                 const std::string& b) {
    return app::renameNote(services, a, b);
}
base::Result<std::string> move(app::Services& services, const std::string& a,
                               const std::string& b) {
    return app::moveNote(services, a, b);
}
base::Result<std::string> makeFolder(app::Services& services, const std::string& a,
                                     const std::string& b) {
    return app::newFolder(services, a, b);
}
base::Result<std::string> renameFolder(app::Services& services, const std::string& a,
                                       const std::string& b) {
    return app::renameFolder(services, a, b);
}
base::Result<std::string> moveFolder(app::Services& services, const std::string& a,
                                     const std::string& b) {
    return app::moveFolder(services, a, b);
}

struct OrganiseRow {
    Operation operation;
    std::string subject;
    std::string argument;
    std::string result;  // "" for a refusal
    std::string text;    // of the note of that name; "" for a folder
};

const OrganiseRow organiseRows[] = {
    {rename, "Plans.txt", "Dreams", "Dreams.txt", "# Dreams\n* Call Bob\n"},
    {rename, "Plans.txt", "## Dreams", "Dreams.txt", "# Dreams\n* Call Bob\n"},
    {rename, "Ideas.md", "Dreams", "Dreams.md", "Dreams\n"},
    {rename, "Tasks.txt", "Milk", "Milk.txt", "# Milk\n* Buy milk\n"},
    {rename, "Work/Plans.txt", "Plans", "Work/Plans.txt", "# Plans\n"},
    {rename, "Tasks.txt", "PLANS", "PLANS 2.txt", "# PLANS\n* Buy milk\n"},
    {rename, "Plans.txt", "plans", "plans.txt", "# plans\n* Call Bob\n"},
    {rename, "Plans.txt", "a/b: c?", "ab c.txt", "# a/b: c?\n* Call Bob\n"},
    {rename, "Plans.txt", " two\nlines ", "two lines.txt", "# two lines\n* Call Bob\n"},
    {rename, "Plans.txt", "#tag day", "tag day.txt", "# #tag day\n* Call Bob\n"},
    {rename, "Plans.txt", "  ", "", ""},
    {rename, "Plans.txt", "???", "", ""},
    {rename, "Plans.txt", "\xFF", "", ""},
    {rename, "Gone.txt", "Dreams", "", ""},
    {rename, "../Calendar/20190304.txt", "Dreams", "", ""},
    {rename, "Work", "Dreams", "", ""},
    {move, "Plans.txt", "Home", "Home/Plans.txt", "# Plans\n* Call Bob\n"},
    {move, "Plans.txt", "Work", "Work/Plans 2.txt", "# Plans\n* Call Bob\n"},
    {move, "Work/Plans.txt", "", "Plans 2.txt", "# Work plans\n"},
    {move, "Plans.txt", "Archive", "Archive/Plans.txt", "# Plans\n* Call Bob\n"},
    {move, "Plans.txt", "../Calendar", "", ""},
    {move, "Plans.txt", ".hidden", "", ""},
    {move, "Plans.txt", "Ideas.md", "", ""},
    {makeFolder, "Work", "New", "Work/New", ""},
    {makeFolder, "", "WORK", "", ""},
    {makeFolder, "", "archive", "", ""},
    {makeFolder, "", "_attachments", "", ""},
    {makeFolder, "", "..", "", ""},
    {renameFolder, "Work", "Job", "Job", ""},
    {renameFolder, "Work", "work", "work", ""},
    {renameFolder, "Work", "HOME", "", ""},
    {renameFolder, "Work/Deep", "a/b", "Work/ab", ""},
    {renameFolder, "Plans.txt", "Job", "", ""},
    {moveFolder, "Work", "Home", "Home/Work", ""},
    {moveFolder, "Work/Deep", "", "Deep", ""},
    {moveFolder, "Work", "Work", "", ""},
    {moveFolder, "Work", "Work/Deep", "", ""},
};

/// The texts of all notes, whatever they are called now.
std::multiset<std::string> textsIn(const Planner& planner) {
    std::multiset<std::string> texts;
    for (const auto& [name, text] :
         planner.folder().everything(std::string(Planner::root) + "Notes")) {
        if (!name.ends_with('/')) {
            texts.insert(text);
        }
    }
    return texts;
}

void check(const OrganiseRow& row) {
    CAPTURE(row.subject);
    CAPTURE(row.argument);
    Planner planner;
    planner.write(notes);
    const auto before = planner.folder().everything("data");
    auto texts = textsIn(planner);
    const auto result = row.operation(planner.services(), row.subject, row.argument);
    if (row.result.empty()) {
        CHECK_FALSE(result);
        CHECK(planner.folder().everything("data") == before);
        return;
    }
    REQUIRE(result);
    CHECK(*result == row.result);
    const std::string name = std::string(Planner::root) + "Notes/" + row.result;
    CHECK(planner.folder().exists(name));
    if (!row.text.empty()) {
        CHECK(planner.folder().read(name) == row.text);
        const auto old = before.find("org.tessaly.tessaly/Notes/" + row.subject);
        REQUIRE(old != before.end());
        texts.erase(texts.find(old->second));
        texts.insert(row.text);
    }
    CHECK(textsIn(planner) == texts);
}

/// A trash that keeps what it gets, beside the data folder.
base::Result<base::Done> intoTrash(const std::string& path) {
    std::error_code error;
    std::filesystem::rename(path, path.substr(0, path.find("/data/")) + "/trashed", error);
    return error ? base::Result<base::Done>(Failure{Failure::Kind::other, error.message()})
                 : base::Done{};
}

}  // namespace

TEST_CASE("notes and folders are renamed and moved without a text being lost or changed") {
    for (const OrganiseRow& row : organiseRows) {
        check(row);
    }
}

TEST_CASE("a title is changed alone, whatever the first line is") {
    struct Row {
        std::string text;
        std::string title;
        std::string result;
    };
    const Row rows[] = {
        {"# A\r\nb\r\n", "C", "# C\r\nb\r\n"},
        {"###  A  \nb", "C", "###  C  \nb"},
        {"\n\nA\nb", "C", "\n\nC\nb"},
        {"", "C", "# C\n"},
        {"#\nb", "C", "# C\nb"},
        {"- a\n", "C", "# C\n- a\n"},
        {"1. a\n", "C", "# C\n1. a\n"},
        {"> a\r\n", "C", "# C\r\n> a\r\n"},
        {"#tag a\n", "C", "# C\n#tag a\n"},
        {"[ ] a", "C", "# C\n[ ] a"},
        {"*bold* a\n", "C", "C\n"},
        {"A\n", "- c", "# - c\n"},
        {"2019 was fine", "2020", "2020"},
        {"A\n", "## C", "C\n"},
    };
    for (const Row& row : rows) {
        CAPTURE(row.text);
        CHECK(app::withTitle(row.text, row.title) == row.result);
    }
}

TEST_CASE("a note that cannot get its new name keeps its title") {
    Planner planner;
    planner.write(notes);
    planner.folder().write("data/org.tessaly.tessaly/Notes/bad.txt", "\xFF\xFE");
    const auto before = planner.folder().everything("data");
    CHECK_FALSE(app::renameNote(planner.services(), "bad.txt", "Good"));
    CHECK(planner.folder().everything("data") == before);
    const auto moved = app::moveNote(planner.services(), "bad.txt", "Home");
    REQUIRE(moved);
    CHECK(planner.textOf("Notes/Home/bad.txt") == "\xFF\xFE");
}

TEST_CASE("what a sync client has not downloaded is neither overwritten nor trashed") {
    Planner planner;
    planner.write(notes);
    planner.folder().write("data/org.tessaly.tessaly/Notes/Home/Plans.txt.nextcloud", "");
    CHECK(app::moveNote(planner.services(), "Plans.txt", "Home").value() == "Home/Plans 2.txt");
    const auto before = planner.folder().everything("data");
    CHECK_FALSE(app::trashFolder(planner.services(), "Home"));
    CHECK(planner.folder().everything("data") == before);
}

TEST_CASE("a folder goes to the trash with all in it, or not at all") {
    Planner::User user;
    user.trash = intoTrash;
    Planner planner{user};
    planner.write(notes);
    CHECK(app::trashFolder(planner.services(), "Work").value() == 2);
    CHECK(planner.folder().read("trashed/Deep/Note.txt") == "deep\n");
    CHECK_FALSE(planner.folder().exists("data/org.tessaly.tessaly/Notes/Work"));
    const auto kept = planner.services().history().entries();
    REQUIRE(kept);
    CHECK(kept->size() == 2);

    user.trash = [](const std::string& path) {
        return base::Failure{Failure::Kind::unavailable, path};
    };
    Planner without{user};
    without.write(notes);
    without.folder().mkdir("data/org.tessaly.tessaly/Notes/Empty");
    const auto before = without.folder().everything("data");
    CHECK_FALSE(app::trashFolder(without.services(), "Work"));
    CHECK(without.folder().everything("data") == before);
    CHECK(app::trashFolder(without.services(), "Empty").value() == 0);
    CHECK_FALSE(without.folder().exists("data/org.tessaly.tessaly/Notes/Empty"));
}

TEST_CASE("the cache knows at once what was renamed, with all that lies in it") {
    Planner planner;
    planner.write(notes);
    store::NoteCache& cache = planner.services().noteCache();
    cache.load();
    cache.waitUntilIdle();
    REQUIRE(app::renameFolder(planner.services(), "Work", "Job"));
    REQUIRE(app::renameNote(planner.services(), "Plans.txt", "Dreams"));
    REQUIRE(app::newFolder(planner.services(), "Job", "Empty"));
    cache.waitUntilIdle();
    std::string names;
    cache.generalNotes()->forEach(
        [&](const auto& note) { names += note->note.filename + "=" + note->note.title + ";"; });
    CHECK(names ==
          "Dreams.txt=Dreams;Home=Home;Home/Garden.txt=Garden;Ideas.md=Ideas;Job=Job;"
          "Job/Deep=Deep;Job/Deep/Note.txt=deep;Job/Empty=Empty;Job/Plans.txt=Work plans;"
          "Tasks.txt=* Buy milk;");
}
