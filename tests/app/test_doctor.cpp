// SPDX-License-Identifier: MIT
#include <algorithm>

#include <doctest/doctest.h>

#include "app/doctor.h"
#include "app/planner.h"

using namespace tessaly;
using tests::Planner;

namespace {

constexpr char levelSign[] = {' ', '-', '!'};

// The findings that are not about start-up: "! what path".
std::string findingsText(Planner& planner) {
    std::string text;
    for (const app::Finding& finding : app::examine(planner.services())) {
        CHECK_FALSE(finding.text.empty());
        if (finding.what == "startUp") {
            continue;
        }
        std::string path = finding.path;
        if (path.starts_with(planner.folder().path())) {
            path.replace(0, planner.folder().path().size(), "~");
        }
        text.append(1, levelSign[static_cast<int>(finding.level)]).append(" ").append(finding.what);
        text.append(path.empty() ? "" : " " + path).append("\n");
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
          "- conflictCopy Calendar/20190305.sync-conflict-20190306-101010-ABCDEFG.txt\n"
          "- conflictCopy Notes/Plans (Ann's conflicted copy 2019-03-05).md\n"
          "- conflictCopy Notes/Plans (conflicted).md\n"
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
