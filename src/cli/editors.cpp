// SPDX-License-Identifier: MIT
#include "cli/editors.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>
#include <unistd.h>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/utf8.h"

namespace tessaly::cli {

namespace {

using Arguments = std::vector<std::string>;

Arguments plusLine(const std::string& file, std::size_t line) {
    return {fmt::format("+{}", line), file};
}
Arguments colonLine(const std::string& file, std::size_t line) {
    return {fmt::format("{}:{}", file, line)};
}
Arguments gotoLine(const std::string& file, std::size_t line) {
    return {"--goto", fmt::format("{}:{}", file, line)};
}
Arguments lineOption(const std::string& file, std::size_t line) {
    return {"--line", fmt::format("{}", line), file};
}

struct EditorRow {
    std::string_view program;
    Arguments (*arguments)(const std::string& file, std::size_t line);
};

constexpr std::array editorRows{
    EditorRow{"code", gotoLine},        EditorRow{"codium", gotoLine}, EditorRow{"emacs", plusLine},
    EditorRow{"emacsclient", plusLine}, EditorRow{"gedit", plusLine},  EditorRow{"gvim", plusLine},
    EditorRow{"helix", colonLine},      EditorRow{"hx", colonLine},    EditorRow{"joe", plusLine},
    EditorRow{"kak", plusLine},         EditorRow{"kate", lineOption}, EditorRow{"mg", plusLine},
    EditorRow{"micro", plusLine},       EditorRow{"nano", plusLine},   EditorRow{"nvim", plusLine},
    EditorRow{"subl", colonLine},       EditorRow{"vi", plusLine},     EditorRow{"vim", plusLine},
    EditorRow{"zed", colonLine},
};

/// The file's name of the first word; quotes around it do not count.
std::string_view programOf(std::string_view command) {
    command = base::trimmedStart(command);
    const char quote = command.empty() ? '\0' : command.front();
    const bool isQuoted = quote == '\'' || quote == '"';
    if (isQuoted) {
        command.remove_prefix(1);
    }
    const std::string_view program =
        command.substr(0, isQuoted ? command.find(quote) : command.find_first_of(" \t\n"));
    return program.substr(program.rfind('/') + 1);
}

std::string trimmedEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(base::trimmed(value));
}

/// Whether the first word is a program's name or path that every shell takes as it stands.
bool namesProgram(std::string_view word) {
    constexpr std::string_view plain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._+-";
    return !word.empty() && word.front() != '-' &&
           word.find_first_not_of(plain) == std::string_view::npos;
}

/// For the shell: a program that is not there is told in our words, `$2`, before it is started.
std::string_view checkOf(std::string_view word) {
    return namesProgram(word)
               ? R"(command -v "$1" >/dev/null || { printf '%s\n' "$2" >&2; exit 1; }; )"
               : std::string_view{};
}

}  // namespace

std::string userEditor() {
    const std::string visual = trimmedEnvironment("VISUAL");
    return visual.empty() ? trimmedEnvironment("EDITOR") : visual;
}

Arguments editorArguments(std::string_view command, const std::string& file,
                          std::optional<std::size_t> lineIndex) {
    const std::string_view program = programOf(command);
    const auto row =
        std::find_if(editorRows.begin(), editorRows.end(),
                     [program](const EditorRow& editor) { return editor.program == program; });
    return row == editorRows.end() || !lineIndex ? Arguments{file}
                                                 : row->arguments(file, *lineIndex + 1);
}

// The variables hold a command as a shell reads it, with quotes and variables of its own.
base::Failure becomeEditor(const std::string& command, const Arguments& arguments) {
    const std::string_view trimmed = base::trimmed(command);
    const std::string word{trimmed.substr(0, trimmed.find_first_of(" \t\n"))};
    const std::string missing = fmt::format(
        "tessaly: {}", fmt::format(fmt::runtime(base::tr("the editor “{}” is not there")), word));
    const std::string script = fmt::format(R"({}shift 2; {} "$@")", checkOf(word), command);
    Arguments words{"sh", "-c", script, command, word, missing};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& one : words) {
        pointers.push_back(one.data());
    }
    pointers.push_back(nullptr);
    std::signal(SIGPIPE, SIG_DFL);  // ignored, it would be so in the editor, too
    ::execvp(pointers.front(), pointers.data());
    return {base::Failure::Kind::unavailable,
            fmt::format("{}: {}", command, std::generic_category().message(errno))};
}

}  // namespace tessaly::cli
