// SPDX-License-Identifier: MIT
#include <filesystem>
#include <functional>

#include <doctest/doctest.h>

#include "app/day_text.h"
#include "app/day_view.h"
#include "app/note_address.h"
#include "app/note_lists.h"
#include "app/planner.h"

using namespace tessaly;
using app::NoteScope;
using app::Services;
using app::TagKind;
using tests::Planner;

namespace {

constexpr const char* notes =
    "-- Calendar/20190305.txt\n* Call Bob #home\n\t* [x] Ask @maria @done(2019-03-04)\n"
    "-- Calendar/20190304.txt\n* [>] Late >2019-03-02\n* Older\n"
    "-- Calendar/20190307.md\n* Markdown day\n"
    "-- Calendar/2019-3-8.txt\n* A stray's task\n"
    "-- Calendar/old/20190306.txt\n* In a folder\n"
    "-- Notes/Plans.txt\n---\nkey: value\n---\n# Plans\n* [>] Paint >2019-03-05 #home/walls\n"
    "-- Notes/Plans (conflicted copy 2019-03-01).txt\n* Of the other device #conflict\n"
    "-- Notes/Work/Deep/e.md\n# \xc3\x89t\xc3\xa9 #work\n3. [-] Three >2019-03-07\n"
    "-- Notes/Work/copy.txt\n# Plans\n"
    "-- Notes/_Ideas.txt\n* Found @bob\n"
    "-- Notes/_attachments/list.txt\n* Not found #attached\n"
    "-- Notes/.hidden.txt\n* Not found either #hidden\n"
    "-- Notes/Work/picture.png\nno text\n"
    "-- .Trash/gone.txt\n* Gone #gone\n";

void writeNotes(Planner& planner) {
    planner.write(notes);
    const std::string root{Planner::root};
    planner.folder().write(root + "Notes/bom.txt", "\xef\xbb\xbf# Marked\r\n* Two\r\n#tail");
    planner.folder().write(root + "Notes/latin.txt", "# Caf\xe9 #latin\n");
    planner.folder().write(root + "Notes/empty.txt", "");
    planner.folder().link(root + "Notes/link.txt", "Plans.txt");
    planner.folder().mkdir(root + "Notes/Nothing");
}

std::string textOf(const store::ReadReport& report) {
    std::string text = "read " + std::to_string(report.files) + "\n";
    for (const auto& skipped : report.skipped) {
        text += "skipped " + skipped.path + ": " + skipped.failure.description + "\n";
    }
    for (const auto& copy : report.conflictCopies) {
        text += "copy " + copy.path + " of " + copy.original + "\n";
    }
    return text;
}

std::string textOf(const app::NoteRows& rows) {
    std::string text = textOf(rows.report);
    for (const app::NoteRow& row : rows.rows) {
        text += row.filename + "|" + row.title + "|" +
                std::to_string(row.changed.time_since_epoch().count()) + "|" +
                std::to_string(row.model.numOpenTodos) + "|" +
                std::to_string(row.model.numDoneTodos);
        for (const auto& tags : {row.model.hashTags, row.model.atTags}) {
            for (const std::string& tag : tags) {
                text += " " + tag;
            }
        }
        text += "\n";
    }
    return text;
}

std::string textOf(const app::TaskRows& rows) {
    std::string text = textOf(rows.report);
    for (const store::NoteTask& task : rows.tasks) {
        text += task.todo.filename + ":" + std::to_string(task.todo.lineIndex) + " " +
                task.todo.base + (task.day ? " " + base::tagText(*task.day) : "") + "\n";
    }
    return text;
}

std::string textOf(const app::TagRows& rows) {
    std::string text = textOf(rows.report);
    for (const app::TagRow& row : rows.rows) {
        text += row.tag + " " + std::to_string(row.notes) + "\n";
    }
    return text;
}

std::string textOf(const base::Result<app::NoteAddress>& address) {
    return address ? address->filename : address.failure().description;
}

struct Row {
    const char* what;
    std::function<std::string(Services&)> view;
};

const Row rows[] = {
    {"day",
     [](Services& services) {
         const auto views = app::dayViews(services, services.today(), 1);
         return tests::dayText(views) + textOf(views.report);
     }},
    {"week",
     [](Services& services) { return tests::dayText(app::weekView(services, services.today())); }},
    {"all notes",
     [](Services& services) { return textOf(app::listNotes(services, NoteScope::all, "")); }},
    {"notes of a folder",
     [](Services& services) { return textOf(app::listNotes(services, NoteScope::all, "Work")); }},
    {"tasks",
     [](Services& services) { return textOf(app::listTasks(services, NoteScope::all, {})); }},
    {"hashtags",
     [](Services& services) { return textOf(app::listTags(services, TagKind::hashtags)); }},
    {"title", [](Services& services) { return textOf(app::findNote(services, "marked")); }},
    {"title of several",
     [](Services& services) { return textOf(app::findNote(services, "# Plans")); }},
    {"no title", [](Services& services) { return textOf(app::findNote(services, "Pans")); }},
};

}  // namespace

TEST_CASE("every view is the same from memory as from the disk") {
    Planner planner;
    writeNotes(planner);
    Services& services = planner.services();
    std::vector<std::string> fromDisk;
    for (const Row& row : rows) {
        fromDisk.push_back(row.view(services));
    }
    CHECK(fromDisk[0].find("Call Bob") != std::string::npos);

    services.noteCache().load();
    services.noteCache().waitUntilIdle();
    REQUIRE(services.noteCache().initialUpdateDone());
    // What is still told now comes out of memory.
    std::filesystem::remove_all(planner.folder() / Planner::root);
    for (std::size_t index = 0; index < std::size(rows); ++index) {
        CAPTURE(rows[index].what);
        CHECK(rows[index].view(services) == fromDisk[index]);
    }
}
