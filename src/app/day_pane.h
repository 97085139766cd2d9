// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/services.h"
#include "base/day.h"
#include "store/day_tasks.h"

namespace tessaly::app {

/// A day beside the note: its tasks, and on today those that are overdue.
struct DayPane {
    base::Day day{};
    std::string heading;                     ///< "Tuesday, 5 March"
    std::string relative;                    ///< "today"; empty: the heading says it all
    std::vector<store::NoteTask> tasks;      ///< of the day's own note, in line order
    std::vector<store::NoteTask> scheduled;  ///< planned for the day in other notes
    std::vector<store::NoteTask> overdue;    ///< of today alone; the first `mostOverdue`
    std::size_t overdueTotal = 0;
    static constexpr std::size_t mostOverdue = 200;
};

/// The seven days of a week, as the middle of the window shows them.
struct WeekAgenda {
    std::string heading;  ///< "Week 10 · 4 – 10 March 2019"
    std::vector<DayPane> days;
};

/// Makes these views out of the cache, in the background; before all notes are loaded, out of the
/// days that are. A newer request of the same kind takes the place of an older one, whose closure
/// is not called. Main thread, and so are the closures, which are not called any more once this
/// object has gone.
class DayViewsFeed {
public:
    /// `services` outlives it.
    explicit DayViewsFeed(Services& services);
    /// Waits for the work in hand.
    ~DayViewsFeed();
    DayViewsFeed(const DayViewsFeed&) = delete;
    DayViewsFeed& operator=(const DayViewsFeed&) = delete;

    void requestDay(base::Day day, std::function<void(const DayPane& pane)> ready);
    void requestWeek(base::Day day, std::function<void(const WeekAgenda& agenda)> ready);

private:
    struct State;
    std::shared_ptr<State> _state;
};

}  // namespace tessaly::app
