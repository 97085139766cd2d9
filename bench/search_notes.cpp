// SPDX-License-Identifier: MIT
// search_notes ROOT: holds a data folder's notes in memory and searches them as asked for on
// standard input, a line each; a line of JSON comes back, times in milliseconds. 2019-12-31 is
// today.
//   type ROUNDS TEXT    TEXT is typed so many times, each letter after the search for what stands
//                       there has ended: a time a letter, from the request to its end, and that of
//                       the processor
//   whole ROUNDS TEXT   as `type`, but TEXT is there at once
//   find TEXT           one search for all rows: rows, notes that have some, task rows
//   end ROUNDS TEXT     while a search for TEXT runs, another request comes: from there to when
//   that
//                       one's turn has come
//   change ROUNDS       one note changes: the notes are made ready for searches again
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <iostream>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <fmt/core.h>
#include <fmt/ranges.h>

#include "base/locale_formats.h"
#include "base/log.h"
#include "base/thread_pool.h"
#include "data_folder.h"
#include "moment.h"
#include "platform/fixed_clock.h"
#include "platform/posix_file_system.h"
#include "search/search_helper.h"
#include "store/note_cache.h"

namespace {

using namespace tessaly;
using namespace std::chrono_literals;
using bench::Moment;

// The main thread only waits.
std::size_t poolThreads() {
    return std::max(2U, std::thread::hardware_concurrency());
}

/// `text` as it stands after each letter, in whole UTF-8 characters.
std::vector<std::string> typed(std::string_view text) {
    std::vector<std::string> prefixes;
    for (std::size_t end = 1; end <= text.size(); ++end) {
        const bool isInside = end < text.size() && (text[end] & 0xC0) == 0x80;
        if (!isInside) {
            prefixes.emplace_back(text.substr(0, end));
        }
    }
    return prefixes;
}

class Session {
public:
    explicit Session(std::string root)
        : _pool(poolThreads()),
          _folder(std::move(root), _files, _pool),
          _cache({_folder.dataStore, _pool, _clock, [] { return store::CountSettings(); }, {}}),
          _helper({_cache, _pool, _clock, _names, [this] { return settings(); },
                   [this](std::string_view text) { return day(text); }}) {
        base::setRoutineLog(false);
        std::promise<void> loaded;
        _cache.setOnHasLoaded([&loaded] { loaded.set_value(); });
        _cache.load();
        loaded.get_future().wait();
        const Moment began = Moment::now();
        (void)run("//nothing", 1);
        fmt::print("{{\"ready\": {}}}\n", (Moment::now() - began).passed);
    }

    void type(std::istream& words) {
        const auto [rounds, text] = roundsAndText(words);
        searchEach(rounds, typed(text));
    }
    void whole(std::istream& words) {
        const auto [rounds, text] = roundsAndText(words);
        searchEach(rounds, {text});
    }

    void find(std::istream& words) {
        std::string text;
        std::getline(words >> std::ws, text);
        const search::SearchResults found = run(text, 0);
        std::set<std::pair<base::NoteType, std::string>> notes;
        std::size_t tasks = 0;
        for (const search::SearchResultItem& row : found.items) {
            tasks += row.type == search::SearchResultType::calendarTodo ||
                     row.type == search::SearchResultType::noteTodo;
            if (!row.filename.empty()) {
                notes.emplace(row.noteType, row.filename);
            }
        }
        fmt::print("{{\"rows\": {}, \"notes\": {}, \"tasks\": {}}}\n", found.total, notes.size(),
                   tasks);
    }

    void end(std::istream& words) {
        const auto [rounds, text] = roundsAndText(words);
        std::vector<double> times;
        for (std::size_t round = 0; round < rounds; ++round) {
            _helper.search(++_helper.searchId, {text, {}, rowsShown, {}, {}});
            std::this_thread::sleep_for(1ms);
            const Moment began = Moment::now();
            (void)run("//nothing", 1);
            times.push_back((turn() - began).passed);
        }
        fmt::print("{{\"times\": {}}}\n", times);
    }

    void change(std::istream& words) {
        std::size_t rounds = 0;
        words >> rounds;
        search::SearchableNotes notes(
            _pool, _names, [this](base::Instant instant) { return _clock.local(instant); });
        const search::NoteLooks looks{base::SortType::modified, _clock.today(), {}};
        auto general = _cache.generalNotes();
        (void)notes.of(general, _cache.calendarNotes(), looks);
        std::vector<double> times;
        for (std::size_t round = 0; round < rounds; ++round) {
            const auto& run = general->chunk(round * 7919 % general->chunks());
            auto changed = std::make_shared<store::GeneralNote>(*run[round % run.size()]);
            changed->note.contentChangedDate += 1h;
            const store::GeneralNotes::Change change{changed->note.filename, changed};
            general = std::make_shared<const store::GeneralNotes>(general->with({&change, 1}));
            const Moment began = Moment::now();
            (void)notes.of(general, _cache.calendarNotes(), looks);
            times.push_back((Moment::now() - began).passed);
        }
        fmt::print("{{\"times\": {}}}\n", times);
    }

private:
    void searchEach(std::size_t rounds, const std::vector<std::string>& prefixes) {
        std::vector<std::vector<double>> times(prefixes.size());
        std::vector<std::vector<double>> cpu(prefixes.size());
        std::vector<std::size_t> rows;
        for (std::size_t round = 0; round < rounds; ++round) {
            rows.clear();
            (void)run(unheard, rowsShown);
            for (std::size_t letter = 0; letter < prefixes.size(); ++letter) {
                const Moment began = Moment::now();
                rows.push_back(run(prefixes[letter], rowsShown).total);
                const bench::Taken taken = Moment::now() - began;
                times[letter].push_back(taken.passed);
                cpu[letter].push_back(taken.cpu);
            }
        }
        fmt::print("{{\"times\": {}, \"cpu\": {}, \"rows\": {}}}\n", times, cpu, rows);
    }

    /// In no note: what was found before it narrows nothing that comes after it.
    static constexpr const char* unheard = "qzxqzx";
    static constexpr std::size_t rowsShown = 100;  ///< the goals are about so many, and the total

    static std::pair<std::size_t, std::string> roundsAndText(std::istream& words) {
        std::pair<std::size_t, std::string> found;
        words >> found.first >> std::ws;
        std::getline(words, found.second);
        return found;
    }

    search::SearchSettings settings() {
        const std::scoped_lock lock(_mutex);
        _turn = Moment::now();
        return {};
    }
    /// When the last request's turn came.
    Moment turn() {
        const std::scoped_lock lock(_mutex);
        return _turn;
    }

    std::optional<base::Day> day(std::string_view text) {
        return text == "today" ? std::optional(_clock.today()) : base::dayFromTagText(text);
    }

    /// Returns when the search has ended.
    search::SearchResults run(const std::string& query, std::size_t mostRows) {
        std::promise<void> finished;
        search::SearchResults last;
        _helper.search(
            ++_helper.searchId,
            {query,
             {},
             mostRows,
             [&last, mostRows](const std::string&, const search::SearchResults& results, bool) {
                 last.total = results.total;
                 if (mostRows == 0) {  // else it would be the copy that is timed
                     last = results;
                 }
             },
             [&finished] { finished.set_value(); }});
        finished.get_future().wait();
        return last;
    }

    platform::PosixFileSystem _files;
    base::ThreadPool _pool;
    bench::DataFolder _folder;
    platform::FixedClock _clock{platform::parseTime("2019-12-31T12:00:00").value()};
    grammar::DateStringHelper _names{base::LocaleFormats("en_US")};
    store::NoteCache _cache;

    std::mutex _mutex;  ///< guards what follows
    Moment _turn{};

    search::SearchHelper _helper;
};

struct Command {
    std::string_view name;
    void (Session::*run)(std::istream& words);
};
constexpr Command commands[] = {{"type", &Session::type},
                                {"whole", &Session::whole},
                                {"find", &Session::find},
                                {"end", &Session::end},
                                {"change", &Session::change}};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        fmt::print(stderr, "usage: search_notes ROOT\n");
        return 2;
    }
    const auto session = std::make_unique<Session>(std::filesystem::absolute(argv[1]));
    std::fflush(stdout);
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        std::string name;
        words >> name;
        const auto command = std::find_if(std::begin(commands), std::end(commands),
                                          [&name](const Command& row) { return row.name == name; });
        if (command == std::end(commands)) {
            fmt::print(stderr, "search_notes: unknown request: {}\n", line);
            return 2;
        }
        ((*session).*command->run)(words);
        std::fflush(stdout);
    }
    std::_Exit(0);  // nobody waits for the notes to be taken apart
}
