// SPDX-License-Identifier: MIT
#include "app/task_changes.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "app/task_address.h"
#include "base/localisation.h"

namespace tessaly::app {
namespace {

using base::Failure;
using base::tr;
using tasks::NoteName;
using tasks::TaskOperations;
using tasks::TaskOutcome;
using tasks::TaskReference;
using tasks::TaskRefusal;
using LaterRepeats = TaskOperations::LaterRepeats;
using Options = store::NoteReader::Options;
using Outcome = base::Result<TaskOutcome>;

/// The operations on the data folder in use, for one request.
class Operations {
public:
    explicit Operations(Services& services)
        : _journal(services.operationJournal()),
          _runner(services.operationRunner(*_journal)),
          _operations({services.ports().files, services.ports().clock, _runner},
                      services.dataStore().root(), services.rewriteSettings()) {}

    TaskOperations* operator->() { return &_operations; }

private:
    std::unique_ptr<tasks::OperationJournal> _journal;
    tasks::OperationRunner _runner;
    TaskOperations _operations;
};

/// The lines of a request.
struct Named {
    std::vector<TaskReference> lines;
    std::vector<TaskRefusal> refusals;
};

/// What a name without a line is where it is not the only one.
enum class WholeDay { unknown, byItself };

Failure namesNoLine(std::string_view name, const NoteAddress& note, WholeDay wholeDay) {
    const bool isDay = wholeDay == WholeDay::byItself && note.day;
    const std::string words = isDay
                                  ? tr("“{0}” stands for a whole day, which is scheduled by itself")
                                  : tr("“{0}” names no line; write {0}:LINE, lines from 1");
    return {Failure::Kind::malformed, fmt::format(fmt::runtime(words), name)};
}

bool isSameLine(const TaskReference& a, const TaskReference& b) {
    return a.note == b.note && a.lineIndex == b.lineIndex;
}

void add(Named& named, const TaskAddress& address, const std::optional<std::string>& expected) {
    TaskReference line{{address.note.type, address.note.filename},
                       *address.lineIndex,
                       expected,
                       TaskReference::Where::there};
    const auto isKnown = [&](const TaskReference& other) { return isSameLine(line, other); };
    if (std::none_of(named.lines.begin(), named.lines.end(), isKnown)) {
        named.lines.push_back(std::move(line));
    }
}

/// Failure: the look-up was cancelled.
base::Result<Named> linesOf(TaskFinder& finder, const TaskRequest& request, WholeDay wholeDay) {
    Named named;
    for (const std::string& name : request.tasks) {
        const auto address = finder.find(name);
        if (!address && address.failure().kind == Failure::Kind::cancelled) {
            return address.failure();
        }
        if (address && address->lineIndex) {
            add(named, *address, request.expected);
        } else {
            named.refusals.push_back(
                {{}, address ? namesNoLine(name, address->note, wholeDay) : address.failure()});
        }
    }
    return named;
}

base::Result<Named> linesOf(Services& services, const TaskRequest& request,
                            const Options& options) {
    TaskFinder finder{services, options};
    return linesOf(finder, request, WholeDay::unknown);
}

/// What the operation tells, behind what could not be found.
Outcome withRefusals(Outcome made, const std::vector<TaskRefusal>& refusals) {
    const bool hasWords = made || !made.failure().description.empty();
    if (refusals.empty() || !hasWords) {
        return made;
    }
    TaskOutcome outcome;
    if (made) {
        outcome = std::move(made).value();
    } else {
        outcome.refusals.push_back({{}, made.failure()});
    }
    outcome.refusals.insert(outcome.refusals.begin(), refusals.begin(), refusals.end());
    return outcome;
}

template <class Step>
Outcome carriedOut(Services& services, const base::Result<Named>& named, const Step& step) {
    if (!named) {
        return named.failure();
    }
    if (named->lines.empty()) {
        return withRefusals(TaskOutcome{}, named->refusals);
    }
    Operations operations{services};
    return withRefusals(step(operations, TaskOperations::References{named->lines}),
                        named->refusals);
}

/// The day whose note is all that is named; nothing: lines are, or what cannot be scheduled.
std::optional<base::Day> dayAlone(TaskFinder& finder, const TaskRequest& request) {
    if (request.tasks.size() != 1) {
        return std::nullopt;
    }
    const auto address = finder.find(request.tasks.front());
    return address && !address->lineIndex ? address->note.day : std::nullopt;
}

/// Nothing: there was no answer.
std::optional<LaterRepeats> askForRepeats(Services& services, std::size_t repeats) {
    const std::string words = base::trPlural("It repeats {} more time, in the note of a later day.",
                                             "It repeats {} more times, in notes of later days.",
                                             static_cast<unsigned long>(repeats));
    const auto answer =
        services.ports().questions({tr(tasks::deleteRepeatsQuestion),
                                    fmt::format(fmt::runtime(words), repeats),
                                    {tr("Yes, delete them too"), tr("No, this one only")}});
    if (!answer) {
        return std::nullopt;
    }
    return *answer == 0 ? LaterRepeats::go : LaterRepeats::stay;
}

Outcome deleted(Services& services, Operations& operations, TaskOperations::References lines,
                std::optional<LaterRepeats> later) {
    if (!later) {
        const auto repeats = operations->countLaterRepeats(lines);
        if (!repeats) {
            return repeats.failure();
        }
        later = *repeats == 0 ? LaterRepeats::stay : askForRepeats(services, *repeats);
    }
    if (!later) {
        return Failure{Failure::Kind::unavailable, {}};
    }
    return operations->remove(lines, *later);
}

}  // namespace

Outcome changeTasks(Services& services, TaskStep step, const TaskRequest& request,
                    const Options& options) {
    return carriedOut(services, linesOf(services, request, options),
                      [&](Operations& operations, TaskOperations::References lines) {
                          switch (step) {
                              case TaskStep::complete: return operations->complete(lines);
                              case TaskStep::cancel: return operations->cancel(lines);
                              case TaskStep::reopen: break;
                          }
                          return operations->reopen(lines);
                      });
}

Outcome scheduleTasks(Services& services, const TaskRequest& request, base::Day day,
                      const Options& options) {
    TaskFinder finder{services, options};
    if (const auto source = dayAlone(finder, request)) {
        Operations operations{services};
        return operations->scheduleAllOpen(*source, day);
    }
    return carriedOut(services, linesOf(finder, request, WholeDay::byItself),
                      [&](Operations& operations, TaskOperations::References lines) {
                          return operations->schedule(lines, day);
                      });
}

Outcome repeatTasks(Services& services, const TaskRequest& request, tasks::RepeatInterval interval,
                    int count, const Options& options) {
    return carriedOut(services, linesOf(services, request, options),
                      [&](Operations& operations, TaskOperations::References lines) {
                          return operations->repeat(lines, interval, count);
                      });
}

Outcome deleteTasks(Services& services, const TaskRequest& request,
                    std::optional<LaterRepeats> later, const Options& options) {
    return carriedOut(services, linesOf(services, request, options),
                      [&](Operations& operations, TaskOperations::References lines) {
                          return deleted(services, operations, lines, later);
                      });
}

namespace {

/// Failure: in words for the user, too, where a line of the note is named.
base::Result<NoteAddress> wholeNote(Services& services, TaskFinder& finder, const std::string& name,
                                    const Options& options) {
    auto note = findNote(services, name, options);
    if (note || note.failure().kind != Failure::Kind::notFound) {
        return note;
    }
    const auto line = finder.find(name);
    if (!line || !line->lineIndex) {
        return note;
    }
    return Failure{
        Failure::Kind::malformed,
        fmt::format(fmt::runtime(tr("“{0}” names a line; notes are archived as a whole")), name)};
}

}  // namespace

Outcome archiveTasks(Services& services, const std::vector<std::string>& notes,
                     const Options& options) {
    std::vector<NoteName> names;
    std::vector<TaskRefusal> refusals;
    TaskFinder finder{services, options};
    for (const std::string& note : notes) {
        const auto address = wholeNote(services, finder, note, options);
        if (!address && address.failure().kind == Failure::Kind::cancelled) {
            return address.failure();
        }
        if (!address) {
            refusals.push_back({{}, address.failure()});
            continue;
        }
        const NoteName name{address->type, address->filename};
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            names.push_back(name);
        }
    }
    if (names.empty()) {
        return withRefusals(TaskOutcome{}, refusals);
    }
    Operations operations{services};
    return withRefusals(operations->archive(names), refusals);
}

bool finishRepeat(Services& services, const store::FinishedRepeat& found) {
    Operations operations{services};
    const auto outcome = operations->finishRepeat({{found.type, found.filename},
                                                   found.lineIndex,
                                                   found.line,
                                                   TaskReference::Where::anywhere});
    return outcome && outcome->operation;
}

}  // namespace tessaly::app
