// SPDX-License-Identifier: MIT
#include <array>

#include <fmt/format.h>

#include "cli/documents.h"
#include "cli/shell_words.h"
#include "cli/verbs.h"

namespace tessaly::cli {

namespace {

constexpr std::array<std::string_view, 7> kindNames{"nothing", "words",  "words",     "note",
                                                    "file",    "folder", "settingKey"};

std::string_view nameOf(Completion completion) {
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

std::string verbArms() {
    std::string text;
    for (const VerbRow& verb : verbs()) {
        text += fmt::format("    {})\n        options+={} most={} kind={} words={}\n        ;;\n",
                            verb.name, quoted(" " + names(verb.options)), verb.most,
                            nameOf(verb.completion.completion), quoted(verb.completion.words));
    }
    return text;
}

void addValueArms(std::string& text, std::span<const OptionRow> options) {
    for (const OptionRow& row : options) {
        if (row.argument != nullptr) {
            text += fmt::format("    {})\n        isValue=1 kind={} words={}\n        ;;\n",
                                row.name, nameOf(row.completion), quoted(row.words));
        }
    }
}

std::string valueArms() {
    std::string text;
    addValueArms(text, globalOptions());
    for (const VerbRow& verb : verbs()) {
        addValueArms(text, verb.options);
    }
    return text;
}

std::string valueOptions() {
    std::string text;
    const auto add = [&text](std::span<const OptionRow> options) {
        for (const OptionRow& row : options) {
            if (row.argument != nullptr && std::string_view{row.name} != "--root") {
                text.append(text.empty() ? "" : " | ").append(row.name);
            }
        }
    };
    add(globalOptions());
    for (const VerbRow& verb : verbs()) {
        add(verb.options);
    }
    return text;
}

}  // namespace

std::string bashCompletion() {
    return fmt::format(R"(# SPDX-License-Identifier: MIT
# bash completion for tessaly; made by: tessaly --dump completion-bash

_tessaly_notes() {{
    local name
    compopt -o filenames
    while IFS= read -r name; do
        name=${{name%%  *}}
        [[ $name == "$1"* ]] && COMPREPLY+=("$name")
    done < <(tessaly "${{root[@]}}" list --all 2>/dev/null)
}}

_tessaly() {{
    local current=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD - 1]}}
    local verb= words={verbs} options={globals} kind=words
    local -i i count=0 most=1 isValue=0
    local -a root=()
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${{COMP_WORDS[i]}} in
        --root) root=(--root "${{COMP_WORDS[++i]}}") ;;
        {valueOptions}) ((++i)) ;;
        -*) ;;
        *) if [[ $verb ]]; then ((++count)); else verb=${{COMP_WORDS[i]}}; fi ;;
        esac
    done
    case $verb in
{verbArms}    esac
    case $previous in
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
    note) _tessaly_notes "${{current//\\/}}" ;;
    file) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    folder) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -d -- "$current") ;;
    esac
    local word
    for word in $words; do
        [[ $word == "$current"* ]] && COMPREPLY+=("$word")
    done
}}

complete -F _tessaly tessaly
)",
                       fmt::arg("verbs", quoted(verbNames())),
                       fmt::arg("globals", quoted(names(globalOptions()))),
                       fmt::arg("valueOptions", valueOptions()), fmt::arg("verbArms", verbArms()),
                       fmt::arg("valueArms", valueArms()), fmt::arg("keys", quoted(settingKeys())));
}

}  // namespace tessaly::cli
