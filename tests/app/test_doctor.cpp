// SPDX-License-Identifier: MIT
#include <algorithm>
#include <utility>

#include <doctest/doctest.h>

#include "app/doctor.h"
#include "app/planner.h"

using namespace tessaly;
using tests::Planner;

namespace {

constexpr char levelSign[] = {' ', '-', '!'};

// The findings that are not about start-up: "! what path $ command".
std::string findingsText(Planner& planner) {
    std::string text;
    for (const app::Finding& finding : app::examine(planner.services())) {
        CHECK_FALSE(finding.text.empty());
        if (finding.what == "startUp" || finding.what == "index") {
            continue;
        }
        std::string path = finding.path;
        if (path.starts_with(planner.folder().path())) {
            path.replace(0, planner.folder().path().size(), "~");
        }
        text.append(1, levelSign[static_cast<int>(finding.level)]).append(" ").append(finding.what);
        text.append(path.empty() ? "" : " " + path);
        std::string sign = " $";
        for (const std::string& word : finding.command) {
            text.append(std::exchange(sign, "")).append(" ").append(word);
        }
        text.append("\n");
    }
    return text;
}

std::string textOf(const std::vector<app::Finding>& findings, std::string_view what) {
    for (const app::Finding& finding : findings) {
        if (finding.what == what) {
            return finding.text;
        }
    }
    return "none";
}

std::string textsOf(const std::vector<app::Finding>& findings, std::string_view what) {
    std::string texts;
    for (const app::Finding& finding : findings) {
        texts += finding.what == what ? finding.text + "\n" : "";
    }
    return texts;
}

}  // namespace

TEST_CASE("doubtful files are found, each as what it is, and nothing changes") {
    Planner planner;
    planner.write(
        "-- Calendar/20190305.txt\n* Fine\n"
        "-- Calendar/2019-3-5.txt\n* Stray\n"
        "-- Calendar/20190305 2.txt\n* Stray\n"
        "-- Calendar/Ideas.txt\n* No day\n"
        "-- Calendar/old/20190305.txt\n* Below\n"
        "-- Calendar/20190305.sync-conflict-20190306-101010-ABCDEFG.txt\n* Conflict\n"
        "-- Calendar/20190306.sync-conflict-20190306-101010-ABCDEFG.txt\n* Without its note\n"
        "-- Notes/Plans.md\n# Plans\n"
        "-- Notes/Plans (Ann's conflicted copy 2019-03-05).md\n# Plans\n"
        "-- Notes/Plans (conflicted).md\n# Plans\n"
        "-- Notes/Gone (conflicted).md\n# Without its note\n"
        "-- Notes/Cloudy.txt.nextcloud\n \n"
        "-- Notes/.~Plans.md.k3jx90ab~\n# Plan\n"
        "-- Notes/Latin.txt\ncaf\xe9\n"
        "-- Notes/Na\xefve.txt\n# Name\n"
        "-- Notes/.hidden.txt\nHidden\n"
        "-- Notes/photo.png\n\xff\n");
    const std::string root{Planner::root};
    planner.folder().mkdir(root + "Notes/folder.txt");
    planner.folder().link(root + "Notes/Nowhere.txt", "missing");
    planner.folder().link(root + "Notes/Outside.txt", "../../../config/settings.json");
    planner.set(R"({"sortBy": "colour", "fontSize": 12, "unknown": [1]})");
    const auto before = planner.everything();
    CHECK(findingsText(planner) ==
          "  dataFolder ~/data/org.tessaly.tessaly\n"
          "! settingValue ~/config\n"
          "  notes\n"
          "! notUtf8 Notes/Latin.txt\n"
          "- stray Calendar/2019-3-5.txt\n"
          "- stray Calendar/20190305 2.txt\n"
          "- noDay Calendar/20190306.sync-conflict-20190306-101010-ABCDEFG.txt\n"
          "- noDay Calendar/Ideas.txt\n"
          "- noDay Calendar/old/20190305.txt\n"
          "- conflictCopy Calendar/20190305.sync-conflict-20190306-101010-ABCDEFG.txt"
          " $ tessaly conflicts Calendar/20190305.txt\n"
          "- conflictCopy Notes/Plans (Ann's conflicted copy 2019-03-05).md"
          " $ tessaly conflicts Notes/Plans.md\n"
          "- conflictCopy Notes/Plans (conflicted).md $ tessaly conflicts Notes/Plans.md\n"
          "- temporary Notes/.~Plans.md.k3jx90ab~\n"
          "! nameNotUtf8 Notes/Na\xef\xbf\xbdve.txt\n"
          "! skipped Notes/Cloudy.txt.nextcloud\n"
          "! skipped Notes/Nowhere.txt\n"
          "! skipped Notes/Outside.txt\n");
    const auto findings = app::examine(planner.services());
    CHECK(textOf(findings, "notes") == "Calendar notes: 6. Other notes: 3.");
    CHECK(textOf(findings, "stray") == "Belongs to 2019-03-05 by its name, but is not shown there");
    CHECK(textsOf(findings, "conflictCopy") ==
          "Another version of Calendar/20190305.txt, set aside by Syncthing; "
          "the current one is from ABCDEFG\n"
          "Another version of Notes/Plans.md, set aside by Dropbox; it is from Ann\n"
          "Another version of Notes/Plans.md, set aside by pCloud\n");
    CHECK(textOf(findings, "settingValue").find("sortBy") != std::string::npos);
    CHECK(planner.everything() == before);
}

TEST_CASE("the data folder is told with the reason for its choice") {
    const struct {
        Planner::User user;
        std::string settings;
        std::string expected;
    } rows[] = {
        {{},
         "{}",
         "  dataFolder ~/data/org.tessaly.tessaly\n"
         "- dataFolderMissing ~/data/org.tessaly.tessaly\n  notes\n"},
        {{.cloudContainer = "/nowhere/cloud"},
         "{}",
         "  dataFolder /nowhere/cloud/Documents\n"
         "- dataFolderMissing /nowhere/cloud/Documents\n  notes\n"},
        {{.dropbox = true, .cloudContainer = "/nowhere/cloud"},
         "{}",
         "  dataFolder ~/data/org.tessaly.tessaly\n"
         "- dataFolderMissing ~/data/org.tessaly.tessaly\n  notes\n"},
        {{.cloudContainer = "/nowhere/cloud", .dataFolder = "/dev/null"},
         "{}",
         "  dataFolder /dev/null\n! dataFolderUnreadable /dev/null\n"
         "  notes\n! skipped Calendar\n! skipped Notes\n"},
        {{},
         R"({"cloudDriveContainer": "/nowhere/cloud"})",
         "  dataFolder ~/data/org.tessaly.tessaly\n"
         "- dataFolderMissing ~/data/org.tessaly.tessaly\n"
         "! cloudDriveMissing /nowhere/cloud\n  notes\n"},
        {{},
         "{",
         "  dataFolder ~/data/org.tessaly.tessaly\n"
         "- dataFolderMissing ~/data/org.tessaly.tessaly\n"
         "! settings ~/config\n  notes\n"},
    };
    std::vector<std::string> reasons;
    for (const auto& row : rows) {
        Planner planner(row.user);
        planner.set(row.settings);
        CHECK(findingsText(planner) == row.expected);
        reasons.push_back(textOf(app::examine(planner.services()), "dataFolder"));
    }
    // Local, cloud, Dropbox and named each have a reason of their own.
    reasons.resize(4);
    std::sort(reasons.begin(), reasons.end());
    CHECK(std::unique(reasons.begin(), reasons.end()) == reasons.end());
}

TEST_CASE("a local folder that another one hides is pointed out") {
    Planner::User user;
    user.cloudContainer = "/nowhere/cloud";
    Planner planner(user);
    planner.write("-- Notes/Left behind.txt\n# Left behind\n");
    CHECK(findingsText(planner).find("- otherDataFolder ~/data/org.tessaly.tessaly\n") !=
          std::string::npos);
}

TEST_CASE("of many findings of a kind the first twenty are told, then their number") {
    const struct {
        int strays;
        std::size_t findings;
        std::string last;
    } rows[] = {{20, 20, "Lies among"}, {21, 21, "and 1 more"}, {33, 21, "and 13 more"}};
    for (const auto& row : rows) {
        Planner planner;
        for (int i = 0; i < row.strays; ++i) {
            planner.write("-- Calendar/stray" + std::to_string(i) + ".txt\n");
        }
        auto findings = app::examine(planner.services());
        std::erase_if(findings, [](const app::Finding& f) { return f.what != "noDay"; });
        REQUIRE(findings.size() == row.findings);
        CHECK(findings.back().text.starts_with(row.last));
    }
}

namespace {

// Whatever is told of clients, "NAME path" for each folder offered, then who keeps the notes.
std::string cloudText(Planner& planner) {
    std::string text;
    for (const app::Finding& finding : app::examine(planner.services())) {
        if (finding.what != "cloudFolder" && finding.what != "syncClient") {
            continue;
        }
        CHECK(finding.command.empty() == (finding.what == "syncClient"));
        CHECK((finding.command.empty() || finding.command.back() == finding.path));
        text.append(1, levelSign[static_cast<int>(finding.level)]);
        text += finding.text.substr(0, finding.text.find(" k")) + finding.path + "\n";
    }
    return text;
}

}  // namespace

TEST_CASE("folders of sync clients are offered, but none that cannot be the cloud drive") {
    tests::TempFolder clouds;
    const std::string there = clouds.mkdir("there");
    const std::string other = clouds.mkdir("other");
    const std::string file = clouds.write("file", "");
    const std::string link = clouds.link("link", "there");
    clouds.mkdir("named/Notes");
    const std::string gone = clouds / "gone";
    const struct {
        Planner::User user;
        std::string settings;
        std::string expected;
    } rows[] = {
        {{.cloudFolders = {{"Nextcloud", gone, "", "", false}, {"Dropbox", file, "", "", false}}},
         "{}",
         ""},
        {{.cloudFolders = {{"Syncthing", other, "", "", true}, {"Dropbox", there, "", "", false}}},
         "{}",
         "-Dropbox" + there + "\n-Syncthing" + other + "\n"},
        {{.cloudContainer = there,
          .cloudFolders = {{"Dropbox", there, "", "", false}, {"pCloud", other, "", "", false}}},
         "{\"cloudDriveContainer\": \"" + link + "\"}",
         " Kept in step by Dropbox" + there + "\n-pCloud" + other + "\n"},
        // In the data folder, above it, and of two above it the nearer one.
        {{.dataFolder = clouds / "named",
          .cloudFolders = {{"Seafile", clouds / "named/Notes", "", "", false},
                           {"Dropbox", clouds / "named", "", "", false},
                           {"Syncthing", clouds.path(), "", "", false}}},
         "{}",
         " Kept in step by Dropbox" + clouds / "named" + "\n"},
    };
    for (const auto& row : rows) {
        CAPTURE(row.expected);
        Planner planner(row.user);
        planner.set(row.settings);
        CHECK(cloudText(planner) == row.expected);
    }
}

TEST_CASE("a client that tells nothing is known by its mark in a folder above the notes") {
    const struct {
        std::string mark;  // in the home; a folder's ends in "/"
        std::string client;
    } rows[] = {
        {"planner/.stfolder/", "Syncthing"},
        {"planner/notes/.stfolder", "Syncthing"},
        {".dropbox.cache/", "Dropbox"},
        {"planner/.dropbox", "Dropbox"},
        {".dropbox/", ""},
        {".sync_0123.db", "Nextcloud/ownCloud"},
        {"planner/._sync_0123.db", "Nextcloud/ownCloud"},
        {".sync/IgnoreList", "Resilio"},
        {".sync/settings.dat", ""},
        {"planner/Notes.stfolder", ""},
    };
    for (const auto& row : rows) {
        CAPTURE(row.mark);
        tests::TempFolder home;
        Planner::User user;
        user.dataFolder = home.mkdir("planner/notes");
        row.mark.ends_with('/') ? home.mkdir(row.mark) : home.write(row.mark, "");
        Planner planner(user);
        const auto findings = app::examine(planner.services());
        CHECK(textOf(findings, "syncClient") ==
              (row.client.empty() ? "none" : "Kept in step by " + row.client));
    }
}

TEST_CASE("links back are broken only where their day certainly has no task") {
    const struct {
        std::string_view notes;
        std::string expected;
    } rows[] = {
        {"-- Calendar/20190304.txt\n* [>] Call >2019-03-05\n"
         "-- Calendar/20190305.txt\n* Call <2019-03-04\n",
         ""},
        // Edited, completed and scheduled further since.
        {"-- Calendar/20190304.txt\n* [x] Call Bob @done(2019-03-06)\n"
         "-- Calendar/20190305.txt\n* Call Ann <2019-03-04\n",
         ""},
        {"-- Calendar/20190305.txt\n# Day\n* Call <2019-03-04\n* [x] Mow <2019-03-03 @done(2019)\n",
         "Calendar/20190305.txt:2 Points back to 2019-03-04, which has no note\n"
         "Calendar/20190305.txt:3 Points back to 2019-03-03, which has no note\n"},
        {"-- Calendar/20190304.txt\nText >2019-03-05\n"
         "-- Calendar/20190305.txt\n* Call <2019-03-04\n",
         "Calendar/20190305.txt:1 Points back to 2019-03-04, whose note holds no task\n"},
        // Text, another kind of note, no day of the calendar.
        {"-- Calendar/20190305.txt\nSee <2019-03-04\n* Call <2019-02-31\n"
         "-- Notes/Plans.txt\n* Call <2019-03-04\n",
         ""},
        // A note that cannot be read may hold anything.
        {"-- Calendar/20190304.txt\n\xff\n-- Calendar/20190303.txt.nextcloud\n %\n"
         "-- Calendar/20190305.txt\n* Call <2019-03-04\n* Mow <2019-03-03\n",
         ""},
    };
    for (const auto& row : rows) {
        CAPTURE(row.notes);
        Planner planner;
        planner.write(row.notes);
        std::string found;
        for (const app::Finding& finding : app::examine(planner.services())) {
            if (finding.what == "brokenBackLink") {
                found += finding.path + " " + finding.text + "\n";
            }
        }
        CHECK(found == row.expected);
    }
}

TEST_CASE("what keeps the watcher from hearing of changes is told with its cure") {
    using ports::BlindFolder;
    const std::string notes =
        "-- Notes/a/b/One.txt\n# One\n-- Notes/c/Two.txt\n# Two\n"
        "-- Notes/a b/Three.txt\n# Three\n";
    const struct {
        std::vector<std::string> blind;  // relative, "FS name"
        ports::WatchOutlook outlook;
        std::string expected;
    } rows[] = {
        {{}, {}, ""},
        {{}, {{}, 14, {}}, ""},
        {{}, {{}, 13, {}}, "- watchLimit $ sudo sysctl fs.inotify.max_user_watches=524288\n"},
        {{}, {{}, 6, {}}, "! watchLimit $ sudo sysctl fs.inotify.max_user_watches=524288\n"},
        {{},
         {{}, {}, base::Failure{base::Failure::Kind::other, "too many"}},
         "! watchRefused $ sudo sysctl fs.inotify.max_user_instances=1024\n"},
        {{"NFS", "NFS Calendar", "NFS Notes/a"},
         {},
         "- blindFileSystem ~/data/org.tessaly.tessaly\n"},
        {{"SMB Notes/a", "SMB Notes/a/b", "SMB Notes/a b", "SMB Notes/c"},
         {},
         "- blindFileSystem Notes/a\n- blindFileSystem Notes/a b\n- blindFileSystem Notes/c\n"},
        {{"NFS Notes/a", "FUSE Notes/a/b"},
         {},
         "- blindFileSystem Notes/a\n- blindFileSystem Notes/a/b\n"},
    };
    for (const auto& row : rows) {
        CAPTURE(row.expected);
        Planner::User user;
        user.watchOutlook = [&row](const std::vector<std::string>& folders) {
            ports::WatchOutlook outlook = row.outlook;
            for (const std::string& folder : folders) {
                for (const std::string& blind : row.blind) {
                    const std::string path = blind.find(' ') == blind.npos
                                                 ? "tessaly.tessaly"
                                                 : "/" + blind.substr(blind.find(' ') + 1);
                    if (folder.ends_with(path)) {
                        outlook.blind.push_back({folder, blind.substr(0, blind.find(' '))});
                    }
                }
            }
            return outlook;
        };
        Planner planner(user);
        planner.write(notes);
        const std::string head = "  dataFolder ~/data/org.tessaly.tessaly\n  notes\n";
        CHECK(findingsText(planner) == head + row.expected);
    }
}
