// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "app/undo_changes.h"
#include "base/localisation.h"
#include "base/utf8.h"
#include "cli/change_report.h"
#include "cli/context.h"
#include "cli/json_times.h"
#include "cli/safe_text.h"
#include "cli/spans.h"
#include "cli/task_change_rows.h"
#include "cli/verb_functions.h"

namespace tessaly::cli {

namespace {

using base::N_;
using base::tr;
using store::ChangeCause;
using tasks::LineEdit;
using tasks::NoteName;
using tasks::Operation;

struct CauseWords {
    ChangeCause cause;
    const char* text;  // {0} is what was changed, {1} the day
};

constexpr std::array causes{
    CauseWords{ChangeCause::completed, N_("Completed: {0}")},
    CauseWords{ChangeCause::cancelled, N_("Cancelled: {0}")},
    CauseWords{ChangeCause::reopened, N_("Reopened: {0}")},
    CauseWords{ChangeCause::scheduled, N_("Scheduled to {1}: {0}")},
    CauseWords{ChangeCause::repeated, N_("Repeated: {0}")},
    CauseWords{ChangeCause::deleted, N_("Deleted: {0}")},
    CauseWords{ChangeCause::archived, N_("Archived: {0}")},
};

/// The notes of an operation, in the order in which it changes them.
std::vector<NoteName> notesOf(const Operation& operation) {
    std::vector<NoteName> notes;
    for (const tasks::NoteStep& step : operation.steps) {
        const NoteName note{step.type, step.filename};
        if (std::find(notes.begin(), notes.end(), note) == notes.end()) {
            notes.push_back(note);
        }
    }
    return notes;
}

/// "Scheduled to 2020-01-03: Call Bob (2 tasks)".
std::string wordsOf(const Operation& operation) {
    const auto row = std::find_if(causes.begin(), causes.end(), [&](const CauseWords& one) {
        return one.cause == operation.cause;
    });
    const std::string day = operation.day ? base::tagText(*operation.day) : std::string{};
    std::string words = fmt::format(fmt::runtime(row == causes.end() ? "{0}" : tr(row->text)),
                                    safeText(base::trimmed(operation.title)), day);
    if (operation.tasks > 1) {
        const std::string count =
            base::trPlural("({} task)", "({} tasks)", static_cast<unsigned long>(operation.tasks));
        words += " " + fmt::format(fmt::runtime(count), operation.tasks);
    }
    return words;
}

std::string timeWords(Context& context, const Operation& operation) {
    const base::LocalTime time = context.services.ports().clock.local(operation.time);
    const grammar::DateStringHelper& words = context.services.dateStrings();
    return fmt::format("{} {}", words.dateWithYear(time.day), words.time(time));
}

JsonObject& describe(JsonObject& object, const Operation& operation) {
    object.add("time", rfc3339(operation.time))
        .add("cause", base::rawValue(operation.cause))
        .add("title", operation.title)
        .add("tasks", operation.tasks);
    if (operation.day) {
        object.add("day", base::tagText(*operation.day));
    }
    return object;
}

// What was undone.

struct EditWords {
    std::string_view name;  // for programs
    const char* text;
};
constexpr EditWords restored{"restored", N_("Restored {0}")};
constexpr EditWords removed{"removed", N_("Removed {0}")};

std::string lineOf(Context& context, const NoteName& note, const LineEdit& edit) {
    const bool isGone = edit.kind == LineEdit::Kind::remove;
    const EditWords& words = isGone ? removed : restored;
    const std::size_t index = isGone ? edit.index : edit.newIndex;
    const std::string& line = isGone ? edit.before : edit.after;
    if (context.invocation.json) {
        return changeRecord(words.name, note, index, line).text();
    }
    const std::string text =
        fmt::format(fmt::runtime(tr(words.text)), placeWords(context, note, index));
    return drawnChange(context, "  " + text, line);
}

std::string headingOf(Context& context, const app::UndoneOperation& one) {
    if (context.invocation.json) {
        JsonObject object;
        object.add("did", "undone");
        return describe(object, one.operation)
            .add("complete", one.undone.isComplete)
            .add("leftCopies", one.undone.leftCopies)
            .text();
    }
    const std::string words = one.undone.isComplete ? tr("Undone: {}") : tr("Undone in part: {}");
    return drawnChange(context, fmt::format(fmt::runtime(words), wordsOf(one.operation)), {});
}

void addLines(Context& context, const app::UndoneOperation& one, ChangeReport& report) {
    report.lines.push_back(headingOf(context, one));
    for (const tasks::NoteStep& step : one.undone.steps) {
        for (const LineEdit& edit : step.edits) {
            report.lines.push_back(lineOf(context, {step.type, step.filename}, edit));
        }
    }
    if (!one.undone.isComplete) {
        report.exit = Exit::couldNot;
    }
}

void tellOfFewer(const app::UndoOutcome& outcome, std::size_t wanted) {
    const std::size_t count = outcome.undone.size();
    if (count < wanted && !outcome.failure) {
        const std::string words =
            base::trPlural("there was only {} change to undo", "there were only {} changes to undo",
                           static_cast<unsigned long>(count));
        complain(fmt::format(fmt::runtime(words), count));
    }
}

ChangeReport undoLast(Context& context, app::Services& services, std::size_t count) {
    const auto outcome = app::undo(services, count);
    if (!outcome) {
        return {couldNot(context, outcome.failure()), {}};
    }
    ChangeReport report;
    for (const app::UndoneOperation& one : outcome->undone) {
        addLines(context, one, report);
    }
    tellOfFewer(*outcome, count);
    if (outcome->failure) {
        report.exit = couldNot(context, *outcome->failure);
    }
    return report;
}

// What can be undone.

std::string recordOf(const Operation& operation, std::size_t number) {
    std::vector<std::string> notes;
    for (const NoteName& note : notesOf(operation)) {
        notes.push_back(fmt::format("{}/{}", base::folderName(note.type), note.filename));
    }
    JsonObject object;
    object.add("number", number);
    return describe(object, operation).add("notes", notes).text();
}

std::string rowOf(Context& context, const Operation& operation, std::size_t number,
                  std::size_t digits) {
    const Terminal& terminal = context.terminal;
    std::vector<std::string> notes;
    for (const NoteName& note : notesOf(operation)) {
        notes.push_back(noteWords(context, note));
    }
    const Spans left{{Style::date, fmt::format("{:>{}}", number, digits)},
                     {Style::plain, "  " + timeWords(context, operation)},
                     {Style::plain, "  " + wordsOf(operation)}};
    const Spans right{{Style::dim, fmt::format("{}", fmt::join(notes, ", "))}};
    if (terminal.isTerminal) {
        return drawn(withRightPart(left, right, terminal), terminal);
    }
    return drawn(left, terminal) + "  " + drawn(right, terminal);
}

Exit listOperations(Context& context, std::size_t most) {
    const auto operations = app::listUndo(context.services, most);
    if (!operations) {
        return couldNot(context, operations.failure());
    }
    if (operations->empty() && context.terminal.isTerminal && !context.invocation.json) {
        context.out.line(tr("There is nothing to undo."));
    }
    const std::size_t digits = std::to_string(operations->size()).size();
    for (std::size_t index = 0; index < operations->size(); ++index) {
        const Operation& operation = (*operations)[index];
        context.out.line(context.invocation.json ? recordOf(operation, index + 1)
                                                 : rowOf(context, operation, index + 1, digits));
    }
    return Exit::done;
}

/// Nothing: no number from 1.
std::optional<std::size_t> countIn(const std::string& text) {
    std::size_t count = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, count);
    const bool isCount = read.ec == std::errc{} && read.ptr == end && count > 0;
    return isCount ? std::optional{count} : std::nullopt;
}

}  // namespace

Exit runUndo(Context& context) {
    const auto& arguments = context.invocation.arguments;
    const auto count = arguments.empty() ? std::nullopt : countIn(arguments.front());
    if (!arguments.empty() && !count) {
        complain(fmt::format(fmt::runtime(tr("“{}” is no number of changes, from 1")),
                             safeText(arguments.front())));
        return Exit::misuse;
    }
    if (context.invocation.has("--list")) {
        return listOperations(context, count.value_or(app::everyOperation));
    }
    return carryOut(context, [&](app::Services& services) {
        return undoLast(context, services, count.value_or(1));
    });
}

}  // namespace tessaly::cli
