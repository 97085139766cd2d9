// SPDX-License-Identifier: MIT
#include <array>

#include "base/localisation.h"
#include "cli/filter_options.h"
#include "cli/verb_functions.h"
#include "cli/verb_rows.h"

namespace tessaly::cli {

namespace {

using base::N_;

constexpr std::array filterOptions{
    OptionRow{"--state", "STATES",
              N_("save: tasks in these states, separated by commas: open, done, scheduled, "
                 "cancelled; none for lines that are no tasks"),
              Completion::words, filterStates},
    OptionRow{"--kind", "KINDS",
              N_("save: which notes are rows of their own, and whether events and reminders are, "
                 "separated by commas: notes, calendar, events, reminders; tasks are chosen by "
                 "--state alone"),
              Completion::words, filterKinds},
    OptionRow{"--timeframe", "TIMEFRAME",
              N_("save: last-week, this-week, next-week, last-month, this-month, next-month, past, "
                 "future or all"),
              Completion::words, filterTimeframes},
    OptionRow{"--from", "DAY", N_("save: from this day on"), Completion::day, dayWords},
    OptionRow{"--to", "DAY", N_("save: up to this day"), Completion::day, dayWords},
    OptionRow{"--keyword", "TEXT", N_("save: what TEXT finds, as search takes it")},
    OptionRow{"--dry-run", nullptr, N_("change nothing, and print what would change in the files")},
};

constexpr std::array filterExamples{
    ExampleRow{"tessaly filter save Week --state open --timeframe this-week",
               N_("the open tasks of this week, as the filter Week")},
    ExampleRow{"tessaly filter save Trip --from 2020-02-01 --to 2020-02-14 --keyword '#travel'",
               N_("all that has a tag within two weeks")},
    ExampleRow{"tessaly filter show Week", N_("what a filter shows")},
    ExampleRow{"tessaly search --filter Week", N_("search with it")},
};

constexpr std::array filterRows{
    VerbRow{"filter",
            "list | show NAME | save NAME | rename NAME NEW | delete NAME",
            1,
            3,
            {Completion::filter, "list show save rename delete"},
            N_("Saved filters: list, show, save, rename and delete them"),
            N_("A filter says which tasks, notes, events and reminders a search shows: in which "
               "states, of which kinds, in which timeframe, and with which text. Filters are files "
               "in the folder Filters of the data folder, named like the filter, as property "
               "lists.\n\n"
               "--state alone chooses tasks, --kind alone notes, events and reminders: a filter "
               "with states alone shows no notes, one with kinds alone no tasks. One with neither "
               "shows all of them. A keyword that is a single tag or mention is searched as such."
               "\n\n"
               "list prints the names, show what a filter shows. save writes a filter, in the "
               "place of one of that name. rename gives it another name. delete moves it to the "
               "desktop's trash; where there is none, it stays.\n\n"
               "Names are those of files: / and some other signs are left out, and Work and work "
               "are one name. A file that cannot be read as a filter is never written over; list "
               "tells of it."),
            filterOptions,
            filterExamples,
            runFilter},
};

}  // namespace

std::span<const VerbRow> filterVerbs() {
    return filterRows;
}

}  // namespace tessaly::cli
