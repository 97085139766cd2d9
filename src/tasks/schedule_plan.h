// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "base/day.h"
#include "tasks/planned_changes.h"
#include "tasks/task_rewrites.h"

namespace tessaly::tasks {

/// What scheduling and reopening do to single lines, and to their copies in other notes.
class SchedulePlan {
public:
    SchedulePlan(PlannedChanges& plan, const RewriteSettings& settings)
        : _plan(plan), _settings(settings) {}

    void schedule(const PlannedChanges::Named& named, base::Day day);

    /// Opens a done, cancelled or scheduled task; another one is told to be open already.
    void reopen(const PlannedChanges::Named& named);

private:
    struct Earlier;
    bool isCopied(const NoteLine& line, base::Day day) const;
    base::Result<Earlier> earlierOf(const NoteLine& line, std::optional<base::Day> day);
    void removeCopy(const Earlier& earlier);

    PlannedChanges& _plan;
    const RewriteSettings& _settings;
};

}  // namespace tessaly::tasks
