// SPDX-License-Identifier: MIT
#include "app/day_pane.h"

#include <array>
#include <atomic>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "app/day_range_words.h"
#include "app/day_task_index.h"
#include "app/schedule_text.h"
#include "base/localisation.h"
#include "base/serial_queue.h"
#include "base/weekday.h"
#include "store/note_cache.h"
#include "store/snapshot_difference.h"

namespace tessaly::app {
namespace {

using base::NoteType;

bool areSameMarkers(const grammar::MarkerSettings& a, const grammar::MarkerSettings& b) {
    return a.isAsteriskTodo == b.isAsteriskTodo && a.isDashTodo == b.isDashTodo &&
           a.isNumbersTodo == b.isNumbersTodo;
}

/// The index of what the cache held last. One thread at a time.
class FollowedTasks {
public:
    /// Takes over what the cache holds by now.
    DayTaskIndex& follow(const store::NoteCache& cache, const grammar::MarkerSettings& markers) {
        if (!areSameMarkers(_index.markers(), markers)) {
            *this = FollowedTasks(markers);
        }
        followGeneral(cache.generalNotes());
        followCalendar(cache.calendarNotes());
        followStrays(cache);
        return _index;
    }

    explicit FollowedTasks(const grammar::MarkerSettings& markers = {}) : _index(markers) {}

private:
    void followGeneral(std::shared_ptr<const store::GeneralNotes> now) {
        const auto put = [&](const auto& before, const auto& after) {
            const store::LoadedNote& note = (after ? after : before)->note;
            if (!note.isFolder) {
                _index.put(NoteType::note, note.filename,
                           after ? note.content.view() : std::string_view());
            }
        };
        store::forEachDifference<store::ByFilename>(*_general, *now, put);
        _general = std::move(now);
    }

    void followCalendar(std::shared_ptr<const store::CalendarNotes> now) {
        const auto put = [&](const auto& before, const auto& after) {
            // A day's note may have another file name, as of another extension.
            if (before && (!after || before->model.filename != after->model.filename)) {
                _index.put(NoteType::calendar, before->model.filename, {});
            }
            if (after) {
                _index.put(NoteType::calendar, after->model.filename, after->content.view());
            }
        };
        store::forEachDifference<store::ByDay>(*_calendar, *now, put);
        _calendar = std::move(now);
    }

    void followStrays(const store::NoteCache& cache) {
        const std::vector<std::string> names = cache.strays();
        const std::set<std::string> now(names.begin(), names.end());
        for (const std::string& name : _strays) {
            if (!now.contains(name)) {
                _index.put(NoteType::calendar, name, {});
            }
        }
        for (const std::string& name : now) {
            const auto known = cache.knownText(NoteType::calendar, name);
            _index.put(NoteType::calendar, name, known ? known->text.view() : std::string_view());
        }
        _strays = now;
    }

    DayTaskIndex _index;
    std::shared_ptr<const store::GeneralNotes> _general = std::make_shared<store::GeneralNotes>();
    std::shared_ptr<const store::CalendarNotes> _calendar =
        std::make_shared<store::CalendarNotes>();
    std::set<std::string> _strays;
};

/// As the views tell it of days of this year and of others.
std::string headingOf(base::Day day, base::Day today, const base::LocaleFormats& formats) {
    return formats.day(day, day.year() == today.year() ? "EEEEdMMMM" : "EEEEdMMMMyyyy");
}

std::string relativeOf(base::Day day, base::Day today, const grammar::DateStringHelper& names) {
    const std::string relative = names.relativeDay(day, today);
    return relative == names.dayHeader(day) ? std::string() : relative;
}

DayPane paneOf(DayTaskIndex& index, base::Day day, base::Day today,
               const grammar::DateStringHelper& names) {
    const store::DayTasks tasks = index.ofDay(day);
    DayPane pane{.day = day,
                 .heading = headingOf(day, today, names.formats()),
                 .relative = relativeOf(day, today, names),
                 .tasks = tasks.ofNote(day),
                 .scheduled = tasks.scheduledTo(day),
                 .overdue = {}};
    if (day == today) {
        store::OverdueTasks overdue = index.overdue(today, DayPane::mostOverdue);
        pane.overdue = std::move(overdue.tasks);
        pane.overdueTotal = overdue.total;
    }
    return pane;
}

}  // namespace

/// Shared with the jobs, which hold it until they end.
struct DayViewsFeed::State {
    explicit State(Services& all)
        : services(all),
          cache(all.noteCache()),
          names(all.dateStrings()),
          queue(std::string(bundleIdentifier) + ".DayViews", all.ports().executor) {
        // What other threads ask for must be there before.
        all.globals();
    }

    enum class View { day, week };
    std::atomic<unsigned>& newest(View view) { return requests[static_cast<std::size_t>(view)]; }

    /// Has `make` make a view on the queue, and `ready` told of it unless a newer one is wanted.
    template <class Value, class Make>
    static void request(const std::shared_ptr<State>& state, View view, Make make,
                        std::function<void(const Value&)> ready) {
        const unsigned number = ++state->newest(view);
        const auto isWanted = [view, number](State& self) { return self.newest(view) == number; };
        state->queue.async([state, isWanted, make = std::move(make), ready = std::move(ready)] {
            if (!isWanted(*state)) {
                return;
            }
            const auto value = std::make_shared<const Value>(make(*state));
            state->services.ports().mainQueue.post([state, isWanted, ready, value] {
                if (isWanted(*state)) {
                    ready(*value);
                }
            });
        });
    }

    DayTaskIndex& index() { return followed.follow(cache, services.markerSettings()); }

    WeekAgenda agendaOf(base::Day day) {
        const auto firstDay = services.globals().firstDayOfWeek();
        const base::Day first = base::startOfWeek(day, base::toWeekday(firstDay));
        WeekAgenda agenda{
            fmt::format(fmt::runtime(base::tr("Week {0} · {1}")), weekNumber(day, firstDay),
                        dayRangeWords(first, base::addDays(first, 6), names.formats())),
            {}};
        const base::Day today = services.today();
        DayTaskIndex& tasks = index();
        for (int i = 0; i < 7; ++i) {
            agenda.days.push_back(paneOf(tasks, base::addDays(first, i), today, names));
        }
        return agenda;
    }

    Services& services;
    const store::NoteCache& cache;
    const grammar::DateStringHelper& names;
    std::array<std::atomic<unsigned>, 2> requests{};  ///< the number of the newest one of each kind
    FollowedTasks followed;                           ///< the queue's
    base::SerialQueue queue;
};

DayViewsFeed::DayViewsFeed(Services& services) : _state(std::make_shared<State>(services)) {}

DayViewsFeed::~DayViewsFeed() {
    for (auto& newest : _state->requests) {
        ++newest;
    }
    _state->queue.sync([] {});
}

void DayViewsFeed::requestDay(base::Day day, std::function<void(const DayPane& pane)> ready) {
    State::request<DayPane>(
        _state, State::View::day,
        [day](State& state) {
            return paneOf(state.index(), day, state.services.today(), state.names);
        },
        std::move(ready));
}

void DayViewsFeed::requestWeek(base::Day day, std::function<void(const WeekAgenda& agenda)> ready) {
    State::request<WeekAgenda>(
        _state, State::View::week, [day](State& state) { return state.agendaOf(day); },
        std::move(ready));
}

}  // namespace tessaly::app
