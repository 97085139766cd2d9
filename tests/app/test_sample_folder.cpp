// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include "app/note_lists.h"
#include "app/planner.h"
#include "app/sample_folder.h"
#include "base/enum_names.h"
#include "grammar/todo_helper.h"
#include "store/note_reader.h"

using namespace tessaly;
using tests::Planner;

namespace {

std::string inRoot(std::string_view name) {
    return std::string{Planner::root}.append(name);
}

// The kinds of a note's lines; of the empty ones nothing.
std::string kindsOf(const Planner& planner, const std::string& filename) {
    const std::string text = planner.folder().read(inRoot(filename));
    std::string kinds;
    for (const auto& todo : grammar::TodoHelper::parseNoteContent({text, filename}, {})) {
        if (todo.type != grammar::TodoType::empty) {
            kinds += std::string(todo.indents, '>') + std::string{base::rawValue(todo.type)} + " ";
        }
    }
    return kinds;
}

}  // namespace

TEST_CASE("only a folder without anything of ours gets sample notes, and but once") {
    const struct {
        std::string what;
        std::optional<std::string>
            before;  // a file or, with "/" at its end, a folder in the data folder
        int made;
    } rows[] = {
        {"nothing", std::nullopt, 5},
        {"an empty data folder", "", 5},
        {"a foreign file", "photo.png", 5},
        {"a sync client's folder", ".stfolder/", 5},
        {"a note in its folder", "Notes/Plans.txt", 0},
        {"a note beside the folders", "Plans.md", 0},
        {"a note that is not downloaded", "Plans.md.nextcloud", 0},
        {"a photo that is not downloaded", "photo.png.nextcloud", 5},
        {"an empty folder of ours", "Calendar/", 0},
        {"trash alone", ".Trash/old.txt", 0},
        {"a file where the data folder should be", "/", 0},
    };
    for (const auto& row : rows) {
        CAPTURE(row.what);
        Planner planner;
        const std::string before = row.before.value_or("");
        if (before == "/") {
            planner.folder().write("data/org.tessaly.tessaly", "no folder");
        } else if (row.before && (before.empty() || before.back() == '/')) {
            planner.folder().mkdir(inRoot(before));
        } else if (row.before) {
            planner.folder().write(inRoot(before), "not ours to change");
        }
        const auto old = planner.everything();
        CHECK(app::makeSampleNotes(planner.services()).value() == row.made);
        const auto first = planner.everything();
        for (const auto& [name, bytes] : old) {
            CHECK(first.at(name) == bytes);
        }
        CHECK((first.size() > old.size()) == (row.made > 0));
        CHECK(app::makeSampleNotes(planner.services()).value() == 0);
        CHECK(planner.everything() == first);
    }
}

TEST_CASE("each line of the sample notes reads as what it teaches") {
    Planner planner;
    REQUIRE(app::makeSampleNotes(planner.services()).ok());
    const struct {
        std::string filename;
        std::string kinds;
    } rows[] = {
        {"Notes/Welcome to Tessaly.txt",
         "title text title text title text open open done cancelled scheduled text title text "
         "title list >list list quote title text text "},
        {"Calendar/20190304.txt", "title done cancelled scheduled open text text "},
        {"Calendar/20190305.txt",
         "title done open open >done >open >open scheduled text title list quote "},
        {"Calendar/20190306.txt", "title open open open >open >cancelled text "},
        {"Calendar/20190312.txt", "open >open >open "},
    };
    for (const auto& row : rows) {
        CAPTURE(row.filename);
        CHECK(kindsOf(planner, row.filename) == row.kinds);
    }
    std::string tags;
    for (const auto kind : {app::TagKind::hashtags, app::TagKind::mentions}) {
        for (const auto& tag : app::listTags(planner.services(), kind).rows) {
            tags += tag.tag + " ";
        }
    }
    CHECK(tags == "#family #family/trips #home #home/garden #ideas @maria ");
}

TEST_CASE("sample dates follow the clock and the locale's hours") {
    Planner::User user;
    user.now = "2019-12-31T00:05:00";
    user.locale = "en_US";
    Planner planner(user);
    REQUIRE(app::makeSampleNotes(planner.services()).ok());
    CHECK(planner.folder().names(inRoot("Calendar")) ==
          std::vector<std::string>{"20191230.txt", "20191231.txt", "20200101.txt", "20200107.txt"});
    const std::string today = planner.folder().read(inRoot("Calendar/20191231.txt"));
    CHECK(today.find("first time @done(2019-12-31 12:05 AM)\n") != today.npos);
    CHECK(today.find("first week >2020-01-07\n") != today.npos);
}

TEST_CASE("a sample note that cannot be written is told") {
    Planner::User user;
    user.dataFolder = "/proc/tessaly";  // nobody can make a folder there
    Planner planner(user);
    CHECK(app::isNewUser(planner.services()));
    CHECK_FALSE(app::makeSampleNotes(planner.services()).ok());
}
