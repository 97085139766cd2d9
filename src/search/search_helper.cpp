// SPDX-License-Identifier: MIT
#include "search/search_helper.h"

#include <utility>

#include "search/default_list.h"
#include "search/found_rows.h"
#include "search/item_rows.h"
#include "search/result_rows.h"
#include "search/search_plan.h"
#include "search/search_walk.h"

namespace tessaly::search {
namespace {

constexpr int daysBefore = 1423;
constexpr int daysBehind = 3650;

std::vector<SearchedNote> newest(const NotesInOrder& notes, std::size_t most) {
    NewestNotes<SearchedNote> kept(most);
    notes.forEach([&kept](const auto& note) {
        const auto type = note->general ? base::NoteType::note : base::NoteType::calendar;
        if (const NoteAge age{note->modified, type, note->filename}; kept.wants(age)) {
            kept.add(age, note->view());
        }
    });
    return kept.take();
}

}  // namespace

/// What a request is answered with.
struct SearchHelper::Run {
    const Request& request;
    SearchSettings settings;
    base::Day today;
    SearchPlan plan;
    std::function<bool()> isStale;
    std::shared_ptr<const NotesInOrder> notes;

    ResultRows emptyRows(const grammar::DateStringHelper& names) const {
        return ResultRows(names, today,
                          {.most = request.mostRows,
                           .objects = ResultRows::Objects::made,
                           .counting = settings.counting,
                           .agendaDate = plan.agendaDate});
    }
};

SearchHelper::SearchHelper(Tools tools)
    : _tools(std::move(tools)),
      _notes(_tools.executor, _tools.names,
             [&clock = _tools.clock](base::Instant instant) { return clock.local(instant); }),
      semaphore(_tools.executor) {
    const base::Day today = _tools.clock.today();
    _searchStart = base::addDays(today, -daysBefore);
    _searchEnd = base::addDays(today, daysBehind);
}

SearchHelper::~SearchHelper() {
    ++searchId;
}

void SearchHelper::search(std::int64_t requestId, Request request) {
    semaphore.enter([this, requestId, request = std::move(request)] { run(requestId, request); });
}

void SearchHelper::prepare() {
    semaphore.enter([this] { (void)notes(_tools.settings(), _tools.clock.today()); });
}

void SearchHelper::run(std::int64_t requestId, const Request& request) {
    const auto isStale = [this, requestId] { return searchId.load() != requestId; };
    if (isStale()) {
        return;
    }
    Run run{request, _tools.settings(), _tools.clock.today(), {}, isStale, nullptr};
    run.plan = planSearch(request.query, request.filter, run.today, run.settings.firstDayOfWeek,
                          _tools.parseDay);
    run.notes = notes(run.settings, run.today);
    if (isStale()) {
        return;
    }
    run.plan.route == SearchRoute::defaultList ? showList(run) : searchNotes(run);
    if (!isStale() && request.finished) {
        request.finished();
    }
}

std::shared_ptr<const NotesInOrder> SearchHelper::notes(const SearchSettings& settings,
                                                        base::Day today) {
    return _notes.of(_tools.cache.generalNotes(), _tools.cache.calendarNotes(),
                     {settings.sortBy, today, settings.counting.markers});
}

void SearchHelper::showList(const Run& run) {
    FoundRows found(FoundRows::Kind::text, run.emptyRows(_tools.names));
    if (run.plan.list == DefaultList::recent) {
        addRecentNotes(found.rows(), newest(*run.notes, run.settings.maxRecents));
    } else if (run.plan.list == DefaultList::inbox) {
        const SearchWalk::Options options{
            .ask = [](const SearchedNote& note, Collect,
                      NoteMatches& matches) { matches = inboxOf(note); },
            .isStale = run.isStale,
            .onFirstRows = {}};
        (void)SearchWalk(*run.notes, found, options).run(_tools.executor);
    }
    deliver(run, found.rows().take(), true);
}

void SearchHelper::searchNotes(const Run& run) {
    const NoteMatcher& matcher = *run.plan.matcher;
    const bool isTag = run.plan.route == SearchRoute::tags;
    const std::size_t mostLines = run.request.mostRows == 0 ? everyLine : run.request.mostRows;
    FoundRows found(isTag ? FoundRows::Kind::tag : FoundRows::Kind::text,
                    run.emptyRows(_tools.names));
    const SearchWalk::Options options{
        .ask = [&matcher, mostLines](
                   const SearchedNote& note, Collect collect,
                   NoteMatches& matches) { matcher.match(note, collect, matches, mostLines); },
        .isStale = run.isStale,
        .onFirstRows = [&] { deliver(run, found.rows().results(false), false); }};
    const std::string& text = matcher.candidate().text();
    const Narrowing::Notes notes = _narrowing.among(run.notes, text);
    SearchWalk walk(*notes, found, options);
    if (!walk.run(_tools.executor)) {
        return;
    }
    if (_tools.calendarItems) {
        const DayRange window = itemWindow(run.today);
        const auto items = _tools.calendarItems(*window.first, *window.last);
        addItems(found.rows(), findItems(items, matcher, run.today));
    }
    deliver(run, found.rows().take(), true);
    if (matcher.isPlain() && Narrowing::isWorthwhile(walk.matchedCount(), run.notes)) {
        _narrowing.remember(run.notes, text, walk.matchedNotes());
    }
}

void SearchHelper::deliver(const Run& run, const SearchResults& results, bool isFinal) const {
    if (!run.isStale() && run.request.results) {
        run.request.results(run.request.query, results, isFinal);
    }
}

}  // namespace tessaly::search
