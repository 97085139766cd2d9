// SPDX-License-Identifier: MIT
#include <fmt/format.h>

#include "cli/documents.h"
#include "cli/shell_words.h"
#include "cli/verbs.h"

namespace tessaly::cli {

namespace {

/// Help in a completion rule, where brackets and colons have a meaning.
std::string described(std::string_view help) {
    std::string text;
    for (const char c : help) {
        if (c == '[' || c == ']' || c == ':' || c == '\\') {
            text += '\\';
        }
        text += c;
    }
    return text;
}

std::string actionOf(Completion completion, std::string_view words) {
    switch (completion) {
        case Completion::words:
        case Completion::day: return fmt::format("({})", words);
        case Completion::note: return "_tessaly_notes";
        case Completion::filter: return "_tessaly_filters";
        case Completion::file: return "_files";
        case Completion::folder: return "_files -/";
        default: return " ";
    }
}

std::string optionRule(const OptionRow& row) {
    const std::string help = described(row.help);
    if (row.argument == nullptr) {
        return shellQuoted(fmt::format("{}[{}]", row.name, help));
    }
    return shellQuoted(fmt::format("{}=[{}]:{}:{}", row.name, help, row.argument,
                                   actionOf(row.completion, row.words)));
}

std::string optionRules(std::span<const OptionRow> options, std::string_view before) {
    std::string text;
    for (const OptionRow& row : options) {
        text += fmt::format("{}{}", before, optionRule(row));
    }
    return text;
}

std::string verbDescriptions() {
    std::string text;
    for (const VerbRow& verb : verbs()) {
        text += fmt::format("\n        {}",
                            shellQuoted(fmt::format("{}:{}", verb.name, described(verb.help))));
    }
    return text;
}

std::string argumentRules(const VerbRow& verb) {
    const auto [completion, words] = verb.completion;
    if (completion == Completion::settingKey || completion == Completion::filter) {
        const std::string names = completion == Completion::filter
                                      ? "NAME:" + actionOf(completion, {})
                                      : fmt::format("KEY:({})", settingKeys());
        return " " + shellQuoted(fmt::format("1:action:({})", words)) + " " +
               shellQuoted("2:" + names);
    }
    if (verb.most == 0) {
        return {};
    }
    return " " + shellQuoted(fmt::format("1:argument:{}", actionOf(completion, words)));
}

std::string zshVerbArms() {
    std::string text;
    for (const VerbRow& verb : verbs()) {
        text += fmt::format("        {}) _arguments $globals{}{} ;;\n", verb.name,
                            optionRules(verb.options, " "), argumentRules(verb));
    }
    return text;
}

}  // namespace

std::string zshCompletion() {
    return fmt::format(R"zsh(#compdef tessaly
# SPDX-License-Identifier: MIT
# zsh completion for tessaly; made by: tessaly --dump completion-zsh

_tessaly_notes() {{
    local -a names days=(today tomorrow yesterday)
    names=(${{${{(f)"$(_call_program notes tessaly list --all 2>/dev/null)"}}%%  *}})
    compadd -a days
    compadd -a names
}}

_tessaly_filters() {{
    local -a names=(${{(f)"$(_call_program filters tessaly filter list 2>/dev/null)"}})
    compadd -a names
}}

_tessaly() {{
    local context state state_descr line
    typeset -A opt_args
    local -a globals=({globals}
    )
    local -a verbs=({verbs}
    )
    _arguments -C $globals '1:verb:->verb' '*::argument:->argument'
    case $state in
    verb) _describe verb verbs ;;
    argument)
        case $words[1] in
{arms}        esac
        ;;
    esac
}}

_tessaly "$@"
)zsh",
                       fmt::arg("globals", optionRules(globalOptions(), "\n        ")),
                       fmt::arg("verbs", verbDescriptions()), fmt::arg("arms", zshVerbArms()));
}

}  // namespace tessaly::cli
