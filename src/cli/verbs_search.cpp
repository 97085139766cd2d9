// SPDX-License-Identifier: MIT
#include <array>

#include "base/localisation.h"
#include "cli/verb_functions.h"
#include "cli/verb_rows.h"

namespace tessaly::cli {

namespace {

using base::N_;

constexpr std::array searchOptions{
    OptionRow{"--filter", "NAME", N_("only what the saved filter NAME lets pass"),
              Completion::filter},
    OptionRow{"--limit", "N", N_("at most N rows; 0: all (in a terminal 100, else all)")},
    OptionRow{"--explain", nullptr,
              N_("tell how the query is read, and how many rows it has, instead of these")},
};

constexpr std::array searchExamples{
    ExampleRow{"tessaly search call bob", N_("lines that hold these words")},
    ExampleRow{"tessaly search '#home/garden'", N_("lines with a tag, or one below it")},
    ExampleRow{"tessaly search 'is:open before:today -\"some day\" invoice'",
               N_("open tasks of days gone by")},
    ExampleRow{"tessaly search //inbox", N_("open tasks of general notes, without a date")},
};
constexpr std::array openExamples{
    ExampleRow{"tessaly open today", N_("today's note in your editor")},
    ExampleRow{"tessaly open Work/Plans:12", N_("a line that search has found")},
};

constexpr std::array searchRows{
    VerbRow{"search",
            "[QUERY...]",
            0,
            manyArguments,
            {},
            N_("Lines and notes that hold a text"),
            N_("Prints the tasks that match QUERY, and the notes whose title or other lines do, "
               "note by note in the order of the setting sortBy. Several arguments are one query "
               "with blanks between them. Upper and lower case match each other. Without QUERY it "
               "lists the notes that were changed last.\n\n"
               "A line matches where it holds the whole text; lines that hold all its words apart "
               "follow. A single #tag or @mention finds the lines that carry it. Operators: "
               "\"a phrase\", -without, is:open (done, scheduled, cancelled, task), in:FOLDER, "
               "title:TEXT, on:DATE, before:DATE, after:DATE; DATE is written as for day. "
               "//recent and //inbox are lists. A word that begins with - goes behind --, "
               "or the whole query into quotes that begin with another word.\n\n"
               "The exit status is 0 also when nothing is found, as for other lists."),
            searchOptions,
            searchExamples,
            runSearch},
    VerbRow{"open",
            "NOTE[:LINE]",
            1,
            1,
            {Completion::note, dayWords},
            N_("A note in your editor"),
            N_("Starts the editor that the environment names in VISUAL, else in EDITOR, with the "
               "note's file, at LINE where the editor is one of those that are known. The exit "
               "status is the editor's.\n\n"
               "NOTE is a day, written as for the verb day, the name of a file relative to its "
               "folder, or a title. The file of a day need not be there yet; the editor makes it."),
            {},
            openExamples,
            runOpen},
};

}  // namespace

std::span<const VerbRow> searchVerbs() {
    return searchRows;
}

}  // namespace tessaly::cli
