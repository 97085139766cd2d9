// SPDX-License-Identifier: MIT
#include "app/change_words.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "base/graphemes.h"
#include "base/localisation.h"
#include "base/utf8.h"
#include "grammar/date_tags.h"
#include "grammar/todo_helper.h"

namespace tessaly::app {
namespace {

using base::N_;
using base::tr;
using base::trPlural;
using store::ChangeCause;
using tasks::TaskChange;
using tasks::TaskOutcome;
using What = TaskChange::What;

constexpr std::size_t longestTitle = 60;  // characters

/// {0} is the task or how many they are, {1} the day.
struct GestureWords {
    What what;
    const char* one;
    std::string (*many)(unsigned long count);
};

std::string toSeveralDays(unsigned long count) {
    return trPlural("Scheduled {0} task to several days", "Scheduled {0} tasks to several days",
                    count);
}

std::string alreadySo(unsigned long count) {
    return trPlural("{0} task is so already", "{0} tasks are so already", count);
}

const std::array gestureWords{
    GestureWords{What::completed, N_("Completed “{0}”"),
                 [](unsigned long count) {
                     return trPlural("Completed {0} task", "Completed {0} tasks", count);
                 }},
    GestureWords{What::cancelled, N_("Cancelled “{0}”"),
                 [](unsigned long count) {
                     return trPlural("Cancelled {0} task", "Cancelled {0} tasks", count);
                 }},
    GestureWords{What::reopened, N_("Reopened “{0}”"),
                 [](unsigned long count) {
                     return trPlural("Reopened {0} task", "Reopened {0} tasks", count);
                 }},
    GestureWords{What::scheduled, N_("Scheduled “{0}” to {1}"),
                 [](unsigned long count) {
                     return trPlural("Scheduled {0} task to {1}", "Scheduled {0} tasks to {1}",
                                     count);
                 }},
    GestureWords{What::archived, N_("Archived the processed tasks of this note."),
                 [](unsigned long) { return tr("Archived the processed tasks of this note."); }},
    GestureWords{What::alreadyDone, N_("“{0}” is done already"), alreadySo},
    GestureWords{What::alreadyCancelled, N_("“{0}” is cancelled already"), alreadySo},
    GestureWords{What::alreadyOpen, N_("“{0}” is open already"), alreadySo},
    GestureWords{What::alreadyScheduled, N_("“{0}” is scheduled to {1} already"), alreadySo},
    GestureWords{What::nothingToArchive, N_("There is nothing to archive in this note."),
                 alreadySo},
};
constexpr std::size_t changingGestures = 5;  // of the rows, the first

struct UndoWords {
    ChangeCause cause;
    const char* text;  // {0} is what was changed
};

constexpr std::array undoWords{
    UndoWords{ChangeCause::completed, N_("Undone: completed {0}")},
    UndoWords{ChangeCause::cancelled, N_("Undone: cancelled {0}")},
    UndoWords{ChangeCause::reopened, N_("Undone: reopened {0}")},
    UndoWords{ChangeCause::scheduled, N_("Undone: scheduled {0}")},
    UndoWords{ChangeCause::repeated, N_("Undone: repeated {0}")},
    UndoWords{ChangeCause::deleted, N_("Undone: deleted {0}")},
    UndoWords{ChangeCause::archived, N_("Undone: archived {0}")},
};

/// Without dates, of which the task has others now, and no longer than a notice bears.
std::string bareTitle(std::string_view content) {
    using grammar::DateTags;
    const std::string bare =
        DateTags::findAndRemoveDoneTag(DateTags::removeDateTags(std::string(content)));
    const std::string_view title = base::trimmed(bare);
    const std::string_view shown = base::firstGraphemes(title, longestTitle);
    return std::string(shown).append(shown.size() < title.size() ? "…" : "");
}

std::string titleOf(const TaskChange& change, const ChangeWords& words) {
    const grammar::Todo todo = grammar::TodoHelper::parseLine(change.line, words.markers);
    return bareTitle(grammar::isTask(todo.type) ? todo.content : change.line);
}

std::string wordsOf(const GestureWords& row, const std::vector<const TaskChange*>& changes,
                    const ChangeWords& words) {
    const TaskChange& first = *changes.front();
    const std::string day =
        first.day ? words.dates.relativeDay(*first.day, words.today) : std::string();
    if (changes.size() == 1) {
        return fmt::format(fmt::runtime(tr(row.one)), titleOf(first, words), day);
    }
    const std::string count = words.dates.formats().number(static_cast<long long>(changes.size()));
    const bool isOneDay =
        std::all_of(changes.begin(), changes.end(),
                    [&](const TaskChange* change) { return change->day == first.day; });
    const std::string pattern = isOneDay ? row.many(changes.size()) : toSeveralDays(changes.size());
    return fmt::format(fmt::runtime(pattern), count, day);
}

std::vector<const TaskChange*> changesThat(const TaskOutcome& outcome, What what) {
    std::vector<const TaskChange*> found;
    for (const TaskChange& change : outcome.changes) {
        if (change.what == what) {
            found.push_back(&change);
        }
    }
    return found;
}

/// What has changed of the tasks themselves; where nothing has, in which state they are already.
std::vector<std::string> gestureSentences(const TaskOutcome& outcome, const ChangeWords& words) {
    std::vector<std::string> sentences;
    for (std::size_t i = 0; i < gestureWords.size(); ++i) {
        if (i == changingGestures && !sentences.empty()) {
            break;
        }
        const auto changes = changesThat(outcome, gestureWords[i].what);
        if (!changes.empty()) {
            sentences.push_back(wordsOf(gestureWords[i], changes, words));
        }
    }
    return sentences;
}

std::string refusalSentence(const TaskOutcome& outcome) {
    const std::string& why = outcome.refusals.front().failure.description;
    const auto count = static_cast<unsigned long>(outcome.refusals.size());
    return fmt::format(
        fmt::runtime(trPlural("{0} task was left as it is: {1}",
                              "{0} tasks were left as they are, the first since: {1}", count)),
        count, why);
}

std::vector<std::string> sentencesOf(const TaskOutcome& outcome, const ChangeWords& words) {
    std::vector<std::string> sentences = gestureSentences(outcome, words);
    if (!outcome.refusals.empty()) {
        sentences.push_back(refusalSentence(outcome));
    }
    if (!changesThat(outcome, What::leftCopy).empty()) {
        sentences.push_back(tr("An earlier copy stays, as it was changed or there are several"));
    }
    if (!outcome.conflictCopies.empty()) {
        sentences.push_back(fmt::format(
            fmt::runtime(tr("another version of a note that was changed stays as it is: {}")),
            outcome.conflictCopies.front()));
    }
    return sentences;
}

bool hasChangedNote(What what) {
    switch (what) {
        case What::leftCopy:
        case What::alreadyDone:
        case What::alreadyCancelled:
        case What::alreadyOpen:
        case What::alreadyScheduled:
        case What::nothingToArchive: return false;
        default: return true;
    }
}

void addNote(std::vector<tasks::NoteName>& notes, const tasks::NoteName& note) {
    if (std::find(notes.begin(), notes.end(), note) == notes.end()) {
        notes.push_back(note);
    }
}

std::string subjectOf(const tasks::Operation& operation) {
    const std::string title = bareTitle(operation.title);
    const unsigned long others = operation.tasks > 1 ? operation.tasks - 1 : 0;
    return others == 0
               ? fmt::format(fmt::runtime(tr("“{0}”")), title)
               : fmt::format(
                     fmt::runtime(trPlural("“{0}” and {1} more", "“{0}” and {1} more", others)),
                     title, others);
}

std::string undoneSentence(const tasks::Operation& operation) {
    const auto row = std::find_if(undoWords.begin(), undoWords.end(), [&](const UndoWords& one) {
        return one.cause == operation.cause;
    });
    const std::string text = row == undoWords.end() ? tr("Undone: {0}") : tr(row->text);
    return fmt::format(fmt::runtime(text), subjectOf(operation));
}

}  // namespace

GestureNotice failureNotice(std::string why) {
    return {.text = std::move(why), .isFailure = true, .operation = std::nullopt, .notes = {}};
}

GestureNotice noticeOf(const base::Result<TaskOutcome>& outcome, const ChangeWords& words) {
    if (!outcome) {
        return failureNotice(outcome.failure().description);
    }
    GestureNotice notice{.text = fmt::format("{}", fmt::join(sentencesOf(*outcome, words), ". ")),
                         .isFailure = !outcome->operation,
                         .operation = outcome->operation,
                         .notes = {}};
    for (const TaskChange& change : outcome->changes) {
        if (hasChangedNote(change.what)) {
            addNote(notice.notes, change.note);
        }
    }
    return notice;
}

GestureNotice noticeOf(const tasks::Operation& operation, const tasks::Undone& undone) {
    GestureNotice notice;
    notice.text = undoneSentence(operation);
    if (undone.leftCopies) {
        notice.text += ". " + tr("The scheduled task in the other day can't be deleted if no date "
                                 "links were added.");
    }
    if (!undone.isComplete) {
        notice.text += ". " + tr("Lines that were changed since then stay as they are.");
    }
    for (const tasks::NoteStep& step : undone.steps) {
        addNote(notice.notes, {step.type, step.filename});
    }
    return notice;
}

}  // namespace tessaly::app
