// SPDX-License-Identifier: MIT
#include <array>
#include <limits>

#include "base/enum_names.h"
#include "base/localisation.h"
#include "cli/rpc_methods.h"
#include "grammar/date_tags.h"
#include "grammar/todo_helper.h"
#include "store/note_names.h"
#include "store/taken_names.h"

/// By the names that requests use.
template <>
struct tessaly::base::EnumNames<tessaly::grammar::TagTime> {
    using T = grammar::TagTime;
    static constexpr std::array<EnumName<T>, 3> rows{
        {{T::none, "none"}, {T::time, "time"}, {T::timeAndMarker, "timeAndMarker"}}};
};

namespace tessaly::cli {

namespace {

using Param = std::string_view;

JsonObject fileName(RpcParams& params, const RpcTools&) {
    const bool strips = params.boolean("stripListMarkers", false);
    return resultOf(store::filenameFromTitle(
        params.text("title"), strips ? store::StripListMarkers::yes : store::StripListMarkers::no));
}

JsonObject uniqueName(RpcParams& params, const RpcTools&) {
    const std::string_view base = params.text("base");
    const std::string_view extension = params.textIfAny("extension").value_or(store::noteExtension);
    if (base.empty()) {
        params.refuse("base", base::tr("must not be empty"));
    }
    store::TakenNames taken;
    for (const std::string& name : params.texts("taken")) {
        taken.add(name);
    }
    if (params.failure()) {
        return {};
    }
    return resultOf(store::withExtension(taken.unique(base, extension), extension));
}

JsonObject calendarName(RpcParams& params, const RpcTools& tools) {
    const base::Day day = params.day("day");
    JsonObject object;
    object.add("filename", store::calendarFilename(day))
        .add("name", tools.dateStrings.relativeDay(day, params.now().day));
    return resultOf(std::move(object));
}

JsonObject newTaskPrefix(RpcParams& params, const RpcTools&) {
    const auto settings = params.settings().marking();
    const int number = params.integer("number", 0, std::numeric_limits<int>::max(), 1);
    return resultOf(grammar::TodoHelper::newTaskPrefix(settings.markers,
                                                       settings.defaultTodoCharacter, number));
}

JsonObject writeDate(RpcParams& params, const RpcTools&) {
    return resultOf(grammar::writeTagDate(
        params.time("time"), params.choice<grammar::TagTime>("with"), params.hourCycle()));
}

constexpr std::array fileNameParams{Param{"title"}, Param{"stripListMarkers"}};
constexpr std::array uniqueNameParams{Param{"base"}, Param{"extension"}, Param{"taken"}};
constexpr std::array calendarNameParams{Param{"day"}, Param{"now"}};
constexpr std::array newTaskPrefixParams{Param{"number"}, Param{"settings"}};
constexpr std::array writeDateParams{Param{"time"}, Param{"with"}, Param{"clock"}};

constexpr std::array nameMethodRows{
    RpcMethod{"fileName", fileNameParams, fileName},
    RpcMethod{"uniqueName", uniqueNameParams, uniqueName},
    RpcMethod{"calendarName", calendarNameParams, calendarName},
    RpcMethod{"newTaskPrefix", newTaskPrefixParams, newTaskPrefix},
    RpcMethod{"writeDate", writeDateParams, writeDate},
};

}  // namespace

std::span<const RpcMethod> nameMethods() {
    return nameMethodRows;
}

}  // namespace tessaly::cli
