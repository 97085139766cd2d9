// SPDX-License-Identifier: MIT
#include <array>

#include "base/localisation.h"
#include "base/utf8.h"
#include "cli/rpc_methods.h"
#include "grammar/line_scanner.h"
#include "store/note_names.h"
#include "tasks/repeats.h"
#include "tasks/task_operations.h"
#include "tasks/task_rewrites.h"

namespace tessaly::cli {

namespace {

using Param = std::string_view;

JsonObject complete(RpcParams& params, const RpcTools&) {
    return resultOf(tasks::completed(params.line("line"), params.now(),
                                     params.settings().rewriting(params.hourCycle())));
}

JsonObject cancel(RpcParams& params, const RpcTools&) {
    return resultOf(tasks::cancelled(params.line("line")));
}

JsonObject reopen(RpcParams& params, const RpcTools&) {
    return resultOf(tasks::reopened(params.line("line"), params.settings().markers()));
}

bool isClosed(std::string_view line, const grammar::MarkerSettings& markers) {
    const auto type = grammar::classifyLine(line, markers).type;
    return type == grammar::TodoType::done || type == grammar::TodoType::cancelled;
}

JsonObject schedule(RpcParams& params, const RpcTools&) {
    const std::string_view line = params.line("line");
    const base::Day day = params.day("day");
    const auto source = params.dayIfAny("sourceDay");
    const auto settings = params.settings().rewriting(base::HourCycle::twentyFour);
    const bool isToBeCopied = tasks::isActionable(line) && !isClosed(line, settings.markers) &&
                              (source ? source != day : settings.isCopyScheduleGeneralNoteTodos);
    const auto writeDay = settings.isAppendScheduleLinks || !isToBeCopied ? tasks::WriteDay::yes
                                                                          : tasks::WriteDay::no;
    JsonObject object;
    object.add("line", tasks::scheduled(line, day, writeDay))
        .add("copy", isToBeCopied ? std::optional{tasks::copyForDay(line, source, settings)}
                                  : std::nullopt);
    return resultOf(std::move(object));
}

/// The lines that are named, in whichever way.
std::vector<std::string> linesToRepeat(RpcParams& params) {
    params.refuseTogether("line", "lines");
    auto lines =
        params.has("lines") ? params.lines("lines") : std::vector{std::string{params.line("line")}};
    for (const std::string& line : lines) {
        if (base::trimmed(line).empty()) {
            params.refuse("line", base::tr("an empty line cannot be repeated"));
        }
    }
    return lines;
}

/// No computer should be brought down by one request.
void refuseTooLarge(RpcParams& params, const std::vector<std::string>& lines, int count) {
    constexpr std::size_t longestTag = 32;
    std::size_t bytes = 0;
    for (const std::string& line : lines) {
        bytes += line.size() + longestTag;
    }
    if (bytes * static_cast<std::size_t>(count) > RpcParams::maxTextBytes) {
        params.refuse("count", base::tr("so many copies are too much for one answer"));
    }
}

JsonObject repeat(RpcParams& params, const RpcTools&) {
    const auto lines = linesToRepeat(params);
    const base::Day first = params.day("day");
    const auto unit = params.choice<tasks::RepeatInterval>("unit");
    const int count = params.integer("count", 0, tasks::TaskOperations::maxRepeats);
    const auto markers = params.settings().markers();
    refuseTooLarge(params, lines, count);
    std::vector<JsonObject> days;
    for (int index = 1; index <= count && !params.failure(); ++index) {
        const auto day = tasks::repeatDay(first, unit, index);
        if (!day) {
            params.refuse("count", base::tr("there is no note for so late a day"));
            break;
        }
        std::vector<std::string> copies;
        for (const std::string& line : lines) {
            copies.push_back(tasks::repeatCopy(line, index, count, markers));
        }
        JsonObject object;
        object.add("day", base::tagText(*day))
            .add("filename", store::calendarFilename(*day))
            .add("lines", copies);
        days.push_back(std::move(object));
    }
    return resultOf(std::move(days));
}

constexpr std::array completeParams{Param{"line"}, Param{"now"}, Param{"clock"}, Param{"settings"}};
constexpr std::array cancelParams{Param{"line"}};
constexpr std::array reopenParams{Param{"line"}, Param{"settings"}};
constexpr std::array scheduleParams{Param{"line"}, Param{"day"}, Param{"sourceDay"},
                                    Param{"settings"}};
constexpr std::array repeatParams{Param{"line"}, Param{"lines"}, Param{"day"},
                                  Param{"unit"}, Param{"count"}, Param{"settings"}};

constexpr std::array taskMethodRows{
    RpcMethod{"complete", completeParams, complete},
    RpcMethod{"cancel", cancelParams, cancel},
    RpcMethod{"reopen", reopenParams, reopen},
    RpcMethod{"schedule", scheduleParams, schedule},
    RpcMethod{"repeat", repeatParams, repeat},
};

}  // namespace

std::span<const RpcMethod> taskMethods() {
    return taskMethodRows;
}

}  // namespace tessaly::cli
