// SPDX-License-Identifier: MIT
#include "cli/rpc_answer.h"

#include <array>
#include <exception>
#include <map>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "base/localisation.h"
#include "cli/malformed.h"
#include "settings/nearest_name.h"

namespace tessaly::cli {

using base::Failure;
using base::Result;
using base::tr;

namespace {

using Methods = std::map<std::string_view, const RpcMethod*>;

Methods allMethods() {
    Methods methods;
    for (const auto rows : {lineMethods(), taskMethods(), textMethods(), nameMethods()}) {
        for (const RpcMethod& row : rows) {
            methods.emplace(row.name, &row);
        }
    }
    return methods;
}

const Methods& methods() {
    static const Methods all = allMethods();
    return all;
}

Failure unknownMethod(std::string_view name) {
    std::vector<std::string_view> names;
    for (const auto& [known, method] : methods()) {
        names.push_back(known);
    }
    const auto nearest = settings::nearestName(name, names);
    if (nearest.empty()) {
        return malformed(fmt::format(fmt::runtime(tr("there is no method “{}”; there are: {}")),
                                     name, fmt::join(names, ", ")));
    }
    return malformed(fmt::format(fmt::runtime(tr("there is no method “{}”; did you mean “{}”?")),
                                 name, nearest));
}

Result<const RpcMethod*> methodOf(const JsonValue& request) {
    const auto field = request.field("method");
    const auto name = field ? field->text() : std::nullopt;
    if (!name) {
        return malformed(tr("the field \"method\" is missing, or no text"));
    }
    const auto found = methods().find(*name);
    return found == methods().end() ? Result<const RpcMethod*>{unknownMethod(*name)}
                                    : found->second;
}

/// The answer's second field, as an object of its own.
Result<JsonObject> resultFor(const JsonValue& request, const RpcTools& tools, ports::Clock& clock) {
    if (!request.isObject()) {
        return malformed(tr("the line is no JSON object"));
    }
    const auto method = methodOf(request);
    if (!method) {
        return method.failure();
    }
    auto given = request.field("params");
    if (given && given->isNull()) {
        given.reset();
    }
    RpcParams params{given, (*method)->params, clock};
    if (params.failure()) {
        return *params.failure();
    }
    JsonObject result = (*method)->run(params, tools);
    return params.failure() ? Result<JsonObject>{*params.failure()} : std::move(result);
}

std::string withId(const std::string& id, const JsonObject& object) {
    return fmt::format("{{\"id\":{},{}", id, std::string_view{object.text()}.substr(1));
}

std::string refusal(const std::string& id, std::string_view message) {
    JsonObject error;
    error.add("message", message);
    JsonObject object;
    object.add("error", std::move(error));
    return withId(id, object);
}

constexpr std::string_view noId = "null";

}  // namespace

std::string RpcAnswers::answerTo(std::string_view line) const {
    std::string id{noId};
    try {
        const auto request = JsonDocument::read(line);
        if (!request) {
            return refusal(id, request.failure().description);
        }
        const auto given = request->root().field("id");
        id = given ? given->dumped() : id;
        const auto result = resultFor(request->root(), _tools, _clock);
        return result ? withId(id, *result) : refusal(id, result.failure().description);
    } catch (const std::exception& error) {  // no memory for so much; the next request may be less
        return refusal(id, error.what());
    }
}

std::string RpcAnswers::answerToTooLong() {
    return refusal(std::string{noId}, tr("the line is too long"));
}

}  // namespace tessaly::cli
