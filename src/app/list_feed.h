// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/place.h"
#include "app/services.h"
#include "base/day.h"
#include "base/executor.h"
#include "base/gate.h"
#include "ports/main_queue.h"
#include "search/filter_item.h"
#include "search/search_helper.h"
#include "search/search_results.h"
#include "store/note_cache.h"

namespace tessaly::app {

/// What the list shows at one moment.
struct ListView {
    ListRequest request;
    search::Filter filter;  ///< in effect: the saved one's, or what the options say instead
    /// Without the rows' objects; the `day` of a task's row is the one that it is planned for.
    search::SearchResults results;
    /// All notes were looked at; else the last row is `loading`, and what follows is unknown.
    bool isFinal = false;
    enum class Rows {
        ofAnother,  ///< another list, or another query: it begins at its top
        again       ///< of the same, as the notes are now: who reads it stays where he is
    } rows = Rows::ofAnother;
    /// Why nothing was found though something may be meant, in words for the user.
    std::vector<std::string> remarks;
    std::string trouble;  ///< why there is no list, in words for the user; empty: there is
};

/// What became of a list that was to be kept as a view.
struct ViewSaved {
    std::string text;  ///< in words for the user
    bool isFailure = false;
};

/// Answers the window's list: runs a request, and runs it again whenever the notes change. Main
/// thread, and so is what it tells, of which nothing belongs to an older request than the last
/// one. One at a time for some `Services`.
class ListFeed final : private store::CacheListener {
public:
    using Told = std::function<void(const ListView& view)>;

    /// `services` outlives it.
    ListFeed(Services& services, Told told);
    /// Waits for its work in hand; nothing is told any more.
    ~ListFeed() override;
    ListFeed(const ListFeed&) = delete;
    ListFeed& operator=(const ListFeed&) = delete;

    /// Shows another list. Options stay while a search is typed on (one without a title, before and
    /// now, and with the same filter). The rows shown so far are gone after `patience` even when
    /// there is no answer yet.
    void show(ListRequest request);
    /// What the search options say, instead of what the request's filter holds.
    void setOptions(search::Filter filter);
    /// The same once more: the day or a setting has changed.
    void again();
    /// More of the rows that there are, when there are.
    void showMore();
    /// Nothing is shown or searched any more until the next `show`.
    void close();

    /// Keeps query and filter as a view called so, in the background. A list that has a name of its
    /// own cannot be kept.
    void saveAsView(const std::string& name, std::function<void(const ViewSaved& saved)> told);

    /// The day that the user means; nothing: none.
    std::optional<base::Day> dayNamed(std::string_view text) const;

    static constexpr std::size_t firstRows = 200;
    static constexpr std::size_t moreRows = 5;  ///< times as many, each time
    static constexpr std::chrono::milliseconds patience{150};

private:
    using PostIfNewest = std::function<void(base::Job job)>;

    void cacheChanged(const store::CacheChanges& changes) override;
    void rerunIfChanged();
    void beginAnother();
    void start(ListView::Rows rows);
    void search(std::int64_t id, const search::Filter& filter);
    void receive(search::SearchResults results, bool isFinal);
    void receiveTrouble(const std::string& trouble);
    void tellRun(bool isEnd);
    void explainNothing();
    void showWaiting();
    bool isNewest(std::int64_t id) const { return _helper.searchId.load() == id; }
    /// Posts jobs to the main queue that run only while that request is the newest.
    PostIfNewest posterFor(std::int64_t id);

    Services& _services;
    search::SearchHelper& _helper;
    ports::MainQueue& _mainQueue;
    const Told _told;
    std::optional<search::Filter> _options;
    std::size_t _mostRows = firstRows;
    ListView _view;  ///< as told last; its request and filter are those of the run in hand
    ListView::Rows _rowsOfRun = ListView::Rows::ofAnother;
    bool _isOpen = false;
    bool _isRunning = false;
    bool _isAnswered = false;  ///< rows of the request have been told
    bool _hasChanged = false;  ///< the notes, since the run in hand began
    ports::MainQueue::Timer _patience = 0;
    std::atomic<bool> _isChangePosted = false;  ///< any thread
    std::shared_ptr<const bool> _alive = std::make_shared<bool>(true);
    base::Gate _work;  ///< the last member: its end waits for the work in hand
};

}  // namespace tessaly::app
