// SPDX-License-Identifier: MIT
#include "cli/filter_rows.h"

#include <array>
#include <optional>

#include <fmt/format.h>

#include "base/localisation.h"
#include "cli/safe_text.h"

namespace tessaly::cli {

namespace {

using base::N_;
using base::tr;
using search::FilterParamater;
using search::FilterTimeframe;

// {} is the value.
constexpr std::array parameterWords{
    N_("open tasks"),
    N_("done tasks"),
    N_("scheduled tasks"),
    N_("cancelled tasks"),
    N_("events"),
    N_("reminders"),
    N_("lines that are no tasks"),
    N_("no timeframe that is known: “{}”"),
    N_("general notes"),
    N_("calendar notes"),
    N_("from {}"),
    N_("to {}"),
    N_("with “{}”"),
};
static_assert(parameterWords.size() == base::EnumNames<FilterParamater>::rows.size());

constexpr std::array timeframeWords{
    N_("last week"),   N_("this week"),
    N_("next week"),   N_("last month"),
    N_("this month"),  N_("next month"),
    N_("all time"),    N_("before today"),
    N_("after today"), N_("from one day to another"),
};
static_assert(timeframeWords.size() == base::EnumNames<FilterTimeframe>::rows.size());

std::string wordsOf(const search::FilterItem& item) {
    const auto timeframe = item.param == FilterParamater::timeframe
                               ? base::fromRawValue<FilterTimeframe>(item.value())
                               : std::nullopt;
    return timeframe
               ? tr(timeframeWords[static_cast<std::size_t>(*timeframe)])
               : fmt::format(fmt::runtime(tr(parameterWords[static_cast<std::size_t>(item.param)])),
                             safeText(item.value()));
}

}  // namespace

std::vector<std::string> filterLines(const search::Filter& filter) {
    std::vector<std::string> lines;
    for (const search::FilterItem& item : filter) {
        lines.push_back(wordsOf(item));
        if (!item.display) {
            lines.back() += " " + tr("(hidden in editors)");
        }
    }
    return lines;
}

std::vector<JsonObject> filterRecords(const search::Filter& filter) {
    std::vector<JsonObject> records;
    for (const search::FilterItem& item : filter) {
        JsonObject record;
        record.add("param", base::rawValue(item.param))
            .add("value", item.value())
            .add("display", item.display);
        records.push_back(std::move(record));
    }
    return records;
}

}  // namespace tessaly::cli
