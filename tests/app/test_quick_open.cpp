// SPDX-License-Identifier: MIT
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "app/planner.h"
#include "app/quick_open.h"
#include "base/utf8.h"

using namespace tessaly;
using tests::Planner;

namespace {

/// The text with brackets around what answers.
std::string marked(const std::string& text, const std::vector<base::TextRange>& ranges) {
    std::string result = text;
    for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
        result.insert(base::byteOffset(text, range->end()), "]");
        result.insert(base::byteOffset(text, range->location), "[");
    }
    return result;
}

struct MatchRow {
    std::string typed;
    std::string text;
    std::string expected;  ///< "-": no match
};

const MatchRow matchRows[] = {
    {"", "Budget", "Budget"},
    {"  ", "Budget", "Budget"},
    {"bud", "Budget 2019", "[Bud]get 2019"},
    {"BUD", "budget", "[bud]get"},
    {"dub", "Budget", "-"},
    {"budgets", "Budget", "-"},
    // The starts of words come before letters that just stand earlier.
    {"wr", "Wired Website relaunch", "[W]ired Website [r]elaunch"},
    {"rel", "Great website relaunch", "Great website [rel]aunch"},
    {"web rel", "Website relaunch", "[Web]site [rel]aunch"},
    {"nb", "notes/nabob book", "[n]otes/nabob [b]ook"},
    // A letter is a code point, and what is composed is one.
    {"\xc3\xa4", "A\xcc\x88rger", "[A\xcc\x88]rger"},
    {"a\xcc\x88", "\xc3\x84rger", "[\xc3\x84]rger"},
    {"\xc3\xa9t", "L'\xc3\x89t\xc3\xa9", "L'[\xc3\x89t]\xc3\xa9"},
    {"a", "\xc3\x84rger", "-"},
    {"\xce\xbf\xcf\x83", "\xce\x9f\xce\x94\xce\x9f\xce\xa3", "\xce\x9f\xce\x94[\xce\x9f\xce\xa3]"},
    {"z", "\xf0\x9f\x8c\xb1\xf0\x9f\x8c\xb1 Zen", "\xf0\x9f\x8c\xb1\xf0\x9f\x8c\xb1 [Z]en"},
    {"\xff", "Budget", "-"},
};

void checkMatch(const MatchRow& row) {
    CAPTURE(row.typed);
    CAPTURE(row.text);
    const auto match = app::fuzzyMatch(row.typed, row.text);
    CHECK((match ? marked(row.text, match->ranges) : "-") == row.expected);
}

struct OrderRow {
    std::string typed;
    std::string better;
    std::string worse;
};

const OrderRow orderRows[] = {
    {"plan", "Plan", "Plan for the year"},
    {"plan", "My plan", "Airplane"},
    {"plan", "Explanation", "Pull a large answer"},
    {"bud", "Budget", "The budget"},
};

constexpr const char* notes =
    "-- Notes/Work/budget.txt\n# Budget 2019\n"
    "-- Notes/Home/budget.txt\n# Household budget\n"
    "-- Notes/Work/web.txt\n# Website relaunch\n"
    "-- Notes/Emile.txt\n# \xc3\x89mile\n"
    "-- Notes/untitled.txt\n\n"
    "-- Calendar/20190301.txt\nBudget day\n"
    "-- Calendar/20190228.txt\nOther\n"
    "-- Calendar/20180302.txt\nOther\n";

std::string shown(const std::vector<app::QuickOpenRow>& rows) {
    std::string result;
    for (const app::QuickOpenRow& row : rows) {
        result += marked(row.title, row.ranges) + " (" + row.detail + ")\n";
    }
    return result;
}

struct OpenRow {
    std::string typed;
    std::string expected;
};

const OpenRow openRows[] = {
    {"bu", "[Bu]dget 2019 (Work)\nHousehold [bu]dget (Home)\nWe[b]site rela[u]nch (Work)\n"},
    {"bug2", "[Bu]d[g]et [2]019 (Work)\n"},
    {"budgex", ""},
    {"e", "[e]"},  // followed by its accent, another letter
    {"e\xcc\x81", "[\xc3\x89]mile ()\n"},
    {"untitled", "[untitled] ()\n"},
    {"tomorrow", "Wednesday, 6 March 2019 (2019-03-06)\n"},
    {"2019-03-05", "Tuesday, 5 March 2019 (2019-03-05)\n"},
    {"2019-", "Friday, 1 March 2019 (2019-03-01)\nThursday, 28 February 2019 (2019-02-28)\n"},
    {"201803", "Friday, 2 March 2018 (2018-03-02)\n"},
    {"201", "Budget [201]9 (Work)\n"},
};

}  // namespace

TEST_CASE("some letters of a name find it") {
    for (const MatchRow& row : matchRows) {
        checkMatch(row);
    }
    for (const OrderRow& row : orderRows) {
        CAPTURE(row.better);
        const auto better = app::fuzzyMatch(row.typed, row.better);
        const auto worse = app::fuzzyMatch(row.typed, row.worse);
        REQUIRE(better);
        REQUIRE(worse);
        CHECK(better->score > worse->score);
    }
}

TEST_CASE("quick open finds notes and days, the same however one came to type it") {
    Planner planner;
    planner.write(notes);
    planner.services().noteCache().load();
    planner.services().noteCache().waitUntilIdle();
    app::QuickOpen kept{planner.services()};
    for (const OpenRow& row : openRows) {
        CAPTURE(row.typed);
        app::QuickOpen fresh{planner.services()};
        const std::string found = shown(fresh.rows(row.typed));
        CAPTURE(found);
        CHECK(found == shown(kept.rows(row.typed)));
        const bool isPart = row.typed == "e";
        CHECK((isPart ? found.find(row.expected) != std::string::npos : found == row.expected));
    }
}

TEST_CASE("quick open takes the notes as they are now") {
    Planner planner;
    planner.write(notes);
    auto& cache = planner.services().noteCache();
    cache.load();
    cache.waitUntilIdle();
    app::QuickOpen quickOpen{planner.services()};
    CHECK(shown(quickOpen.rows("web")) == "[Web]site relaunch (Work)\n");
    planner.write("-- Notes/Work/web.txt\n# Site\n-- Notes/Work/a.txt\n# Web log\n");
    std::filesystem::remove(planner.folder() / (std::string{Planner::root} + "Notes/Emile.txt"));
    for (const char* name : {"Work/web.txt", "Work/a.txt", "Emile.txt"}) {
        cache.reread(base::NoteType::note, name);
    }
    cache.waitUntilIdle();
    CHECK(shown(quickOpen.rows("web")) == "[Web] log (Work)\n");
    CHECK(shown(quickOpen.rows("site")) == "[Site] (Work)\n");
    CHECK(shown(quickOpen.rows("mile")).empty());
    CHECK(shown(quickOpen.rows("budget", 1)) == "[Budget] 2019 (Work)\n");
}

TEST_CASE("with nothing typed, quick open lists what was last changed") {
    Planner planner;
    planner.write(notes);
    auto time = std::filesystem::file_time_type::clock::now();
    for (const char* name : {"Notes/Emile.txt", "Calendar/20190228.txt", "Notes/Work/web.txt"}) {
        time += std::chrono::hours(1);
        std::filesystem::last_write_time(planner.folder() / (std::string{Planner::root} + name),
                                         time);
    }
    planner.services().noteCache().load();
    planner.services().noteCache().waitUntilIdle();
    app::QuickOpen quickOpen{planner.services()};
    CHECK(shown(quickOpen.rows(" ", 3)) ==
          "Website relaunch (Work)\nThursday, 28 February 2019 (2019-02-28)\n\xc3\x89mile ()\n");
}
