// SPDX-License-Identifier: MIT
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "random_texts.h"
#include "store/three_way_merge.h"

using namespace tessaly;
using namespace tessaly::tests;
using store::threeWayMerge;

namespace {

void check(std::string_view base, std::string_view mine, std::string_view theirs,
           std::string_view expected) {
    CAPTURE(base);
    CAPTURE(mine);
    CAPTURE(theirs);
    CHECK(threeWayMerge(base, mine, theirs) == expected);
}

const std::vector<std::string> prose{"a", "b", "c", "", "d\r", "\xE9"};
const std::vector<std::string> tasks{
    "* Call", "* [x] Call",    "* Call #a", "* Call >2019-05-21", "* [-] Call #b", "* Call Bob",
    "* Mail", "* [x] Mail #a", "Call"};

}  // namespace

TEST_CASE("changes at different places are both there") {
    check("a\nb\nc\nd\n", "a\nB\nc\nd\n", "a\nb\nc\nD\n", "a\nB\nc\nD\n");
    check("a\nb\nc\n", "a\nX\nb\nc\n", "b\nc\nY\n", "X\nb\nc\nY\n");
    check("a\nb\nc\n", "b\nc\n", "a\nb\n", "b\n");
    check("a\nb\nc\nd\n", "A\nb\nc\nd\n", "a\nB\nc\nd\n", "A\nB\nc\nd\n");
    check("a\r\nb\r\n", "a\r\nx\r\nb\r\n", "a\r\nb\r\ny\r\n", "a\r\nx\r\nb\r\ny\r\n");
}

TEST_CASE("at one place both stay, what they share once, mine first") {
    check("a\nb\n", "a\nx\nb\n", "a\ny\nb\n", "a\nx\ny\nb\n");
    check("a\nb\n", "a\nx\ny\nb\n", "a\ny\nz\nb\n", "a\nx\ny\nz\nb\n");
    check("a\n", "x\n", "y\n", "x\ny\n");
    check("a\nb\n", "x\nz\n", "y\nw\n", "x\ny\nz\nw\n");
    check("a\nb\n", "x\ny\nz\n", "x\ny\n", "x\ny\nz\n");
    check("", "x\n", "x\ny\n", "x\ny\n");
    check("", "x\n", "y\n", "x\ny\n");
}

TEST_CASE("a changed line outlives its deletion, an untouched one does not") {
    check("a\nb\nc\n", "a\nc\n", "a\nB\nc\n", "a\nB\nc\n");
    check("a\nb\nc\n", "", "a\nB\nc\n", "B\n");
    check("a\nb\nc\n", "a\nc\n", "a\nb\nc\nd\n", "a\nc\nd\n");
}

TEST_CASE("two versions of a task become one") {
    check("# Day\n* [ ] Call Bob\n", "# Day\n* [x] Call Bob @done(2019-05-21)\n",
          "# Day\n* [ ] Call Bob >2019-05-25\n",
          "# Day\n* [x] Call Bob @done(2019-05-21) >2019-05-25\n");
    // Known by its text where lines were added or taken out beside it.
    check("* Call Bob\n* Buy milk\n", "* New\n* [x] Call Bob\n* Buy milk #shop\n",
          "* Call Bob #a\n* [x] Buy milk\n", "* New\n* [x] Call Bob #a\n* [x] Buy milk #shop\n");
    check("* Call Bob\n* Buy milk\n", "* [x] Buy milk\n", "* Call Bob #a\n* Buy milk #b\n",
          "* Call Bob #a\n* [x] Buy milk #b\n");
    check("* Call Bob\n", "* [x] Call Bob\n", "* [-] Call Bob\n",
          "* [x] Call Bob\n* [-] Call Bob\n");
    check("* Call Bob\n", "* Buy milk\n", "* [x] Call Bob\n", "* Buy milk\n* [x] Call Bob\n");
    check("* Call Bob\r\n", "* [x] Call Bob\r\n", "* Call Bob #a\r\n", "* [x] Call Bob #a\r\n");
    check("* Call Bob\n", "", "* [x] Call Bob\n", "* [x] Call Bob\n");
}

TEST_CASE("a missing break at the end neither joins nor loses lines") {
    check("a\n", "a\nb", "a\nc\n", "a\nb\nc\n");
    check("a\n", "a\nc\n", "a\nb", "a\nc\nb");
    check("a", "a\n", "a\nb", "a\nb\n");
    check("a", "a\nb\n", "a\nc", "a\nb\nc\n");
    check("a\n", "a", "b\na\n", "b\na");
    check("x\nb", "\nb", "x", "\n");
    check("a\r\n", "a\r\nb", "a\r\nc\r\n", "a\r\nb\nc\r\n");
    check("a\n", "", "a\nb\n", "b\n");
    check("* Call", "* [x] Call", "* Call #a\n", "* [x] Call #a\n");
}

TEST_CASE("any three texts: a side that did nothing leaves the other's, and no line is lost") {
    Random random(20190521);
    for (int round = 0; round < 20000; ++round) {
        const bool isProse = round % 2 == 0;
        const std::vector<std::string>& alphabet = isProse ? prose : tasks;
        const std::string base = random.text(alphabet);
        const std::string mine = random.text(alphabet);
        const std::string theirs = random.text(alphabet);
        CAPTURE(base);
        CAPTURE(mine);
        CAPTURE(theirs);
        REQUIRE(threeWayMerge(base, base, theirs) == theirs);
        REQUIRE(threeWayMerge(base, mine, base) == mine);
        REQUIRE(threeWayMerge(base, mine, mine) == mine);
        const std::string merged = threeWayMerge(base, mine, theirs);
        CAPTURE(merged);
        const Counts counts = lineCounts(merged);
        REQUIRE(counts == lineCounts(threeWayMerge(base, theirs, mine)));
        if (isProse) {
            const Counts before = lineCounts(base);
            requireNoLineLost(before, lineCounts(mine), counts);
            requireNoLineLost(before, lineCounts(theirs), counts);
        }
    }
}
