// SPDX-License-Identifier: MIT
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "base/regex.h"
#include "base/utf8.h"
#include "editor/editor_commands.h"
#include "editor/inline_marks.h"
#include "editor/line_words.h"
#include "editor/mark_records.h"
#include "grammar/patterns.h"
#include "marked_text.h"
#include "support/log_capture.h"

using namespace tessaly;
using namespace tessaly::editor;
using A = MarkAction;

namespace {

struct Row {
    MarkAction action;
    const char* before;
    const char* after;  ///< the same: nothing to change
    const char* logged = nullptr;
};

constexpr char noWord[] = "Could not detect selected word in 'selectedWord'";

void check(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        CAPTURE(row.before);
        CAPTURE(base::rawValue(row.action));
        const tests::LogCapture log;
        const auto before = tests::readMarked(row.before);
        const auto edit = mark(row.action, before.text, before.selection, {});
        REQUIRE(edit.ok());
        CHECK(edit->has_value() == (std::string_view(row.before) != row.after));
        if (*edit) {
            CHECK(tests::writtenMarked(edited(before.text, **edit), (*edit)->selection) ==
                  row.after);
        }
        CHECK(log.lines() == (row.logged == nullptr ? std::vector<std::string>{}
                                                    : std::vector<std::string>{row.logged}));
    }
}

}  // namespace

TEST_CASE("marks go around the selected words, and prefix, box and blanks stay outside") {
    check({
        {A::bold, "{* [ ] Buy milk  }", "{* [ ] **Buy milk**  }"},
        {A::bold, "Buy {milk} now", "Buy **{milk}** now"},
        {A::italic, "\t{12) Buy}", "\t{12) *Buy*}"},
        {A::inlineCode, "> {[>] a b\r\n}c", "> {[>] `a b`\r\n}c"},
        {A::bold, "* [ {] Buy}", "* [ {] **Buy**}"},
        {A::bold, "\t\t {  a😀é }", "\t\t {  **a😀é** }"},
        {A::bold, "{[x] Buy}", "{[x] **Buy**}"},
        {A::bold, "a {- b}", "a **{- b}**"},
        {A::italic, "* a {b\n\n## c\n- [x] d\ne} f", "* a {*b*\n\n## c\n- [x] *d*\n*e*} f"},
        {A::bold, "ae{\u0301 b🇩}🇪", "a**{e\u0301 b🇩🇪}**"},
        {A::italic, "{### Plans}", "{### Plans}"},
        {A::inlineCode, " # Pl{an}s", " # Pl{an}s"},
        {A::bold, "### Pl|ans", "### Pl|ans"},
        {A::bold, "{* [ ] }", "{* [ ] }", "Could not insert mark bold"},
        {A::italic, "a{ \n\t} b", "a{ \n\t} b", "Could not insert mark italic"},
    });
}

TEST_CASE("marks in the selection or right around it are taken off") {
    check({
        {A::bold, "{* [ ] **Buy milk**  }", "{* [ ] Buy milk  }"},
        {A::bold, "Buy **{milk}** now", "Buy {milk} now"},
        {A::bold, "{**a** b __c__}", "{a b c}"},
        {A::bold, "{**a****}", "{a**}"},
        {A::bold, "{***a***}", "{*a*}"},
        {A::bold, "**{a}*", "****{a}***"},
        {A::bold, "{** a**}", "**{** a**}**"},
        {A::bold, "{**a** b\nc}", "{a b\n**c**}"},
        {A::italic, "{*a* _b_}", "{a b}"},
        {A::italic, "{a*b*c}", "*{a*b*c}*"},
        {A::italic, "_{a}_", "{a}"},
        {A::italic, "**{a}**", "***{a}***"},
        {A::italic, "***{a}***", "**{a}**"},
        {A::inlineCode, "{`a` b `c`}\r\n", "{a b c}\r\n"},
        {A::inlineCode, "`{a}`", "{a}"},
    });
}

TEST_CASE("with nothing selected the cursor comes between the marks") {
    check({
        {A::bold, "a | b", "a **|** b"},
        {A::bold, "a **|** b", "a | b"},
        {A::italic, "**|**", "***|***"},
        {A::inlineCode, "wo|rd", "wo`|`rd"},
        {A::inlineCode, "\r\nae|\u0301", "\r\na`|`e\u0301"},
        {A::bold, "|* [ ] Buy", "* [ ] **|**Buy"},
        {A::bold, "* |\r\n", "* **|**\r\n"},
        {A::bold, "|", "**|**"},
        {A::italic, "a |", "a *|*"},
        {A::link, "see |page, now", "see [page](|), now"},
        {A::link, "a，pa😀|ge;b", "a，[pa😀ge](|);b"},
        {A::link, "|* [x] page", "* [x] [page](|)"},
        {A::link, "# Pl|an", "# [Plan](|)"},
        {A::link, "a ( | )", "a ( [|]() )", noWord},
        {A::link, "|", "[|]()", noWord},
    });
}

TEST_CASE("a link takes the place of a selected prefix") {
    check({
        {A::link, "see {two words} now", "see [{two words}]() now"},
        {A::link, "see{ two words }", "see{ [two words]() }"},
        {A::link, "{* Plans\r\n\n\t## a}", "{[Plans]()\r\n\n[a]()}"},
        {A::link, "* {Plans}", "* [{Plans}]()"},
        {A::link, "a {- b}", "a [{- b}]()"},
        {A::link, "{* }", "{* }", "Could not insert mark link"},
    });
}

TEST_CASE("random texts: marks are found as the patterns find them") {
    const std::vector<std::u16string> pieces{u"*", u"**", u"_", u"__",     u"a",      u" ",
                                             u"`", u"a",  u"é", u"\u2028", u"\u00A0", u"😀"};
    std::mt19937 random(7);
    for (int i = 0; i < 20'000; ++i) {
        std::u16string text;
        for (std::size_t left = random() % 16; left > 0; --left) {
            text += pieces[random() % pieces.size()];
        }
        const std::string bytes = base::toUtf8(text);
        CAPTURE(bytes);
        for (const MarkAction action : {A::bold, A::italic, A::inlineCode}) {
            std::vector<MarkedWords> expected;
            const auto& pattern =
                grammar::patterns::compiled(recordOf(action).rules.appliedPattern);
            for (const auto& match : pattern.findAll(text)) {
                expected.push_back(
                    {bytesOf(bytes, *match.groups[0]), bytesOf(bytes, *match.groups[1])});
            }
            REQUIRE(findMarkedWords(action, bytes) == expected);
        }
    }
}

TEST_CASE("random lines: headings, prefixes and words are where the patterns say") {
    const std::vector<std::u16string> pieces{u"*",  u"- ",     u"#", u"# ",   u"> ",  u"1",
                                             u") ", u" ",      u"a", u"[x] ", u"[",   u"] ",
                                             u"é",  u"\u2028", u"😀", u"\t",   u"[ ] "};
    const auto& rules = recordOf(A::bold).rules;
    const auto& strip = grammar::patterns::compiled(recordOf(A::link).rules.stripPattern);
    std::mt19937 random(5);
    for (int i = 0; i < 20'000; ++i) {
        std::u16string line;
        for (std::size_t left = random() % 8; left > 0; --left) {
            line += pieces[random() % pieces.size()];
        }
        const std::string bytes = base::toUtf8(line);
        CAPTURE(bytes);
        const bool excluded =
            grammar::patterns::compiled(rules.exclusionPattern).matchStart(line).has_value();
        REQUIRE(isHeading(bytes) == excluded);
        const auto stripped = strip.matchStart(line);
        REQUIRE(prefixEnd(bytes) == (stripped ? bytesOf(bytes, *stripped->groups[1]).start : 0));
        const auto target = grammar::patterns::compiled(rules.linePattern).matchStart(line);
        if (excluded) {
            continue;
        }
        REQUIRE(target);
        const std::string_view words = wordsIn(bytes).in(bytes);
        const auto group = target->groups[3];
        if (!group && line.find(u'\u2028') != std::u16string::npos) {
            continue;  // the pattern gives up at one among the blanks before the words
        }
        REQUIRE(words == (group ? base::trimmed(bytesOf(bytes, *group).in(bytes)) : ""));
    }
}

TEST_CASE("random texts: an inline command adds or takes off nothing but its marks") {
    const std::vector<std::string> pieces{"*", "* ", "[ ] ", "_", "`", "a",    "\n", "\r\n",
                                          " ", "# ", "1. ",  "é", "😀", "\xFF", "\t", "e\u0301"};
    const auto unmarked = [](std::string text) {
        std::erase_if(text, [](char c) { return c == '*' || c == '_' || c == '`'; });
        return text;
    };
    std::mt19937 random(11);
    const tests::LogCapture log;
    for (int i = 0; i < 20'000; ++i) {
        std::string text;
        for (std::size_t left = random() % 12; left > 0; --left) {
            text += pieces[random() % pieces.size()];
        }
        const std::size_t length = base::utf16Length(text);
        const std::size_t from = random() % (length + 1);
        const base::TextRange selection{from, random() % (length - from + 1)};
        CAPTURE(tests::writtenMarked(text, selection));
        for (const MarkAction action : {A::bold, A::italic, A::inlineCode}) {
            const auto edit = mark(action, text, selection, {});
            if (!edit.ok() || !*edit) {
                continue;  // an end within a pair, or nothing to mark
            }
            const std::string after = edited(text, **edit);
            REQUIRE(after != text);
            REQUIRE(unmarked(after) == unmarked(text));
            const base::TextRange now = (*edit)->selection;
            REQUIRE(base::utf16Length(after.substr(0, base::byteOffset(after, now.location))) ==
                    now.location);
            REQUIRE(base::utf16Length(after.substr(0, base::byteOffset(after, now.end()))) ==
                    now.end());
        }
    }
}
