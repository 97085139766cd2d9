// SPDX-License-Identifier: MIT
#include <array>

#include "base/localisation.h"
#include "cli/verb_functions.h"
#include "cli/verb_rows.h"
#include "editor/mark_action.h"

namespace tessaly::cli {

namespace {

using base::N_;

constexpr std::string_view markActions =
    "bold italic link inlineCode heading1 heading2 heading3 heading4 todo numberedTodo "
    "unorderedList orderedList markAsDone markAsScheduled markAsCanceled shiftRight shiftLeft "
    "moveUp moveDown quote";

constexpr bool namesAllActions() {
    std::size_t letters = 0;
    for (const auto& row : base::EnumNames<editor::MarkAction>::rows) {
        if (markActions.find(row.text) == markActions.npos) {
            return false;
        }
        letters += row.text.size() + 1;
    }
    return letters == markActions.size() + 1;
}
static_assert(namesAllActions());

constexpr std::array markOptions{
    OptionRow{"--lines",
              "A-B",
              N_("the lines A to B, counted from 1, or one line"),
              Completion::nothing,
              {},
              1},
    OptionRow{"--select",
              "LOCATION,LENGTH",
              N_("what is selected, in UTF-16 units; a length of 0 is a cursor"),
              Completion::nothing,
              {},
              1},
    OptionRow{"--bytes", nullptr, N_("count in bytes instead, also in what --json prints")},
};

constexpr std::array markExamples{
    ExampleRow{"printf 'Call Bob\\n' | tessaly mark todo --lines 1", N_("makes a task of a line")},
    ExampleRow{"tessaly mark bold --select 6,3 --json < notes.txt",
               N_("the new text, what is selected in it, and the change")},
    ExampleRow{":%!tessaly mark quote", N_("in vim: the whole text as a quote")},
};
constexpr std::array rpcExamples{
    ExampleRow{R"(echo '{"id":1,"method":"classify","params":{"line":"* Call"}}' | tessaly rpc)",
               N_("what kind of line it is")},
};

constexpr std::array editingRows{
    VerbRow{"mark",
            "ACTION",
            1,
            1,
            {Completion::words, markActions},
            N_("A command of the editor on standard input"),
            N_("Reads a text from standard input, runs a command on what is selected in it, and "
               "prints the whole new text. Without --lines or --select, everything is selected. "
               "When the command cannot be run, nothing is printed to standard output, and the "
               "exit status is not 0.\n\n"
               "ACTION is bold, italic, link, inlineCode, heading1, heading2, heading3, heading4, "
               "todo, numberedTodo, unorderedList, orderedList, markAsDone, markAsScheduled, "
               "markAsCanceled, shiftRight, shiftLeft, moveUp, moveDown or quote. A line or word "
               "that is marked so already loses the mark.\n\n"
               "With --json, one object is printed: the new text, what is selected in it, and the "
               "change as a range of the old text and what takes its place, null when nothing "
               "changes."),
            markOptions,
            markExamples,
            runMark,
            Needs::nothing},
    VerbRow{"rpc",
            "",
            0,
            0,
            {},
            N_("Answer requests of other programs"),
            N_("Reads requests from standard input, one JSON object a line, and prints an answer "
               "to each in one line, in order: {\"id\", \"method\", \"params\"} is answered with "
               "{\"id\", \"result\"} or {\"id\", \"error\": {\"message\"}}. It ends with the "
               "input.\n\n"
               "It reads no note and changes none, and results depend on the params alone, not on "
               "the user's settings. The methods and their params are in docs/rpc.md."),
            {},
            rpcExamples,
            runRpc,
            Needs::nothing},
};

}  // namespace

std::span<const VerbRow> editingVerbs() {
    return editingRows;
}

}  // namespace tessaly::cli
