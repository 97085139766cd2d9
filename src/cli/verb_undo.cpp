// SPDX-License-Identifier: MIT
#include <algorithm>
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
#include "cli/safe_text.h"
#include "cli/task_change_rows.h"
#include "cli/undo_rows.h"
#include "cli/verb_functions.h"

namespace tessaly::cli {

namespace {

using base::N_;
using base::tr;
using tasks::LineEdit;
using tasks::NoteName;
using tasks::Operation;

struct EditWords {
    std::string_view name;  // for programs
    const char* text;
};
constexpr EditWords restored{"restored", N_("Restored {0}")};
constexpr EditWords removed{"removed", N_("Removed {0}")};

std::string editLine(Context& context, const NoteName& note, const LineEdit& edit) {
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

bool isWhole(const tasks::Undone& undone) {
    return undone.isComplete && !undone.leftCopies;
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
    const std::string words = isWhole(one.undone)        ? tr("Undone: {}")
                              : one.undone.steps.empty() ? tr("Not undone: {}")
                                                         : tr("Undone in part: {}");
    return drawnChange(context, fmt::format(fmt::runtime(words), countedWordsOf(one.operation)),
                       {});
}

/// Lines that went back to their place are told once, and empty ones not at all.
bool isWorthTelling(const tasks::NoteStep& step, const LineEdit& edit) {
    if (edit.kind != LineEdit::Kind::remove) {
        return true;
    }
    const bool wentBack =
        std::any_of(step.edits.begin(), step.edits.end(), [&](const LineEdit& other) {
            return other.kind == LineEdit::Kind::insert && other.after == edit.before;
        });
    return !wentBack && !base::trimmed(edit.before).empty();
}

void addLines(Context& context, const app::UndoneOperation& one, ChangeReport& report) {
    report.lines.push_back(headingOf(context, one));
    for (const tasks::NoteStep& step : one.undone.steps) {
        for (const LineEdit& edit : step.edits) {
            if (context.invocation.json || isWorthTelling(step, edit)) {
                report.lines.push_back(editLine(context, {step.type, step.filename}, edit));
            }
        }
    }
    if (!isWhole(one.undone)) {
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

Exit listOperations(Context& context, std::size_t most) {
    const auto operations = app::listUndo(context.services, most);
    if (!operations) {
        return couldNot(context, operations.failure());
    }
    if (operations->empty() && context.terminal.isTerminal && !context.invocation.json) {
        context.out.line(tr("There is nothing to undo."));
    }
    printOperations(context, *operations);
    return Exit::done;
}

/// Nothing: no number from 1.
std::optional<std::size_t> operationCountIn(const std::string& text) {
    std::size_t count = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, count);
    const bool isCount = read.ec == std::errc{} && read.ptr == end && count > 0;
    return isCount ? std::optional{count} : std::nullopt;
}

}  // namespace

Exit runUndo(Context& context) {
    const auto& arguments = context.invocation.arguments;
    const auto count = arguments.empty() ? std::nullopt : operationCountIn(arguments.front());
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
