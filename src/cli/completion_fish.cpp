// SPDX-License-Identifier: MIT
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "cli/documents.h"
#include "cli/shell_words.h"
#include "cli/verbs.h"

namespace tessaly::cli {

namespace {

std::string argumentOf(Completion completion, std::string_view words) {
    switch (completion) {
        case Completion::words:
        case Completion::day: return fmt::format(" -x -a {}", shellQuoted(words));
        case Completion::note: return fmt::format(" -x -a '{} (__tessaly_notes)'", words);
        case Completion::file: return " -r -F";
        case Completion::filter: return " -x -a '(__tessaly_filters)'";
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
    return line + fmt::format(" -d {}\n", shellQuoted(row.help));
}

/// What goes behind some of the words of a verb.
struct NamesBehindWords {
    std::string_view words;
    std::string names;
};

std::optional<NamesBehindWords> namesBehindWords(Completion completion) {
    switch (completion) {
        case Completion::settingKey: return NamesBehindWords{"get set reset", settingKeys()};
        case Completion::filter:
            return NamesBehindWords{"show save rename delete", "(__tessaly_filters)"};
        default: return std::nullopt;
    }
}

std::string verbLines(const VerbRow& verb) {
    const std::string condition = fmt::format(" -n '__tessaly_has_verb {}'", verb.name);
    std::string lines;
    for (const OptionRow& row : verb.options) {
        lines += optionLine(row, condition);
    }
    if (const auto names = namesBehindWords(verb.completion.completion)) {
        lines += fmt::format(
            "complete -c tessaly -n '__tessaly_has_verb {0}; and not "
            "__fish_seen_subcommand_from {1}' -x -a '{1}'\n"
            "complete -c tessaly -n '__tessaly_has_verb {0}; and "
            "__fish_seen_subcommand_from {2}' -x -a '{3}'\n",
            verb.name, verb.completion.words, names->words, names->names);
    } else if (verb.most > 0) {
        lines += fmt::format("complete -c tessaly{}{}\n", condition,
                             argumentOf(verb.completion.completion, verb.completion.words));
    }
    return lines;
}

std::string globalsWithValue() {
    std::string names;
    for (const OptionRow& row : globalOptions()) {
        if (row.argument != nullptr) {
            names.append(" ").append(row.name);
        }
    }
    return names;
}

}  // namespace

std::string fishCompletion() {
    std::string text = R"(# SPDX-License-Identifier: MIT
# fish completion for tessaly; made by: tessaly --dump completion-fish

# Whether the first word that is no option is that verb; without one: whether there is no verb yet.
function __tessaly_has_verb
    set -l words (commandline -opc)
    set -l i 2
    while test $i -le (count $words)
        switch $words[$i]
            case)" + globalsWithValue() +
                       R"(
                set i (math $i + 2)
            case '-*'
                set i (math $i + 1)
            case '*'
                test "$words[$i]" = "$argv[1]"
                return
        end
    end
    test -z "$argv[1]"
end

function __tessaly_notes
    tessaly list --all 2>/dev/null | string replace -r '  .*' ''
end

function __tessaly_filters
    tessaly filter list 2>/dev/null
end

complete -c tessaly -f
)";
    for (const OptionRow& row : globalOptions()) {
        text += optionLine(row, "");
    }
    for (const VerbRow& verb : verbs()) {
        text += fmt::format("complete -c tessaly -n __tessaly_has_verb -a {} -d {}\n", verb.name,
                            shellQuoted(verb.help));
        text += verbLines(verb);
    }
    return text;
}

}  // namespace tessaly::cli
