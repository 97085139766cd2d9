// SPDX-License-Identifier: MIT
#include <atomic>
#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>
#include <sys/stat.h>

#include "base/temporary_name.h"
#include "store/data_store.h"
#include "store_fixture.h"
#include "support/log_capture.h"

using namespace tessaly;
using base::Failure;
using base::NoteType;
using tests::HookedChanges;
using tests::LogCapture;
using tests::StoreFixture;

namespace {

using Tree = std::map<std::string, std::string>;  ///< bytes by relative path

/// A local data folder and a cloud drive beside it.
struct CloudFixture : StoreFixture {
    CloudFixture() : StoreFixture(Root::chosen) {
        cloudContainer = [this] { return folder / "cloud"; };
    }

    static constexpr const char* local = "share/org.example";
    static constexpr const char* cloud = "cloud/Documents";

    void fill(const char* where, const Tree& tree) const {
        for (const auto& [path, bytes] : tree) {
            folder.write(std::string(where) + "/" + path, bytes);
        }
    }

    /// The files alone.
    Tree tree(const char* where) const {
        Tree found = folder.exists(where) ? folder.everything(where) : Tree{};
        std::erase_if(found, [](const auto& file) { return file.first.ends_with('/'); });
        return found;
    }
};

const Tree localTree{{"Calendar/20190305.txt", "local day"},
                     {"Calendar/20190306.txt", "same day"},
                     {"Notes/Plans.txt", "local plans"},
                     {"Notes/Work/Deep/Talk.md", "talk"},
                     {"unknown/data.bin", "bytes"}};

const Tree cloudTree{{"Calendar/20190305.txt", "cloud day"},
                     {"Calendar/20190306.txt", "same day"},
                     {"Notes/Plans.txt", "cloud plans"},
                     {"Notes/Plans 2.txt", "other plans"},
                     {"Notes/Theirs.txt", "theirs"}};

const Tree unitedTree{
    {"Calendar/20190305.txt", "cloud day"}, {"Calendar/20190305 2.txt", "local day"},
    {"Calendar/20190306.txt", "same day"},  {"Notes/Plans.txt", "cloud plans"},
    {"Notes/Plans 2.txt", "other plans"},   {"Notes/Plans 3.txt", "local plans"},
    {"Notes/Theirs.txt", "theirs"},         {"Notes/Work/Deep/Talk.md", "talk"},
    {"unknown/data.bin", "bytes"}};

/// Whether every text of the local folder is there or in the cloud, and none of the cloud's is
/// gone.
void checkNothingIsLost(const CloudFixture& fixture) {
    std::map<std::string, int> there;
    for (const char* where : {CloudFixture::local, CloudFixture::cloud}) {
        for (const auto& [path, bytes] : fixture.tree(where)) {
            ++there[bytes];
        }
    }
    for (const auto& file : unitedTree) {
        CAPTURE(file.first);
        CHECK(there[file.second] >= 1);
    }
}

}  // namespace

TEST_CASE("a file is pushed under its own path, or a free name beside it") {
    CloudFixture fixture;
    fixture.fill(CloudFixture::cloud, {{"Notes/Plans.txt", "cloud"},
                                       {"Notes/Same.txt", "same"},
                                       {"Notes/Same again.txt", "cloud"},
                                       {"Notes/Same again 2.txt", "ours"},
                                       {"Notes/Far.txt.nextcloud", ""},
                                       {"Notes/Folder/x.txt", ""},
                                       {"Notes/.hidden", "cloud"},
                                       {"Calendar/20190305.txt", "cloud"}});
    const auto row = [&](NoteType type, const std::string& name, std::string_view expected,
                         const std::string& bytes = "local") {
        CAPTURE(name);
        const std::string kind = "/" + std::string(base::folderName(type)) + "/";
        fixture.folder.write(CloudFixture::local + kind + name, bytes);
        const auto pushed = fixture.store.pushToCloudDrive(type, name);
        REQUIRE(pushed);
        CHECK(*pushed == expected);
        CHECK(fixture.folder.read(CloudFixture::cloud + kind + *pushed) == bytes);
        CHECK_FALSE(fixture.folder.exists(CloudFixture::local + kind + name));
    };
    row(NoteType::note, "New.txt", "New.txt");
    row(NoteType::note, "Plans.txt", "Plans 2.txt");
    row(NoteType::note, "Work/Deep/Talk.md", "Work/Deep/Talk.md");
    row(NoteType::note, "Same.txt", "Same.txt", "same");
    row(NoteType::note, "Same again.txt", "Same again 2.txt", "ours");
    row(NoteType::note, "Far.txt", "Far 2.txt");
    row(NoteType::note, ".hidden", ".hidden 2");
    row(NoteType::note, "Folder", "Folder 2");
    row(NoteType::note, "a.tar.gz", "a.tar.gz");
    row(NoteType::note, "a.tar.gz", "a.tar 2.gz", "other");
    row(NoteType::calendar, "20190305.txt", "20190305 2.txt");
    CHECK(fixture.folder.read("cloud/Documents/Calendar/20190305.txt") == "cloud");
}

TEST_CASE("a name that is taken during the push is left to its file") {
    const auto row = [](const char* theirs, const char* expected) {
        CloudFixture fixture;
        fixture.fill(CloudFixture::local, {{"Notes/Plans.txt", "ours"}});
        bool taken = false;
        fixture.changes.before = [&](std::string_view operation, const std::string&) {
            if (operation == "move" && !taken) {
                taken = true;
                fixture.fill(CloudFixture::cloud, {{"Notes/Plans.txt", theirs}});
            }
            return std::optional<Failure>();
        };
        const auto pushed = fixture.store.pushToCloudDrive(NoteType::note, "Plans.txt");
        REQUIRE(pushed);
        CHECK(*pushed == expected);
        CHECK(fixture.tree(CloudFixture::cloud) ==
              Tree{{"Notes/Plans.txt", theirs}, {"Notes/" + *pushed, "ours"}});
        CHECK(fixture.tree(CloudFixture::local).empty());
    };
    row("theirs", "Plans 2.txt");
    row("ours", "Plans.txt");
}

TEST_CASE(
    "while a file is pushed, nobody changes the folder that it leaves or the one it comes to") {
    CloudFixture fixture;
    fixture.fill(CloudFixture::local, {{"Notes/Plans.txt", "ours"}});
    platform::FlockFolderLocks others(fixture.folder / "locks", std::chrono::milliseconds(1));
    fixture.changes.before = [&](std::string_view operation, const std::string&) {
        if (operation == "move") {
            CHECK_FALSE(others.take(fixture.folder / CloudFixture::local));
            CHECK_FALSE(others.take(fixture.folder / CloudFixture::cloud));
        }
        return std::optional<Failure>();
    };
    CHECK(fixture.store.pushToCloudDrive(NoteType::note, "Plans.txt"));
    CHECK(fixture.tree(CloudFixture::cloud) == Tree{{"Notes/Plans.txt", "ours"}});
}

TEST_CASE("what cannot be pushed stays, and the log tells") {
    CloudFixture fixture;
    fixture.folder.write("share/org.example/Notes/Plans.txt", "plans");
    fixture.folder.write("share/org.example/Notes/out/Plans.txt", "plans");
    fixture.folder.link("share/org.example/Notes/link.txt", "Plans.txt");
    fixture.folder.mkdir("cloud/Documents/Notes");
    fixture.folder.link("cloud/Documents/Notes/out", "../../..");
    const auto row = [&](NoteType type, const char* name, Failure::Kind expected) {
        CAPTURE(name);
        LogCapture log;
        const auto pushed = fixture.store.pushToCloudDrive(type, name);
        REQUIRE_FALSE(pushed);
        CHECK(pushed.failure().kind == expected);
        REQUIRE(log.lines().size() == 1);
        CHECK(
            log.lines()[0].starts_with("Could not push file from local to iCloud Drive, error = "));
    };
    row(NoteType::note, "None.txt", Failure::Kind::notFound);
    row(NoteType::note, "out", Failure::Kind::notAFile);
    row(NoteType::note, "link.txt", Failure::Kind::notAFile);
    row(NoteType::note, "out/Plans.txt", Failure::Kind::outside);
    fixture.cloudContainer = [] { return std::nullopt; };
    row(NoteType::note, "Plans.txt", Failure::Kind::unavailable);
    CHECK(fixture.folder.read("share/org.example/Notes/Plans.txt") == "plans");
}

TEST_CASE("everything is moved to the cloud drive, and nothing there is overwritten") {
    CloudFixture fixture;
    const Tree others{{"Filters/Mine", "filter"}, {".Trash/Old.txt", "old"}, {"README", "read me"}};
    fixture.fill(CloudFixture::local, localTree);
    fixture.fill(CloudFixture::local, others);
    fixture.fill(CloudFixture::cloud, cloudTree);
    fixture.folder.mkdir("share/org.example/Notes/Empty/Below");
    const std::size_t files = localTree.size() + others.size();
    std::vector<std::size_t> told;
    LogCapture log;
    const auto report = fixture.store.moveAllToCloudDrive({[&](std::size_t done) {
        told.push_back(done);
        CHECK(fixture.store.createFolderIfNonExisting(fixture.folder / "cloud/aside"));
    }});
    Tree all = unitedTree;
    all.insert(others.begin(), others.end());
    CHECK(fixture.tree(CloudFixture::cloud) == all);
    CHECK(fixture.folder.exists("cloud/Documents/Notes/Empty/Below"));
    CHECK_FALSE(fixture.folder.exists("share/org.example"));
    CHECK(report.moved == files);
    CHECK(report.failed.empty());
    CHECK_FALSE(report.cancelled);
    CHECK(log.lines().empty());
    REQUIRE(report.renamed.size() == 2);
    CHECK(report.renamed[0].from == "Calendar/20190305.txt");
    CHECK(report.renamed[0].to == "Calendar/20190305 2.txt");
    REQUIRE(told.size() == files);
    CHECK(told.back() == files);

    const auto again = fixture.store.moveAllToCloudDrive();
    CHECK(again.moved == 0);
    CHECK(again.failed.empty());
}

TEST_CASE("what is no file of the user's stays where it is, and is told") {
    CloudFixture fixture;
    const std::string temporary = "Notes/" + base::temporaryName("Plans.txt");
    fixture.fill(CloudFixture::local, {{"Notes/Plans.txt", "plans"}, {temporary, "half"}});
    fixture.folder.link("share/org.example/Notes/link.txt", "Plans.txt");
    fixture.folder.mkdir("elsewhere");
    fixture.folder.link("share/org.example/linked", "../../elsewhere");
    REQUIRE(::mkfifo((fixture.folder / "share/org.example/Notes/pipe").c_str(), 0600) == 0);
    const auto report = fixture.store.moveAllToCloudDrive();
    CHECK(report.moved == 1);
    CHECK(report.failed.size() == 3);
    for (const auto& failed : report.failed) {
        CAPTURE(failed.path);
        CHECK(failed.failure.kind == Failure::Kind::notAFile);
        CHECK(failed.failure.description.starts_with(failed.path + ": "));
        CHECK(fixture.folder.exists("share/org.example/" + failed.path));
    }
    CHECK(fixture.tree(CloudFixture::cloud) == Tree{{"Notes/Plans.txt", "plans"}});
    // Left by a process that died, perhaps before the machine went down.
    CHECK_FALSE(fixture.folder.exists("share/org.example/" + temporary));
    CHECK(fixture.history.entries(fixture.root + "/Notes/Plans.txt").value().size() == 1);
}

TEST_CASE("a cloud drive that is no other place is refused") {
    const auto row = [](const char* container, bool linked) {
        CAPTURE(container);
        CloudFixture fixture;
        fixture.fill(CloudFixture::local, {{"Notes/Plans.txt", "plans"}});
        fixture.folder.mkdir("aside");
        if (linked) {
            fixture.folder.link("aside/Documents", "../share/org.example");
        }
        fixture.cloudContainer = [&] { return fixture.folder / container; };
        LogCapture log;
        const auto report = fixture.store.moveAllToCloudDrive();
        CHECK(report.moved == 0);
        CHECK(report.failed.size() == 1);
        REQUIRE(log.lines().size() == 1);
        CHECK(log.lines()[0].starts_with("Failed to move all files to cloud: "));
        CHECK_FALSE(fixture.store.pushToCloudDrive(NoteType::note, "Plans.txt"));
        CHECK(fixture.tree(CloudFixture::local) == Tree{{"Notes/Plans.txt", "plans"}});
    };
    row("share/org.example", false);
    row("share/org.example/Notes", false);
    row("aside", true);
}

TEST_CASE("a move that is cancelled goes on where it was when it is run again") {
    for (std::size_t files = 0; files <= localTree.size(); ++files) {
        CAPTURE(files);
        CloudFixture fixture;
        fixture.fill(CloudFixture::local, localTree);
        fixture.fill(CloudFixture::cloud, cloudTree);
        std::atomic<bool> cancelled = files == 0;
        const auto report = fixture.store.moveAllToCloudDrive(
            {[&](std::size_t done) { cancelled = done == files; }, &cancelled});
        CHECK(report.moved == files);
        CHECK(report.cancelled == (files < localTree.size()));
        checkNothingIsLost(fixture);
        CHECK(fixture.store.moveAllToCloudDrive().moved == localTree.size() - files);
        CHECK(fixture.tree(CloudFixture::cloud) == unitedTree);
    }
}

TEST_CASE("a move that a full disk interrupts at any call ends right when it is run again") {
    for (int call = 0;; ++call) {
        CAPTURE(call);
        CloudFixture fixture;
        fixture.fill(CloudFixture::local, localTree);
        fixture.fill(CloudFixture::cloud, cloudTree);
        bool reached = false;
        fixture.changes.before = HookedChanges::fullAt(call, reached);
        LogCapture log;
        const auto report = fixture.store.moveAllToCloudDrive();
        fixture.changes.before = nullptr;
        CHECK(log.lines().size() == report.failed.size());
        CHECK(report.failed.size() <= 1);
        checkNothingIsLost(fixture);
        CHECK(fixture.store.moveAllToCloudDrive().failed.empty());
        CHECK(fixture.tree(CloudFixture::cloud) == unitedTree);
        CHECK(fixture.tree(CloudFixture::local).empty());
        if (!reached) {
            break;
        }
    }
}
