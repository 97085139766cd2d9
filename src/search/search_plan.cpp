// SPDX-License-Identifier: MIT
#include "search/search_plan.h"

#include <vector>

namespace tessaly::search {

SearchPlan planSearch(std::string_view query, const Filter& filter, base::Day today,
                      base::DayOfWeek firstDayOfWeek, const ParseDay& parseDay) {
    const RoutedQuery routed = routeQuery(query, !filter.empty());
    SearchPlan plan{routed.route, DefaultList::none, {}, {}};
    if (routed.route == SearchRoute::defaultList) {
        plan.list = defaultListCalled(routed.query);
        return plan;
    }
    const FilterConditions conditions = conditionsOf(filter, today, firstDayOfWeek);
    std::vector<SearchQuery> queries;
    if (routed.route == SearchRoute::text) {
        queries.push_back(readQuery(routed.query, parseDay));
        plan.agendaDate = queries.front().agendaDay();
    }
    if (!conditions.keyword.empty()) {
        queries.push_back(readQuery(conditions.keyword, parseDay));
    }
    plan.matcher = routed.route == SearchRoute::tags
                       ? NoteMatcher::forTag(routed.query, conditions, queries)
                       : NoteMatcher(queries, conditions);
    return plan;
}

}  // namespace tessaly::search
