// SPDX-License-Identifier: MIT
#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "app/completion.h"
#include "app/completion_feed.h"
#include "app/completion_words.h"
#include "app/planner.h"
#include "base/utf8.h"
#include "editor/edit.h"

using namespace tessaly;
using app::CompletionKind;
using app::FenceState;

namespace {

constexpr const char* completionWords[] = {"hashtag", "mention", "title", "day"};

struct CaretText {
    std::string line;
    std::size_t caret;
};

/// "|" is the caret.
CaretText atCaret(std::string text) {
    const std::size_t at = text.find('|');
    text.erase(at, 1);
    return {text, base::utf16Length(std::string_view(text).substr(0, at))};
}

std::optional<app::CompletionPlace> placeIn(const CaretText& text,
                                            FenceState before = FenceState::outside) {
    return app::completionPlace(text.line, text.caret, {before, grammar::MarkerSettings()});
}

/// "hashtag pro!": "!" where what is typed is a word; "-" for nothing.
std::string toldPlace(const std::string& marked, FenceState before = FenceState::outside) {
    const auto place = placeIn(atCaret(marked), before);
    if (!place) {
        return "-";
    }
    CHECK(place->range.end() == atCaret(marked).caret);
    return std::string(completionWords[static_cast<std::size_t>(place->kind)]) + " " +
           place->typed + (place->isWord ? "!" : "");
}

struct PlaceRow {
    std::string marked;
    std::string expected;
};

/// With "|" where the caret is, or both ends of the selection.
std::string editedText(const std::string& line, const editor::Edit& edit) {
    std::string text = editor::edited(line, edit);
    text.insert(base::byteOffset(text, edit.selection.end()), "|");
    if (edit.selection.length > 0) {
        text.insert(base::byteOffset(text, edit.selection.location), "|");
    }
    return text;
}

app::CompletionWords tagsOf(std::vector<std::pair<std::string, std::size_t>> tags) {
    std::sort(tags.begin(), tags.end());
    std::vector<store::TagCounts::Pointer> counts;
    for (auto& [tag, notes] : tags) {
        counts.push_back(std::make_shared<store::TagCount>(store::TagCount{tag, notes}));
    }
    return app::CompletionWords::ofTags(store::TagCounts(std::move(counts)));
}

/// "work, world ~rework": "~" before what does not begin so, "!" behind all where it is whole.
std::string offeredFor(const app::CompletionWords& words, std::string_view typed,
                       std::size_t most = 8) {
    const app::OfferedWords offered = words.matching(typed, most);
    std::string text;
    for (const app::CompletionWord& word : offered.words) {
        text += (text.empty() ? "" : " ") + std::string(word.begins ? "" : "~") + word.text;
    }
    return text + (offered.isWhole ? "!" : "");
}

}  // namespace

TEST_CASE("what can be completed is what the grammar would read") {
    const PlaceRow rows[] = {
        // Tags where they may begin, up to the caret
        {"#|", "hashtag "},
        {"* Call #pro|", "hashtag pro!"},
        {"(#pro| and", "hashtag pro!"},
        {"\"@an|\"", "mention an!"},
        {"\xC3\xA4\xF0\x9F\x98\x80 #\xC3\xBC|", "hashtag \xC3\xBC!"},
        {"* [x] @|", "mention "},
        {"#work/ho|", "hashtag work/ho!"},
        {"#work/|", "hashtag work/"},
        {"**#pro|**", "-"},
        {"# Heading #pro|", "hashtag pro!"},
        {"[#pro|](address)", "hashtag pro!"},
        // No word yet, or a number
        {"Room #1|", "hashtag 1"},
        {"#_|", "hashtag _"},
        {"@2019-03|", "mention 2019-03"},
        // Where none begins, or one goes on
        {"a#b|", "-"},
        {"mail@ho|", "-"},
        {"##|", "-"},
        {"#pro |", "-"},
        {"#pr|o", "-"},
        {"#due|(x)", "-"},
        {"#due(x|)", "-"},
        {"#pro.|", "-"},
        // Code and addresses, also while they are written
        {"`#pro|`", "-"},
        {"`a #pro|", "-"},
        {"[title](#pro|)", "-"},
        {"[title](#pro|", "-"},
        {"https://host/ #pro|", "hashtag pro!"},
        {"https://host/(#pro|", "-"},
        {"``` #pro|", "-"},
        // Titles
        {"[[|", "title "},
        {"see [[Bud 20|", "title Bud 20!"},
        {"[[Bud|]]", "title Bud!"},
        {"[[Bud|]", "title Bud!"},
        {"[[#ta|", "title #ta!"},
        {"[[Bud|get]]", "-"},
        {"[[Bud #ta|", "hashtag ta!"},
        {"* [[Bud >fri|", "day fri!"},
        {"[[Bud #ta|]]", "title Bud #ta!"},
        {"[[Bud| and [[Other]]", "title Bud!"},
        {"[[Budget]]|", "-"},
        {"[Bud|", "-"},
        {"`[[Bud|", "-"},
        // Days
        {"Call >|", "day "},
        {"* >fri|", "day fri!"},
        {"* [ ] Call >+3d|", "day +3d!"},
        {"Call >14| and", "day 14!"},
        {"Call >2019-03-0|", "day 2019-03-0!"},
        {">|", "-"},
        {"\t >fri|", "-"},
        {"> >|", "-"},
        {"> Call >|", "day "},
        {"a->|", "-"},
        {"5 >=|", "-"},
        {"Call > |", "-"},
        {"Call >fri|day", "-"},
        {"Call >2019-03-08|", "-"},
        {"Call >2019-03-08 >|", "-"},
        {"Call >| again >2019-03-08", "-"},
        {"Call <2019-03-08 >|", "day "},
        {"## Plans >|", "-"},
        {"`a >|", "-"},
        {"[a](b >|", "-"},
    };
    for (const PlaceRow& row : rows) {
        CAPTURE(row.marked);
        CHECK(toldPlace(row.marked) == row.expected);
    }
    CHECK(toldPlace("#pro|", FenceState::backticks) == "-");
    CHECK(toldPlace("Call >|", FenceState::tildes) == "-");
    const std::string words(app::longestStyledLine - 10, 'a');
    CHECK(toldPlace(words + " #pro|") == "hashtag pro!");
    CHECK(toldPlace(words + "aaaaaaa #pro|") == "-");
}

TEST_CASE("what is taken replaces what was typed and nothing else") {
    const struct {
        std::string marked;
        const char* word;
        std::string expected;
    } rows[] = {
        {"a #pro| b", "project", "a #project| b"},
        {"a #Pro| b", "project", "a #Project| b"},
        {"#\xC3\x9C|",
         "\xC3\xBC"
         "ber",
         "#\xC3\x9C"
         "ber|"},
        {"#ho|", "work/home", "#work/home|"},
        {"@|", "ann", "@ann|"},
        {"see [[bu| now", "Budget 2019", "see [[Budget 2019]]| now"},
        {"see [[bu|]]", "Budget 2019", "see [[Budget 2019]]|"},
        {"see [[bu|] now", "Budget 2019", "see [[Budget 2019]]| now"},
        {"* Call >fri| Bob", "2019-03-08", "* Call >2019-03-08| Bob"},
    };
    for (const auto& row : rows) {
        CAPTURE(row.marked);
        const CaretText text = atCaret(row.marked);
        const auto place = placeIn(text);
        REQUIRE(place);
        CHECK(editedText(text.line, app::completionEdit(text.line, *place, row.word)) ==
              row.expected);
    }
}

TEST_CASE("marks of the program's own are offered where they mean something") {
    using enum base::NoteType;
    const struct {
        std::string marked;
        base::NoteType type;
        std::string expected;
    } rows[] = {
        {"* [x] Call @do|", note, "* [x] Call @done(2019-03-05 14:07)|"},
        {"* [x] Call @Do|", calendar, "* [x] Call @done(2019-03-05 14:07)|"},
        {"* Call @do|", calendar, "-"},
        {"* [x] Call @do| @done(2019-03-04)", note, "-"},
        {"* Call @rep|", calendar, "* Call @repeat(1/|5|)"},
        {"* Call @rep|", note, "-"},
        {"* [x] Call @rep|", calendar, "-"},
        {"* Call @repeat(2/3) @rep|", calendar, "-"},
        {"- Call @rep|", calendar, "-"},
        {"* Call @|", calendar, "-"},
        {"* Call #rep|", calendar, "-"},
        {"* Call @repeats|", calendar, "-"},
    };
    for (const auto& row : rows) {
        CAPTURE(row.marked);
        const CaretText text = atCaret(row.marked);
        const auto place = placeIn(text);
        REQUIRE(place);
        const base::LocalTime now{*base::dayFromTagText("2019-03-05"), 14, 7, 33};
        const auto marks =
            app::nextMarks(text.line, *place, {}, {row.type, now, base::HourCycle::twentyFour});
        CHECK(marks.size() <= 1);
        CHECK((marks.empty()
                   ? std::string("-")
                   : editedText(text.line, app::markEdit(text.line, *place, marks.front()))) ==
              row.expected);
    }
}

TEST_CASE("tags are offered part by part, those of many notes first") {
    const app::CompletionWords tags = tagsOf({{"#work", 9},
                                              {"#work/home", 3},
                                              {"#work/home/garden", 1},
                                              {"#work/office", 5},
                                              {"#world", 12},
                                              {"#rework", 2},
                                              {"#due(2019-03-05)", 1},
                                              {"#due(2019-03-06)", 1},
                                              {"#z\xC3\xBCrich", 1}});
    const struct {
        std::string typed;
        std::string expected;
    } rows[] = {
        {"", "world work due( rework z\xC3\xBCrich"},
        {"wor", "world work ~rework"},
        {"WOR", "world work ~rework"},
        {"work", "work/office work/home ~rework!"},
        {"work/", "work/office work/home"},
        {"work/h", "work/home"},
        {"home", "~work/home ~work/home/garden"},
        {"wh", "~work/home ~work/home/garden"},
        {"du", "due("},
        {"due", "due("},
        {"Z\xC3\x9C", "z\xC3\xBCrich"},
        {"world", "!"},
        {"worldx", ""},
        {"kh", ""},
    };
    for (const auto& row : rows) {
        CAPTURE(row.typed);
        CHECK(offeredFor(tags, row.typed) == row.expected);
    }
    CHECK(offeredFor(tags, "", 2) == "world work");
    const auto first = tags.matching("wor", 1).words.front();
    CHECK(first.notes == 12);
    CHECK(first.ranges == std::vector<base::TextRange>{{0, 3}});
    CHECK(tags.matching("", 1).words.front().ranges.empty());
}

TEST_CASE("words come from the notes, and newer ones when the notes have changed") {
    tests::Planner planner{{.isThreaded = false}};
    planner.write(
        "-- Notes/a.md\nBudget 2019\n#work/home @ann @done(2019-03-05)\n"
        "-- Notes/b.md\nList [old]\n"
        "-- Notes/c.md\nBudget 2019\n"
        "-- Notes/e.md\nHow we plan the move to the new office\n"
        "-- Calendar/20190305.txt\n#play\n");
    store::NoteCache& cache = planner.services().noteCache();
    cache.load();
    app::CompletionFeed feed{planner.services()};
    std::size_t told = 0;
    feed.setOnReady([&](CompletionKind) { ++told; });
    const auto offered = [&](CompletionKind kind) {
        feed.words(kind);
        planner.mainQueue().advance({});
        return offeredFor(*feed.words(kind), "");
    };
    CHECK(offered(CompletionKind::hashtag) == "play work");
    CHECK(offered(CompletionKind::mention) == "ann");
    const std::string office = "How we plan the move to the new office";
    CHECK(offered(CompletionKind::noteTitle).find("Budget 2019") != std::string::npos);
    const auto titles = feed.words(CompletionKind::noteTitle);
    CHECK(offeredFor(*titles, "list").empty());
    CHECK(offeredFor(*titles, "bu") == "Budget 2019");
    CHECK(offeredFor(*titles, "budget 2019") == "Budget 2019!");
    CHECK(offeredFor(*titles, "pl") == "~" + office);
    CHECK(offeredFor(*titles, "mov off") == "~" + office);
    CHECK(offeredFor(*titles, "tf").empty());
    CHECK(offered(CompletionKind::day).empty());
    CHECK(told == 3);

    planner.write("-- Notes/d.md\nPlans\n#work #work/office\n");
    cache.reread(base::NoteType::note, "d.md");
    CHECK(offeredFor(*feed.words(CompletionKind::hashtag), "") == "play work");
    CHECK(offered(CompletionKind::hashtag) == "work play");
    CHECK(offered(CompletionKind::mention) == "ann");
}
