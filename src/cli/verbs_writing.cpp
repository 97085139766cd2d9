// SPDX-License-Identifier: MIT
#include <array>

#include "base/localisation.h"
#include "cli/verb_functions.h"
#include "cli/verb_rows.h"

namespace tessaly::cli {

namespace {

using base::N_;

constexpr std::array newOptions{
    OptionRow{"--folder", "FOLDER", N_("make the note in this folder of general notes")},
    OptionRow{"--text", "TEXT", N_("put TEXT below the title; - is standard input")},
    dryRunOption,
};
constexpr std::array addOptions{
    OptionRow{"--to", "NOTE", N_("add to NOTE instead of today's note"), Completion::note},
    OptionRow{"--mode", "MODE",
              N_("append (the default), prepend, or overwrite what the note holds"),
              Completion::words, "append prepend overwrite"},
    dryRunOption,
};
constexpr std::array trashOptions{dryRunOption};
constexpr std::array historyOptions{
    OptionRow{"--to", "NOTE", N_("restore: put the text into NOTE instead"), Completion::note},
    OptionRow{"--yes", nullptr, N_("clear: do not ask")},
    OptionRow{"--dry-run", nullptr,
              N_("restore: change nothing, and print what would change in the file; clear: print "
                 "the texts that would go")},
};
constexpr std::array resolveOptions{
    OptionRow{"--keep", "N", N_("keep the version with this number, as conflicts shows it")},
    OptionRow{"--merge", nullptr, N_("join all versions")},
    dryRunOption,
};
constexpr std::array migrateOptions{
    OptionRow{"--yes", nullptr, N_("do not ask")},
    dryRunOption,
};

constexpr std::array newExamples{
    ExampleRow{"tessaly new 'Reading list' --folder Home", N_("a note in the folder Home")},
    ExampleRow{"date | tessaly new Log --text -", N_("a note with the output of a program")},
};
constexpr std::array addExamples{
    ExampleRow{"tessaly add '* Call Bob'", N_("a task for today")},
    ExampleRow{"tessaly add '* Pay the rent' --to +1w", N_("a task for the same day next week")},
    ExampleRow{"tessaly add 'First things first' --to Plans --mode prepend",
               N_("a line at the top of a note")},
};
constexpr std::array trashExamples{
    ExampleRow{"tessaly trash 'Old plans' --dry-run", N_("what would go")},
};
constexpr std::array historyExamples{
    ExampleRow{"tessaly history today", N_("what today's note has held")},
    ExampleRow{"tessaly history show 2cf24dba5f", N_("one of these texts")},
    ExampleRow{"tessaly history restore 2cf24dba5f --dry-run",
               N_("what would change if it came back")},
};
constexpr std::array resolveExamples{
    ExampleRow{"tessaly resolve today --merge --dry-run", N_("what would become of the files")},
    ExampleRow{"tessaly resolve Plans --keep 2", N_("the second version, and no other")},
};
constexpr std::array migrateExamples{
    ExampleRow{"tessaly migrate --dry-run", N_("what would be moved")},
};

constexpr std::array writingRows{
    VerbRow{
        "new",
        "TITLE",
        1,
        1,
        {},
        N_("Make a note"),
        N_("Makes a general note that begins with TITLE as its heading, and prints its file. The "
           "file is named after the title; a name that is taken gets a number, so no note is "
           "ever overwritten. Without a title (''), TEXT's first line counts.\n\n"
           "A word that begins with - goes behind --, which ends the options."),
        newOptions,
        newExamples,
        runNew},
    VerbRow{
        "add",
        "TEXT",
        1,
        1,
        {},
        N_("Add text to a note"),
        N_("Adds TEXT to today's note on a line of its own. TEXT is - for standard input. The "
           "note of a day is made when it is not there; any other note must exist.\n\n"
           "What the note held before stays in the history.\n\n"
           "A word that begins with - goes behind --, which ends the options. A text that begins "
           "with - and a blank need not."),
        addOptions,
        addExamples,
        runAdd},
    VerbRow{"trash",
            "NOTE...",
            1,
            manyArguments,
            {Completion::note, dayWords},
            N_("Move notes to the trash"),
            N_("Moves notes to the desktop's trash, from which a file manager brings them back. "
               "Where there is no trash, the note is removed; its text stays in the history. "
               "When one of several cannot be moved, the others are all the same."),
            trashOptions,
            trashExamples,
            runTrash},
    VerbRow{
        "history",
        "[NOTE] | show ID | restore ID | clear [NOTE]",
        0,
        2,
        {Completion::note, "show restore clear"},
        N_("Earlier texts of notes: list, show, restore, clear"),
        N_("Lists the texts that notes held before they were changed, and those that were "
           "written into them, the newest first: the ID of the text, when and why it was kept, "
           "its size and its file. In a terminal, * marks the text that the file holds now. Texts "
           "are "
           "kept for 90 days, and at most 512 MB of them.\n\n"
           "show prints a text. restore puts it back into its file; what the file holds by then "
           "is kept, too. clear forgets the texts of a note, or all, for good.\n\n"
           "NOTE may be a file that is no longer there. ID is the beginning of a text's hash, at "
           "least four digits."),
        historyOptions,
        historyExamples,
        runHistory},
    VerbRow{
        "resolve",
        "NOTE",
        1,
        1,
        {Completion::note, dayWords},
        N_("End a conflict: keep a version of a note, or merge all"),
        N_("Puts one text in the place of all versions of NOTE that conflicts lists, and takes "
           "away the files that a sync client has set aside. What each version held stays in the "
           "history.\n\n"
           "With --merge, the versions are joined by line, and within a task by state, text and "
           "tags. A line that one version has deleted goes if an earlier text is known (from the "
           "history, or from the start-up index) that shows that it was deleted; else all lines "
           "of all versions stay, those that they have in common once.\n\n"
           "A version that changes meanwhile is not taken away."),
        resolveOptions,
        resolveExamples,
        runResolve},
    VerbRow{
        "migrate",
        "",
        0,
        0,
        {},
        N_("Move local notes into the cloud drive"),
        N_("Moves everything in the local data folder into the cloud drive, the folder that the "
           "setting cloudDriveContainer names. Nothing there is overwritten: a file whose name "
           "is taken gets another one. A move that was interrupted goes on where it stopped."),
        migrateOptions,
        migrateExamples,
        runMigrate},
};

}  // namespace

std::span<const VerbRow> writingVerbs() {
    return writingRows;
}

}  // namespace tessaly::cli
