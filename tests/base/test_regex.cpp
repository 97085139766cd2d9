// SPDX-License-Identifier: MIT
#include <string>
#include <vector>

#include <doctest/doctest.h>
#include <fmt/format.h>

#include "base/regex.h"
#include "base/utf8.h"
#include "support/log_capture.h"
#include "support/on_threads.h"

using namespace tessaly;

namespace {

/// "0+3(1+2,-)": location + length of the whole, then of the groups; "-" for one without part.
std::string line(const base::RegexMatch& match) {
    std::string groups;
    for (std::size_t i = 0; i < match.groups.size(); ++i) {
        const auto& range = match.groups[i];
        groups += i == 0 ? "" : i == 1 ? "(" : ",";
        groups += range ? fmt::format("{}+{}", range->location, range->length) : "-";
    }
    return match.groups.size() > 1 ? groups + ")" : groups;
}

std::string line(const std::vector<base::RegexMatch>& matches) {
    std::string result;
    for (const auto& match : matches) {
        result += (result.empty() ? "" : " ") + line(match);
    }
    return result;
}

}  // namespace

TEST_CASE("all matches, in UTF-16 units") {
    struct Row {
        const char16_t* pattern;
        const char16_t* text;
        const char* matches;
    };
    const Row rows[] = {
        {u"b", u"abcb", "1+1 3+1"},
        {u"(a)|(b)", u"ab", "0+1(0+1,-) 1+1(-,1+1)"},
        {u"^.*$", u"ab\n\ncd", "0+2 3+0 4+2"},
        {u"^x", u"x\nx y x", "0+1 2+1"},
        {u"😀", u"a😀", "1+2"},
        {u"x*", u"axb", "0+0 1+1 2+0 3+0"},
        {u"[[:punct:]]\\d", u"a.1-2 3", "1+2 3+2"},
        {u"a", u"", ""},
        {u"(a", u"(a", ""},
    };
    for (const auto& row : rows) {
        CAPTURE(base::toUtf8(row.pattern));
        CHECK(line(base::Regex(row.pattern).findAll(row.text)) == row.matches);
    }
}

TEST_CASE("a search may start anywhere, and sees what is before it") {
    struct Row {
        const char16_t* pattern;
        std::size_t from;
        const char* match;
    };
    const Row rows[] = {
        {u"a", 0, "1+1"},  {u"a", 1, "1+1"},         {u"a", 2, "4+1"}, {u"a", 5, ""},
        {u"^a", 1, "4+1"}, {u"(?<=\\n)a", 4, "4+1"}, {u"$", 5, "5+0"}, {u"a", 6, ""},
    };
    for (const auto& row : rows) {
        CAPTURE(row.from);
        const auto match = base::Regex(row.pattern).find(u" a \na", row.from);
        CHECK((match ? line(*match) : "") == row.match);
    }
}

TEST_CASE("a match at the start is not looked for elsewhere, and may end anywhere") {
    struct Row {
        const char16_t* pattern;
        const char16_t* text;
        const char* match;
    };
    const Row rows[] = {
        {u"a", u"ab", "0+1"},
        {u"a", u"ba", ""},
        {u"^a", u"b\na", ""},
        {u"^a",
         u"\x2028"
         u"a",
         ""},
        {u"b|(a)$", u"a\nb", "0+1(0+1)"},
        {u"a", u"", ""},
        {u"(a", u"(a", ""},
    };
    for (const auto& row : rows) {
        CAPTURE(base::toUtf8(row.pattern));
        const auto match = base::Regex(row.pattern).matchStart(row.text);
        CHECK((match ? line(*match) : "") == row.match);
    }
}

TEST_CASE("groups are put into replacements") {
    struct Row {
        const char16_t* pattern;
        const char16_t* replacement;
        const char* result;  ///< of "ab ab"
    };
    const Row rows[] = {
        {u"(a)(b)", u"$2$1", "ba ba"},
        {u"b", u"", "a a"},
        {u"(a)|(c)", u"[$2]", "[]b []b"},
        {u"a", u"$0\\$1$", "$0\\$b $0\\$b"},
        {u"x", u"y", "ab ab"},
        {u"$", u"!", "ab ab!"},
        {u"(a", u"y", "ab ab"},
    };
    for (const auto& row : rows) {
        CAPTURE(base::toUtf8(row.pattern));
        const auto result = base::Regex(row.pattern).replaceAll(u"ab ab", row.replacement);
        CHECK(base::toUtf8(result) == row.result);
    }
}

TEST_CASE("a pattern that does not compile tells why") {
    const base::Regex broken(u"a\n(b");
    CHECK_FALSE(broken.valid());
    CHECK(broken.error() != "");
    CHECK(base::Regex(u"a\n(b)").valid());
}

TEST_CASE("a search without end is given up, with one line in the log") {
    const tests::LogCapture log;
    const base::Regex pattern(u"(a*)*b");
    const std::u16string text(60, u'a');
    CHECK_FALSE(pattern.find(text).has_value());
    REQUIRE(log.lines().size() == 1);
    CHECK_FALSE(pattern.matchStart(text).has_value());
    CHECK(log.lines().size() == 2);
    CHECK(log.lines().front().rfind("a pattern took too long", 0) == 0);
    CHECK(pattern.findAll(u"aab").size() == 1);
}

TEST_CASE("threads share a pattern") {
    const base::Regex pattern(u"(#[^[:punct:]\\s]+)(\\s|$)");
    std::vector<std::string> found(4);
    tests::onThreads(found.size(), [&](std::size_t thread) {
        for (int i = 0; i < 200; ++i) {
            found[thread] = line(pattern.findAll(u"a #b and #çd"));
        }
    });
    CHECK(found == std::vector<std::string>(4, "2+3(2+2,4+1) 9+3(9+3,12+0)"));
}
