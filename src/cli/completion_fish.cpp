// SPDX-License-Identifier: MIT
#include <fmt/format.h>

#include "cli/documents.h"
#include "cli/shell_words.h"
#include "cli/verbs.h"

namespace tessaly::cli {

namespace {

std::string argumentOf(Completion completion, std::string_view words) {
    switch (completion) {
        case Completion::words:
        case Completion::day: return fmt::format(" -x -a {}", quoted(words));
        case Completion::note: return fmt::format(" -x -a '{} (__tessaly_notes)'", words);
        case Completion::file: return " -r -F";
        case Completion::folder: return " -x -a '(__fish_complete_directories)'";
        default: return " -x";
    }
}

std::string optionLine(const OptionRow& row, std::string_view condition) {
    std::string line = "complete -c tessaly";
    line += condition;
    line += fmt::format(" -l {}", std::string_view{row.name}.substr(2));
    if (row.argument != nullptr) {
        line += argumentOf(row.completion, row.words);
    }
    return line + fmt::format(" -d {}\n", quoted(row.help));
}

std::string verbLines(const VerbRow& verb) {
    const std::string condition = fmt::format(" -n '__fish_seen_subcommand_from {}'", verb.name);
    std::string lines;
    for (const OptionRow& row : verb.options) {
        lines += optionLine(row, condition);
    }
    if (verb.completion.completion == Completion::settingKey) {
        lines += fmt::format(
            "complete -c tessaly -n '__fish_seen_subcommand_from {0}; and not "
            "__fish_seen_subcommand_from {1}' -x -a '{1}'\n"
            "complete -c tessaly -n '__fish_seen_subcommand_from {0}; and "
            "__fish_seen_subcommand_from get set reset' -x -a '{2}'\n",
            verb.name, verb.completion.words, settingKeys());
    } else if (verb.most > 0) {
        lines += fmt::format("complete -c tessaly{}{}\n", condition,
                             argumentOf(verb.completion.completion, verb.completion.words));
    }
    return lines;
}

}  // namespace

std::string fishCompletion() {
    std::string text = R"(# SPDX-License-Identifier: MIT
# fish completion for tessaly; made by: tessaly --dump completion-fish

function __tessaly_notes
    tessaly list --all 2>/dev/null | string replace -r '  .*' ''
end

complete -c tessaly -f
)";
    for (const OptionRow& row : globalOptions()) {
        text += optionLine(row, "");
    }
    for (const VerbRow& verb : verbs()) {
        text += fmt::format("complete -c tessaly -n __fish_use_subcommand -a {} -d {}\n", verb.name,
                            quoted(verb.help));
        text += verbLines(verb);
    }
    return text;
}

}  // namespace tessaly::cli
