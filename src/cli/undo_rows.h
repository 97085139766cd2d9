// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "cli/context.h"
#include "cli/json_line.h"
#include "tasks/operation.h"

namespace tessaly::cli {

/// "Scheduled to 2020-01-03: Call Bob (2 tasks)", by the first task that an operation changed.
std::string countedWordsOf(const tasks::Operation& operation);

/// Adds what an operation is to a record for programs.
JsonObject& describe(JsonObject& object, const tasks::Operation& operation);

/// A line each, numbered from 1 in the order given.
void printOperations(Context& context, const std::vector<tasks::Operation>& operations);

}  // namespace tessaly::cli
