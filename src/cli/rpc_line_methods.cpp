// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <chrono>

#include "base/enum_names.h"
#include "base/localisation.h"
#include "base/utf8.h"
#include "cli/json_records.h"
#include "cli/rpc_methods.h"
#include "cli/rpc_times.h"
#include "cli/text_records.h"
#include "grammar/date_tags.h"
#include "grammar/disassembled_todo.h"
#include "grammar/line_action.h"
#include "grammar/line_scanner.h"
#include "grammar/tags.h"
#include "grammar/todo_helper.h"

namespace tessaly::cli {

namespace {

using grammar::TodoState;
using grammar::TodoType;
using Param = std::string_view;

/// Times are on the wall and have no zone: as good as any is the one without an offset.
class NoZone : public ports::Clock {
public:
    base::Instant now() override { return {}; }
    base::LocalTime local(base::Instant instant) override {
        const auto day = std::chrono::floor<std::chrono::days>(instant);
        const std::chrono::hh_mm_ss time{std::chrono::floor<std::chrono::seconds>(instant - day)};
        return {base::Day{day}, static_cast<int>(time.hours().count()),
                static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count())};
    }
};

JsonObject todoRecord(const grammar::Todo& todo) {
    NoZone clock;
    JsonObject record = recordOf(todo, clock);
    if (todo.date && todo.hasTime) {
        record.add("date", textOfTime(*todo.date));
    }
    if (todo.alarm) {
        record.add("alarm", textOfTime(*todo.alarm));
    }
    return record;
}

/// Records are large: no computer should be brought down by one request.
constexpr std::ptrdiff_t maxLines = 200'000;

JsonObject parse(RpcParams& params, const RpcTools&) {
    const grammar::NoteText note{params.text("text"), params.textIfAny("filename").value_or("")};
    if (std::count(note.text.begin(), note.text.end(), '\n') >= maxLines) {
        params.refuse("text", base::tr("too many lines for one answer"));
        return {};
    }
    std::vector<JsonObject> records;
    for (const grammar::Todo& todo :
         grammar::TodoHelper::parseNoteContent(note, params.settings().markers())) {
        records.push_back(todoRecord(todo));
    }
    return resultOf(std::move(records));
}

JsonObject classify(RpcParams& params, const RpcTools&) {
    const std::string_view line = params.line("line");
    const auto found = grammar::classifyLine(line, params.settings().markers());
    const std::string_view content = grammar::contentOf(line, found);
    const bool hasMarker = grammar::isTask(found.type) || found.type == TodoType::list;
    JsonObject object;
    object.add("type", base::rawValue(found.type))
        .add("content", content)
        .add("contentRange",
             recordOf(base::TextRange{base::utf16Length(line.substr(0, found.contentStart)),
                                      base::utf16Length(content)}))
        .add("marker", hasMarker ? std::optional{base::rawValue(found.marker)} : std::nullopt)
        .add("hasBox", found.hasBox)
        .add("indents", found.indents)
        .add("headingLevel", found.headingLevel);
    return resultOf(std::move(object));
}

JsonObject disassemble(RpcParams& params, const RpcTools&) {
    const grammar::DisassembledTodo parts = grammar::disassemble(params.line("line"));
    JsonObject object;
    object.add("pattern", parts.pattern)
        .add("patternRange", recordOf(parts.patternRange))
        .add("state", parts.state)
        .add("stateRange", recordOf(parts.stateRange))
        .add("todoState", base::rawValue(parts.todoState))
        .add("rest", parts.rest)
        .add("restRange", recordOf(parts.restRange));
    return resultOf(std::move(object));
}

JsonObject tags(RpcParams& params, const RpcTools&) {
    const std::string_view line = params.line("line");
    JsonObject object;
    object.add("hashtags", grammar::hashtagsOf(line)).add("mentions", grammar::mentionsOf(line));
    return resultOf(std::move(object));
}

JsonObject dateTags(RpcParams& params, const RpcTools&) {
    return resultOf(dateTagRecords(params.line("line")));
}

JsonObject doneTags(RpcParams& params, const RpcTools&) {
    std::vector<JsonObject> records;
    for (const grammar::DoneTag& tag : grammar::DateTags::findDoneTags(params.line("line"))) {
        JsonObject record;
        record.add("range", recordOf(tag.range))
            .add("dateText", tag.dateText)
            .add("timeText", tag.timeText)
            .add("day", dayText(tag.day))
            .add("time", tag.time ? std::optional{textOfTime(*tag.time)} : std::nullopt);
        records.push_back(std::move(record));
    }
    return resultOf(std::move(records));
}

JsonObject stateAction(RpcParams& params, const RpcTools&) {
    const std::string_view line = params.line("line");
    switch (params.choice<TodoState>("action")) {
        case TodoState::done: return resultOf(applied(grammar::markAsDone, line));
        case TodoState::canceled: return resultOf(applied(grammar::markAsCanceled, line));
        case TodoState::scheduled: return resultOf(applied(grammar::markAsScheduled, line));
        case TodoState::open: params.refuse("action", base::tr("no command opens a line"));
    }
    return {};
}

constexpr std::array parseParams{Param{"text"}, Param{"filename"}, Param{"settings"}};
constexpr std::array classifyParams{Param{"line"}, Param{"settings"}};
constexpr std::array lineParams{Param{"line"}};
constexpr std::array actionParams{Param{"line"}, Param{"action"}};

constexpr std::array lineMethodRows{
    RpcMethod{"parse", parseParams, parse},
    RpcMethod{"classify", classifyParams, classify},
    RpcMethod{"disassemble", lineParams, disassemble},
    RpcMethod{"tags", lineParams, tags},
    RpcMethod{"dateTags", lineParams, dateTags},
    RpcMethod{"doneTags", lineParams, doneTags},
    RpcMethod{"stateAction", actionParams, stateAction},
};

}  // namespace

std::span<const RpcMethod> lineMethods() {
    return lineMethodRows;
}

}  // namespace tessaly::cli
