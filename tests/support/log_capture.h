// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/log.h"

namespace tessaly::tests {

/// Collects the lines logged while it lives.
class LogCapture {
public:
    LogCapture()
        : _before(base::setLogSink([this](std::string_view line) { _lines.emplace_back(line); })) {}
    ~LogCapture() { base::setLogSink(std::move(_before)); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// To be read when no thread logs any more.
    const std::vector<std::string>& lines() const { return _lines; }
    void clear() { _lines.clear(); }

private:
    std::vector<std::string> _lines;
    base::LogSink _before;
};

}  // namespace tessaly::tests
