// SPDX-License-Identifier: MIT
#include <array>
#include <chrono>
#include <cstddef>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "base/day.h"
#include "base/regex.h"
#include "base/utf8.h"
#include "search/folded_text.h"
#include "search/search_query.h"

using namespace tessaly;
using search::SearchQuery;
using search::SearchRoute;

namespace {

std::optional<base::Day> parseDay(std::string_view text) {
    using namespace std::chrono;
    return text == "today" ? base::Day{2019y / March / 5} : base::dayFromTagText(text);
}

std::string joined(const std::vector<std::string>& texts, std::string_view between = "|") {
    std::string all;
    for (const std::string& text : texts) {
        all.append(all.empty() ? "" : between).append(text);
    }
    return all;
}

/// The parts of a query that ask for something, so that a row of a table can name them.
std::string describe(const SearchQuery& query) {
    using grammar::TodoType;
    std::string result;
    const auto add = [&result](std::string_view name, const std::string& value) {
        if (!value.empty()) {
            result.append(result.empty() ? "" : " ").append(name).append("=").append(value);
        }
    };
    add("text", query.text);
    add("words", joined(query.words));
    add("phrases", joined(query.phrases));
    add("without", joined(query.excluded));
    add("titles", joined(query.titles));
    add("folders", joined(query.folders));
    std::string kinds;
    for (const auto& [type, letter] : {std::pair{TodoType::open, 'o'},
                                       {TodoType::done, 'd'},
                                       {TodoType::scheduled, 's'},
                                       {TodoType::cancelled, 'c'},
                                       {TodoType::text, 't'}}) {
        kinds += query.kinds.has(type) ? std::string(1, letter) : "";
    }
    add("kinds", kinds == "odsct" ? "" : kinds);
    add("first", query.days.first ? base::tagText(*query.days.first) : "");
    add("last", query.days.last ? base::tagText(*query.days.last) : "");
    add("agenda", query.agendaDay() ? "yes" : "");
    add("notes", !query.text.empty() || !query.isAboutNotesOnly() ? "" : "only");
    return result;
}

struct Reading {
    std::string_view query;
    std::string_view expected;
};

void check(const Reading& reading) {
    CAPTURE(reading.query);
    CHECK(describe(search::readQuery(reading.query, parseDay)) == reading.expected);
}

std::string repeated(std::string_view part, std::size_t bytes) {
    std::string text;
    while (text.size() < bytes) {
        text += part;
    }
    return text;
}

}  // namespace

TEST_CASE("a query without operators is its text") {
    const std::array<Reading, 25> rows{{
        {" Call  Bob\t", "text=call  bob words=call|bob"},
        {"bob", "text=bob"},
        {"bob bob", "text=bob bob words=bob"},
        {"- [ ] call", "text=- [ ] call words=-|[|]|call"},
        {"-", "text=-"},
        {"a - b", "text=a - b words=a|-|b"},
        {"ls --all", "text=ls --all words=ls|--all"},
        {"https://example.org/a?b=-c", "text=https://example.org/a?b=-c"},
        {"12:30 note:thing", "text=12:30 note:thing words=12:30|note:thing"},
        {"is: in: on: title:", "text=is: in: on: title: words=is:|in:|on:|title:"},
        {"is:red", "text=is:red"},
        {"is:open,done", "text=is:open,done"},
        {"on:nix before: after:13", "text=on:nix before: after:13 words=on:nix|before:|after:13"},
        {"on:\"next  nix\"", "text=on:\"next  nix\" words=on:\"next|nix\""},
        {"this:open", "text=this:open"},
        {"in:/ in:\"//\"", "text=in:/ in:\"//\" words=in:/|in:\"//\""},
        {"\"call bob", "text=\"call bob words=\"call|bob"},
        {"-\"call bob", "text=-\"call bob words=-\"call|bob"},
        {"title:\"call bob", "text=title:\"call bob words=title:\"call|bob"},
        {"\"call\"bob", "text=\"call\"bob"},
        {"5\" 6\"", "text=5\" 6\" words=5\"|6\""},
        {"\"\"", "text=\"\""},
        {"A\u030A\u00A0\u039F\u03A3", "text=\u00E5\u00A0\u03BF\u03C3 words=\u00E5|\u03BF\u03C3"},
        {"\xA4 \xC3", "text=\uFFFD \uFFFD words=\uFFFD"},
        {"\xE2\x80\x8F\u05E9\u05DC", "text=\xE2\x80\x8F\u05E9\u05DC"},
    }};
    for (const Reading& row : rows) {
        check(row);
    }
}

TEST_CASE("operators are taken out of a query") {
    const std::array<Reading, 34> rows{{
        {"\"call  bob\"", "phrases=call  bob"},
        {"\"a\" \"a\" \"b\"", "phrases=a|b"},
        {"\"is:open\" \"-x\"", "phrases=is:open|-x"},
        {"\"say \"hi\" x", "text=\"say x words=\"say|x phrases=hi"},
        {"-bob", "without=bob"},
        {"-5 -is:open", "without=5|is:open"},
        {"-\"call bob\" x", "text=x without=call bob"},
        {"-\"-x\"", "without=-x"},
        {"  call   -x\t bob ", "text=call bob words=call|bob without=x"},
        {"IS:Open", "kinds=o"},
        {"is:done is:\"canceled\"", "kinds=dc"},
        {"is:scheduled is:cancelled x", "text=x kinds=sc"},
        {"is:task", "kinds=odsc"},
        {"is:task is:open", "kinds=odsc"},
        {"is:open is:red", "text=is:red kinds=o"},
        {"in:Work/Plans/", "folders=work/plans notes=only"},
        {"in:\"My  Plans\" in:/a in:a", "folders=my  plans|a notes=only"},
        {"in:work in:x -y", "without=y folders=work|x"},
        {"title:Bob", "titles=bob notes=only"},
        {"title:\" call bob \" title:x", "titles=call bob|x notes=only"},
        {"title:a\"b in:c:d", "titles=a\"b folders=c:d notes=only"},
        {"title:bob is:open", "titles=bob kinds=o"},
        {"title:bob on:nix", "text=on:nix titles=bob"},
        {"on:today", "first=2019-03-05 last=2019-03-05 agenda=yes"},
        {"on:\" TODAY \"", "first=2019-03-05 last=2019-03-05 agenda=yes"},
        {"on:today call", "text=call first=2019-03-05 last=2019-03-05"},
        {"on:today is:open", "kinds=o first=2019-03-05 last=2019-03-05"},
        {"on:today in:work", "folders=work first=2019-03-05 last=2019-03-05"},
        {"on:today title:x", "titles=x first=2019-03-05 last=2019-03-05"},
        {"before:2019-03-01", "last=2019-02-28"},
        {"after:2019-12-31", "first=2020-01-01"},
        {"after:2019-03-01 before:2019-03-31 before:today", "first=2019-03-02 last=2019-03-04"},
        {"on:today on:2019-03-06", "first=2019-03-06 last=2019-03-05"},
        {"on:today on:nix", "text=on:nix first=2019-03-05 last=2019-03-05"},
    }};
    for (const Reading& row : rows) {
        check(row);
    }
    CHECK(describe(search::readQuery("on:today x", nullptr)) == "text=on:today x words=on:today|x");
}

TEST_CASE("operators never lose or double a word of a query") {
    static constexpr std::array<std::string_view, 17> heads{
        "",      "",    "-",     "--",      "\"",    "-\"",    "title:", "title:\"", "in:",
        "in:\"", "is:", "on:\"", "before:", "note:", "TITLE:", "\u05E9", "/"};
    static constexpr std::array<std::string_view, 8> tails{"", "", "", "\"", "\"", "/", "-", ":"};
    static constexpr std::array<std::string_view, 5> blanks{" ", "\n", "\u2003", " \t ", " "};
    std::mt19937 random(4711);
    for (int round = 0; round < 2000; ++round) {
        std::string query;
        const std::size_t count = random() % (round % 50 == 0 ? 200 : 12);
        for (std::size_t i = 0; i < count; ++i) {
            query.append(heads[random() % heads.size()]);
            query.append("W").append(std::to_string(i)).append("x");
            query.append(tails[random() % tails.size()]).append(blanks[random() % blanks.size()]);
        }
        CAPTURE(query);
        const SearchQuery read = search::readQuery(query, parseDay);
        const std::string all = read.text + " " + joined(read.phrases, " ") + " " +
                                joined(read.excluded, " ") + " " + joined(read.titles, " ") + " " +
                                joined(read.folders, " ");
        for (std::size_t i = 0; i < count; ++i) {
            const std::string word = "w" + std::to_string(i) + "x";
            const std::size_t at = all.find(word);
            CAPTURE(word);
            REQUIRE(at != std::string::npos);
            REQUIRE(all.find(word, at + 1) == std::string::npos);
        }
        for (const auto& misread : read.misread) {
            REQUIRE(read.text.find(misread.word) != std::string::npos);
        }
        const std::string folded = search::folded(query);
        REQUIRE(describe(search::readQuery(folded, parseDay)) == describe(read));
    }
}

TEST_CASE("huge queries are read, with but so many operators") {
    constexpr std::size_t bytes = 250'000;
    const std::array<std::string, 9> parts{
        "\"",     "\" ", "\"a ", "-a ", "on:nix ", "title:\"a ", "is:open ", std::string("a\0 ", 3),
        "\u05E9 "};
    for (const std::string& part : parts) {
        CAPTURE(part);
        const std::string whole = repeated(part, bytes);
        std::size_t asked = 0;
        const SearchQuery query = search::readQuery(whole, [&asked](std::string_view) {
            ++asked;
            return std::optional<base::Day>();
        });
        CHECK(asked == (part == "on:nix " ? SearchQuery::mostOperators : 0));
        CHECK(query.misread.size() <= SearchQuery::mostOperators);
        const std::string_view text = base::trimmed(whole);
        const bool hasOperators = part == "-a " || part == "is:open ";
        CHECK(query.text.size() ==
              text.size() - (hasOperators ? part.size() * SearchQuery::mostOperators : 0));
    }
    std::string words;
    for (std::size_t i = 0; i < SearchQuery::mostWords; ++i) {
        words += std::to_string(i) + " ";
    }
    CHECK(search::readQuery(words, {}).words.size() == SearchQuery::mostWords);
    CHECK(search::readQuery(words + "more", {}).words.empty());
}

TEST_CASE("a query goes to the tags, a default list or the text") {
    struct Row {
        std::string_view query;
        SearchRoute bare;
        std::string_view bareQuery;
        SearchRoute filtered;
        std::string_view filteredQuery;
    };
    using enum SearchRoute;
    const std::array<Row, 13> rows{{
        {"#Tag", tags, "#tag", tags, "#tag"},
        {"\t @Bob(x)\n", tags, "@bob(x)", tags, "@bob(x)"},
        {",x", tags, ",x", tags, ",x"},
        {"##", tags, "##", tags, "##"},
        {"#", text, "#", text, "#"},
        {"#tag word", text, "#tag word", text, "#tag word"},
        {"#tag\u3000word", text, "#tag\u3000word", text, "#tag\u3000word"},
        {"", defaultList, "recent", text, ""},
        {" \n\u00A0", defaultList, "recent", text, ""},
        {"// INBOX ", defaultList, "inbox", text, "// inbox"},
        {"//", defaultList, "", text, "//"},
        {"x //inbox", text, "x //inbox", text, "x //inbox"},
        {"/inbox", text, "/inbox", text, "/inbox"},
    }};
    for (const Row& row : rows) {
        CAPTURE(row.query);
        const auto bare = search::routeQuery(row.query, false);
        const auto filtered = search::routeQuery(row.query, true);
        CHECK(bare.route == row.bare);
        CHECK(bare.query == row.bareQuery);
        CHECK(filtered.route == row.filtered);
        CHECK(filtered.query == row.filteredQuery);
    }
}

TEST_CASE("tag searches are what their pattern matches") {
    // One line at a time: the pattern's anchors match at each.
    static constexpr std::array<std::string_view, 16> parts{
        "#",      ",",      "@",      "a",      "/",          " ",    "\t",   "\u00A0",
        "\u2003", "\u3000", "\u200B", "\u0338", "\U0001F600", "\x1F", "\xFF", "\u0130"};
    const base::Regex pattern(uR"(^\s*[#,@][^\s]+\s*$)");
    std::mt19937 random(23);
    std::size_t tags = 0;
    for (int round = 0; round < 5000; ++round) {
        std::string query;
        for (auto left = random() % 6; left > 0; --left) {
            query += parts[random() % parts.size()];
        }
        CAPTURE(query);
        const bool isTag = search::routeQuery(query, true).route == SearchRoute::tags;
        REQUIRE(isTag == pattern.matchStart(base::toUtf16(query)).has_value());
        tags += isTag ? 1 : 0;
    }
    CHECK(tags > 300);
}

TEST_CASE("a note lies in a folder and those above it") {
    struct Row {
        std::string_view notesFolder;
        std::string_view folder;
        bool isIn;
    };
    const std::array<Row, 11> rows{{{"notes/work/plans", "work", true},
                                    {"notes/work/plans", "work/plans", true},
                                    {"notes/work/plans", "notes/work", true},
                                    {"notes/work/plans", "notes", true},
                                    {"notes/work/plans", "plans", false},
                                    {"notes/work/plans", "work/plan", false},
                                    {"notes/work", "work/plans", false},
                                    {"notes", "notes", true},
                                    {"notes", "work", false},
                                    {"calendar", "calendar", true},
                                    {"notes/calendars", "calendar", false}}};
    for (const Row& row : rows) {
        CAPTURE(row.notesFolder);
        CAPTURE(row.folder);
        CHECK(search::isInFolder(row.notesFolder, row.folder) == row.isIn);
    }
}

TEST_CASE("what a query asks for is told in words") {
    const auto told = [](std::string_view query) {
        return joined(search::explainQuery(search::readQuery(query, parseDay)), "\n");
    };
    CHECK(told("Call Bob \"a b\" -x title:t in:a in:b/c is:done after:today") ==
          "with the text “call bob”, or, further down, with all of its words\n"
          "with the text “a b”\n"
          "without the text “x”\n"
          "in notes with “t” in their title\n"
          "in one of the folders “a”, “b/c”\n"
          "tasks in these states: done\n"
          "on 2019-03-06 or later");
    CHECK(told("{} is:task is:red on:nix before:2019-03-05 after:2019-03-01 title: \"x") ==
          "with the text “{} is:red on:nix title: \"x”, or, further down, with all of its words\n"
          "only tasks\n"
          "from 2019-03-02 to 2019-03-04\n"
          "“is:red” is looked for as text: a task is open, done, scheduled or cancelled\n"
          "“on:nix” is looked for as text: no day is called so\n"
          "“title:” is looked for as text: nothing is named\n"
          "“\"x” is looked for as text: no quote closes it");
    CHECK(told("- -- a") == "with the text “- -- a”, or, further down, with all of its words");
    CHECK(told("on:today after:today") ==
          "on no day: no day is in all the ranges that are asked for");
    const std::array<std::pair<std::string_view, std::string_view>, 5> routes{
        {{"#A", "lines that carry “#a”, or, if none does, hold it in their text"},
         {"", "the notes last changed"},
         {"//inbox", "open tasks of general notes without a date"},
         {"//nix", "nothing: there is no list “nix”, only “recent” and “inbox”"},
         {"word", ""}}};
    for (const auto& [query, expected] : routes) {
        CHECK(joined(search::explainRoute(search::routeQuery(query, false))) == expected);
    }
}
