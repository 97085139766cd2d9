// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "base/executor.h"

namespace tessaly::base {

/// Runs each job at once, in `post`, on the thread that posts it.
class InlineExecutor final : public Executor {
public:
    void post(Job job) override { runGuarded(std::move(job)); }
    std::size_t width() const override { return 0; }
};

}  // namespace tessaly::base
