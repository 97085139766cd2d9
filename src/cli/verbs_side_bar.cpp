// SPDX-License-Identifier: MIT
#include <array>

#include "base/localisation.h"
#include "cli/verb_functions.h"
#include "cli/verb_rows.h"

namespace tessaly::cli {

namespace {

using base::N_;

constexpr std::array options{
    OptionRow{"--all", nullptr, N_("what is below rows that are not expanded, too")},
};

constexpr std::array sideBarExamples{
    ExampleRow{"tessaly sidebar", N_("the tree as it was left")},
    ExampleRow{"tessaly sidebar --all --json | jq -r 'select(.type == \"folder\").text'",
               N_("every folder, for a script")},
};

constexpr std::array sideBarRows{
    VerbRow{
        "sidebar",
        "",
        0,
        0,
        {},
        N_("Tree of folders, notes, filters and tags"),
        N_("Prints the rows of the sidebar: the fixed ones, the folders and their notes, the "
           "saved filters, the hashtags and the mentions, with the number of notes below a "
           "folder or with a tag.\n\n"
           "What is below a row is printed when the row is expanded. The setting "
           "expandedSideBarItems keeps which rows are, by their kind and key, separated by commas: "
           "section:Notes, folder:Work/Plans, hashtag:#work."),
        options,
        sideBarExamples,
        runSideBar},
};

}  // namespace

std::span<const VerbRow> sideBarVerbs() {
    return sideBarRows;
}

}  // namespace tessaly::cli
