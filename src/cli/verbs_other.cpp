// SPDX-License-Identifier: MIT
#include <array>

#include "base/localisation.h"
#include "cli/verb_functions.h"
#include "cli/verb_rows.h"

namespace tessaly::cli {

namespace {

using base::N_;

constexpr std::array parseExamples{
    ExampleRow{"tessaly parse notes.txt --json", N_("the lines of a file as records")},
    ExampleRow{"printf '* [x] Call\\n' | tessaly parse -", N_("standard input")},
};
constexpr std::array settingsExamples{
    ExampleRow{"tessaly settings list", N_("all settings with their values")},
    ExampleRow{"tessaly settings set isDashTodo on", N_("lines that begin with - are tasks")},
    ExampleRow{"tessaly settings reset isDashTodo", N_("back to the default")},
};
constexpr std::array doctorExamples{
    ExampleRow{"tessaly doctor", N_("look for trouble")},
};

constexpr std::array indexExamples{
    ExampleRow{"tessaly index", N_("make the next start quick")},
};

constexpr std::array otherRows{
    VerbRow{"parse",
            "FILE",
            1,
            1,
            {Completion::file},
            N_("Lines of a text as records"),
            N_("Reads a text and prints one record a line: what kind of line it is, its date and "
               "its content. With --json, all that is known of a line.\n\n"
               "FILE is any file, or - for standard input. A file that is named as a calendar note "
               "and lies in a folder named Calendar has that day."),
            {},
            parseExamples,
            runParse,
            Needs::nothing},
    VerbRow{"settings",
            "list | get KEY | set KEY VALUE | reset KEY",
            1,
            3,
            {Completion::settingKey, "list get set reset"},
            N_("Settings: list, read and change them"),
            N_("Lists the settings with their values, prints one, changes one, or gives one its "
               "default back."),
            {},
            settingsExamples,
            runSettings,
            Needs::nothing},
    VerbRow{"doctor",
            "",
            0,
            0,
            {},
            N_("What is found, missing or doubtful"),
            N_("Looks at the data folder and the settings and tells what it finds: where they are, "
               "what cannot be read, files that are passed over and why. It changes nothing."),
            {},
            doctorExamples,
            runDoctor,
            Needs::nothing},
    VerbRow{"index",
            "",
            0,
            0,
            {},
            N_("Write the start-up index now"),
            N_("Writes an index of all notes into the cache folder, so that the next start reads "
               "only what has changed. That is also done by itself, in the background, when much "
               "had to be read. A note that has changed is never shown as it was: its file's state "
               "is looked at each time. The index may be deleted; with the setting isStartUpIndex "
               "off there is none."),
            {},
            indexExamples,
            runIndex,
            Needs::nothing},
};

}  // namespace

std::span<const VerbRow> otherVerbs() {
    return otherRows;
}

}  // namespace tessaly::cli
