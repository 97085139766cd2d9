// SPDX-License-Identifier: MIT
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "base/utf8.h"
#include "grammar/date_tags.h"
#include "grammar/line_scanner.h"
#include "tasks/task_rewrites.h"

using namespace tessaly;
using namespace tessaly::tasks;
using grammar::TodoType;

namespace {

base::Day day(const char* text) {
    return *base::dayFromTagText(text);
}

const base::LocalTime now{day("2019-05-21"), 9, 5};
const base::Day target = day("2019-05-22");
const grammar::MarkerSettings allMarkers{true, true, true};

struct Row {
    const char* line;
    std::string result;
};

template <class Rewrite>
void check(const std::vector<Row>& rows, Rewrite rewrite) {
    for (const Row& row : rows) {
        CAPTURE(row.line);
        CHECK(rewrite(row.line) == row.result);
    }
}

}  // namespace

TEST_CASE("a completed task has the time at its end") {
    check({{"\t- [ ] Item", "\t- [x] Item @done(2019-05-21 09:05)"},
           {"\t- [x] Item @done(2019-05-20 08:00 AM)", "\t- Item @done(2019-05-21 09:05)"},
           {"* [>] Call >2019-05-22 \r", "* [x] Call >2019-05-22  @done(2019-05-21 09:05)\r"},
           {"* [\t] Call", "* [x] Call @done(2019-05-21 09:05)"},
           {"* [\xC2\xA0] Call", "* [x] Call @done(2019-05-21 09:05)"},
           {"* [-] @done(2019-05-20)", "* [x]  @done(2019-05-21 09:05)"},
           {"3. a @done(2019-05-20) b", "3. [x] a b @done(2019-05-21 09:05)"},
           {"* [x]", "* [x] [x] @done(2019-05-21 09:05)"},
           {"* a\xE2\x80\xA8 b", "* [x] a\xE2\x80\xA8 b @done(2019-05-21 09:05)"},
           {"Plans @done(2019-05-20)", "Plans @done(2019-05-20)"},
           {"# Plans\r", "# Plans\r"}},
          [](const char* line) { return completed(line, now, {}); });
}

TEST_CASE("completion tags are written by the clock, and where they are wanted") {
    RewriteSettings settings;
    settings.hourCycle = base::HourCycle::twelve;
    CHECK(completed("* a", {target, 14, 7}, settings) == "* [x] a @done(2019-05-22 02:07 PM)");
    settings.isAppendCompletionLinks = false;
    CHECK(completed("* [ ] a @done(2019-05-20)", now, settings) == "* [x] a @done(2019-05-20)");
}

TEST_CASE("a cancelled task has no completion tag") {
    check({{"* [x] Pay @done(2019-05-21 09:05)", "* [-] Pay"},
           {"* [x] @done(2019-05-21)", "* [-] "},
           {"* @done(2019-05-21)[-] Pay", "* [-] [-] Pay"},
           {"* [-] Pay", "* Pay"},
           {"* [\t] Pay\r", "* [-] Pay\r"},
           {"Pay @done(2019-05-21)", "Pay @done(2019-05-21)"}},
          cancelled);
}

TEST_CASE("a reopened task has the box that its marker needs") {
    check({{"* [x] Pay @done(2019-05-21 09:05)", "* Pay"},
           {"\t- [-] Pay\r", "\t- [ ] Pay\r"},
           {"2. [x] @done(2019-05-21)", "2. [ ] "},
           {"* [x] [-] Pay", "* [ ] [-] Pay"},
           {"* [>] Call >2019-05-22 <2019-05-20", "* Call <2019-05-20"},
           {"* [x] Call >2019-05-22", "* Call >2019-05-22"},
           {"Pay @done(2019-05-21)", "Pay @done(2019-05-21)"}},
          [](const char* line) { return reopened(line, {}); });
}

TEST_CASE("a scheduled task names its day alone, where a setting wants that") {
    struct BothRow {
        const char* line;
        const char* dated;
        const char* bare;
    };
    for (const BothRow& row : std::vector<BothRow>{
             {"* Call >2019-05-20", "* [>] Call >2019-05-22", "* [>] Call >2019-05-20"},
             {"* [>] Call >2019-05-20", "* [>] Call >2019-05-22", "* [>] Call >2019-05-20"},
             {"* [ ] a <2019-05-19 b @2019-05-18\r", "* [>] a b >2019-05-22\r",
              "* [>] a <2019-05-19 b @2019-05-18\r"},
             {"* >2019-05-20", "* [>]  >2019-05-22", "* [>] >2019-05-20"},
             {"- Call @done(2019-05-20)", "- [>] Call >2019-05-22", "- [>] Call"},
             {"1) [\t] Call", "1) [>] Call >2019-05-22", "1) [>] Call"},
             {"* [x] Done thing", "* [x] Done thing", "* [x] Done thing"},
             {"* [-] a @done(2019-05-20)", "* [-] a @done(2019-05-20)",
              "* [-] a @done(2019-05-20)"},
             {"Call >2019-05-20", "Call >2019-05-20", "Call >2019-05-20"},
         }) {
        CAPTURE(row.line);
        CHECK(scheduled(row.line, target, WriteDay::yes) == row.dated);
        CHECK(scheduled(row.line, target, WriteDay::no) == row.bare);
    }
}

TEST_CASE("a copy for another day is an open task that links back") {
    struct CopyRow {
        const char* line;
        const char* linked;
        const char* unlinked;
        const char* ofGeneralNote;
    };
    const base::Day source = day("2019-05-21");
    RewriteSettings withoutLinks;
    withoutLinks.isAppendScheduleLinks = false;
    for (const CopyRow& row : std::vector<CopyRow>{
             {"\t * [>] Call #home @bob >2019-05-22\r", "* Call #home @bob <2019-05-21",
              "* Call #home @bob", "* Call #home @bob"},
             {"3. Call @done(2019-05-20)", "3. [ ] Call <2019-05-21", "3. [ ] Call", "3. [ ] Call"},
             {"- [ ] <2019-05-20", "- [ ]  <2019-05-21", "- [ ] <2019-05-20", "- [ ] "},
             {"* [ ] [x] a", "* [ ] [x] a <2019-05-21", "* [ ] [x] a", "* [ ] [x] a"},
         }) {
        CAPTURE(row.line);
        CHECK(copyForDay(row.line, source, {}) == row.linked);
        CHECK(copyForDay(row.line, source, withoutLinks) == row.unlinked);
        CHECK(copyForDay(row.line, std::nullopt, {}) == row.ofGeneralNote);
        CHECK(copyForDay(row.line, std::nullopt, withoutLinks) == row.ofGeneralNote);
    }
}

TEST_CASE("a repeat is an open task with its number") {
    check({{"* [ ] Water", "* [ ] Water @repeat(2/3)"},
           {"\t* Water @repeat(1/9) #home\r", "\t* Water #home @repeat(2/3)"},
           {"* [x] Water @repeat(5/5) @done(2019-05-21) @final-repeat", "* Water @repeat(2/3)"},
           {"- [>] a >2019-05-22 <2019-05-20 @2019-06-01", "- [ ] a @2019-06-01 @repeat(2/3)"},
           {"* [x] @repeat(1/3)", "*  @repeat(2/3)"},
           {"Text @done(2019-05-21) @repeat(1/2)\r", "Text @done(2019-05-21) @repeat(2/3)"},
           {"- list", "- list @repeat(2/3)"}},
          [](const char* line) { return repeatCopy(line, 2, 3, {}); });
}

TEST_CASE("the last repeat is marked once, when it is done") {
    check({{"* [x] a @repeat(3/3) @done(2019-05-21)\r",
            "* [x] a @repeat(3/3) @done(2019-05-21) @final-repeat\r"},
           {"* [x] a @repeat(3/3) @final-repeat", "-"},
           {"* [x] a @repeat(3/3) @final-repeated",
            "* [x] a @repeat(3/3) @final-repeated @final-repeat"},
           {"* [x] a @repeat(2/3)", "-"},
           {"* [x] a", "-"},
           {"* [ ] a @repeat(3/3)", "-"},
           {"a @repeat(3/3)", "-"}},
          [](const char* line) { return withFinalRepeat(line, {}).value_or("-"); });
}

namespace {

TodoType typeOf(std::string_view line) {
    return grammar::classifyLine(line, allMarkers).type;
}

/// The line without box, tags and white space: what no rewrite may touch.
std::string essence(std::string_view line) {
    const grammar::LineClass found = grammar::classifyLine(line, allMarkers);
    const std::string rest = grammar::DateTags::removeDateTags(
        grammar::DateTags::findAndRemoveDoneTag(line.substr(found.contentStart)));
    const std::string all = std::string(line.substr(0, found.boxStart)) + rest;
    std::string kept;
    for (std::size_t at = 0; at < all.size();) {
        const base::CodePoint c = base::codePointAt(all, at);
        kept += base::isWhiteSpace(c.value) ? "" : all.substr(at, c.size);
        at += c.size;
    }
    return kept;
}

void checkProperties(const std::string& line) {
    const TodoType before = typeOf(line);
    const bool isTask = grammar::isTask(before);
    REQUIRE(isActionable(line) == isTask);

    const std::string done = completed(line, now, {});
    if (isTask && before != TodoType::done) {
        REQUIRE(typeOf(done) == TodoType::done);
        REQUIRE(essence(done) == essence(line));
        const std::string open = reopened(done, allMarkers);
        REQUIRE(typeOf(open) == TodoType::open);
        REQUIRE(essence(open) == essence(line));
        REQUIRE(grammar::DateTags::findDoneTags(done).size() == 1);
        REQUIRE(grammar::DateTags::findDoneTags(open).empty());
    }
    const std::string dropped = cancelled(line);
    if (isTask && before != TodoType::cancelled) {
        REQUIRE(typeOf(dropped) == TodoType::cancelled);
        REQUIRE(essence(dropped) == essence(line));
        REQUIRE(grammar::DateTags::findDoneTags(dropped).empty());
    }
    const std::string later = scheduled(line, target, WriteDay::yes);
    if (before == TodoType::open || before == TodoType::scheduled) {
        REQUIRE(typeOf(later) == TodoType::scheduled);
        REQUIRE(essence(later) == essence(line));
        REQUIRE(grammar::DateTags::findDateTags(later).size() == 1);
        REQUIRE(scheduled(later, target, WriteDay::yes) == later);
        REQUIRE(typeOf(copyForDay(line, target, {})) == TodoType::open);
    } else {
        REQUIRE(later == line);
    }
    REQUIRE((isTask || done + dropped + reopened(line, allMarkers) == line + line + line));
    REQUIRE(done.ends_with('\r') == line.ends_with('\r'));
    REQUIRE(later.ends_with('\r') == line.ends_with('\r'));
}

}  // namespace

TEST_CASE("rewrites of random lines end in their state and lose nothing but box and tags") {
    const std::vector<std::string> starts{"* ", "\t- ", "3. ", " 12) ", "\xC2\xA0* ", "> ", ""};
    const std::vector<std::string> pieces{"[ ] ",
                                          "[x] ",
                                          "[-] ",
                                          "[>] ",
                                          "[\t] ",
                                          "[\xC2\xA0] ",
                                          "* ",
                                          "\t",
                                          " ",
                                          "\r",
                                          "7",
                                          "\xE2\x80\xA8",
                                          " >2019-05-20",
                                          "<2019-05-19",
                                          " @2019-02-31",
                                          " @done(2019-05-20)",
                                          "@done(2019-05-20 09:05 PM)",
                                          " @repeat(1/3)",
                                          "#tag",
                                          "é",
                                          "\xFF"};
    std::mt19937 random(20190522);
    for (int i = 0; i < 20'000; ++i) {
        std::string line = starts[random() % starts.size()];
        for (std::size_t left = random() % 8; left > 0; --left) {
            line += pieces[random() % pieces.size()];
        }
        CAPTURE(line);
        checkProperties(line);
    }
}
