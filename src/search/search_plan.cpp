// SPDX-License-Identifier: MIT
#include "search/search_plan.h"

#include <string>
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
    const RoutedQuery keyword = routeQuery(conditions.keyword, true);
    std::vector<std::string> tags;
    std::vector<SearchQuery> queries;
    for (const RoutedQuery& asked : {routed, keyword}) {
        if (asked.route == SearchRoute::tags) {
            tags.push_back(asked.query);
        } else if (!asked.query.empty()) {
            queries.push_back(readQuery(asked.query, parseDay));
        }
    }
    if (routed.route == SearchRoute::text && !routed.query.empty()) {
        plan.agendaDate = queries.front().agendaDay();
    }
    plan.route = tags.empty() ? SearchRoute::text : SearchRoute::tags;
    const auto shown =
        routed.route == SearchRoute::text ? LineTest::Shown::text : LineTest::Shown::tag;
    plan.matcher = tags.empty() ? NoteMatcher(queries, conditions)
                                : NoteMatcher::forTags(tags, conditions, queries, shown);
    return plan;
}

}  // namespace tessaly::search
