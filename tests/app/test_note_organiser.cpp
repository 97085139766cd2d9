// SPDX-License-Identifier: MIT
// What goes to the trash, and comes back.
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include <doctest/doctest.h>

#include "app/note_organiser.h"
#include "app/planner.h"

using namespace tessaly;
using app::NoteOrganiser;
using app::OrganisedNotes;
using base::Done;
using base::Failure;
using tests::Planner;
using tests::TempFolder;

namespace {

namespace fs = std::filesystem;

/// A trash of one thing, which can be emptied.
class OneTrash {
public:
    ports::Trash trash() {
        return [this](const std::string& path) -> base::Result<Done> {
            std::error_code error;
            fs::rename(path, _folder / "thing", error);
            return error ? base::Result<Done>(Failure{Failure::Kind::other, path}) : Done{};
        };
    }
    ports::TrashReturn trashReturn() {
        return [this](const std::string& path) -> base::Result<ports::TakeBack> {
            return ports::TakeBack([this, path]() -> base::Result<Done> {
                if (!_folder.exists("thing")) {
                    return Failure{Failure::Kind::notFound, path};
                }
                fs::rename(_folder / "thing", path);
                return Done{};
            });
        };
    }
    void empty() { fs::remove_all(_folder / "thing"); }

private:
    TempFolder _folder;
};

constexpr const char* trashedNotes =
    "-- Notes/Work/Plans.txt\n"
    "# Plans\n"
    "-- Notes/Work/Deep/Note.txt\n"
    "deep\n";

enum class Thing { note, folder };
enum class With { trash, noTrash };

struct ReturnRow {
    const char* what;
    Thing thing;
    With with;
    void (*meanwhile)(Planner& planner, OneTrash& trash);
    const char* notice;  // of the return; null: nothing can come back
    bool isBack;
};

void write(Planner& planner, const char* name, const char* text) {
    planner.folder().write(std::string(Planner::root) + name, text);
}

const ReturnRow returnRows[] = {
    {"a note", Thing::note, With::trash, [](auto&, auto&) {}, "“Plans” is back", true},
    {"a folder", Thing::folder, With::trash, [](auto&, auto&) {}, "“Work” is back", true},
    {"a note, the trash emptied", Thing::note, With::trash,
     [](auto&, OneTrash& trash) { trash.empty(); }, "“Plans” is back", true},
    {"a note where there is no trash", Thing::note, With::noTrash, [](auto&, auto&) {},
     "“Plans” is back", true},
    {"a note whose folder has gone", Thing::note, With::trash,
     [](Planner& planner, auto&) {
         fs::remove_all(planner.folder() / (std::string(Planner::root) + "Notes/Work"));
     },
     "“Plans” is back", true},
    {"a note whose name is taken", Thing::note, With::trash,
     [](Planner& planner, auto&) { write(planner, "Notes/Work/Plans.txt", "other\n"); },
     "“Plans.txt” stays in the trash: something else has its name now", false},
    {"a note whose name is taken in other case", Thing::note, With::noTrash,
     [](Planner& planner, auto&) { write(planner, "Notes/Work/PLANS.txt", "other\n"); },
     "“Plans.txt” stays in the trash: something else has its name now", false},
    {"a folder whose name is taken", Thing::folder, With::trash,
     [](Planner& planner, auto&) { write(planner, "Notes/Work/New.txt", "other\n"); },
     "“Work” stays in the trash: something else has its name now", false},
};

/// What the cache has of a note; "-": nothing.
std::string heldText(Planner& planner, const char* filename) {
    planner.services().noteCache().waitUntilIdle();
    const auto note = planner.services().noteCache().generalNotes()->find(filename);
    return note ? std::string(note->note.content.view()) : "-";
}

void checkReturn(const ReturnRow& row) {
    CAPTURE(row.what);
    OneTrash trash;
    Planner::User user{.trashReturn = trash.trashReturn(), .isThreaded = false};
    user.trash = trash.trash();
    if (row.with == With::noTrash) {
        user.trash = [](const std::string& path) {
            return base::Result<Done>(Failure{Failure::Kind::unavailable, path});
        };
        user.trashReturn = {};
    }
    Planner planner{user};
    planner.write(trashedNotes);
    planner.services().noteCache().load();
    planner.services().noteCache().waitUntilIdle();
    NoteOrganiser organiser{planner.services()};
    std::optional<OrganisedNotes> told;
    const auto teller = [&](const OrganisedNotes& what) { told = what; };
    row.thing == Thing::note ? organiser.trashNote("Work/Plans.txt", teller)
                             : organiser.trashFolder("Work", teller);
    const char* const name = row.thing == Thing::note ? "Work/Plans.txt" : "Work";
    CHECK(planner.services().noteMoves().isGoing("Work/Plans.txt"));
    planner.mainQueue().runPosted();
    CHECK_FALSE(planner.services().noteMoves().isGoing("Work/Plans.txt"));
    REQUIRE(told);
    REQUIRE_FALSE(told->isFailure);
    CHECK(told->from == name);
    CHECK(heldText(planner, "Work/Plans.txt") == "-");
    CHECK(planner.textOf("Notes/Work/Plans.txt") == "-");
    row.meanwhile(planner, trash);
    const auto before = planner.everything();

    REQUIRE(told->undo);
    std::exchange(told, std::nullopt)->undo();
    planner.mainQueue().runPosted();
    REQUIRE(told);
    CHECK(told->text == row.notice);
    CHECK(told->isFailure == !row.isBack);
    CHECK(told->to == (row.isBack ? name : ""));
    if (row.isBack) {
        CHECK(planner.textOf("Notes/Work/Plans.txt") == "# Plans\n");
        CHECK(heldText(planner, "Work/Plans.txt") == "# Plans\n");
        const bool isAll = row.thing == Thing::folder;
        CHECK((heldText(planner, "Work/Deep/Note.txt") == "deep\n" || !isAll));
    } else {
        CHECK(planner.everything() == before);
    }
}

}  // namespace

TEST_CASE("what went to the trash comes back to its place, and displaces nothing") {
    for (const ReturnRow& row : returnRows) {
        checkReturn(row);
    }
}

TEST_CASE("a folder that only an empty trash knows does not come back, and says so at once") {
    Planner planner{{.isThreaded = false}};
    planner.folder().mkdir(std::string(Planner::root) + "Notes/Empty");
    NoteOrganiser organiser{planner.services()};
    std::optional<OrganisedNotes> told;
    organiser.trashFolder("Empty", [&](const OrganisedNotes& what) { told = what; });
    planner.mainQueue().runPosted();
    REQUIRE(told);
    CHECK_FALSE(told->undo);
}
