// SPDX-License-Identifier: MIT
#include <atomic>
#include <chrono>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "base/inline_executor.h"
#include "base/thread_pool.h"
#include "notes_in_memory.h"
#include "search/search_plan.h"
#include "search/search_walk.h"

using namespace tessaly;
using namespace std::chrono_literals;

namespace {

const grammar::DateStringHelper names{base::LocaleFormats("en_US")};
constexpr base::Day today = 2019y / 3 / 5;

/// Far more notes than a screen has rows.
std::shared_ptr<const search::NotesInOrder> manyNotes() {
    static const auto notes = [] {
        std::vector<store::GeneralNotes::Pointer> items;
        grammar::NoteScanner scanner;
        for (int index = 10'000; index < 16'000; ++index) {
            const std::string number = std::to_string(index);
            const std::string text = "# Note " + number + "\n* common task\n" +
                                     (index % 500 == 0 ? "rare line #tag/sub\n" : "#tagged\n") +
                                     (index < 10'200 ? "some #early\n" : "");
            items.push_back(store::generalNote(number + ".txt", base::SharedText(text),
                                               tests::stampOf({text}), {}, scanner));
        }
        base::InlineExecutor here;
        search::SearchableNotes searchable(here, names, [](base::Instant instant) {
            return base::LocalTime{std::chrono::floor<std::chrono::days>(instant)};
        });
        return searchable.of(std::make_shared<const store::GeneralNotes>(std::move(items)),
                             std::make_shared<const store::CalendarNotes>(), {});
    }();
    return notes;
}

struct Walked {
    bool isComplete = false;
    search::SearchResults results;
    std::vector<search::SearchResults> early;
    long askedWhenStale = 0;  ///< notes
};

/// `asksUntilStale`: of whether it is stale, so many are answered by no.
Walked walk(base::Executor& executor, const std::string& query, std::size_t mostRows,
            long asksUntilStale = -1) {
    const auto plan = search::planSearch(query, {}, today, base::DayOfWeek::monday, {});
    const bool isTag = plan.route == search::SearchRoute::tags;
    search::FoundRows rows(isTag ? search::FoundRows::Kind::tag : search::FoundRows::Kind::text,
                           search::ResultRows(names, today, {.most = mostRows}));
    Walked walked;
    std::atomic<long> asks = 0;
    std::atomic<long> askedWhenStale = 0;
    std::atomic<bool> isCalledWhenStale = false;
    const auto isOver = [&] { return asksUntilStale >= 0 && asks > asksUntilStale; };
    const search::SearchWalk::Options options{
        .ask =
            [&](const search::SearchedNote& note, search::Collect collect,
                search::NoteMatches& matches) {
                askedWhenStale += isOver() ? 1 : 0;
                plan.matcher->match(note, collect, matches);
            },
        .isStale = [&] { return asksUntilStale >= 0 && ++asks > asksUntilStale; },
        .onFirstRows =
            [&] {
                isCalledWhenStale = isOver();
                walked.early.push_back(rows.rows().results(false));
            }};
    walked.isComplete = search::SearchWalk(*manyNotes(), rows, options).run(executor);
    walked.results = rows.rows().take();
    walked.askedWhenStale = askedWhenStale;
    CHECK_FALSE(isCalledWhenStale);
    return walked;
}

std::vector<std::string> shown(const search::SearchResults& results) {
    std::vector<std::string> rows;
    for (const search::SearchResultItem& item : results.items) {
        if (item.type != search::SearchResultType::loading) {
            rows.push_back(std::to_string(item.id) + ' ' + item.filename + ' ' + item.title + ' ' +
                           item.content + ' ' + std::to_string(static_cast<int>(item.position)));
        }
    }
    return rows;
}

}  // namespace

TEST_CASE("threads find what one thread finds; first rows are those that the list begins with") {
    struct Row {
        const char* query;
        std::size_t mostRows;
        std::size_t total;
        bool hasEarly;
    };
    const Row rows[] = {
        {"common", 1000, 6000, true}, {"common", 10, 6000, true}, {"rare", 1000, 12, false},
        {"nowhere", 1000, 0, false},  {"#tag", 1000, 12, false},  {"#tagg", 1000, 5988, false},
        {"#tagged", 50, 5988, true},  {"#early", 150, 200, true}, {"line", 0, 12, false},
    };
    base::InlineExecutor here;
    base::ThreadPool pool(3);
    for (const Row& row : rows) {
        INFO(std::string(row.query), ' ', row.mostRows);
        const Walked alone = walk(here, row.query, row.mostRows);
        const Walked together = walk(pool, row.query, row.mostRows);
        CHECK(alone.isComplete);
        CHECK(alone.results.total == row.total);
        CHECK(shown(together.results) == shown(alone.results));
        CHECK(together.results.total == row.total);
        CHECK((alone.early.size() == 1) == row.hasEarly);
        for (const Walked* walked : {&alone, &together}) {
            for (const search::SearchResults& early : walked->early) {
                CHECK(early.items.back().type == search::SearchResultType::loading);
                auto first = shown(walked->results);
                const auto earlyRows = shown(early);
                first.resize(std::min(first.size(), earlyRows.size()));
                CHECK(earlyRows == first);
            }
        }
    }
}

TEST_CASE("a walk that becomes stale ends at once, wherever it is") {
    base::InlineExecutor here;
    base::ThreadPool pool(3);
    for (long asks = 0; asks < 6000; asks += 1 + asks / 7) {
        const Walked alone = walk(here, "common", 100, asks);
        CHECK_FALSE(alone.isComplete);
        CHECK(alone.askedWhenStale == 0);
        // Each of the others may have been told just before.
        const Walked together = walk(pool, "#tagg", 100, asks);
        CHECK_FALSE(together.isComplete);
        CHECK(together.askedWhenStale <= static_cast<long>(pool.width()));
    }
}
