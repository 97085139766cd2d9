// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <future>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <doctest/doctest.h>

#include "base/inline_executor.h"
#include "base/manual_executor.h"
#include "base/thread_pool.h"
#include "brute_force.h"
#include "search/search_helper.h"
#include "store/note_cache_fixture.h"

using namespace tessaly;

namespace {

/// Calls a hook whenever the world is asked for something.
class HookedClock final : public ports::Clock {
public:
    HookedClock(ports::Clock& clock, std::function<void()> hook)
        : _clock(clock), _hook(std::move(hook)) {}
    base::Instant now() override {
        _hook();
        return _clock.now();
    }
    base::LocalTime local(base::Instant instant) override {
        _hook();
        return _clock.local(instant);
    }

private:
    ports::Clock& _clock;
    const std::function<void()> _hook;
};

struct Delivery {
    std::string query;
    search::SearchResults results;
    bool isFinal = false;
};

struct Desk : tests::CacheFixture {
    using CacheFixture::CacheFixture;

    std::function<void()> hook = [] {};
    HookedClock hooked{clock, [this] { hook(); }};
    grammar::DateStringHelper names{base::LocaleFormats("en_US")};
    search::SearchSettings searchSettings;
    std::vector<calendar::CachedCalendarItem> items;

    std::mutex mutex;
    std::vector<Delivery> delivered;
    std::vector<std::int64_t> finished;

    search::SearchHelper::Tools tools(base::Executor& on) {
        return {.cache = *cache,
                .executor = on,
                .clock = hooked,
                .names = names,
                .settings =
                    [this] {
                        hook();
                        return searchSettings;
                    },
                .parseDay =
                    [this](std::string_view text) {
                        hook();
                        return base::dayFromTagText(text);
                    },
                .calendarItems =
                    [this](base::Day, base::Day) {
                        hook();
                        return items;
                    }};
    }

    search::SearchHelper::Request request(std::int64_t id, std::string query,
                                          search::Filter filter = {}) {
        return {
            .query = std::move(query),
            .filter = std::move(filter),
            .results =
                [this](const std::string& of, const search::SearchResults& results, bool isFinal) {
                    const std::scoped_lock lock(mutex);
                    delivered.push_back({of, results, isFinal});
                    hook();
                },
            .finished =
                [this, id] {
                    const std::scoped_lock lock(mutex);
                    finished.push_back(id);
                }};
    }

    void start(search::SearchHelper& helper, const std::string& query,
               const search::Filter& filter = {}) {
        const std::int64_t id = ++helper.searchId;
        helper.search(id, request(id, query, filter));
    }
};

std::vector<tests::PlainNote> plainNotes(const store::NoteCache& cache, Desk& desk) {
    std::vector<tests::PlainNote> notes;
    cache.generalNotes()->forEach([&](const auto& item) {
        const store::LoadedNote& note = item->note;
        if (!note.isFolder) {
            notes.push_back({base::NoteType::note,
                             note.filename,
                             note.title,
                             std::string(note.content.view()),
                             {},
                             desk.clock.local(note.contentChangedDate).day,
                             note.contentChangedDate,
                             note.contentCreatedDate});
        }
    });
    cache.calendarNotes()->forEach([&](const auto& item) {
        if (item->stamp) {
            notes.push_back({base::NoteType::calendar, item->model.filename,
                             desk.names.relativeDay(*item->model.date, desk.clock.today()),
                             std::string(item->content.view()), item->model.date,
                             desk.clock.local(item->stamp->modified).day, item->stamp->modified,
                             item->stamp->created});
        }
    });
    return notes;
}

std::vector<tests::ForcedRow> rowsOf(const search::SearchResults& results) {
    std::vector<tests::ForcedRow> rows;
    for (const search::SearchResultItem& item : results.items) {
        if (item.type == search::SearchResultType::section ||
            item.type == search::SearchResultType::loading || item.filename.empty()) {
            continue;
        }
        rows.push_back({item.noteType, item.filename, {}});
        if (item.type != search::SearchResultType::note) {
            rows.back().line = tests::FoundLine{*item.lineIndex, 0, item.lineType};
        }
    }
    return rows;
}

std::string words(const std::vector<tests::ForcedRow>& rows) {
    std::string text;
    for (const tests::ForcedRow& row : rows) {
        text += std::string(base::rawValue(row.noteType)) + '/' + row.filename +
                (row.line ? ':' + std::to_string(row.line->lineIndex) : "") + '\n';
    }
    return text;
}

const std::initializer_list<std::pair<const char*, std::string>> someNotes = {
    {"Notes/Plans.txt", "# Plans\n* Call Bob #work\n* [x] call anna >2019-03-06\ncall nobody\n"},
    {"Notes/Work/\xC3\x84pfel.txt", "# \xC3\x84pfel\n\xC3\xA4pfel kaufen\n* \xC3\x84PFEL @anna\n"},
    {"Notes/Work/Bob.txt", "# Bob\nnothing here\n* [-] later #working\n"},
    {"Notes/calls.txt", "# calls\n- a call\n* bob, please call\n* #work/deep done\n"},
    {"Calendar/20190305.txt", "* call bob\n* [>] plan #Work\n"},
    {"Calendar/20190301.txt", "quiet day\n* call @anna(now)\n"},
    {"Calendar/20190310.txt", "a call\n"},
};

}  // namespace

TEST_CASE("the rows are those that a look at each line gives") {
    struct Row {
        const char* query;
        search::SearchQuery meant;
        const char* tag;
        search::Filter filter;
    };
    const auto text = [](const char* whole, std::vector<std::string> parts = {}) {
        search::SearchQuery query;
        query.text = whole;
        query.words = std::move(parts);
        return query;
    };
    const search::Filter openOnly{search::FilterItem(search::FilterParamater::open)};
    const Row rows[] = {
        {"call", text("call"), "", {}},
        {" CALL Bob ", text("call bob", {"call", "bob"}), "", {}},
        {"\xC3\x84PF", text("\xC3\xA4pf"), "", {}},
        {"#work", {}, "#work", {}},
        {"  @anna ", {}, "@anna", {}},
        {"#wor", {}, "#wor", {}},
        {"#work ca", text("#work ca", {"#work", "ca"}), "", {}},
        {",please", {}, ",please", {}},
        {"", text(""), "", openOnly},
        {"//bob", text("//bob"), "", openOnly},
        {"call", text("call"), "", openOnly},
        {"@anna", {}, "@anna", openOnly},
    };
    Desk desk(someNotes);
    desk.load();
    const auto notes = plainNotes(*desk.cache, desk);
    base::ThreadPool pool(2);
    for (const base::SortType sortBy :
         {base::SortType::title, base::SortType::modified, base::SortType::created}) {
        desk.searchSettings.sortBy = sortBy;
        search::SearchHelper helper(desk.tools(pool));
        for (const Row& row : rows) {
            INFO(std::string(row.query), " by ", base::rawValue(sortBy));
            desk.delivered.clear();
            std::promise<void> isOver;
            const std::int64_t id = ++helper.searchId;
            auto request = desk.request(id, row.query, row.filter);
            request.finished = [&isOver] { isOver.set_value(); };
            helper.search(id, request);
            isOver.get_future().wait();
            const tests::Asked asked{
                .queries = *row.tag ? std::vector<search::SearchQuery>{} : std::vector{row.meant},
                .filter =
                    search::conditionsOf(row.filter, desk.clock.today(), base::DayOfWeek::monday),
                .tag = row.tag,
                .markers = {}};
            REQUIRE(desk.delivered.size() == 1);
            const Delivery& found = desk.delivered.front();
            CHECK(found.query == row.query);
            CHECK(found.isFinal);
            const auto expected = tests::searchAllByForce(notes, asked, sortBy);
            CHECK(words(rowsOf(found.results)) == words(expected));
            CHECK(found.results.total == expected.size());
        }
    }
}

TEST_CASE("an empty query or a command without a filter is a list, delivered once") {
    struct Row {
        const char* query;
        std::size_t rows;
    };
    const Row rows[] = {{"", 7}, {" \n", 7}, {"//recent", 7}, {"// Inbox ", 4}, {"//bob", 0}};
    Desk desk(someNotes);
    desk.load();
    base::ManualExecutor executor;
    base::ManualExecutor::Engine engine(1);
    search::SearchHelper helper(desk.tools(executor));
    for (const Row& row : rows) {
        INFO(std::string(row.query));
        desk.delivered.clear();
        desk.finished.clear();
        desk.start(helper, row.query);
        CHECK(desk.delivered.empty());  // the call returns before there is an answer
        executor.runAll(engine);
        REQUIRE(desk.delivered.size() == 1);
        CHECK(desk.delivered.front().query == row.query);
        CHECK(desk.delivered.front().isFinal);
        CHECK(desk.delivered.front().results.total == row.rows);
        CHECK(desk.finished == std::vector<std::int64_t>{helper.searchId});
    }
}

TEST_CASE("a request that is not the newest any more calls nothing, whenever that happens") {
    Desk desk(someNotes);
    desk.load();
    calendar::CachedCalendarItem event;
    event.title = "call mother";
    event.occuranceDates = {desk.clock.today()};
    desk.items = {event};
    for (const char* query : {"call on:2019-03-05", "call", "#work", "", "//inbox"}) {
        for (int most = 0, hooks = most; hooks >= most; ++most) {
            INFO(std::string(query), " ends at hook ", most);
            desk.delivered.clear();
            desk.finished.clear();
            base::ManualExecutor executor;
            base::ManualExecutor::Engine engine(1);
            search::SearchHelper helper(desk.tools(executor));
            std::size_t deliveredBefore = 0;
            hooks = 0;
            desk.hook = [&] {
                if (hooks++ == most) {
                    ++helper.searchId;
                    deliveredBefore = desk.delivered.size();
                }
            };
            desk.start(helper, query);
            executor.runAll(engine);
            desk.hook = [] {};
            if (hooks > most) {
                CHECK(desk.delivered.size() == deliveredBefore);
                CHECK(desk.finished.empty());
            } else {
                CHECK(desk.finished.size() == 1);
            }
        }
    }
}

TEST_CASE("requests that wait are dropped when a newer one comes, and when the helper ends") {
    Desk desk(someNotes);
    desk.load();
    for (unsigned seed = 1; seed <= 20; ++seed) {
        base::ManualExecutor executor(2);
        base::ManualExecutor::Engine engine(seed);
        desk.delivered.clear();
        desk.finished.clear();
        {
            search::SearchHelper helper(desk.tools(executor));
            for (const char* query : {"c", "ca", "cal"}) {
                desk.start(helper, query);
                if (engine() % 2 == 0) {
                    helper.prepare();
                }
            }
            executor.runAll(engine);
            REQUIRE(desk.delivered.size() == 1);
            CHECK(desk.delivered.front().query == "cal");
            CHECK(desk.finished == std::vector<std::int64_t>{3});
            desk.start(helper, "call");
        }
        executor.runAll(engine);
        CHECK(desk.delivered.size() == 1);
    }
}

TEST_CASE("of what is typed fast, the last is answered once and nothing older after it") {
    Desk desk(someNotes);
    desk.load();
    const std::string typed = "call bob about work ";
    base::ThreadPool pool(3);
    search::SearchHelper helper(desk.tools(pool));
    for (int round = 0; round < 10; ++round) {
        desk.delivered.clear();
        desk.finished.clear();
        std::promise<void> isOver;
        for (std::size_t end = 1; end <= typed.size(); ++end) {
            const std::int64_t id = ++helper.searchId;
            auto request = desk.request(id, typed.substr(0, end));
            if (end == typed.size()) {
                request.finished = [&isOver] { isOver.set_value(); };
            }
            helper.search(id, request);
            if (round % 2 == 0) {
                std::this_thread::yield();
            }
        }
        isOver.get_future().wait();
        const std::scoped_lock lock(desk.mutex);
        REQUIRE_FALSE(desk.delivered.empty());
        CHECK(desk.delivered.back().query == typed);
        for (std::size_t index = 1; index < desk.delivered.size(); ++index) {
            CHECK(desk.delivered[index - 1].query.size() < desk.delivered[index].query.size());
        }
        CHECK(std::is_sorted(desk.finished.begin(), desk.finished.end()));
    }
}

TEST_CASE("what was asked before makes no difference to an answer") {
    Desk desk(someNotes);
    desk.load();
    base::InlineExecutor here;
    search::SearchHelper kept(desk.tools(here));
    const auto answer = [&](search::SearchHelper& helper, const std::string& query,
                            const search::Filter& filter) {
        desk.start(helper, query, filter);
        const search::SearchResults& results = desk.delivered.back().results;
        return std::to_string(results.total) + '\n' + words(rowsOf(results));
    };
    int round = 0;
    for (const std::string typed :
         {"nobody", "body", "#working", "please, bob", "quiet day", "-quiet", "\"quiet\" title:mar",
          "\xC3\xA4pfel", "is:done anna", "plans"}) {
        for (std::size_t end = 1; end <= typed.size(); ++end) {
            const std::string query = typed.substr(0, end);
            search::SearchHelper fresh(desk.tools(here));
            for (const search::Filter& filter :
                 {search::Filter{}, {search::FilterItem(search::FilterParamater::done)}}) {
                INFO(query);
                CHECK(answer(kept, query, filter) == answer(fresh, query, filter));
            }
            if (++round % 7 == 0) {
                desk.folder.write("data/Notes/New.txt", typed + "\n* " + query + "\n");
                desk.update({"Notes/New.txt"});
            }
        }
    }
}

TEST_CASE("a change of the cache is in the next answer") {
    Desk desk(someNotes);
    desk.load();
    base::ManualExecutor executor;
    base::ManualExecutor::Engine engine(1);
    search::SearchHelper helper(desk.tools(executor));
    const auto total = [&] {
        desk.start(helper, "unheard");
        executor.runAll(engine);
        return desk.delivered.back().results.total;
    };
    CHECK(total() == 0);
    desk.folder.write("data/Notes/New.txt", "# New\n* unheard\n");
    desk.update({"Notes/New.txt"});
    CHECK(total() == 1);
}
