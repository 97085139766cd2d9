// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string_view>
#include <utility>

#include "cli/json_line.h"
#include "cli/rpc_params.h"
#include "grammar/date_string_helper.h"

namespace tessaly::cli {

/// What a method may use beside its params: words for people only.
struct RpcTools {
    const grammar::DateStringHelper& dateStrings;
};

/// A method of the protocol. `run` gives the answer's field "result"; it is for nothing when the
/// params have a failure afterwards.
struct RpcMethod {
    std::string_view name;
    std::span<const std::string_view> params;  ///< that it takes
    JsonObject (*run)(RpcParams& params, const RpcTools& tools);
};

/// The table of methods by topic: lines that are read, tasks that are rewritten, texts that are
/// edited, and names.
std::span<const RpcMethod> lineMethods();
std::span<const RpcMethod> taskMethods();
std::span<const RpcMethod> textMethods();
std::span<const RpcMethod> nameMethods();

template <class Value>
JsonObject resultOf(Value value) {
    JsonObject object;
    object.add("result", std::move(value));
    return object;
}

}  // namespace tessaly::cli
