// SPDX-License-Identifier: MIT
#include <random>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "base/graphemes.h"
#include "base/regex.h"
#include "base/utf8.h"
#include "grammar/patterns.h"
#include "store/note_names.h"
#include "support/temp_folder.h"

using namespace tessaly;
using namespace std::string_literals;

namespace {

std::string repeated(std::string_view text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

void check(store::StripListMarkers strip, std::string_view title, std::string_view expected) {
    CAPTURE(title);
    CHECK(store::filenameFromTitle(title, strip).value_or("(none)") == expected);
}

}  // namespace

TEST_CASE("a title becomes a file name") {
    const auto flag = store::StripListMarkers::no;
    check(flag, "Plans", "Plans");
    check(flag, "## Project: Q1/Q2 review.", "Project Q1Q2 review");
    check(flag, "\n \n\t## Late title\nSecond", "Late title");
    check(flag, "#\n## Second", "(none)");
    check(flag, "Title\r\nText", "Title");
    check(flag, "a\xE2\x80\xA8# b", "a b");
    check(flag, "a \t\xC2\xA0 b", "a b");
    check(flag, "- [x] 1. keeps its markers", "- [x] 1 keeps its markers");
    check(flag, R"(\/?%*|"<>:.@#)", "(none)");
    check(flag, "..", "(none)");
    check(flag, "../../x.txt", "xtxt");
    check(flag, "", "(none)");
    check(flag, "nul\0byte"s, "nulbyte");
    check(flag, "caf\xE9!", "caf\xEF\xBF\xBD!");
    check(flag, "\xEF\xBB\xBF# Plans", "Plans");
    check(flag, repeated("#", 5000) + " Plans", "Plans");
}

TEST_CASE("list markers and boxes are taken out wherever they stand") {
    const auto flag = store::StripListMarkers::yes;
    check(flag, "* [x] Call 2 people", "Call 2 people");
    check(flag, "12) [>] Meet-up v1.5", "Meetup v5");
    check(flag, "> # quoted", "quoted");
    check(flag, "\n* Second", "(none)");
    check(flag, "* - >", "(none)");
}

TEST_CASE("markers and boxes are what their pattern finds") {
    const base::Regex& pattern = grammar::patterns::compiled(grammar::patterns::markersAndBoxes);
    const std::vector<std::string> pieces{"*", "-", ">",   "#",   "1", "23", ".", ")", "[",
                                          "x", "]", "[x]", "[ ]", " ", "a",  "é", "\n"};
    std::mt19937 random(5);
    for (int i = 0; i < 3000; ++i) {
        std::string title;
        for (auto left = random() % 12; left > 0; --left) {
            title += pieces[random() % pieces.size()];
        }
        const std::string kept = base::toUtf8(pattern.replaceAll(base::toUtf16(title), u""));
        const std::string line = kept.substr(0, kept.find('\n'));
        check(store::StripListMarkers::yes, title,
              store::filenameFromTitle(line, store::StripListMarkers::no).value_or("(none)"));
    }
    check(store::StripListMarkers::yes, repeated("*", 5000) + " Plans", "Plans");
    check(store::StripListMarkers::yes, repeated("7", 100'000) + ". Plans", "Plans");
}

TEST_CASE("a name holds 100 characters and fits the file system") {
    const std::string family = "\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7";
    const auto flag = store::StripListMarkers::no;
    check(flag, repeated("a", 101), repeated("a", 100));
    // Cut first, then cleaned: what is removed is not made up for.
    check(flag, repeated("a.", 60), repeated("a", 50));
    check(flag, repeated("a", 99) + "é̂" + "b", repeated("a", 99) + "é̂");
    check(flag, repeated("a", 99) + " b", repeated("a", 99));
    // 11 bytes each: 22 of them fit beside " 99.txt".
    check(flag, repeated(family, 100), repeated(family, 22));
    check(flag, repeated("\xE6\x97\xA5", 100), repeated("\xE6\x97\xA5", 82));
    check(flag, repeated("\xE6\x97\xA5", 82) + "a b", repeated("\xE6\x97\xA5", 82) + "a");

    const std::string huge = repeated("1", 1 << 20);
    check(store::StripListMarkers::yes, huge, repeated("1", 100));
    check(flag, repeated(" ", 1 << 20) + "x", "x");
}

TEST_CASE("what a file name says") {
    const auto row = [](std::string_view name, bool isNote, std::string_view base) {
        CAPTURE(name);
        CHECK(store::isNoteFilename(name) == isNote);
        CHECK(store::baseName(name) == base);
    };
    row("Plans.txt", true, "Plans");
    row("a/b.c/Plans.v2.md", true, "Plans.v2");
    row("Plans.TXT", false, "Plans.TXT");
    row("a.txt/b", false, "b");
    row(".hidden.txt", false, ".hidden");
    row(".txt", false, "");
}

TEST_CASE("a note without a title is named after the time") {
    using namespace std::chrono;
    CHECK(store::untitledName({2019y / March / 5, 14, 7, 33}) == "Untitled - 05-Mar-2019 14-07-33");
    CHECK(store::untitledName({987y / December / 31, 0, 0, 0}) ==
          "Untitled - 31-Dec-0987 00-00-00");
}
