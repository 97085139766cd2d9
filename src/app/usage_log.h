// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string_view>
#include <utility>

namespace tessaly::app {

/// What is told of a program's life.
enum class UsageEvent { launching, firstLaunch, active, inactive, exit };

/// Where usage events go. It is off: without a sink an event is forgotten at once, and no sink of
/// ours leaves the machine. Never told: names, paths, texts.
class UsageLog {
public:
    /// Takes an event and its value, which is empty for events that have none.
    using Sink = std::function<void(std::string_view event, std::string_view value)>;

    UsageLog() = default;
    explicit UsageLog(Sink sink) : _sink(std::move(sink)) {}

    /// Tells the sink, on the calling thread.
    void record(UsageEvent event) const;

private:
    Sink _sink;
};

}  // namespace tessaly::app
