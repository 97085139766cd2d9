// SPDX-License-Identifier: MIT
#include "cli/task_change_rows.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/utf8.h"
#include "cli/safe_text.h"
#include "cli/spans.h"
#include "cli/task_lines.h"
#include "grammar/todo_helper.h"
#include "store/note_names.h"

namespace tessaly::cli {

namespace {

using base::N_;
using base::tr;
using tasks::TaskChange;
using What = TaskChange::What;

/// What a change is told of.
enum class About { line, note };

struct ChangeWording {
    What what;
    About about;
    std::string_view name;  // for programs
    const char* text;       // {0} is the place, {1} the day
};

constexpr std::array changeWordings{
    ChangeWording{What::completed, About::line, "completed", N_("Completed {0}")},
    ChangeWording{What::cancelled, About::line, "cancelled", N_("Cancelled {0}")},
    ChangeWording{What::reopened, About::line, "reopened", N_("Reopened {0}")},
    ChangeWording{What::scheduled, About::line, "scheduled", N_("Scheduled to {1}: {0}")},
    ChangeWording{What::copied, About::line, "copied", N_("Copied to {0}")},
    ChangeWording{What::removedCopy, About::line, "removedCopy",
                  N_("Removed the earlier copy {0}")},
    ChangeWording{What::leftCopy, About::note, "leftCopy",
                  N_("Left the earlier copy in {0}: it was changed, or there are several")},
    ChangeWording{What::repeated, About::line, "repeated", N_("Repeated in {0}")},
    ChangeWording{What::deleted, About::line, "deleted", N_("Deleted {0}")},
    ChangeWording{What::archived, About::line, "archived", N_("Archived {0}")},
    ChangeWording{What::alreadyDone, About::line, "alreadyDone", N_("Done already: {0}")},
    ChangeWording{What::alreadyCancelled, About::line, "alreadyCancelled",
                  N_("Cancelled already: {0}")},
    ChangeWording{What::alreadyOpen, About::line, "alreadyOpen", N_("Open already: {0}")},
    ChangeWording{What::alreadyScheduled, About::line, "alreadyScheduled",
                  N_("Scheduled to {1} already: {0}")},
    ChangeWording{What::nothingToArchive, About::note, "nothingToArchive",
                  N_("Nothing to archive in {0}")},
};

const ChangeWording& changeWordingOf(What what) {
    const auto row = std::find_if(changeWordings.begin(), changeWordings.end(),
                                  [what](const ChangeWording& one) { return one.what == what; });
    return *row;
}

store::NoteTask taskAt(const tasks::NoteName& note, std::size_t lineIndex) {
    store::NoteTask task;
    task.type = note.type;
    task.filename = note.filename;
    if (note.type == base::NoteType::calendar) {
        task.noteDay = store::dayOfCalendarFilename(note.filename);
    }
    task.todo.lineIndex = lineIndex;
    return task;
}

std::string changeLine(Context& context, const TaskChange& change) {
    const ChangeWording& wording = changeWordingOf(change.what);
    const bool hasLine = wording.about == About::line;
    if (context.invocation.json) {
        JsonObject object =
            changeRecord(wording.name, change.note,
                         hasLine ? std::optional{change.lineIndex} : std::nullopt, change.line);
        if (change.day) {
            object.add("day", base::tagText(*change.day));
        }
        return object.text();
    }
    const std::string place = hasLine ? placeWords(context, change.note, change.lineIndex)
                                      : noteWords(context, change.note);
    const std::string words = fmt::format(fmt::runtime(tr(wording.text)), place,
                                          change.day ? base::tagText(*change.day) : "");
    return drawnChange(context, words, hasLine ? change.line : "");
}

void complainOfRefusals(Context& context, const tasks::TaskOutcome& outcome) {
    for (const tasks::TaskRefusal& refusal : outcome.refusals) {
        (void)couldNot(context, refusal.failure);
    }
    for (const std::string& copy : outcome.conflictCopies) {
        complain(fmt::format(
            fmt::runtime(tr("another version of a note that was changed stays as it is: {}")),
            safeText(copy)));
    }
}

}  // namespace

ChangeReport reportOn(Context& context, const base::Result<tasks::TaskOutcome>& outcome) {
    context.progress.erase();
    if (!outcome) {
        return {couldNot(context, outcome.failure()), {}};
    }
    complainOfRefusals(context, *outcome);
    ChangeReport report;
    report.exit = outcome->refusals.empty() ? Exit::done : Exit::couldNot;
    for (const TaskChange& change : outcome->changes) {
        report.lines.push_back(changeLine(context, change));
    }
    return report;
}

std::string noteWords(const Context& context, const tasks::NoteName& note) {
    const std::string place = placeWords(context, note, 0);
    return place.substr(0, place.rfind(':'));
}

std::string placeWords(const Context& context, const tasks::NoteName& note, std::size_t lineIndex) {
    const store::NoteTask task = taskAt(note, lineIndex);
    return context.terminal.isTerminal ? shortAddressOf(context, task) : addressOf(task);
}

std::string drawnChange(Context& context, const std::string& words, const std::string& line) {
    Spans spans{{Style::plain, words}};
    const grammar::Todo todo =
        grammar::TodoHelper::parseLine(line, context.services.markerSettings());
    if (grammar::isTask(todo.type)) {
        spans.push_back({Style::plain, "  "});
        spans.push_back(signOf(todo.type, context.terminal));
        spans.push_back({Style::plain, " "});
        const Spans content = contentOf(todo);
        spans.insert(spans.end(), content.begin(), content.end());
    } else if (const auto text = base::trimmed(line); !text.empty()) {
        spans.push_back({Style::plain, "  " + safeText(text)});
    }
    if (context.terminal.isTerminal) {
        spans = cutTo(spans, context.terminal.columns, context.terminal);
    }
    return drawn(spans, context.terminal);
}

JsonObject changeRecord(std::string_view did, const tasks::NoteName& note,
                        std::optional<std::size_t> lineIndex, const std::string& line) {
    JsonObject object;
    object.add("did", did).add("type", base::rawValue(note.type)).add("filename", note.filename);
    if (lineIndex) {
        object.add("line", *lineIndex + 1).add("text", line);
    }
    return object;
}

}  // namespace tessaly::cli
