// SPDX-License-Identifier: MIT
#include <array>

#include "base/localisation.h"
#include "cli/verb_functions.h"
#include "cli/verb_rows.h"

namespace tessaly::cli {

namespace {

using base::N_;

constexpr ArgumentCompletion notes{Completion::note, dayWords};

constexpr OptionRow expect{"--expect", "TEXT",
                           N_("change the line only if it reads TEXT, or TEXT behind marker and "
                              "box; a TEXT that ends in ... tells the beginning alone")};

constexpr std::array stepOptions{expect, dryRunOption};
constexpr std::array repeatOptions{
    OptionRow{"--every", "UNIT", N_("the step: day, week, month, quarter or year"),
              Completion::words, "day week month quarter year", 1},
    OptionRow{"--times", "N", N_("for the next N days, weeks, months, quarters or years")},
    OptionRow{"--delete", nullptr, N_("delete the lines instead"), Completion::nothing, {}, 1},
    OptionRow{"--yes", nullptr, N_("delete: the later repeats too; do not ask")},
    dryRunOption,
};
constexpr std::array archiveOptions{dryRunOption};
constexpr std::array undoOptions{
    OptionRow{"--list",
              nullptr,
              N_("list what can be undone, the newest first"),
              Completion::nothing,
              {},
              1},
    OptionRow{"--dry-run",
              nullptr,
              N_("change nothing, and print what would change in the files"),
              Completion::nothing,
              {},
              1},
};

constexpr std::array doneExamples{
    ExampleRow{"tessaly done today:3", N_("the third line of today's note")},
    ExampleRow{"tessaly done Plans:4 Plans:7", N_("two lines of a note; one undo for both")},
    ExampleRow{"tessaly done today:3 --expect 'Call Bob'", N_("if the line is still that task")},
};
constexpr std::array cancelExamples{
    ExampleRow{"tessaly cancel today:3", N_("the third line of today's note")},
};
constexpr std::array reopenExamples{
    ExampleRow{"tessaly reopen yesterday:2", N_("a line of yesterday's note")},
};
constexpr std::array scheduleExamples{
    ExampleRow{"tessaly schedule today:3 fri", N_("to the next Friday")},
    ExampleRow{"tessaly schedule Plans:4 Plans:7 +3d", N_("two tasks, to the day in three days")},
    ExampleRow{"tessaly schedule yesterday today", N_("all that was left open yesterday")},
};
constexpr std::array repeatExamples{
    ExampleRow{"tessaly repeat today:3 --every week --times 4",
               N_("the same task in the next four weeks")},
    ExampleRow{"tessaly repeat +1w:1 --delete", N_("one of the copies, and later ones if wanted")},
};
constexpr std::array archiveExamples{
    ExampleRow{"tessaly archive Plans", N_("what is done in a note")},
    ExampleRow{"tessaly archive Plans --dry-run", N_("what would be moved")},
};
constexpr std::array undoExamples{
    ExampleRow{"tessaly undo", N_("the last change")},
    ExampleRow{"tessaly undo 3", N_("the last three changes")},
    ExampleRow{"tessaly undo --list", N_("what can be undone")},
};

constexpr std::array taskRows{
    VerbRow{
        "done", "NOTE:LINE...", 1, manyArguments, notes, N_("Mark tasks as done"),
        N_("Gives tasks the box [x] and, with the setting isAppendCompletionLinks, the time, as "
           "in @done(2019-12-31 14:07). Lines are counted from 1; tessaly tasks prints them "
           "as they are named here. A task that is done already stays as it is.\n\n"
           "When one of several lines cannot be changed, the others still are, and the exit status "
           "is 1. tessaly undo takes the whole change back."),
        stepOptions, doneExamples, runDone},
    VerbRow{"cancel", "NOTE:LINE...", 1, manyArguments, notes, N_("Mark tasks as cancelled"),
            N_("Gives tasks the box [-], and takes the tag @done(…) off them. A task that is "
               "cancelled already stays as it is."),
            stepOptions, cancelExamples, runCancel},
    VerbRow{"reopen", "NOTE:LINE...", 1, manyArguments, notes, N_("Open tasks again"),
            N_("Makes done, cancelled and scheduled tasks open ones: the box is empty or goes, as "
               "the marker needs it, and the tags @done(…) and >2020-01-03 go. The copy of a "
               "scheduled task goes, too, if it is still open and as it was."),
            stepOptions, reopenExamples, runReopen},
    VerbRow{
        "schedule", "NOTE:LINE... DAY", 2, manyArguments, notes, N_("Schedule tasks to a day"),
        N_("Copies tasks to the note of DAY and gives them the box [>]. With the setting "
           "isAppendScheduleLinks, the task gets the tag >2020-01-03, and its copy the tag "
           "<2019-12-31, the day that it comes from. A copy of an earlier scheduling goes, if it "
           "is still open and as it was. Tasks that are done or cancelled are refused.\n\n"
           "A day alone, without a line, stands for all open tasks of its note.\n\n"
           "DAY is 2020-01-03, 20200103, today, tomorrow, yesterday, a weekday (fri), or counted "
           "from today: +3d, -1w, +2m, +1y."),
        stepOptions, scheduleExamples, runSchedule},
    VerbRow{
        "repeat", "NOTE:LINE...", 1, manyArguments, notes,
        N_("Repeat tasks on later days, or delete them"),
        N_("This will copy the selection to multiple notes. Delete the full line to delete all "
           "repeats.\n\n"
           "The selection is the lines that are named, of the note of a day; the days are counted "
           "from there. Each copy is open and gets a tag that counts it: @repeat(1/4). When the "
           "last one is done, it gets the tag @final-repeat.\n\n"
           "--delete deletes the lines that are named, of any note. Where one has a repeat tag and "
           "there are later copies of it, you are asked whether they go, too."),
        repeatOptions, repeatExamples, runRepeat},
    VerbRow{"archive", "NOTE...", 1, manyArguments, notes,
            N_("Move processed tasks to the end of their note"),
            N_("Moves done and cancelled tasks, with the lines indented under them, to the section "
               "## Archive of the same note. The section is made at the note's end when it is "
               "not there."),
            archiveOptions, archiveExamples, runArchive},
    VerbRow{
        "undo",
        "[N]",
        0,
        1,
        {},
        N_("Take changes of tasks back"),
        N_("Takes the last N changes back that done, cancel, reopen, schedule, repeat or archive "
           "made, the newest first; N is 1 without it. A note that was not changed since gets "
           "back what it held. In others, each line is taken back that still stands there as the "
           "change left it; the exit status is 1 when some did not.\n\n"
           "The last 1000 changes are kept, for 90 days. What other verbs changed is in tessaly "
           "history."),
        undoOptions,
        undoExamples,
        runUndo},
};

}  // namespace

std::span<const VerbRow> taskVerbs() {
    return taskRows;
}

}  // namespace tessaly::cli
