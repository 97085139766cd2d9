// SPDX-License-Identifier: MIT
#include "cli/filter_options.h"

#include <algorithm>
#include <array>
#include <map>
#include <span>
#include <string>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/utf8.h"
#include "cli/malformed.h"
#include "cli/safe_text.h"

namespace tessaly::cli {

namespace {

using base::Done;
using base::Failure;
using base::tr;
using search::FilterParamater;
using search::FilterTimeframe;
using Values = std::map<FilterParamater, std::string>;
using ParseDay = std::function<std::optional<base::Day>(std::string_view)>;

struct ParameterWord {
    std::string_view word;
    FilterParamater parameter;
};
// In the order of the words of the header.
constexpr std::array stateRows{
    ParameterWord{"open", FilterParamater::open},
    ParameterWord{"done", FilterParamater::done},
    ParameterWord{"scheduled", FilterParamater::scheduled},
    ParameterWord{"cancelled", FilterParamater::canceled},
    ParameterWord{"none", FilterParamater::noStatus},
};
constexpr std::array kindRows{
    ParameterWord{"notes", FilterParamater::noteItem},
    ParameterWord{"calendar", FilterParamater::calendarItem},
    ParameterWord{"events", FilterParamater::eventItem},
    ParameterWord{"reminders", FilterParamater::reminderItem},
};

struct TimeframeWord {
    std::string_view word;
    FilterTimeframe timeframe;
};
constexpr std::array timeframeRows{
    TimeframeWord{"last-week", FilterTimeframe::lastWeek},
    TimeframeWord{"this-week", FilterTimeframe::thisWeek},
    TimeframeWord{"next-week", FilterTimeframe::nextWeek},
    TimeframeWord{"last-month", FilterTimeframe::lastMonth},
    TimeframeWord{"this-month", FilterTimeframe::thisMonth},
    TimeframeWord{"next-month", FilterTimeframe::nextMonth},
    TimeframeWord{"past", FilterTimeframe::past},
    TimeframeWord{"future", FilterTimeframe::future},
    TimeframeWord{"all", FilterTimeframe::allTime},
};

template <class Rows>
auto rowOf(const Rows& rows, std::string_view word) {
    return std::find_if(rows.begin(), rows.end(),
                        [&](const auto& row) { return row.word == word; });
}

Failure notAmong(const char* option, std::string_view word, std::string_view words) {
    std::string listed(words);
    for (std::size_t at = listed.find(' '); at != listed.npos; at = listed.find(' ', at + 2)) {
        listed.replace(at, 1, ", ");
    }
    return malformed(
        fmt::format(fmt::runtime(tr("{0}: “{1}” is none of {2}")), option, safeText(word), listed));
}

/// An option that takes several words, separated by commas.
struct WordList {
    const char* option;
    std::span<const ParameterWord> rows;
    std::string_view words;
};

base::Result<Done> addWords(const Invocation& invocation, const WordList& list, Values& values) {
    if (!invocation.has(list.option)) {
        return Done{};
    }
    const std::string text = invocation.value(list.option) + ",";
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t comma = text.find(',', start);
        const auto word = base::trimmed(std::string_view(text).substr(start, comma - start));
        const auto row = rowOf(list.rows, word);
        if (row == list.rows.end()) {
            return notAmong(list.option, word, list.words);
        }
        values[row->parameter];
        start = comma + 1;
    }
    return Done{};
}

void setTimeframe(Values& values, FilterTimeframe timeframe) {
    values[FilterParamater::timeframe] = base::rawValue(timeframe);
}

base::Result<Done> addTimeframe(const Invocation& invocation, Values& values) {
    if (!invocation.has("--timeframe")) {
        return Done{};
    }
    if (invocation.has("--from") || invocation.has("--to")) {
        return malformed(tr("--timeframe goes neither with --from nor with --to"));
    }
    const std::string word = invocation.value("--timeframe");
    const auto row = rowOf(timeframeRows, word);
    if (row == timeframeRows.end()) {
        return notAmong("--timeframe", word, filterTimeframes);
    }
    setTimeframe(values, row->timeframe);
    return Done{};
}

base::Result<Done> addDay(const Invocation& invocation, const char* option,
                          FilterParamater parameter, const ParseDay& parseDay, Values& values) {
    if (!invocation.has(option)) {
        return Done{};
    }
    const std::string text = invocation.value(option);
    const auto day = parseDay(text);
    if (!day) {
        return malformed(fmt::format(fmt::runtime(tr("“{}” is no day")), safeText(text)));
    }
    values[parameter] = base::tagText(*day);
    setTimeframe(values, FilterTimeframe::custom);
    return Done{};
}

base::Result<Done> addKeyword(const Invocation& invocation, Values& values) {
    if (!invocation.has("--keyword")) {
        return Done{};
    }
    const std::string text = invocation.value("--keyword");
    if (base::trimmed(text).empty()) {
        return malformed(tr("--keyword needs a text"));
    }
    values[FilterParamater::keyword] = text;
    return Done{};
}

bool isTurnedRound(const Values& values) {
    const auto first = values.find(FilterParamater::startDate);
    const auto last = values.find(FilterParamater::endDate);
    return first != values.end() && last != values.end() && last->second < first->second;
}

}  // namespace

base::Result<search::Filter> filterFromOptions(const Invocation& invocation,
                                               const ParseDay& parseDay) {
    Values values;
    const std::array added{
        addWords(invocation, {"--state", stateRows, filterStates}, values),
        addWords(invocation, {"--kind", kindRows, filterKinds}, values),
        addTimeframe(invocation, values),
        addDay(invocation, "--from", FilterParamater::startDate, parseDay, values),
        addDay(invocation, "--to", FilterParamater::endDate, parseDay, values),
        addKeyword(invocation, values),
    };
    for (const auto& each : added) {
        if (!each) {
            return each.failure();
        }
    }
    if (values.empty()) {
        return malformed(tr("filter save needs an option that says what the filter shows"));
    }
    if (isTurnedRound(values)) {
        return malformed(tr("the day of --to is before that of --from"));
    }
    search::Filter filter;
    for (auto& [parameter, value] : values) {
        filter.emplace_back(parameter, std::move(value));
    }
    return filter;
}

}  // namespace tessaly::cli
