// SPDX-License-Identifier: MIT
#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "cli/documents.h"
#include "cli/shell_words.h"
#include "cli/verbs.h"

namespace tessaly::cli {

namespace {

constexpr std::array<std::string_view, 8> kindNames{"nothing", "words",  "words",      "note",
                                                    "file",    "folder", "settingKey", "filter"};

// Of the option that the script passes on.
constexpr std::string_view rootPattern = "*:--root";

std::string_view completionName(Completion completion) {
    return kindNames[static_cast<std::size_t>(completion)];
}

std::string names(std::span<const OptionRow> options) {
    std::string text;
    for (const OptionRow& row : options) {
        text.append(text.empty() ? "" : " ").append(row.name);
    }
    return text;
}

std::string verbNames() {
    std::string text;
    for (const VerbRow& verb : verbs()) {
        text.append(text.empty() ? "" : " ").append(verb.name);
    }
    return text;
}

std::string bashVerbArms() {
    std::string text;
    for (const VerbRow& verb : verbs()) {
        text += fmt::format("    {})\n        options+={} most={} kind={} words={}\n        ;;\n",
                            verb.name, shellQuoted(" " + names(verb.options)), verb.most,
                            completionName(verb.completion.completion),
                            shellQuoted(verb.completion.words));
    }
    return text;
}

struct ValueOption {
    std::string pattern;  // of the verb, ':' and the option
    const OptionRow* row;
};

/// The options with a value. What a verb takes for one of its own is no other verb's matter.
std::vector<ValueOption> valueOptions() {
    std::vector<ValueOption> all;
    const auto add = [&all](std::string_view verb, std::span<const OptionRow> options) {
        for (const OptionRow& row : options) {
            if (row.argument != nullptr) {
                all.push_back({fmt::format("{}:{}", verb, row.name), &row});
            }
        }
    };
    add("*", globalOptions());
    for (const VerbRow& verb : verbs()) {
        add(verb.name, verb.options);
    }
    return all;
}

std::string valueArms() {
    std::string text;
    for (const auto& [pattern, row] : valueOptions()) {
        text += fmt::format("    {})\n        isValue=1 kind={} words={}\n        ;;\n", pattern,
                            completionName(row->completion), shellQuoted(row->words));
    }
    return text;
}

std::string valuePatterns() {
    std::string text;
    for (const auto& [pattern, row] : valueOptions()) {
        if (pattern == rootPattern) {
            continue;
        }
        text.append(text.empty() ? "" : " | ").append(pattern);
    }
    return text;
}

}  // namespace

std::string bashCompletion() {
    return fmt::format(R"(# SPDX-License-Identifier: MIT
# bash completion for tessaly; made by: tessaly --dump completion-bash

_tessaly_names() {{
    local name
    compopt -o filenames
    while IFS= read -r name; do
        [[ $name == "$1"* ]] && COMPREPLY+=("$name")
    done
}}

_tessaly() {{
    local current=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD - 1]}}
    local verb= word words={verbs} options={globals} kind=words
    local -i i count=0 most=1 isValue=0
    local -a root=()
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; ++i)); do
        word=${{COMP_WORDS[i]}}
        if [[ $word != -* ]]; then
            if [[ $verb ]]; then ((++count)); else verb=$word; fi
            continue
        fi
        case $verb:$word in
        {rootPattern}) root=(--root "${{COMP_WORDS[++i]}}") ;;
        {valuePatterns}) ((++i)) ;;
        esac
    done
    case $verb in
{verbArms}    esac
    case $verb:$previous in
{valueArms}    esac
    if ((!isValue)) && [[ $current == -* ]]; then
        kind=words words=$options
    elif ((!isValue && count >= most)); then
        return
    fi
    case $kind in
    settingKey)
        ((count)) && words=
        ((count == 1)) && words={keys}
        ;;
    filter)
        ((isValue || count == 1)) &&
            _tessaly_names "${{current//\\/}}" < <(tessaly "${{root[@]}}" filter list 2>/dev/null)
        ((count)) && words=
        ;;
    note)
        _tessaly_names "${{current//\\/}}" < <(
            tessaly "${{root[@]}}" list --all 2>/dev/null | sed 's/  .*//'
        )
        ;;
    file) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    folder) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -d -- "$current") ;;
    esac
    for word in $words; do
        [[ $word == "$current"* ]] && COMPREPLY+=("$word")
    done
}}

complete -F _tessaly tessaly
)",
                       fmt::arg("verbs", shellQuoted(verbNames())),
                       fmt::arg("globals", shellQuoted(names(globalOptions()))),
                       fmt::arg("rootPattern", rootPattern),
                       fmt::arg("valuePatterns", valuePatterns()),
                       fmt::arg("verbArms", bashVerbArms()), fmt::arg("valueArms", valueArms()),
                       fmt::arg("keys", shellQuoted(settingKeys())));
}

}  // namespace tessaly::cli
