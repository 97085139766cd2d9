// SPDX-License-Identifier: MIT
#include <string>

#include <doctest/doctest.h>

#include "store/unified_diff.h"

using namespace tessaly;

namespace {

void check(std::string_view oldText, std::string_view newText, std::string_view hunks) {
    CAPTURE(oldText);
    CHECK(store::unifiedDiff("old", oldText, "new", newText) ==
          "--- old\n+++ new\n" + std::string(hunks));
}

void checkNames(std::string_view oldName, std::string_view newName, std::string_view header) {
    CHECK(store::unifiedDiff(oldName, "", newName, "a\n") ==
          std::string(header) + "@@ -0,0 +1 @@\n+a\n");
}

}  // namespace

TEST_CASE("differences as patch reads them") {
    CHECK(store::unifiedDiff("old", "same", "new", "same").empty());
    check("a\n", "", "@@ -1 +0,0 @@\n-a\n");
    check("a\nb\n", "a\nc\n", "@@ -1,2 +1,2 @@\n a\n-b\n+c\n");
    check("a", "a\n", "@@ -1 +1 @@\n-a\n\\ No newline at end of file\n+a\n");
    check("a\nb", "x\nb", "@@ -1,2 +1,2 @@\n-a\n+x\n b\n\\ No newline at end of file\n");
    check("1\n2\n3\n4\n5\n6\n7\n8\n", "A\n2\n3\n4\n5\n6\n7\nB\n",
          "@@ -1,8 +1,8 @@\n-1\n+A\n 2\n 3\n 4\n 5\n 6\n 7\n-8\n+B\n");
    check("1\n2\n3\n4\n5\n6\n7\n8\n9\n", "A\n2\n3\n4\n5\n6\n7\n8\nB\n",
          "@@ -1,4 +1,4 @@\n-1\n+A\n 2\n 3\n 4\n@@ -6,4 +6,4 @@\n 6\n 7\n 8\n-9\n+B\n");
    // Lines come and go before a hunk in the middle.
    check("1\n2\n3\n4\n5\n6\n7\n8\n9\n0\n1\n2\n3\n", "A\nB\n1\n2\n3\n4\n5\n6\n7\n9\n0\n1\nC\n3\n",
          "@@ -1,3 +1,5 @@\n+A\n+B\n 1\n 2\n 3\n"
          "@@ -5,9 +7,8 @@\n 5\n 6\n 7\n-8\n 9\n 0\n 1\n-2\n+C\n 3\n");
    check("1\n2\n3\n4\n5\n6\n7\n", "1\n2\n3\nA\n4\n5\n6\n7\n",
          "@@ -1,6 +1,7 @@\n 1\n 2\n 3\n+A\n 4\n 5\n 6\n");
}

TEST_CASE("names that patch could misread") {
    checkNames("", "b.txt", "--- /dev/null\n+++ b.txt\n");
    checkNames("a b.txt", "c.txt", "--- a b.txt\t\n+++ c.txt\n");
    checkNames("a\n+++ x", "q\"\\", "--- \"a\\012+++ x\"\n+++ \"q\\\"\\\\\"\n");
}
