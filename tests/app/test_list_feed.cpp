// SPDX-License-Identifier: MIT
#include <functional>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "app/list_feed.h"
#include "app/list_words.h"
#include "app/live_notes.h"
#include "app/planner.h"

using namespace tessaly;
using app::ListFeed;
using app::ListRequest;
using app::ListView;
using tests::Planner;

namespace {

constexpr const char* notes =
    "-- Calendar/20190305.txt\n* Call Bob #home\n* [x] Ask Bob @done(2019-03-04)\n"
    "-- Notes/Plans.txt\n# Plans\n* Paint with Bob >2019-03-09\n* Undated\n"
    "-- Notes/Work/Deep.txt\n# Deep\nBob is deep in thought\n";

std::string textOfRow(const search::SearchResultItem& row) {
    if (row.type == search::SearchResultType::section) {
        return "[" + row.title + "] ";
    }
    if (row.type == search::SearchResultType::loading) {
        return "... ";
    }
    std::string text = row.content;
    if (row.type != search::SearchResultType::note && row.day) {
        text += " ~" + base::fileText(*row.day);
    }
    return text + " | ";
}

/// Notes that are held, the list of them, and what it has told.
struct Listed {
    Planner planner;
    std::vector<ListView> told;
    std::optional<ListFeed> feed;

    explicit Listed(const std::string& files = notes) {
        planner.write(files);
        planner.services().noteCache().load({});
        planner.services().noteCache().waitUntilIdle();
        planner.mainQueue().runPosted();
        feed.emplace(planner.services(), [this](const ListView& view) { told.push_back(view); });
    }

    bool waitFor(const std::function<bool()>& isTrue) {
        return planner.mainQueue().runPostedUntil(isTrue);
    }
    /// The next final rows.
    const ListView& answer() {
        const std::size_t before = told.size();
        REQUIRE(waitFor([&] { return told.size() > before && told.back().isFinal; }));
        return told.back();
    }
    std::string rows(ListRequest request) {
        feed->show(std::move(request));
        return textOf(answer());
    }
    static std::string textOf(const ListView& view) {
        std::string text;
        for (const auto& row : view.results.items) {
            text += textOfRow(row);
        }
        return text + app::countWords(view);
    }
    void change(const std::string& filename, const std::string& text) {
        planner.folder().write(std::string(Planner::root) + "Notes/" + filename, text);
        planner.services().noteCache().reread(base::NoteType::note, filename);
    }
};

search::Filter filterOf(search::FilterParamater parameter) {
    return {search::FilterItem(parameter)};
}

}  // namespace

TEST_CASE("a list tells its rows, with the days that tasks are planned for") {
    const struct {
        const char* query;
        const char* rows;
    } cases[] = {
        {"undated", "[Plans] Undated | 1 result in 1 note"},
        {"with bob", "[Plans] Paint with Bob >2019-03-09 ~20190309 | 1 result in 1 note"},
        {"//inbox", "[Plans] Undated | 1 result in 1 note"},
        {"#home", "[today] Call Bob #home ~20190305 | 1 result in 1 note"},
        {"nowhere", ""},
    };
    Listed listed;
    for (const auto& row : cases) {
        CAPTURE(row.query);
        CHECK(listed.rows({row.query, {}, {}}) == row.rows);
    }
}

TEST_CASE("of several requests only the last is told, and a changed note is found at once") {
    Listed listed;
    listed.feed->show({"bob", {}, {}});
    listed.feed->show({"deep", {}, {}});
    listed.feed->show({"undated", {}, {}});
    CHECK(Listed::textOf(listed.answer()) == "[Plans] Undated | 1 result in 1 note");
    for (const ListView& view : listed.told) {
        CHECK(view.request.query == "undated");
    }
    CHECK(listed.told.front().rows == ListView::Rows::ofAnother);

    listed.change("Plans.txt", "# Plans\n* Undated twice\n");
    const ListView& again = listed.answer();
    CHECK(again.rows == ListView::Rows::again);
    CHECK(Listed::textOf(again) == "[Plans] Undated twice | 1 result in 1 note");

    const std::size_t before = listed.told.size();
    listed.feed->close();
    listed.change("Plans.txt", "# Plans\n");
    listed.planner.services().noteCache().waitUntilIdle();
    listed.planner.mainQueue().runPosted();
    CHECK(listed.told.size() == before);
}

TEST_CASE("the rows of another request are gone when it takes long to answer") {
    Listed listed;
    listed.rows({"bob", {}, {}});
    listed.feed->show({"undated", {}, {}});
    // No job of the main queue runs but the timer's: as while an answer is on its way.
    listed.planner.services().searchHelper().searchId++;
    listed.planner.mainQueue().advance(ListFeed::patience);
    CHECK(Listed::textOf(listed.told.back()) == "... Searching…");
    CHECK(listed.told.back().request.query == "undated");
}

TEST_CASE("more rows come when they are wanted, until there are no more") {
    std::string many = "-- Notes/Many.txt\n# Many\n";
    constexpr std::size_t tasks = ListFeed::firstRows * 2;
    for (std::size_t task = 0; task < tasks; ++task) {
        many += "* task " + std::to_string(task) + "\n";
    }
    Listed listed(many);
    listed.feed->show({"task", {}, {}});
    CHECK(app::countWords(listed.answer()) == "400 results, the first 200 shown");
    listed.feed->showMore();
    const ListView& more = listed.answer();
    CHECK(app::countWords(more) == "400 results in 1 note");
    CHECK(more.rows == ListView::Rows::again);
    const std::size_t before = listed.told.size();
    listed.feed->showMore();
    listed.planner.mainQueue().runPosted();
    CHECK(listed.told.size() == before);
}

TEST_CASE("options narrow a search, stay while it is typed on, and make a view") {
    using search::FilterParamater;
    Listed listed;
    listed.rows({"bob", {}, {}});
    listed.feed->setOptions(filterOf(FilterParamater::done));
    CHECK(Listed::textOf(listed.answer()) ==
          "[today] Ask Bob @done(2019-03-04) ~20190305 | 1 result in 1 note");
    CHECK(listed.rows({"ask", {}, {}}) ==
          "[today] Ask Bob @done(2019-03-04) ~20190305 | 1 result in 1 note");

    app::ViewSaved saved;
    const auto save = [&](const std::string& name) {
        saved = {};
        listed.feed->saveAsView(name, [&](const app::ViewSaved& told) { saved = told; });
        REQUIRE(listed.waitFor([&] { return !saved.text.empty(); }));
        return saved.text;
    };
    CHECK(save("Asked") == "Saved the view “Asked”");
    CHECK(save("asked") == "Replaced the view “Asked”");
    save("");
    CHECK(saved.isFailure);

    CHECK(listed.rows({{}, "Asked", "Asked"}) ==
          "[today] Ask Bob @done(2019-03-04) ~20190305 | 1 result in 1 note");
    CHECK(listed.told.back().filter.size() == 2);
    listed.rows({{}, "Missing", "Missing"});
    CHECK(listed.told.back().trouble != "");
    CHECK(app::emptyWords(listed.told.back()).title == "This list cannot be shown");

    // Another list than a search that is typed on: the options were of that one.
    CHECK(listed.rows({"#home", {}, "home"}) ==
          "[today] Call Bob #home ~20190305 | 1 result in 1 note");
    listed.rows({"//inbox", {}, {}});
    listed.feed->saveAsView("Box", [&](const app::ViewSaved& told) { saved = told; });
    CHECK(saved.text == "This list is always there and need not be saved.");
}

TEST_CASE("where nothing is found, it says what is not read as it looks") {
    Listed listed;
    listed.rows({"bob on:tomorow", {}, {}});
    REQUIRE(listed.waitFor([&] { return !listed.told.back().remarks.empty(); }));
    CHECK(app::emptyWords(listed.told.back()).hints ==
          std::vector<std::string>{"“on:tomorow” is looked for as text: no day is called so"});
    listed.rows({"//inbox", {}, {}});
    CHECK(listed.told.back().remarks.empty());
}

TEST_CASE("nothing is told once the feed has gone, whatever is on its way") {
    Listed listed;
    for (int round = 0; round < 20; ++round) {
        listed.feed->show({round % 2 == 0 ? "bob" : "deep", {}, {}});
        listed.change("Plans.txt", "# Plans\n* Undated " + std::to_string(round) + "\n");
    }
    listed.feed.reset();
    const std::size_t before = listed.told.size();
    listed.planner.services().noteCache().waitUntilIdle();
    listed.planner.services().searchHelper().prepare();
    listed.planner.mainQueue().advance(std::chrono::seconds(1));
    CHECK(listed.told.size() == before);
}
