// SPDX-License-Identifier: MIT
#include "app/day_view.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/weekday.h"
#include "grammar/line_scanner.h"
#include "store/note_names.h"

namespace tessaly::app {
namespace {

struct Gathered {
    store::DayTasks tasks;
    std::vector<base::Day> noteDays;  // in no order
    grammar::NoteScanner scanner;
};

struct Reading {
    Gathered all;
    store::ReadReport report;
};

// The text of a note whose record in the index is none.
std::string bytesOf(Services& services, const store::NoteFile& file) {
    const auto path = services.dataStore().pathOf(file.type, file.filename);
    auto contents = path ? services.ports().files.read(*path)
                         : base::Result<ports::FileContents>(path.failure());
    return contents ? (*std::move(contents)).bytes : std::string();
}

void addNote(Services& services, Gathered& gathered, const store::NoteFile& file,
             const grammar::MarkerSettings& markers) {
    if (file.type == base::NoteType::calendar) {
        if (const auto day = store::dayOfCalendarFilename(file.filename)) {
            gathered.noteDays.push_back(*day);
        }
    }
    if (!file.record) {
        gathered.tasks.add(file.type, file.filename, file.bytes, markers, gathered.scanner);
    } else if (!gathered.tasks.addRecord(file.type, file.filename, *file.record)) {
        gathered.tasks.add(file.type, file.filename, bytesOf(services, file), markers,
                           gathered.scanner);
    }
}

Reading readTasks(Services& services, store::NoteReader::Options options) {
    options.types = {base::NoteType::calendar, base::NoteType::note};
    options.wanted = store::NoteReader::Wanted::dayTasks;
    const grammar::MarkerSettings markers = services.markerSettings();
    const store::NoteCache& cache = services.noteCache();
    std::vector<Gathered> byWorker(cache.workers());
    Reading reading;
    reading.report = cache.visit(options, [&](std::size_t worker, const store::NoteFile& file) {
        addNote(services, byWorker[worker], file, markers);
    });
    for (Gathered& gathered : byWorker) {
        reading.all.tasks.join(std::move(gathered.tasks));
        reading.all.noteDays.insert(reading.all.noteDays.end(), gathered.noteDays.begin(),
                                    gathered.noteDays.end());
    }
    return reading;
}

DayView viewOf(Services& services, const Gathered& gathered, base::Day day, base::Day today,
               std::size_t mostOverdue) {
    const grammar::DateStringHelper& names = services.dateStrings();
    DayView view;
    view.day = day;
    view.name = names.relativeDay(day, today);
    view.heading = names.formats().day(day, "EEEEdMMMMyyyy");
    view.hasNote = std::find(gathered.noteDays.begin(), gathered.noteDays.end(), day) !=
                   gathered.noteDays.end();
    view.tasks = gathered.tasks.ofNote(day);
    view.scheduled = gathered.tasks.scheduledTo(day);
    if (day == today) {
        view.overdue = gathered.tasks.overdue(today, services.ports().executor, mostOverdue);
    }
    return view;
}

}  // namespace

DayViews dayViews(Services& services, base::Day first, int count,
                  store::NoteReader::Options options, std::size_t mostOverdue) {
    Reading reading = readTasks(services, std::move(options));
    const base::Day today = services.today();
    DayViews views;
    for (int i = 0; i < count; ++i) {
        views.days.push_back(
            viewOf(services, reading.all, base::addDays(first, i), today, mostOverdue));
    }
    views.report = std::move(reading.report);
    return views;
}

DayViews weekView(Services& services, base::Day day, store::NoteReader::Options options,
                  std::size_t mostOverdue) {
    const auto first = base::toWeekday(services.globals().firstDayOfWeek());
    return dayViews(services, base::startOfWeek(day, first), 7, std::move(options), mostOverdue);
}

OverdueView overdueView(Services& services, store::NoteReader::Options options) {
    Reading reading = readTasks(services, std::move(options));
    return {reading.all.tasks.overdue(services.today(), services.ports().executor).tasks,
            std::move(reading.report)};
}

}  // namespace tessaly::app
