// SPDX-License-Identifier: MIT
#include <array>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "app/dry_run.h"
#include "app/planner.h"
#include "app/pretend_files.h"
#include "platform/file_changes_contract.h"
#include "platform/file_system_contract.h"
#include "platform/posix_file_changes.h"
#include "platform/posix_file_system.h"
#include "support/failure_kind.h"
#include "support/log_capture.h"
#include "support/temp_folder.h"

namespace tessaly::app {
namespace {

using base::Failure;
using ports::Durability;
using ports::FolderEntry;
using tests::failureKind;
using tests::Planner;
using tests::TempFolder;

platform::FixedClock clockOf(std::string_view time) {
    return platform::FixedClock(platform::parseTime(time).value());
}

TEST_CASE("pretended changes keep the contract of changes, and write nothing") {
    const TempFolder folder;
    platform::PosixFileSystem real;
    auto clock = clockOf("2019-03-05");
    PretendFiles files(real, clock);
    tests::checkFileChanges({folder.path(), files, files});
    CHECK(folder.names().empty());
}

TEST_CASE("files are read through pretended changes as they are") {
    platform::PosixFileSystem real;
    auto clock = clockOf("2019-03-05");
    tests::checkFileSystem([&] { return std::make_unique<PretendFiles>(real, clock); });
}

// What may be changed at random: names of files, folders, links and of nothing.
constexpr std::array names{"a",     "b",     "d",         "d/a",    "d/e",
                           "d/e/a", "new",   "new/a",     "toNote", "toD",
                           "toD/a", "toD/n", "toNothing", "d/../b", "missing/a"};

void fill(const TempFolder& folder) {
    folder.write("a", "text of a");
    folder.write("b", "text of b");
    folder.write("d/a", "text of d/a");
    folder.mkdir("d/e");
    folder.link("toNote", folder / "a");
    folder.link("toD", folder / "d");
    folder.link("toNothing", folder / "missing/nothing");
}

/// One user of files: of the real ones or of pretended ones.
struct User {
    std::string folder;
    ports::FileSystem& files;
    ports::FileChanges& changes;

    std::string operator/(std::string_view name) const { return folder + "/" + std::string(name); }
};

using Outcome = std::optional<Failure::Kind>;

struct Step {
    unsigned long what;
    std::string name;
    std::string other;
    std::string bytes;
};

Outcome replaceWhatIsThere(const User& user, const std::string& file, std::string_view bytes) {
    const auto read = user.files.read(file);
    return read ? failureKind(user.changes.replace(file, *read, bytes)) : failureKind(read);
}

Outcome moveFile(const User& user, const std::string& from, const std::string& to) {
    // Folders are never moved.
    const auto kind = user.files.kindOf(from);
    return kind && *kind == FolderEntry::Kind::folder ? std::nullopt
                                                      : failureKind(user.changes.move(from, to));
}

Outcome take(const Step& step, const User& user) {
    const std::string path = user / step.name;
    switch (step.what) {
        case 0: return failureKind(user.changes.create(path, step.bytes));
        case 1: return replaceWhatIsThere(user, path, step.bytes);
        case 2: return failureKind(user.changes.append(path, step.bytes, Durability::later));
        case 3: return failureKind(user.changes.remove(path));
        case 4: return failureKind(user.changes.makeFolders(path));
        case 5: return failureKind(user.changes.removeFolder(path));
        default: return moveFile(user, path, user / step.other);
    }
}

std::string stateOf(const ports::SurveyedEntry& entry) {
    const bool isFile = entry.kind == FolderEntry::Kind::file;
    return " " + std::to_string(static_cast<int>(entry.kind)) +
           (isFile ? " " + std::to_string(entry.stamp.size) : "");
}

/// What a user sees at every name.
std::string viewOf(const User& user) {
    std::string view;
    for (const char* name : names) {
        const std::string path = user / name;
        const auto kind = user.files.kindOf(path);
        const auto contents = user.files.read(path);
        const auto resolved = user.files.resolve(path);
        view += std::string(name) + ":" + (kind ? std::to_string(static_cast<int>(*kind)) : "") +
                (contents ? " " + contents->bytes : "") +
                (resolved ? " " + resolved->substr(user.folder.size()) : "") + "\n";
        const auto entries = user.files.list(path);
        std::map<std::string, std::string> inside;
        const auto sink = [&](const ports::FileRead& read) {
            inside[(*entries)[read.index].name] = read.bytes;
        };
        if (entries && user.files.readEach(path, *entries, sink)) {
            for (const FolderEntry& entry : *entries) {
                inside[entry.name] += std::to_string(static_cast<int>(entry.kind));
            }
        }
        if (const auto surveyed = user.files.survey(path)) {
            for (const ports::SurveyedEntry& entry : *surveyed) {
                inside[entry.name] += stateOf(entry);
            }
        }
        const std::vector<std::string> asked{"a", "n", "new", "missing"};
        if (const auto surveyed = user.files.surveyNames(path, asked)) {
            for (std::size_t index = 0; index < asked.size(); ++index) {
                const auto& entry = (*surveyed)[index];
                inside[asked[index]] += entry ? stateOf(*entry) : " gone";
            }
        }
        for (const auto& [entry, bytes] : inside) {
            view += "  " + entry + " " + bytes + "\n";
        }
    }
    return view;
}

using Texts = std::map<std::string, std::string>;

/// The links lead to absolute paths, as no text begins.
Texts filesOf(Texts things) {
    std::erase_if(things, [](const auto& thing) {
        return thing.first.ends_with('/') || thing.second.starts_with('/');
    });
    return things;
}

/// What the files of a folder come to by changes that tell the truth of them.
Texts changed(const Texts& before, const std::vector<FileChange>& changes, const User& user) {
    const auto nameOf = [&](const std::string& path) { return path.substr((user / "").size()); };
    Texts after = filesOf(before);
    for (const FileChange& change : changes) {
        const std::string source = nameOf(change.movedFrom.value_or(change.path));
        if (change.before) {
            CHECK(before.at(source) == change.before);
            after.erase(source);
        }
    }
    for (const FileChange& change : changes) {
        if (change.after) {
            CHECK(after.emplace(nameOf(change.path), *change.after).second);
        }
    }
    return after;
}

void checkAgainstRealChanges(unsigned seed) {
    const TempFolder pretended;
    const TempFolder changedForReal;
    fill(pretended);
    fill(changedForReal);
    const Texts before = pretended.everything();
    platform::PosixFileSystem real;
    platform::PosixFileChanges changes;
    auto clock = clockOf("2019-03-05");
    PretendFiles files(real, clock);
    const User pretender{pretended.path(), files, files};
    const User doer{changedForReal.path(), real, changes};

    std::mt19937 random(seed);
    for (int i = 0; i < 30; ++i) {
        const Step step{random() % 7, names[random() % names.size()],
                        names[random() % names.size()], "text " + std::to_string(i)};
        CAPTURE(i);
        CAPTURE(step.what);
        CAPTURE(step.name);
        CAPTURE(step.other);
        CHECK(take(step, pretender) == take(step, doer));
        REQUIRE(viewOf(pretender) == viewOf(doer));
    }
    CHECK(pretended.everything() == before);
    CHECK(changed(before, files.changes(), pretender) == filesOf(changedForReal.everything()));
}

TEST_CASE("pretended changes show what real ones would") {
    for (unsigned seed = 0; seed < 40; ++seed) {
        CAPTURE(seed);
        checkAgainstRealChanges(seed);
    }
}

std::string told(const std::vector<FileChange>& changes, const std::string& root) {
    std::string text;
    const auto name = [&](const std::string& path) {
        return path.starts_with(root) ? path.substr(root.size()) : path;
    };
    for (const FileChange& change : changes) {
        text += name(change.path) + " [" + change.before.value_or("-") + "] [" +
                change.after.value_or("-") + "]" +
                (change.movedFrom ? " from " + name(*change.movedFrom) : "") + "\n";
    }
    return text;
}

TEST_CASE("a dry run tells what would change, changes nothing and logs nothing") {
    Planner planner;
    planner.write(
        "-- Calendar/20190305.txt\n* one\n-- Notes/Old.txt\nold\n-- Notes/Stay.txt\nstay\n");
    planner.set(R"({"isDashTodo": true})");
    const std::string root = planner.folder() / Planner::root;
    const auto before = planner.everything();
    const tests::LogCapture log;
    {
        DryRun dryRun(planner.services());
        Services& services = dryRun.services();
        store::SafeFiles& files = services.safeFiles();
        const auto addTwo = [](std::string_view text) -> base::Result<std::optional<std::string>> {
            return std::optional(std::string(text) + "* two\n");
        };
        const std::string note = root + "Calendar/20190305.txt";
        const auto cause = store::ChangeCause::created;
        CHECK(files.edit(root, note, addTwo, cause).value());
        CHECK(files.edit(root, note, addTwo, cause).value());
        CHECK(services.ports().changes.makeFolders(root + "Notes/Sub"));
        CHECK(files.create(root, root + "Notes/Sub/New.txt", "new\n"));
        CHECK(files.trash(root, root + "Notes/Old.txt", services.ports().trash));
        CHECK(files.move({root, root + "Notes/Stay.txt"}, {root, root + "Notes/Sub/Moved.txt"}));
        CHECK(services.globals().isDashTodo());
        CHECK(services.ports().standardDefaults.setValue("isDashTodo", false));
        CHECK(!services.globals().isDashTodo());
        CHECK(services.history().entries().value().size() >= 5);
        base::log("Deleted: ", note);

        CHECK(told(dryRun.changes(), root) ==
              "Calendar/20190305.txt [* one\n] [* one\n* two\n* two\n]\n"
              "Notes/Old.txt [old\n] [-]\n"
              "Notes/Sub/Moved.txt [stay\n] [stay\n] from Notes/Stay.txt\n"
              "Notes/Sub/New.txt [-] [new\n]\n");
    }
    CHECK(planner.everything() == before);
    CHECK(planner.services().globals().isDashTodo());
    CHECK(log.lines().empty());
    base::log("heard again");
    CHECK(log.lines().size() == 1);
}

TEST_CASE("a dry run tells of a linked data folder by its name, and of all data folders") {
    const TempFolder cloud;
    const TempFolder linked;
    cloud.link("Documents", linked.path());
    Planner planner({.cloudContainer = cloud.path()});
    planner.write("-- Notes/Here.txt\nhere\n");
    linked.write("Notes/Cloud.txt", "cloud\n");
    DryRun dryRun(planner.services());
    ports::FileChanges& changes = dryRun.services().ports().changes;
    const std::string local = planner.folder() / Planner::root;
    CHECK(changes.move(local + "Notes/Here.txt", cloud / "Documents/Notes/Here.txt"));
    CHECK(changes.remove(linked / "Notes/Cloud.txt"));
    CHECK(changes.create(planner.folder() / "elsewhere", "not of the notes"));
    CHECK(told(dryRun.changes(), cloud / "Documents/") ==
          "Notes/Cloud.txt [cloud\n] [-]\n"
          "Notes/Here.txt [here\n] [here\n] from " +
              local + "Notes/Here.txt\n");
}

}  // namespace
}  // namespace tessaly::app
