// SPDX-License-Identifier: MIT
#include <charconv>
#include <random>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "store/unified_diff.h"

using namespace tessaly;

namespace {

std::vector<std::string> linesWithBreaks(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return lines;
}

struct Range {
    std::size_t start = 0;
    std::size_t count = 1;
};

/// Reads "7,2" or "7", takes it off `text`.
Range rangeFrom(std::string_view& text) {
    Range range;
    auto end = std::from_chars(text.data(), text.data() + text.size(), range.start).ptr;
    if (*end == ',') {
        end = std::from_chars(end + 1, text.data() + text.size(), range.count).ptr;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return range;
}

/// Applies a diff as strictly as can be: every place, count and context line must fit.
std::string applied(std::string_view diff, std::string_view oldText) {
    const std::vector<std::string> lines = linesWithBreaks(diff);
    const std::vector<std::string> old = linesWithBreaks(oldText);
    std::string result;
    std::size_t next = 0;
    std::size_t written = 0;
    for (std::size_t i = 2; i < lines.size();) {
        std::string_view header = lines[i++];
        REQUIRE(header.starts_with("@@ -"));
        header.remove_prefix(4);
        Range before = rangeFrom(header);
        REQUIRE(header.starts_with(" +"));
        header.remove_prefix(2);
        Range after = rangeFrom(header);
        REQUIRE(header == " @@\n");
        const std::size_t start = before.start - (before.count == 0 ? 0 : 1);
        for (; next < start; ++next, ++written) {
            result += old.at(next);
        }
        REQUIRE(written == after.start - (after.count == 0 ? 0 : 1));
        while (before.count + after.count > 0) {
            const char sign = lines.at(i)[0];
            std::string text = lines[i++].substr(1);
            if (i < lines.size() && lines[i] == "\\ No newline at end of file\n") {
                text.pop_back();
                ++i;
            }
            if (sign != '+') {
                REQUIRE(old.at(next++) == text);
                --before.count;
            }
            if (sign != '-') {
                result += text;
                ++written;
                --after.count;
            }
        }
    }
    for (; next < old.size(); ++next) {
        result += old[next];
    }
    return result;
}

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
}

TEST_CASE("names that patch could misread") {
    checkNames("", "b.txt", "--- /dev/null\n+++ b.txt\n");
    checkNames("a b.txt", "c.txt", "--- a b.txt\t\n+++ c.txt\n");
    checkNames("a\n+++ x", "q\"\\", "--- \"a\\012+++ x\"\n+++ \"q\\\"\\\\\"\n");
}

TEST_CASE("a difference applied to the old text gives the new one") {
    std::mt19937 random(4711);
    for (int round = 0; round < 3000; ++round) {
        std::string texts[2];
        const auto letters = 1 + random() % 12;
        for (std::string& text : texts) {
            for (auto left = random() % 30; left > 0; --left) {
                text += static_cast<char>('a' + random() % letters);
                text += left == 1 && random() % 2 == 0 ? "" : random() % 8 == 0 ? "\r\n" : "\n";
            }
        }
        const std::string diff = store::unifiedDiff("old", texts[0], "new", texts[1]);
        CAPTURE(diff);
        REQUIRE(applied(diff, texts[0]) == texts[1]);
    }
}
