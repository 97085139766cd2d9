// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "cli/documents.h"
#include "cli/help.h"
#include "cli/verbs.h"

namespace tessaly::cli {

namespace {

constexpr std::size_t sourceColumns = 79;

/// Text of ours with the characters escaped that mean something in a manual's source. None of it
/// begins with a dot.
std::string roff(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        escaped += c == '\\'  ? "\\e"
                   : c == '-' ? "\\-"
                   : c == '"' ? "\\(dq"  // alone it would end an argument
                              : std::string(1, c);
    }
    return escaped;
}

/// Paragraphs of ours, each sentence on a line of its own, as the language asks for.
std::string sentences(std::string_view text) {
    std::string lines{text};
    for (std::size_t at = 0; (at = lines.find(". ", at)) != std::string::npos; ++at) {
        lines[at + 1] = '\n';
    }
    lines = wrapped(roff(lines), 0, sourceColumns);
    for (std::size_t gap = 0; (gap = lines.find("\n\n", gap)) != std::string::npos;) {
        lines.replace(gap, 2, "\n.Pp\n");
    }
    return lines;
}

/// What an option or an example is for, as a sentence.
std::string sentence(std::string_view help) {
    std::string text = fmt::format("{}.", help);
    text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
    return wrapped(roff(text), 0, sourceColumns);
}

/// "Op Fl \-folder Ar FOLDER": an option behind a macro.
std::string flag(const OptionRow& row) {
    const std::string name = roff(std::string_view{row.name}.substr(1));
    return row.argument == nullptr ? fmt::format("Fl {}", name)
                                   : fmt::format("Fl {} Ar {}", name, row.argument);
}

/// "Ar NOTE" of "NOTE", "Oo Ar NOTE Oc" of "[NOTE]"; a word in lower case is typed as it stands.
std::string argument(std::string_view word) {
    if (word == "|") {
        return " |";
    }
    if (word.starts_with('[')) {
        return fmt::format(" Oo{} Oc", argument(word.substr(1, word.size() - 2)));
    }
    return fmt::format(" {} {}", word.front() >= 'a' ? "Cm" : "Ar", word);
}

std::string arguments(std::string_view synopsis) {
    std::string macros;
    for (std::size_t start = 0; start < synopsis.size();) {
        const std::size_t end = std::min(synopsis.find(' ', start), synopsis.size());
        macros += argument(synopsis.substr(start, end - start));
        start = end + 1;
    }
    return macros;
}

std::string optionList(std::span<const OptionRow> options) {
    std::string text = ".Bl -tag -width Ds\n";
    for (const OptionRow& row : options) {
        text += fmt::format(".It {}\n{}", flag(row), sentence(row.help));
    }
    return text + ".El\n";
}

std::string verbItem(const VerbRow& verb) {
    std::string text = fmt::format(".It Cm {}{}\n", verb.name, arguments(verb.synopsis));
    text += sentences(verb.text);
    if (!verb.options.empty()) {
        text += optionList(verb.options);
    }
    return text;
}

std::string examples() {
    std::string text = ".Sh EXAMPLES\n.Bl -tag -width Ds\n";
    for (const VerbRow& verb : verbs()) {
        for (const ExampleRow& row : verb.examples) {
            text += fmt::format(".It Li \"{}\"\n{}", roff(row.command), sentence(row.help));
        }
    }
    return text + ".El\n";
}

constexpr std::string_view opening =
    R"(.\" SPDX-License-Identifier: MIT
.\" Made by: tessaly --dump man
.Dd November 22, 2026
.Dt TESSALY 1
.Os
.Sh NAME
.Nm tessaly
.Nd a planner that keeps everything in plain-text notes
.Sh SYNOPSIS
.Nm
.Op Ar VERB
.Op Ar option ...
.Op Ar argument ...
.Sh DESCRIPTION
.Nm
keeps notes and tasks in plain-text files in one data folder: a calendar note
for each day, and general notes in folders.
Tasks are list lines of these notes.
.Pp
Without a verb or an option, and where there is a display,
.Nm
opens the window, which the program
.Nm tessaly-desktop
beside it shows.
Without a display it prints today.
A new user first gets a few notes in the data folder that show how it works.
In a terminal, what is printed is laid out for reading and cut to its width.
Elsewhere each task or note is one whole line that begins with its address,
such as
.Pa Calendar/20190305.txt:3 .
Control characters in notes are never sent to a terminal.
.Ss Options of every verb
They may stand before the verb or behind it.
)";

constexpr std::string_view closing =
    R"(.Sh JSON
With
.Fl \-json
each line of the output is one JSON object in UTF\-8.
Days are written 2019\-03\-05, times as RFC 3339 has them, and what is absent
is null.
New fields may be added in later versions.
.Sh ENVIRONMENT
.Bl -tag -width Ds
.It Ev TESSALY_ROOT
The data folder, unless
.Fl \-root
names one.
.It Ev NO_COLOR
When it is set and not empty, nothing is coloured, unless
.Fl \-color
says otherwise.
.It Ev LC_ALL , Ev LC_TIME , Ev LC_MESSAGES , Ev LANG , Ev LANGUAGE
The language of messages and the form of dates.
.It Ev TZ
The time zone.
.It Ev XDG_DATA_HOME , Ev XDG_CONFIG_HOME , Ev XDG_STATE_HOME
Where the data folder, the settings and the history (with the locks) lie.
.El
.Sh FILES
.Bl -tag -width Ds
.It Pa ~/.local/share/org.tessaly.tessaly
The data folder, unless the setting cloudDriveContainer names a folder that a
sync client keeps; it is then the folder
.Pa Documents
in that one.
Calendar notes lie in
.Pa Calendar ,
general notes in
.Pa Notes .
.It Pa ~/.config/tessaly/
The settings.
.It Pa ~/.local/state/tessaly/history/
The texts that notes held before they were changed, and
.Pa index ,
which names them.
.El
.Sh EXIT STATUS
.Bl -tag -width Ds
.It 0
Done.
.It 1
It could not be done; the reason is on standard error.
.It 2
Misuse: an unknown verb, option or argument.
.El
)";

}  // namespace

std::string manPage() {
    std::string page{opening};
    page += optionList(globalOptions());
    page += ".Ss Verbs\n.Bl -tag -width Ds\n";
    for (const VerbRow& verb : verbs()) {
        page += verbItem(verb);
    }
    page += ".El\n";
    page += closing;
    return page + examples();
}

}  // namespace tessaly::cli
