// SPDX-License-Identifier: MIT
#include <array>

#include "base/localisation.h"
#include "cli/verb_functions.h"
#include "cli/verb_rows.h"

namespace tessaly::cli {

namespace {

using base::N_;

constexpr std::string_view taskStates = "open done cancelled scheduled";

constexpr std::array listOptions{
    OptionRow{"--folder",
              "FOLDER",
              N_("only notes in this folder of general notes"),
              Completion::nothing,
              {},
              1},
    OptionRow{"--calendar",
              nullptr,
              N_("calendar notes instead of general ones"),
              Completion::nothing,
              {},
              1},
    OptionRow{"--all", nullptr, N_("notes of both kinds"), Completion::nothing, {}, 1},
};
constexpr std::array tasksOptions{
    OptionRow{"--state", "STATES",
              N_("only tasks in these states, separated by commas: open, done, cancelled, "
                 "scheduled"),
              Completion::words, taskStates},
    OptionRow{
        "--calendar", nullptr, N_("only tasks of calendar notes"), Completion::nothing, {}, 1},
    OptionRow{"--notes", nullptr, N_("only tasks of general notes"), Completion::nothing, {}, 1},
};

constexpr std::array watchOptions{
    OptionRow{"--verbose", nullptr, N_("tell on standard error what is noticed in between")},
};

constexpr std::array todayExamples{
    ExampleRow{"tessaly today", N_("what is on today")},
    ExampleRow{"tessaly today --json | jq '.tasks[].todo.content'", N_("for a script")},
};
constexpr std::array dayExamples{
    ExampleRow{"tessaly day tomorrow", N_("tomorrow")},
    ExampleRow{"tessaly day 2019-03-05", N_("a given day")},
    ExampleRow{"tessaly day fri", N_("the next Friday")},
};
constexpr std::array weekExamples{
    ExampleRow{"tessaly week", N_("this week")},
    ExampleRow{"tessaly week +1w", N_("next week")},
};
constexpr std::array overdueExamples{
    ExampleRow{"tessaly overdue | wc -l", N_("how many tasks are overdue")},
};
constexpr std::array listExamples{
    ExampleRow{"tessaly list --folder Work", N_("the notes in the folder Work")},
    ExampleRow{"tessaly list --all --json", N_("every note, with its counts and tags")},
};
constexpr std::array whereExamples{
    ExampleRow{"vim \"$(tessaly where today)\"", N_("today's note in an editor")},
};
constexpr std::array showExamples{
    ExampleRow{"tessaly show today", N_("today's note")},
    ExampleRow{"tessaly show Work/Plans.txt", N_("a note by its file")},
    ExampleRow{"tessaly show 'Reading list'", N_("a note by its title")},
};
constexpr std::array tasksExamples{
    ExampleRow{"tessaly tasks --state open", N_("everything that is still to do")},
    ExampleRow{"tessaly tasks --state open | grep '#home'", N_("those with a tag")},
};
constexpr std::array tagsExamples{
    ExampleRow{"tessaly tags", N_("all hashtags")},
};
constexpr std::array mentionsExamples{
    ExampleRow{"tessaly mentions", N_("all mentions")},
};
constexpr std::array watchExamples{
    ExampleRow{"tessaly watch", N_("what a sync client brings")},
    ExampleRow{"tessaly watch --json | jq --unbuffered -r .path", N_("for a script")},
};

constexpr std::array conflictsExamples{
    ExampleRow{"tessaly conflicts", N_("notes of which a sync client has set a version aside")},
    ExampleRow{"tessaly conflicts today", N_("how the versions of today's note differ")},
};

constexpr std::array readingRows{
    VerbRow{"today",
            "",
            0,
            0,
            {},
            N_("Tasks of today, and what is overdue"),
            N_("Prints the tasks of today's note, the tasks of other notes that are scheduled for "
               "today, and the tasks of earlier days that are still open, the oldest first."),
            {},
            todayExamples,
            runToday},
    VerbRow{"day",
            "[DATE]",
            0,
            1,
            {Completion::day, dayWords},
            N_("Tasks of one day"),
            N_("Prints the tasks of a day's note and the tasks of other notes that are scheduled "
               "for that day.\n\n"
               "DATE is a day (2019-03-05 or 20190305), today, tomorrow or yesterday, a weekday "
               "(its next occurrence), or a distance from today such as +3d, -1w, +2m or +1y. "
               "Without it, the day is today."),
            {},
            dayExamples,
            runDay},
    VerbRow{"week",
            "[DATE]",
            0,
            1,
            {Completion::day, dayWords},
            N_("Tasks of the seven days of a week"),
            N_("Prints the seven days of the week that holds DATE, which is written as for day. "
               "The setting firstDayOfWeek decides on which day a week starts."),
            {},
            weekExamples,
            runWeek},
    VerbRow{"overdue",
            "",
            0,
            0,
            {},
            N_("Open tasks of days gone by"),
            N_("Prints every open task that is planned for a day before today, the oldest first."),
            {},
            overdueExamples,
            runOverdue},
    VerbRow{"list",
            "",
            0,
            0,
            {},
            N_("Notes by title or by date"),
            N_("Prints the general notes, in the order of the setting sortBy."),
            listOptions,
            listExamples,
            runList},
    VerbRow{"show",
            "NOTE",
            1,
            1,
            {Completion::note, dayWords},
            N_("Text of a note"),
            N_("Prints the text of a note as it is.\n\n"
               "NOTE is a day, written as for the verb day, the name of a file relative to its "
               "folder, or a title."),
            {},
            showExamples,
            runShow},
    VerbRow{"where",
            "[NOTE]",
            0,
            1,
            {Completion::note, dayWords},
            N_("File of a note, or the data folder"),
            N_("Prints the path of NOTE's file, for editors and scripts; without NOTE, that of the "
               "data folder. The file of a day need not be there yet.\n\n"
               "NOTE is a day, written as for the verb day, the name of a file relative to its "
               "folder, or a title."),
            {},
            whereExamples,
            runWhere},
    VerbRow{"tasks",
            "",
            0,
            0,
            {},
            N_("Tasks of all notes"),
            N_("Prints the tasks of all notes, by file and line."),
            tasksOptions,
            tasksExamples,
            runTasks},
    VerbRow{"tags",
            "",
            0,
            0,
            {},
            N_("Hashtags, and how many notes have them"),
            N_("Prints every hashtag, with the parents that a name such as #work/office implies, "
               "and the number of notes that have it."),
            {},
            tagsExamples,
            runTags},
    VerbRow{"mentions",
            "",
            0,
            0,
            {},
            N_("Mentions, and how many notes have them"),
            N_("Prints every mention and the number of notes that have it."),
            {},
            mentionsExamples,
            runMentions},
    VerbRow{"conflicts",
            "[NOTE]",
            0,
            1,
            {Completion::note, dayWords},
            N_("Notes with several versions, and how these differ"),
            N_("Lists the notes that were changed in two places before a sync client could take "
               "the changes over, so that it has set a version aside, in a file beside the note. "
               "A line for each version has its number, date, size, client and device, as far "
               "as the name of the file tells them, and the file.\n\n"
               "With NOTE, prints also how each other version differs from the first. NOTE is a "
               "day, written as for the verb day, the name of a file (of the note or of one of "
               "its versions) relative to its folder, or a title. resolve ends a conflict."),
            {},
            conflictsExamples,
            runConflicts},
    VerbRow{
        "watch",
        "",
        0,
        0,
        {},
        N_("Changes of notes by other programs, as they happen"),
        N_("Holds all notes in memory, watches the data folder and prints what other programs "
           "and devices change there, until Ctrl-C or until nobody reads the output. Changes that "
           "come together are printed together, a second after the last of them.\n\n"
           "A line tells what happened (added, changed, deleted; conflict where another version "
           "of the note lies beside it) and to which file. Once everything is read, a line on "
           "standard error says so; what changes from then on is printed. Folders that report no "
           "changes are looked at every few seconds, and that is told, too."),
        watchOptions,
        watchExamples,
        runWatch,
        Needs::dataFolder,
        Stays::yes},
};

}  // namespace

std::span<const VerbRow> readingVerbs() {
    return readingRows;
}

}  // namespace tessaly::cli
