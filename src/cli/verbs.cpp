// SPDX-License-Identifier: MIT
#include "cli/verbs.h"

#include <algorithm>
#include <array>
#include <vector>

#include "base/localisation.h"
#include "cli/verb_rows.h"

namespace tessaly::cli {

namespace {

using base::N_;

constexpr std::array globalRows{
    OptionRow{"--root", "DIR", N_("use DIR as the data folder"), Completion::folder},
    OptionRow{"--now", "TIME", N_("take TIME for the present, for scripts and tests")},
    OptionRow{"--json", nullptr, N_("print one JSON object a line")},
    OptionRow{"--color", "WHEN", N_("colour the output: auto, always or never"), Completion::words,
              "auto always never"},
    OptionRow{"--help", nullptr, N_("print help; with a verb, help on it")},
    OptionRow{"--version", nullptr, N_("print the version")},
};

std::vector<VerbRow> allVerbs() {
    std::vector<VerbRow> all;
    for (const auto rows : {readingVerbs(), searchVerbs(), filterVerbs(), sideBarVerbs(),
                            taskVerbs(), writingVerbs(), editingVerbs(), otherVerbs()}) {
        all.insert(all.end(), rows.begin(), rows.end());
    }
    return all;
}

}  // namespace

std::span<const VerbRow> verbs() {
    static const std::vector<VerbRow> all = allVerbs();
    return all;
}

const VerbRow* findVerb(std::string_view name) {
    const auto all = verbs();
    const auto row =
        std::find_if(all.begin(), all.end(), [&](const VerbRow& one) { return one.name == name; });
    return row == all.end() ? nullptr : &*row;
}

std::span<const OptionRow> globalOptions() {
    return globalRows;
}

}  // namespace tessaly::cli
