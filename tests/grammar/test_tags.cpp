// SPDX-License-Identifier: MIT
#include <string>
#include <vector>

#include <doctest/doctest.h>
#include <fmt/ranges.h>

#include "grammar/tags.h"

using namespace tessaly::grammar;

namespace {

struct TagRow {
    const char* line;
    const char* hashtags;
    const char* mentions;
};

std::string joined(const std::vector<std::string>& tags) {
    return fmt::format("{}", fmt::join(tags, " | "));
}

std::string listed(std::string_view tag) {
    TagList list;
    list.add(tag);
    return joined(list.tags());
}

}  // namespace

TEST_CASE("tags are found where a sign may open one") {
    for (const TagRow& row : std::vector<TagRow>{
             {"Call @peter about #project-x", "#project-x", "@peter"},
             {"Room #1, #2.5 at @10:30", "", ""},
             {"#1a #- #2.5x a#b", "#1a | #2", ""},
             {"(#tag) [#b] {#c} \"#d\" '#e'", "#tag | #b | #c | #d | #e", ""},
             {"#c++ #a|b #work/home_2", "#c++ | #a|b | #work/home_2", ""},
             {"@due(2019-05-01) @done(2019-05-01 10:30)", "",
              "@due(2019-05-01) | @done(2019-05-01 10:30)"},
             {"#t(a(b)c) #u(no end", "#t(a(b) | #u", ""},
             {"`#code` https://x.org/#anchor", "", ""},
             {"#Straße #漢字、#次", "#Straße | #漢字", ""},
             {"\xE3\x80\x80#wide\xC2\xA0#nbsp", "#wide | #nbsp", ""},
             {"#a @b(#c) ", "#a | #c", "@b(#c)"},
         }) {
        CAPTURE(row.line);
        CHECK(joined(hashtagsOf(row.line)) == row.hashtags);
        CHECK(joined(mentionsOf(row.line)) == row.mentions);
    }
}

TEST_CASE("lists hold a tag once, behind its parents, without book-keeping") {
    for (const auto& [tag, expected] : std::vector<std::pair<const char*, const char*>>{
             {"#Work/Clients", "#work | #work/clients"},
             {"#project/alpha/beta", "#project | #project/alpha | #project/alpha/beta"},
             {"@Team/Jürgen(a/b)", "@team | @team/jürgen(a/b)"},
             {"#Gro\u0308\u00DFe/U\u0308", "#gr\u00F6\u00DFe | #gr\u00F6\u00DFe/\u00FC"},
             {"#\u01F0/J\u030C", "#\u01F0 | #\u01F0/\u01F0"},
             {"#a//b/", "#a | #a//b | #a//b/"},
             {"#/a", "#/a"},
             {"@done(2019-05-01)", ""},
             {"@repeat(1/3)", ""},
             {"@final-repeat", ""},
             {"@done", "@done"},
         }) {
        const std::string name = tag;
        CAPTURE(name);
        CHECK(listed(name) == expected);
    }
    TagList list;
    for (int i = 0; i < 100; ++i) {
        list.add(fmt::format("#t{}", i % 40));
        list.add("#T1/x");
    }
    CHECK(list.tags().size() == 41);
    CHECK(list.tags().front() == "#t0");
}

TEST_CASE("a tag of a thousand levels does not multiply") {
    std::string deep = "#a";
    for (int i = 0; i < 1000; ++i) {
        deep += "/a";
    }
    const auto tags = withParents(deep);
    std::size_t bytes = 0;
    for (const std::string& tag : tags) {
        bytes += tag.size();
    }
    CHECK(bytes < 100'000);
    CHECK(tags.size() > 200);
    CHECK(tags.back() == deep);
}
