// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/services.h"
#include "base/day.h"
#include "store/day_tasks.h"
#include "store/note_reader.h"

namespace tessaly::app {

/// One day as it is shown.
struct DayView {
    base::Day day;
    std::string name;     ///< "today", "Tue, 5 Mar"
    std::string heading;  ///< the day in full, with its year
    bool hasNote = false;
    std::vector<store::NoteTask> tasks;      ///< of the day's own note, in line order
    std::vector<store::NoteTask> scheduled;  ///< planned for the day in other notes
    store::OverdueTasks overdue;             ///< filled for today alone
};

struct DayViews {
    std::vector<DayView> days;
    store::ReadReport report;
};

/// The days `first` … `first + count - 1`, out of one reading of the data folder. Of what is
/// overdue today, the first `mostOverdue` are told. `options` carries progress and cancelling.
DayViews dayViews(Services& services, base::Day first, int count,
                  store::NoteReader::Options options = {},
                  std::size_t mostOverdue = store::everyTask);

/// The seven days of the week that holds `day`, by the setting `firstDayOfWeek`.
DayViews weekView(Services& services, base::Day day, store::NoteReader::Options options = {},
                  std::size_t mostOverdue = store::everyTask);

/// Every open task planned for a day before today.
struct OverdueView {
    std::vector<store::NoteTask> tasks;
    store::ReadReport report;
};
OverdueView overdueView(Services& services, store::NoteReader::Options options = {});

}  // namespace tessaly::app
