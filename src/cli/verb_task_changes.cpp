// SPDX-License-Identifier: MIT
#include <charconv>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "app/task_address.h"
#include "app/task_changes.h"
#include "base/localisation.h"
#include "cli/change_report.h"
#include "cli/context.h"
#include "cli/safe_text.h"
#include "cli/task_change_rows.h"
#include "cli/verb_functions.h"
#include "tasks/repeats.h"

namespace tessaly::cli {

namespace {

using base::tr;
using tasks::TaskOperations;

app::TaskRequest requestOf(const Invocation& invocation, std::size_t names) {
    const auto first = invocation.arguments.begin();
    app::TaskRequest request{{first, first + static_cast<std::ptrdiff_t>(names)}, std::nullopt};
    if (invocation.has("--expect")) {
        request.expected = invocation.value("--expect");
    }
    return request;
}

/// Nothing, and the reason told, when a text is expected of several lines.
std::optional<app::TaskRequest> wantedLines(const Invocation& invocation, std::size_t names) {
    app::TaskRequest request = requestOf(invocation, names);
    const bool isOneLine = names == 1 && !app::readTaskName(request.tasks.front()).line.empty();
    if (request.expected && !isOneLine) {
        complain(tr("--expect goes with a single NOTE:LINE"));
        return std::nullopt;
    }
    return request;
}

Exit change(Context& context, app::TaskStep step) {
    const auto request = wantedLines(context.invocation, context.invocation.arguments.size());
    if (!request) {
        return Exit::misuse;
    }
    return carryOut(context, [&](app::Services& services) {
        return reportOn(context, app::changeTasks(services, step, *request, context.readOptions()));
    });
}

/// A question would stand behind the line that tells of the progress.
store::NoteReader::Options quietly(const Context& context) {
    store::NoteReader::Options options;
    options.cancelled = &context.cancelled;
    return options;
}

Exit deleteLines(Context& context) {
    const Invocation& invocation = context.invocation;
    const app::TaskRequest request = requestOf(invocation, invocation.arguments.size());
    const auto later =
        invocation.has("--yes") ? std::optional{TaskOperations::LaterRepeats::go} : std::nullopt;
    return carryOut(context, [&](app::Services& services) {
        const auto outcome = app::deleteTasks(services, request, later, quietly(context));
        if (!outcome && outcome.failure().kind == base::Failure::Kind::unavailable) {
            complain(
                tr("there is no answer, so nothing was deleted; with --yes the later repeats go, "
                   "too, and there is no question"));
            return ChangeReport{Exit::couldNot, {}};
        }
        return reportOn(context, outcome);
    });
}

/// Nothing: no number that is allowed.
std::optional<int> repeatCountIn(const std::string& text) {
    int count = -1;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, count);
    const bool isCount = read.ec == std::errc{} && read.ptr == end && count >= 0;
    return isCount && count <= TaskOperations::maxRepeats ? std::optional{count} : std::nullopt;
}

Exit repeatLines(Context& context) {
    const Invocation& invocation = context.invocation;
    if (!invocation.has("--every") || !invocation.has("--times")) {
        return misuse(tr("repeat needs --every and --times, or --delete"));
    }
    const auto interval = base::fromRawValue<tasks::RepeatInterval>(invocation.value("--every"));
    if (!interval) {
        return misuse(tr("--every is day, week, month, quarter or year"));
    }
    const auto count = repeatCountIn(invocation.value("--times"));
    if (!count) {
        return misuse(fmt::format(fmt::runtime(tr("--times is a number from 0 to {}")),
                                  TaskOperations::maxRepeats));
    }
    const app::TaskRequest request = requestOf(invocation, invocation.arguments.size());
    return carryOut(context, [&](app::Services& services) {
        return reportOn(
            context, app::repeatTasks(services, request, *interval, *count, context.readOptions()));
    });
}

}  // namespace

Exit runDone(Context& context) {
    return change(context, app::TaskStep::complete);
}

Exit runCancel(Context& context) {
    return change(context, app::TaskStep::cancel);
}

Exit runReopen(Context& context) {
    return change(context, app::TaskStep::reopen);
}

Exit runSchedule(Context& context) {
    const Invocation& invocation = context.invocation;
    const std::string& last = invocation.arguments.back();
    const auto day =
        app::parseDay(last, context.services.today(), context.services.dateStrings().formats());
    if (!day) {
        return misuse(fmt::format(
            fmt::runtime(tr("“{}” is no day; a day is 2020-01-31, 20200131, today, tomorrow, fri, "
                            "+3d, -1w, +2m or +1y")),
            safeText(last)));
    }
    const auto request = wantedLines(invocation, invocation.arguments.size() - 1);
    if (!request) {
        return Exit::misuse;
    }
    return carryOut(context, [&](app::Services& services) {
        return reportOn(context,
                        app::scheduleTasks(services, *request, *day, context.readOptions()));
    });
}

Exit runRepeat(Context& context) {
    const Invocation& invocation = context.invocation;
    if (!invocation.has("--delete")) {
        return invocation.has("--yes") ? misuse(tr("--yes goes with --delete"))
                                       : repeatLines(context);
    }
    if (invocation.has("--times")) {
        return misuse(
            fmt::format(fmt::runtime(tr("{} and {} exclude each other")), "--times", "--delete"));
    }
    return deleteLines(context);
}

Exit runArchive(Context& context) {
    return carryOut(context, [&](app::Services& services) {
        return reportOn(context, app::archiveTasks(services, context.invocation.arguments,
                                                   context.readOptions()));
    });
}

}  // namespace tessaly::cli
