// SPDX-License-Identifier: MIT
#include "app/list_words.h"

#include <algorithm>
#include <set>
#include <utility>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/utf8.h"
#include "search/default_list.h"
#include "search/search_query.h"

namespace tessaly::app {
namespace {

using base::tr;
using search::SearchRoute;

enum class ListKind { recent, inbox, unknownList, tag, view, text };

ListKind kindOf(const ListView& view) {
    const auto routed = search::routeQuery(view.request.query, !view.filter.empty());
    if (routed.route == SearchRoute::tags) {
        return ListKind::tag;
    }
    if (routed.route == SearchRoute::defaultList) {
        switch (search::defaultListCalled(routed.query)) {
            case search::DefaultList::recent: return ListKind::recent;
            case search::DefaultList::inbox: return ListKind::inbox;
            case search::DefaultList::none: return ListKind::unknownList;
        }
    }
    return base::trimmed(view.request.query).empty() ? ListKind::view : ListKind::text;
}

EmptyList wordsOf(ListKind kind) {
    switch (kind) {
        case ListKind::recent:
            return {tr("No notes yet"), {tr("The notes that you change last are listed here.")}};
        case ListKind::inbox:
            return {tr("The inbox is empty"),
                    {tr("Open tasks of your notes that have no date are listed here."),
                     tr("Give each a day, or complete it, and it leaves the inbox.")}};
        case ListKind::tag:
            return {tr("No line carries this tag"),
                    {tr("Write it anywhere in a line, and the line is listed here.")}};
        case ListKind::view:
            return {tr("Nothing passes this view"),
                    {tr("Choose more states or kinds, or a longer time, in the options.")}};
        case ListKind::unknownList: return {tr("There is no such list"), {}};
        case ListKind::text: break;
    }
    return {tr("Nothing found"),
            {tr("Try fewer words, or a part of one: any part of a line is found."),
             tr("#tag and @mention find the lines that carry them."),
             tr("is:open, in:Work, before:today narrow a search; -word leaves out.")}};
}

std::size_t notesAmong(const search::SearchResults& results) {
    std::set<std::pair<base::NoteType, std::string_view>> notes;
    for (const auto& row : results.items) {
        if (!row.filename.empty()) {
            notes.emplace(row.noteType, row.filename);
        }
    }
    return notes.size();
}

std::size_t rowsAmong(const search::SearchResults& results) {
    const auto isRow = [](const search::SearchResultItem& item) {
        return item.type != search::SearchResultType::section &&
               item.type != search::SearchResultType::loading;
    };
    return static_cast<std::size_t>(
        std::count_if(results.items.begin(), results.items.end(), isRow));
}

std::string counted(const std::string& words, std::size_t count) {
    return fmt::format(fmt::runtime(words), count);
}

}  // namespace

EmptyList emptyWords(const ListView& view) {
    if (!view.trouble.empty()) {
        return {tr("This list cannot be shown"), {view.trouble}};
    }
    if (!view.isFinal) {
        return {};
    }
    EmptyList words = wordsOf(kindOf(view));
    if (!view.remarks.empty()) {
        words.hints = view.remarks;
    }
    return words;
}

std::string countWords(const ListView& view) {
    if (!view.isFinal) {
        return tr("Searching…");
    }
    const std::size_t total = view.results.total;
    const std::size_t shown = rowsAmong(view.results);
    if (total == 0) {
        return {};
    }
    const std::string results = counted(base::trPlural("{} result", "{} results", total), total);
    if (shown < total) {
        return fmt::format(fmt::runtime(tr("{0}, the first {1} shown")), results, shown);
    }
    const std::size_t notes = notesAmong(view.results);
    if (notes == 0) {
        return results;
    }
    return fmt::format(fmt::runtime(tr("{0} in {1}")), results,
                       counted(base::trPlural("{} note", "{} notes", notes), notes));
}

std::string titleOf(const ListRequest& request) {
    if (!request.title.empty()) {
        return request.title;
    }
    const auto routed = search::routeQuery(request.query, !request.filter.empty());
    if (routed.route == SearchRoute::defaultList) {
        return search::defaultListCalled(routed.query) == search::DefaultList::inbox ? tr("Inbox")
                                                                                     : tr("Recent");
    }
    return base::trimmed(request.query).empty() ? request.filter : tr("Search");
}

}  // namespace tessaly::app
