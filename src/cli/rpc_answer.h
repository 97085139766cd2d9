// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "cli/rpc_methods.h"
#include "ports/clock.h"

namespace tessaly::cli {

/// Answers requests, each a line. Keeps nothing from one to the next.
class RpcAnswers {
public:
    RpcAnswers(ports::Clock& clock, RpcTools tools) : _clock(clock), _tools(tools) {}

    /// A line without its line break: {"id":…,"result":…} or {"id":…,"error":{"message":…}}. Never
    /// fails: whatever is wrong is in the answer.
    std::string answerTo(std::string_view line) const;

    /// The answer to a line that was too long to be kept.
    static std::string answerToTooLong();

private:
    ports::Clock& _clock;
    RpcTools _tools;
};

}  // namespace tessaly::cli
