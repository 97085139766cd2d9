// SPDX-License-Identifier: MIT
#include <ctime>
#include <string>
#include <vector>

#include <doctest/doctest.h>
#include <fmt/format.h>

#include "app/line_look.h"
#include "base/enum_names.h"
#include "base/utf8.h"

using namespace tessaly;
using app::FenceState;
using app::LineLook;
using app::LookSpan;

namespace {

constexpr const char* kindWords[] = {"text",     "heading", "quote",     "bullet",
                                     "numbered", "task",    "checklist", "rule",
                                     "code",     "fence",   "table",     "plain"};
constexpr const char* spanWords[] = {"sign", "address", "bold", "italic", "struck", "marked",
                                     "code", "link",    "note", "image",  "tag",    "mention",
                                     "due",  "from",    "date", "done"};
constexpr const char* fenceWords[] = {"outside", "backticks", "tildes"};

template <typename Value>
std::size_t indexOf(Value value) {
    return static_cast<std::size_t>(value);
}

std::string told(std::string_view name, base::TextRange range) {
    return range == base::TextRange{} ? std::string()
                                      : fmt::format(" {}={}-{}", name, range.location, range.end());
}

/// "task open marker=0-6 box=2-5 sign=6-8 bold=8-12 link=13-20(address)"
std::string told(const LineLook& look) {
    std::string words = kindWords[indexOf(look.kind)];
    if (look.headingLevel > 0) {
        words += std::to_string(look.headingLevel);
    }
    if (look.kind == LineLook::Kind::task || look.kind == LineLook::Kind::checklist) {
        words += fmt::format(" {}", base::rawValue(look.state));
    }
    words += told("indent", look.indent) + told("marker", look.marker) + told("box", look.box);
    for (const LookSpan& span : look.spans) {
        words += told(spanWords[indexOf(span.kind)], span.range);
        words += span.target.empty() ? "" : fmt::format("({})", span.target);
    }
    return words;
}

LineLook lookOf(std::string_view line, FenceState before = FenceState::outside) {
    return app::lineLook(line, before, grammar::MarkerSettings{});
}

struct LookRow {
    std::string line;
    std::string look;
};

void checkLooks(const std::vector<LookRow>& rows) {
    for (const LookRow& row : rows) {
        CAPTURE(row.line);
        CHECK(told(lookOf(row.line)) == row.look);
    }
}

}  // namespace

TEST_CASE("a line's look begins with what the grammar says of it") {
    checkLooks({
        {"", "text"},
        {" \t ", "text indent=0-3"},
        {"  words", "text indent=0-2"},
        {"### Plans", "heading3 marker=0-4"},
        {"#Plans", "text tag=0-6"},
        {"\t> said", "quote indent=0-1 marker=1-3"},
        {"* task", "task open marker=0-2"},
        {"* task\r", "task open marker=0-2"},
        {"\t* [x] task", "task done indent=0-1 marker=1-7 box=3-6"},
        {"* [-] task", "task cancelled marker=0-6 box=2-5"},
        {"* [\u00A0] task", "task open marker=0-6 box=2-5"},
        {"* [X] task", "task open marker=0-2"},
        {"- item", "bullet marker=0-2"},
        {"- [>] item", "checklist scheduled marker=0-6 box=2-5"},
        {"12) item", "numbered marker=0-4"},
        {"12. [ ] item", "checklist open marker=0-8 box=4-7"},
        {"*[ ] words", "text"},
        {"---", "rule"},
        {" _ _ _ ", "rule"},
        {"***\r", "rule"},
        {"--", "text"},
        {"-*-", "text"},
        {"- - -", "bullet marker=0-2"},
        {"* * *", "task open marker=0-2"},
        {"| a | **b** |", "table sign=6-8 bold=8-9 sign=9-11"},
        {"|a", "text"},
        {"a | b", "text"},
    });
}

TEST_CASE("markers that make tasks are those of the settings") {
    const grammar::MarkerSettings dashes{false, true, true};
    const auto look = [&](std::string_view line) {
        return told(app::lineLook(line, FenceState::outside, dashes));
    };
    CHECK(look("* a") == "bullet marker=0-2");
    CHECK(look("* [x] a") == "checklist done marker=0-6 box=2-5");
    CHECK(look("- a") == "task open marker=0-2");
    CHECK(look("1. [x] a") == "task done marker=0-7 box=3-6");
}

TEST_CASE("words between signs") {
    checkLooks({
        {"**a b** c", "text sign=0-2 bold=2-5 sign=5-7"},
        {"a *b* c", "text sign=2-3 italic=3-4 sign=4-5"},
        {"***a***", "text sign=0-2 bold=2-5 sign=2-3 italic=3-4 sign=4-5 sign=5-7"},
        {"*a **b** c*", "text sign=0-1 italic=1-10 sign=3-5 bold=5-6 sign=6-8 sign=10-11"},
        {"* *a*", "task open marker=0-2 sign=2-3 italic=3-4 sign=4-5"},
        {"a*b*c 2 * 3 * 4", "text"},
        {"**** __ ___a___ *****",
         "text sign=8-10 bold=10-13 sign=10-11 italic=11-12 sign=12-13 sign=13-15"},
        {"a ~~~~~~ =====", "text"},
        {"~~a~~ ==b==.", "text sign=0-2 struck=2-3 sign=3-5 sign=6-8 marked=8-9 sign=9-11"},
        {"~~*a*~~", "text sign=0-2 struck=2-5 sign=2-3 italic=3-4 sign=4-5 sign=5-7"},
        {"a==b && c==d ~~ e ~~ ====", "text"},
        {"**a ~~b** c~~", "text sign=0-2 bold=2-7 sign=7-9"},
        {"`a` b`", "text sign=0-1 code=1-2 sign=2-3"},
        {"`` **`a*` b**", "text sign=3-5 bold=5-11 sign=5-6 code=6-8 sign=8-9 sign=11-13"},
        {"**a `b** c`", "text sign=4-5 code=5-10 sign=10-11"},
        {"\U0001F600 **\u00FC\U0001F600** *b*",
         "text sign=3-5 bold=5-8 sign=8-10 sign=11-12 italic=12-13 sign=13-14"},
    });
}

TEST_CASE("links, images and addresses") {
    checkLooks({
        {"a [b c](d) e", "text sign=2-3 link=3-6(d) sign=6-8 address=8-9 sign=9-10"},
        {"[a]( b(c) )", "text sign=0-1 link=1-2(b(c)) sign=2-5 address=5-9 sign=9-11"},
        {"[a](b(c)", "text"},
        {"[](a) [a]() [a] (b) [ ](c)", "text"},
        {"![](a b.png)![c](d)", "text image=0-12(a b.png) image=12-19(d)"},
        {"[[A b]] [[]] [[a]", "text sign=0-2 note=2-5(A b) sign=5-7"},
        {"[[[ a ]]]", "text sign=1-3 note=3-6(a) sign=6-8"},
        {"**[*a*](b*c*)**",
         "text sign=0-2 bold=2-13 sign=2-3 link=3-6(b*c*) sign=3-4 italic=4-5 sign=5-6 sign=6-8 "
         "address=8-12 sign=12-13 sign=13-15"},
        {"**a [b** c](d)", "text sign=4-5 link=5-10(d) sign=10-12 address=12-13 sign=13-14"},
        {"[a `b](c)`](d)",
         "text sign=0-1 link=1-10(d) sign=3-4 code=4-9 sign=9-10 sign=10-12 "
         "address=12-13 sign=13-14"},
        {"(see https://a.b/c_(d).)", "text link=5-22(https://a.b/c_(d))"},
        {"**http://a.b/~c** <x-y://z>, x://",
         "text sign=0-2 bold=2-15 link=2-15(http://a.b/~c) sign=15-17 link=19-26(x-y://z)"},
        {"://a 1://b \u00FCx://c", "text link=12-17(x://c)"},
        {"`http://a`", "text sign=0-1 code=1-9 sign=9-10"},
        {"[http://a](b)", "text sign=0-1 link=1-9(b) sign=9-11 address=11-12 sign=12-13"},
    });
}

TEST_CASE("tags and dates") {
    checkLooks({
        {"* #a/b @c(d e) >2019-05-21", "task open marker=0-2 tag=2-6 mention=7-14 due=15-26"},
        {"* >2019-05-21 <2019-05-20 @2019-05-22",
         "task open marker=0-2 due=2-13 from=14-25 date=26-37"},
        {"* [x] a @done(2019-05-21 09:05 PM)", "task done marker=0-6 box=2-5 done=8-34"},
        {"@a(>2019-05-21)", "text mention=0-15 due=3-14"},
        {"** #a_b_ **(#c)**", "text tag=3-8 sign=9-11 bold=11-15 tag=12-14 sign=15-17"},
        {"_a #b_", "text tag=3-6"},
        {"`#a` #b(`c`) [[#d]] ![#e](#f)",
         "text sign=0-1 code=1-3 sign=3-4 sign=8-9 code=9-10 sign=10-11 sign=13-15 note=15-17(#d) "
         "sign=17-19 image=20-29(#f)"},
        {"[#a(`b)`](c)",
         "text sign=0-1 link=1-8(c) sign=4-5 code=5-7 sign=7-8 sign=8-10 address=10-11 sign=11-12"},
        {"[#a](b) [c](#d) http://a/(#e",
         "text sign=0-1 link=1-3(b) tag=1-3 sign=3-5 address=5-6 sign=6-7 sign=8-9 link=9-10(#d) "
         "sign=10-12 address=12-14 sign=14-15 link=16-28(http://a/(#e)"},
    });
}

TEST_CASE("fences") {
    using Kind = LineLook::Kind;
    struct Row {
        std::string line;
        FenceState before;
        Kind kind;
        FenceState after;
    };
    constexpr auto outside = FenceState::outside;
    constexpr auto backticks = FenceState::backticks;
    constexpr auto tildes = FenceState::tildes;
    const std::vector<Row> rows = {
        {"```", outside, Kind::fence, backticks},
        {"\t````cpp", outside, Kind::fence, backticks},
        {"~~~ a`b", outside, Kind::fence, tildes},
        {"``", outside, Kind::text, outside},
        {"``` a`", outside, Kind::text, outside},
        {"~~~ `a`", tildes, Kind::code, tildes},
        {"* ```", outside, Kind::task, outside},
        {"```", backticks, Kind::fence, outside},
        {"  `````\t\r", backticks, Kind::fence, outside},
        {"```cpp", backticks, Kind::code, backticks},
        {"~~~", backticks, Kind::code, backticks},
        {"```", tildes, Kind::code, tildes},
        {"", tildes, Kind::code, tildes},
    };
    for (const Row& row : rows) {
        CAPTURE(row.line);
        CHECK(kindWords[indexOf(lookOf(row.line, row.before).kind)] ==
              std::string(kindWords[indexOf(row.kind)]));
        CHECK(fenceWords[indexOf(app::fenceAfter(row.line, row.before))] ==
              std::string(fenceWords[indexOf(row.after)]));
    }
    const LineLook task = lookOf("* [x] **a** #b", backticks);
    CHECK(told(task) == "code");
    CHECK(task.state == grammar::TodoType::done);
}

TEST_CASE("a line that is too long is plain, and has its state") {
    const auto lineOf = [](std::size_t units) {
        std::string line = "* [x] **a** ";
        while (base::utf16Length(line) + 2 <= units) {
            line += "\U0001F600";
        }
        return line;
    };
    CHECK(told(lookOf(lineOf(app::longestStyledLine))) ==
          "task done marker=0-6 box=2-5 sign=6-8 bold=8-9 sign=9-11");
    const LineLook plain = lookOf(lineOf(app::longestStyledLine) + "a");
    CHECK(told(plain) == "plain");
    CHECK(plain.state == grammar::TodoType::done);
}
