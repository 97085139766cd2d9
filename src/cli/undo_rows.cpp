// SPDX-License-Identifier: MIT
#include "cli/undo_rows.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include <fmt/format.h>

#include "base/graphemes.h"
#include "base/localisation.h"
#include "base/utf8.h"
#include "cli/json_times.h"
#include "cli/safe_text.h"
#include "cli/spans.h"
#include "cli/task_change_rows.h"
#include "grammar/date_tags.h"

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

/// Without dates, of which the task may have others by now.
std::string titleOf(const Operation& operation) {
    using grammar::DateTags;
    const std::string bare =
        DateTags::findAndRemoveDoneTag(DateTags::removeDateTags(operation.title));
    return safeText(base::trimmed(bare));
}

/// "(2 tasks)"; empty for one.
std::string countWords(const Operation& operation) {
    if (operation.tasks <= 1) {
        return {};
    }
    const std::string count =
        base::trPlural("({} task)", "({} tasks)", static_cast<unsigned long>(operation.tasks));
    return fmt::format(fmt::runtime(count), operation.tasks);
}

/// "Scheduled to 2020-01-03: Call Bob".
std::string wordsOf(const Operation& operation) {
    const auto row = std::find_if(causes.begin(), causes.end(), [&](const CauseWords& one) {
        return one.cause == operation.cause;
    });
    if (operation.cause == ChangeCause::scheduled && !operation.day) {
        return fmt::format(fmt::runtime(tr("Scheduled to several days: {0}")), titleOf(operation));
    }
    const std::string day = operation.day ? base::tagText(*operation.day) : std::string{};
    return fmt::format(fmt::runtime(row == causes.end() ? "{0}" : tr(row->text)),
                       titleOf(operation), day);
}

std::string timeWords(Context& context, const Operation& operation) {
    const base::LocalTime time = context.services.ports().clock.local(operation.time);
    const grammar::DateStringHelper& words = context.services.dateStrings();
    return fmt::format("{} {}", words.dateWithYear(time.day), words.time(time));
}

std::string operationRecord(const Operation& operation, std::size_t number) {
    std::vector<std::string> notes;
    for (const NoteName& note : notesOf(operation)) {
        notes.push_back(fmt::format("{}/{}", base::folderName(note.type), note.filename));
    }
    JsonObject object;
    object.add("number", number);
    return describe(object, operation).add("notes", notes).text();
}

/// The note that its user worked in: where lines were changed, else the first.
NoteName mainNoteOf(const Operation& operation) {
    const auto isMain = [](const tasks::NoteStep& step) {
        return std::any_of(step.edits.begin(), step.edits.end(), [](const LineEdit& edit) {
            return edit.kind != LineEdit::Kind::append;
        });
    };
    const auto& steps = operation.steps;
    const auto found = std::find_if(steps.begin(), steps.end(), isMain);
    const tasks::NoteStep& step = found == steps.end() ? steps.front() : *found;
    return {step.type, step.filename};
}

/// In a terminal "2019-05-21 +2", where all names would leave no room.
std::string notesInWords(Context& context, const Operation& operation) {
    const std::vector<NoteName> notes = notesOf(operation);
    if (context.terminal.isTerminal && !notes.empty()) {
        const std::string name = noteWords(context, mainNoteOf(operation));
        return notes.size() == 1 ? name : fmt::format("{} +{}", name, notes.size() - 1);
    }
    std::vector<std::string> names;
    for (const NoteName& note : notes) {
        names.push_back(noteWords(context, note));
    }
    return fmt::format("{}", fmt::join(names, ", "));
}

/// How wide the columns at the left are.
struct Widths {
    std::size_t number = 0;
    std::size_t time = 0;
};

std::string rightAligned(const std::string& text, std::size_t columns) {
    return std::string(columns - base::terminalWidth(text), ' ') + text;
}

std::string rowOf(Context& context, const Operation& operation, std::size_t number,
                  const Widths& widths) {
    const Terminal& terminal = context.terminal;
    const std::string time = rightAligned(timeWords(context, operation), widths.time);
    const std::string start = rightAligned(std::to_string(number), widths.number);
    const std::string notes = notesInWords(context, operation);
    Spans left{{Style::date, start}, {Style::plain, "  " + time + "  "}};
    if (!terminal.isTerminal) {
        left.push_back({Style::plain, countedWordsOf(operation) + "  " + notes});
        return drawn(left, terminal);
    }
    left.push_back({Style::plain, wordsOf(operation)});
    const std::string count = countWords(operation);
    const Spans right{{Style::dim, count.empty() ? notes : count + "  " + notes}};
    return drawn(withRightPart(left, right, terminal), terminal);
}

Widths widthsOf(Context& context, const std::vector<Operation>& operations) {
    Widths widths{std::to_string(operations.size()).size(), 0};
    for (const Operation& operation : operations) {
        widths.time = std::max(widths.time, base::terminalWidth(timeWords(context, operation)));
    }
    return widths;
}

}  // namespace

std::string countedWordsOf(const Operation& operation) {
    const std::string count = countWords(operation);
    return count.empty() ? wordsOf(operation) : wordsOf(operation) + " " + count;
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

void printOperations(Context& context, const std::vector<Operation>& operations) {
    const Widths widths = widthsOf(context, operations);
    for (std::size_t index = 0; index < operations.size(); ++index) {
        const Operation& operation = operations[index];
        context.out.line(context.invocation.json ? operationRecord(operation, index + 1)
                                                 : rowOf(context, operation, index + 1, widths));
    }
}

}  // namespace tessaly::cli
