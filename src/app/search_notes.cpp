// SPDX-License-Identifier: MIT
#include "app/search_notes.h"

#include <iterator>
#include <span>
#include <utility>

#include <fmt/format.h>

#include "app/candidate_lines.h"
#include "app/match_collector.h"
#include "app/matched_notes.h"
#include "app/note_address.h"
#include "base/localisation.h"
#include "base/weekday.h"
#include "search/default_list.h"
#include "search/filter_conditions.h"
#include "search/found_rows.h"
#include "search/search_plan.h"
#include "search/search_query.h"
#include "settings/run_time_state.h"
#include "store/note_document.h"

namespace tessaly::app {
namespace {

using search::ResultRows;
using search::SearchRoute;

search::ParseDay dayParser(Services& services) {
    return [&names = services.dateStrings(), today = services.today()](std::string_view text) {
        return parseDay(text, today, names.formats());
    };
}

search::SearchPlan planOf(Services& services, const NoteSearch& wanted) {
    return search::planSearch(wanted.query, wanted.filter, services.today(),
                              services.globals().firstDayOfWeek(), dayParser(services));
}

/// The notes of the inbox, out of those that one thread reads.
class InboxCollector {
public:
    InboxCollector(const NoteNames& names, const grammar::MarkerSettings& markers, KeptText kept)
        : _names(names), _markers(markers), _kept(kept) {}

    void add(const store::NoteFile& file) {
        search::SearchedNote searched;
        searched.type = file.type;
        searched.filename = file.filename;
        searched.text = store::decodedText(file.bytes).value_or(std::string_view());
        searched.foldedText = searched.text;
        const auto tasks = search::tasksOf(searched.text, searched.text, _markers, _scanner);
        searched.tasks = tasks;
        search::NoteMatches matches = search::inboxOf(searched);
        if (matches.rows > 0) {
            MatchedNote& note = _notes.emplace_back(_names.noteOf(
                file, std::nullopt, _names.nameOf(file, std::nullopt), searched.text));
            note.matches = std::move(matches);
            keepText(note, searched, _kept);
        }
    }

    std::vector<MatchedNote> take() { return std::move(_notes); }

private:
    const NoteNames& _names;
    const grammar::MarkerSettings _markers;
    const KeptText _kept;
    grammar::NoteScanner _scanner;
    std::vector<MatchedNote> _notes;
};

using Newest = search::NewestNotes<MatchedNote>;

void addIfRecent(Newest& newest, const store::NoteFile& file, const NoteNames& names) {
    const search::NoteAge age{file.stamp.modified, file.type, file.filename};
    const NoteDay noteDay = noteDayOf(file);
    if (noteDay.isNote && newest.wants(age)) {
        const auto text = store::decodedText(file.bytes).value_or(std::string_view());
        MatchedNote note = names.noteOf(file, noteDay.day, names.nameOf(file, noteDay.day), text);
        note.text = text;
        newest.add(age, std::move(note));
    }
}

/// One search on its way.
class Search {
public:
    Search(Services& services, const NoteSearch& wanted, store::NoteReader::Options options)
        : _services(services),
          _wanted(wanted),
          _options(std::move(options)),
          _settings(searchSettings(services)),
          _plan(planOf(services, wanted)),
          _names(services.dateStrings(), services.today()) {
        _options.types = {base::NoteType::calendar, base::NoteType::note};
        _options.seenPages = store::NoteReader::SeenPages::kept;
    }

    FoundNotes run() {
        if (_plan.route != SearchRoute::defaultList) {
            return findMatches(*_plan.matcher);
        }
        switch (_plan.list) {
            case search::DefaultList::recent: return findRecent();
            case search::DefaultList::inbox: return findInbox();
            case search::DefaultList::none: break;
        }
        return {};
    }

private:
    KeptText kept() const {
        return _wanted.objects == ResultRows::Objects::made ? KeptText::whole : KeptText::matches;
    }

    search::LocalTimeOf localTimes() const {
        return [&clock = _services.ports().clock](base::Instant instant) {
            return clock.local(instant);
        };
    }

    ResultRows noRows() const {
        return ResultRows(
            _services.dateStrings(), _services.today(),
            {_wanted.mostRows, _wanted.objects, _settings.counting, _plan.agendaDate});
    }

    /// Calls `add(collector, file)` for all notes, with a copy of `empty` for each thread.
    template <class Collector, class Add>
    std::vector<Collector> visitAll(const Collector& empty, store::ReadReport& report,
                                    const Add& add) {
        const store::NoteCache& cache = _services.noteCache();
        std::vector<Collector> collectors(cache.workers(), empty);
        report = cache.visit(_options, [&](std::size_t worker, const store::NoteFile& file) {
            add(collectors[worker], file);
        });
        return collectors;
    }

    /// The rows of the notes that the collectors take.
    template <class Collector>
    FoundNotes find(const Collector& empty) {
        FoundNotes found;
        std::vector<std::vector<MatchedNote>> taken;
        std::vector<const MatchedNote*> notes;
        const auto add = [](Collector& one, const store::NoteFile& file) { one.add(file); };
        for (Collector& collector : visitAll(empty, found.report, add)) {
            for (const MatchedNote& note : taken.emplace_back(collector.take())) {
                notes.push_back(&note);
            }
        }
        sortNotes(notes, _settings.sortBy);
        const bool isTag = _plan.route == SearchRoute::tags;
        search::FoundRows rows(isTag ? search::FoundRows::Kind::tag : search::FoundRows::Kind::text,
                               noRows());
        for (const MatchedNote* note : notes) {
            rows.add(note->view(), note->matches);
        }
        found.results = rows.rows().take();
        return found;
    }

    FoundNotes findMatches(const search::NoteMatcher& matcher) {
        const CandidateLines candidates(matcher);
        return find(
            MatchCollector({matcher, candidates, _names, localTimes(), _settings.counting.markers,
                            kept(), _wanted.mostRows == 0 ? search::everyLine : _wanted.mostRows}));
    }

    FoundNotes findInbox() {
        _options.types = {base::NoteType::note};
        return find(InboxCollector(_names, _settings.counting.markers, kept()));
    }

    FoundNotes findRecent() {
        FoundNotes found;
        auto parts = visitAll(Newest(_settings.maxRecents), found.report,
                              [&](Newest& newest, const store::NoteFile& file) {
                                  addIfRecent(newest, file, _names);
                              });
        for (Newest& part : std::span(parts).subspan(1)) {
            parts.front().join(std::move(part));
        }
        const std::vector<MatchedNote> notes = parts.front().take();
        std::vector<search::SearchedNote> newestFirst;
        for (const MatchedNote& note : notes) {
            newestFirst.push_back(note.view());
        }
        ResultRows all = noRows();
        search::addRecentNotes(all, newestFirst);
        found.results = all.take();
        return found;
    }

    Services& _services;
    const NoteSearch& _wanted;
    store::NoteReader::Options _options;
    const search::SearchSettings _settings;
    const search::SearchPlan _plan;
    const NoteNames _names;
};

}  // namespace

FoundNotes searchNotes(Services& services, const NoteSearch& wanted,
                       store::NoteReader::Options options) {
    return Search(services, wanted, std::move(options)).run();
}

std::vector<std::string> explainSearch(Services& services, const NoteSearch& wanted) {
    const auto routed = search::routeQuery(wanted.query, !wanted.filter.empty());
    std::vector<std::string> lines = search::explainRoute(routed);
    const auto add = [&](std::vector<std::string> more) {
        std::move(more.begin(), more.end(), std::back_inserter(lines));
    };
    if (routed.route == SearchRoute::text) {
        add(search::explainQuery(search::readQuery(routed.query, dayParser(services))));
    }
    if (!wanted.filter.empty()) {
        lines.push_back(fmt::format(fmt::runtime(base::tr("the filter “{}”:")), wanted.filterName));
    }
    add(search::explainFilter(search::conditionsOf(wanted.filter, services.today(),
                                                   services.globals().firstDayOfWeek())));
    return lines;
}

std::vector<std::string> remarksOn(Services& services, const NoteSearch& wanted,
                                   const store::NoteReader::Options& options) {
    const auto routed = search::routeQuery(wanted.query, !wanted.filter.empty());
    if (routed.route != SearchRoute::text) {
        const search::SearchPlan plan = planOf(services, wanted);
        const bool isNoList =
            routed.route == SearchRoute::defaultList && plan.list == search::DefaultList::none;
        return isNoList ? search::explainRoute(routed) : std::vector<std::string>{};
    }
    const auto query = search::readQuery(routed.query, dayParser(services));
    std::vector<std::string> lines = search::explainMisread(query);
    for (const std::string& folder : query.folders) {
        const std::string isThere = fmt::format("in:\"{}\"", folder);
        if (searchNotes(services, {isThere, {}, 1}, options).results.total == 0) {
            lines.push_back(
                fmt::format(fmt::runtime(base::tr("no note lies in the folder “{}”")), folder));
        }
    }
    return lines;
}

search::SearchSettings searchSettings(Services& services) {
    settings::Globals& globals = services.globals();
    return {globals.sortBy(), globals.firstDayOfWeek(),
            static_cast<std::size_t>(settings::RunTimeState().maxRecents),
            services.countSettings()};
}

}  // namespace tessaly::app
