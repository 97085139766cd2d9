// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "base/enum_names.h"

namespace tessaly::search {

/// A parameter of a filter. The names are those that filter files hold, the odd "fp_event" too.
enum class FilterParamater {
    open,
    done,
    scheduled,
    canceled,
    eventItem,
    reminderItem,
    noStatus,
    timeframe,
    noteItem,
    calendarItem,
    startDate,
    endDate,
    keyword
};

/// The value of `FilterParamater::timeframe`.
enum class FilterTimeframe {
    lastWeek,
    thisWeek,
    nextWeek,
    lastMonth,
    thisMonth,
    nextMonth,
    allTime,
    past,
    future,
    custom
};

/// One parameter of a filter; that it is there switches it on.
class FilterItem {
public:
    FilterItem() = default;
    explicit FilterItem(FilterParamater parameter, std::string value = {}, bool isDisplayed = true)
        : param(parameter), display(isDisplayed), _storedValue(std::move(value)) {}

    FilterParamater param = FilterParamater::open;
    bool display = true;  ///< whether an editor of the filter shows it

    /// The timeframe's raw value, a day "yyyy-MM-dd" for `startDate` and `endDate`, the keyword;
    /// else empty.
    const std::string& value() const { return _storedValue; }

    /// What is being typed for the value, not searched and not saved before it is stored.
    const std::string& bufferedValue() const { return _bufferedValue; }
    void bufferValue(std::string value) { _bufferedValue = std::move(value); }
    void storeBufferedValue() { _storedValue = std::exchange(_bufferedValue, {}); }

    /// What is being typed makes no difference.
    friend bool operator==(const FilterItem& a, const FilterItem& b) {
        return a.param == b.param && a.display == b.display && a._storedValue == b._storedValue;
    }

private:
    std::string _storedValue;
    std::string _bufferedValue;
};

/// The parameters of a filter, in its file's order; empty: no filter.
using Filter = std::vector<FilterItem>;

}  // namespace tessaly::search

namespace tessaly::base {

template <>
struct EnumNames<search::FilterParamater> {
    using T = search::FilterParamater;
    static constexpr std::array<EnumName<T>, 13> rows{{{T::open, "fp_open"},
                                                       {T::done, "fp_done"},
                                                       {T::scheduled, "fp_scheduled"},
                                                       {T::canceled, "fp_canceled"},
                                                       {T::eventItem, "fp_event"},
                                                       {T::reminderItem, "fp_reminder"},
                                                       {T::noStatus, "fp_noStatus"},
                                                       {T::timeframe, "fp_timeframe"},
                                                       {T::noteItem, "fp_noteItem"},
                                                       {T::calendarItem, "fp_calendarItem"},
                                                       {T::startDate, "fp_startDate"},
                                                       {T::endDate, "fp_endDate"},
                                                       {T::keyword, "fp_keyword"}}};
};

template <>
struct EnumNames<search::FilterTimeframe> {
    using T = search::FilterTimeframe;
    static constexpr std::array<EnumName<T>, 10> rows{{{T::lastWeek, "fptf_lastWeek"},
                                                       {T::thisWeek, "fptf_thisWeek"},
                                                       {T::nextWeek, "fptf_nextWeek"},
                                                       {T::lastMonth, "fptf_lastMonth"},
                                                       {T::thisMonth, "fptf_thisMonth"},
                                                       {T::nextMonth, "fptf_nextMonth"},
                                                       {T::allTime, "fptf_allTime"},
                                                       {T::past, "fptf_past"},
                                                       {T::future, "fptf_future"},
                                                       {T::custom, "fptf_custom"}}};
};

}  // namespace tessaly::base
