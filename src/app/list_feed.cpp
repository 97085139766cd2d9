// SPDX-License-Identifier: MIT
#include "app/list_feed.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "app/note_address.h"
#include "app/search_notes.h"
#include "base/localisation.h"
#include "search/default_list.h"
#include "search/search_query.h"
#include "search/task_day.h"

namespace tessaly::app {
namespace {

using search::Filter;
using search::FilterItem;
using search::FilterParamater;
using search::SearchResultItem;
using search::SearchResults;

/// The rows as a list keeps them, without copies of what they are about.
SearchResults rowsAlone(const SearchResults& found) {
    SearchResults rows = found;
    for (SearchResultItem& row : rows.items) {
        if (row.object != nullptr) {
            if (const auto* todo = std::get_if<grammar::Todo>(row.object.get())) {
                row.day = search::dayOfTask(todo->base, row.day);
            }
            row.object.reset();
        }
    }
    return rows;
}

/// A filter that finds what `query` finds among what it lets pass.
Filter withKeyword(Filter filter, const std::string& query) {
    if (query.empty()) {
        return filter;
    }
    const auto old = std::find_if(filter.begin(), filter.end(), [](const FilterItem& item) {
        return item.param == FilterParamater::keyword;
    });
    const bool isThere = old != filter.end();
    const std::string both = isThere ? old->value() + " " + query : query;
    if (isThere) {
        filter.erase(old);
    }
    filter.emplace_back(FilterParamater::keyword, both);
    return filter;
}

/// The query of a list; the one called "Recent" is that of no query, which a filter may narrow.
std::string queryOf(std::string query) {
    const auto routed = search::routeQuery(query, false);
    const bool isRecent = routed.route == search::SearchRoute::defaultList &&
                          search::defaultListCalled(routed.query) == search::DefaultList::recent;
    return isRecent ? std::string() : std::move(query);
}

ViewSaved savedWords(const base::Result<search::FilterHelper::Saved>& saved) {
    if (!saved) {
        return {saved.failure().description, true};
    }
    const bool isAnew = saved->how == search::FilterHelper::Saved::How::anew;
    const std::string words =
        isAnew ? base::tr("Saved the view “{}”") : base::tr("Replaced the view “{}”");
    return {fmt::format(fmt::runtime(words), saved->name), false};
}

}  // namespace

ListFeed::ListFeed(Services& services, Told told)
    : _services(services),
      _helper(services.searchHelper()),
      _mainQueue(services.ports().mainQueue),
      _told(std::move(told)),
      _work(services.ports().executor) {
    // Made here, since the work asks for them on other threads.
    services.dateStrings();
    services.globals();
    (void)services.filterHelper();
    services.noteCache().addListener(*this);
}

ListFeed::~ListFeed() {
    _services.noteCache().removeListener(*this);
    _mainQueue.cancel(_patience);
    ++_helper.searchId;
}

ListFeed::PostIfNewest ListFeed::posterFor(std::int64_t id) {
    return [this, &queue = _mainQueue, alive = std::weak_ptr(_alive), id](base::Job job) {
        queue.post([this, alive, id, job = std::move(job)] {
            if (!alive.expired() && isNewest(id)) {
                job();
            }
        });
    };
}

void ListFeed::show(ListRequest request) {
    const bool isTypedOn = _isOpen && request.title.empty() && _view.request.title.empty() &&
                           request.filter == _view.request.filter;
    if (!isTypedOn) {
        _options.reset();
    }
    _view.request = std::move(request);
    _view.request.query = queryOf(std::move(_view.request.query));
    _isOpen = true;
    beginAnother();
}

void ListFeed::setOptions(Filter filter) {
    _options = std::move(filter);
    beginAnother();
}

void ListFeed::again() {
    if (_isOpen) {
        start(_isAnswered ? ListView::Rows::again : ListView::Rows::ofAnother);
    }
}

void ListFeed::showMore() {
    if (_isOpen && !_isRunning && _mostRows < _view.results.total) {
        _mostRows *= moreRows;
        start(ListView::Rows::again);
    }
}

void ListFeed::close() {
    _isOpen = _isRunning = false;
    ++_helper.searchId;
    _mainQueue.cancel(std::exchange(_patience, 0));
}

std::optional<base::Day> ListFeed::dayNamed(std::string_view text) const {
    return parseDay(text, _services.today(), _services.dateStrings().formats());
}

void ListFeed::beginAnother() {
    _mostRows = firstRows;
    _isAnswered = false;
    start(ListView::Rows::ofAnother);
    if (_patience == 0) {
        _patience = _mainQueue.after(patience, [this] { showWaiting(); });
    }
}

void ListFeed::start(ListView::Rows rows) {
    _rowsOfRun = rows;
    _isRunning = true;
    _hasChanged = false;
    const std::int64_t id = ++_helper.searchId;
    if (_options || _view.request.filter.empty()) {
        search(id, _options.value_or(Filter{}));
        return;
    }
    _work.enter([this, post = posterFor(id), filters = _services.filterHelper(),
                 name = _view.request.filter, id] {
        auto filter = filters.load(name);
        if (filter) {
            post([this, id, filter = std::move(filter).value()] { search(id, filter); });
        } else {
            post([this, trouble = filter.failure().description] { receiveTrouble(trouble); });
        }
    });
}

void ListFeed::search(std::int64_t id, const Filter& filter) {
    _view.filter = filter;
    auto take = [this, post = posterFor(id)](const std::string&, const SearchResults& found,
                                             bool isFinal) {
        // A job can be copied, and its rows need not be.
        auto rows = std::make_shared<SearchResults>(rowsAlone(found));
        post([this, rows, isFinal] { receive(std::move(*rows), isFinal); });
    };
    _helper.search(id, {_view.request.query, filter, _mostRows, std::move(take)});
}

void ListFeed::receive(SearchResults results, bool isFinal) {
    // The first rows alone would be fewer than those that are shown.
    if (!isFinal && _rowsOfRun == ListView::Rows::again) {
        return;
    }
    if (results.total > 0 || _rowsOfRun == ListView::Rows::ofAnother) {
        _view.remarks.clear();
    }
    _view.results = std::move(results);
    _view.isFinal = isFinal;
    _view.trouble.clear();
    tellRun(isFinal);
    if (isFinal && _view.results.total == 0) {
        explainNothing();
    }
}

void ListFeed::receiveTrouble(const std::string& trouble) {
    _view.results = {};
    _view.isFinal = true;
    _view.remarks.clear();
    _view.trouble = trouble;
    tellRun(true);
}

void ListFeed::tellRun(bool isEnd) {
    _mainQueue.cancel(std::exchange(_patience, 0));
    _isAnswered = true;
    _isRunning = !isEnd;
    _view.rows = std::exchange(_rowsOfRun, ListView::Rows::again);
    _told(_view);
    rerunIfChanged();
}

void ListFeed::showWaiting() {
    _patience = 0;
    _view.results = {};
    SearchResultItem loading;
    loading.type = search::SearchResultType::loading;
    loading.id = 1;
    _view.results.items.push_back(std::move(loading));
    _view.isFinal = false;
    _view.remarks.clear();
    _view.trouble.clear();
    _view.rows = ListView::Rows::ofAnother;
    _told(_view);
}

/// While the notes are being loaded, a look at all of them would read them once more.
void ListFeed::explainNothing() {
    if (!_services.noteCache().initialUpdateDone()) {
        return;
    }
    _work.enter([this, post = posterFor(_helper.searchId.load()),
                 wanted = NoteSearch{_view.request.query, _view.filter}] {
        auto remarks = remarksOn(_services, wanted, {});
        post([this, remarks = std::move(remarks)] {
            if (_isOpen && !_isRunning && _view.remarks != remarks) {
                _view.remarks = remarks;
                _view.rows = ListView::Rows::again;
                _told(_view);
            }
        });
    });
}

void ListFeed::cacheChanged(const store::CacheChanges&) {
    if (_isChangePosted.exchange(true)) {
        return;
    }
    _mainQueue.post([this, alive = std::weak_ptr(_alive)] {
        if (!alive.expired()) {
            _isChangePosted = false;
            _hasChanged = true;
            rerunIfChanged();
        }
    });
}

/// A run in hand goes on to its end, so that a stream of changes does not keep it from one.
void ListFeed::rerunIfChanged() {
    if (_hasChanged && !_isRunning) {
        again();
    }
}

void ListFeed::saveAsView(const std::string& name,
                          std::function<void(const ViewSaved& saved)> told) {
    const std::string query = _view.request.query;
    const bool isFiltered = !_view.filter.empty();
    if (search::routeQuery(query, isFiltered).route == search::SearchRoute::defaultList) {
        told({base::tr("This list is always there and need not be saved."), true});
        return;
    }
    _work.enter([&queue = _mainQueue, alive = std::weak_ptr(_alive),
                 filters = _services.filterHelper(), name, told = std::move(told),
                 filter = withKeyword(_view.filter, query)]() mutable {
        const ViewSaved saved = savedWords(filters.save(name, filter));
        queue.post([alive, told = std::move(told), saved] {
            if (!alive.expired()) {
                told(saved);
            }
        });
    });
}

}  // namespace tessaly::app
