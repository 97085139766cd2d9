// SPDX-License-Identifier: MIT
#include "search/filter_conditions.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/utf8.h"

namespace tessaly::search {
namespace {

using Param = FilterParamater;
using grammar::TodoType;

bool isOn(const Filter& filter, Param param) {
    return std::any_of(filter.begin(), filter.end(),
                       [param](const FilterItem& item) { return item.param == param; });
}

/// Of several items the last; empty when there is none.
std::string_view valueOf(const Filter& filter, Param param) {
    const auto item = std::find_if(filter.rbegin(), filter.rend(),
                                   [param](const FilterItem& i) { return i.param == param; });
    return item == filter.rend() ? std::string_view() : base::trimmed(item->value());
}

bool namesRows(const Filter& filter) {
    static constexpr std::array withoutRows{Param::timeframe, Param::startDate, Param::endDate,
                                            Param::keyword};
    return std::any_of(filter.begin(), filter.end(), [](const FilterItem& item) {
        return std::find(withoutRows.begin(), withoutRows.end(), item.param) == withoutRows.end();
    });
}

LineKinds kindsOf(const Filter& filter) {
    static constexpr std::array<std::pair<Param, TodoType>, 5> rows{
        {{Param::open, TodoType::open},
         {Param::done, TodoType::done},
         {Param::scheduled, TodoType::scheduled},
         {Param::canceled, TodoType::cancelled},
         {Param::noStatus, TodoType::text}}};
    LineKinds kinds;
    for (const auto& [param, type] : rows) {
        if (isOn(filter, param)) {
            kinds.add(type);
        }
    }
    return kinds;
}

using Complaints = std::vector<std::string>;

/// With `sentence` as the complaint, in which {} is the text.
std::optional<base::Day> dayIn(std::string_view text, const std::string& sentence,
                               Complaints& complaints) {
    const auto day = base::dayFromTagText(text);
    if (!day && !text.empty()) {
        complaints.push_back(fmt::format(fmt::runtime(sentence), text));
    }
    return day;
}

DayRange customDays(const Filter& filter, Complaints& complaints) {
    return {dayIn(valueOf(filter, Param::startDate),
                  base::tr("the first day “{}” is no day, so none is too early"), complaints),
            dayIn(valueOf(filter, Param::endDate),
                  base::tr("the last day “{}” is no day, so none is too late"), complaints)};
}

struct Week {
    base::Day today;
    base::DayOfWeek firstDay;
};

DayRange daysOfFilter(const Filter& filter, const Week& week, Complaints& complaints) {
    const std::string_view name = valueOf(filter, Param::timeframe);
    const auto timeframe = base::fromRawValue<FilterTimeframe>(name);
    if (timeframe == FilterTimeframe::custom || name.empty()) {
        return customDays(filter, complaints);
    }
    if (!timeframe) {
        complaints.push_back(fmt::format(
            fmt::runtime(base::tr("no timeframe is called “{}”, so all days are meant")), name));
    }
    return timeframe ? daysOf(*timeframe, week.today, week.firstDay) : DayRange();
}

}  // namespace

FilterConditions conditionsOf(const Filter& filter, base::Day today,
                              base::DayOfWeek firstDayOfWeek) {
    FilterConditions conditions;
    conditions.isActive = !filter.empty();
    conditions.days = daysOfFilter(filter, {today, firstDayOfWeek}, conditions.unreadable);
    conditions.keyword = valueOf(filter, Param::keyword);
    if (namesRows(filter)) {
        conditions.kinds = kindsOf(filter);
        conditions.noteItem = isOn(filter, Param::noteItem);
        conditions.calendarItem = isOn(filter, Param::calendarItem);
        conditions.eventItem = isOn(filter, Param::eventItem);
        conditions.reminderItem = isOn(filter, Param::reminderItem);
    }
    return conditions;
}

}  // namespace tessaly::search
