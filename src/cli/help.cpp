// SPDX-License-Identifier: MIT
#include "cli/help.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

#include "base/graphemes.h"
#include "base/localisation.h"
#include "cli/spans.h"

namespace tessaly::cli {

namespace {

using base::tr;

constexpr std::size_t widestPage = 80;  // longer lines are hard to read

struct Entry {
    std::string term;
    std::string text;
};

class Page {
public:
    explicit Page(const Terminal& terminal)
        : _terminal(terminal), _columns(std::min(terminal.columns, widestPage)) {}

    void paragraph(std::string_view text) { _text += wrapped(text, 0, _columns); }

    /// The words are never cut; those that go to another line stand below the first of them.
    void usage(const std::vector<std::string>& words) {
        const std::string label = tr("Usage:");
        const std::size_t column = base::terminalWidth(label);
        _text += drawn({{Style::section, label}}, _terminal);
        std::size_t used = column;
        for (const std::string& word : words) {
            const std::size_t width = 1 + base::terminalWidth(word);
            if (used > column && used + width > _columns) {
                _text += "\n" + std::string(column, ' ');
                used = column;
            }
            _text += " " + word;
            used += width;
        }
        _text += "\n";
    }

    void section(const std::string& name, const std::vector<Entry>& entries) {
        if (entries.empty()) {
            return;
        }
        _text += "\n" + drawn({{Style::section, name}}, _terminal) + "\n";
        const std::size_t column = columnOf(entries);
        for (const Entry& entry : entries) {
            addEntry(entry, column);
        }
    }

    void gap() { _text += "\n"; }

    std::string take() { return std::move(_text); }

private:
    static constexpr std::size_t indent = 2;

    static std::size_t columnOf(const std::vector<Entry>& entries) {
        constexpr std::size_t widestTerm = 26;
        std::size_t widest = 0;
        for (const Entry& entry : entries) {
            const std::size_t width = base::terminalWidth(entry.term);
            widest = width <= widestTerm ? std::max(widest, width) : widest;
        }
        return indent + widest + 2;
    }

    void addEntry(const Entry& entry, std::size_t column) {
        const std::string lines = wrapped(entry.text, column, _columns);
        const std::size_t width = indent + base::terminalWidth(entry.term);
        _text += std::string(indent, ' ') + drawn({{Style::hashtag, entry.term}}, _terminal);
        if (width + 2 > column) {
            _text += "\n" + lines;
        } else {
            _text +=
                std::string(column - width, ' ') + lines.substr(std::min(column, lines.size()));
        }
    }

    const Terminal& _terminal;
    std::size_t _columns;
    std::string _text;
};

std::vector<Entry> entriesOf(std::span<const OptionRow> options) {
    std::vector<Entry> entries;
    for (const OptionRow& row : options) {
        std::string term = row.name;
        if (row.argument != nullptr) {
            term += fmt::format(" {}", row.argument);
        }
        entries.push_back({std::move(term), tr(row.help)});
    }
    return entries;
}

std::vector<Entry> verbEntries() {
    std::vector<Entry> entries;
    for (const VerbRow& verb : verbs()) {
        entries.push_back({verb.name, tr(verb.help)});
    }
    return entries;
}

std::vector<std::string> synopsisOf(const VerbRow& verb) {
    std::vector<std::string> words{fmt::format("tessaly {}", verb.name)};
    for (const OptionRow& row : verb.options) {
        words.push_back(row.argument == nullptr ? fmt::format("[{}]", row.name)
                                                : fmt::format("[{} {}]", row.name, row.argument));
    }
    if (*verb.synopsis != '\0') {
        words.emplace_back(verb.synopsis);
    }
    return words;
}

}  // namespace

std::string versionText() {
    return "tessaly " TESSALY_VERSION;
}

std::string helpText(const Terminal& terminal) {
    Page page{terminal};
    page.usage({tr("tessaly [VERB] [OPTION]…")});
    page.gap();
    page.paragraph(
        tr("A planner that keeps everything in plain-text notes. Without a verb it "
           "opens the window; where there is no display, it prints today."));
    page.section(tr("Verbs"), verbEntries());
    page.section(tr("Options of every verb"), entriesOf(globalOptions()));
    page.gap();
    page.paragraph(tr("tessaly VERB --help tells more of a verb, with examples."));
    return page.take();
}

std::string verbHelpText(const VerbRow& verb, const Terminal& terminal) {
    Page page{terminal};
    page.usage(synopsisOf(verb));
    page.gap();
    page.paragraph(tr(verb.text));
    page.section(tr("Options"), entriesOf(verb.options));
    std::vector<Entry> examples;
    for (const ExampleRow& row : verb.examples) {
        examples.push_back({row.command, tr(row.help)});
    }
    page.section(tr("Examples"), examples);
    page.gap();
    page.paragraph(tr("Options of every verb: see tessaly --help."));
    return page.take();
}

std::string wrapped(std::string_view text, std::size_t indent, std::size_t columns) {
    const std::string margin(indent, ' ');
    std::string lines;
    std::string line;
    const auto endLine = [&] {
        lines += line.empty() ? "\n" : margin + line + "\n";
        line.clear();
    };
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find_first_of(" \n", start), text.size());
        const std::string_view word = text.substr(start, end - start);
        const std::size_t width = base::terminalWidth(line) + 1 + base::terminalWidth(word);
        if (!line.empty() && indent + width > columns) {
            endLine();
        }
        line += line.empty() || word.empty() ? "" : " ";
        line += word;
        if (end < text.size() && text[end] == '\n') {
            endLine();
        }
        start = end + 1;
    }
    if (!line.empty()) {
        endLine();
    }
    return lines;
}

}  // namespace tessaly::cli
