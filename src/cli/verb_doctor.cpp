// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "app/doctor.h"
#include "cli/context.h"
#include "cli/help.h"
#include "cli/json_records.h"
#include "cli/safe_text.h"
#include "cli/shell_words.h"
#include "cli/spans.h"
#include "cli/verb_functions.h"

namespace tessaly::cli {

namespace {

struct LevelSign {
    Style style;
    const char* sign;
    const char* asciiSign;
};

constexpr std::array levelSigns{
    LevelSign{Style::done, "✓", "+"},
    LevelSign{Style::scheduled, "•", "*"},
    LevelSign{Style::warning, "!", "!"},
};

const LevelSign& levelSignOf(const app::Finding& finding) {
    return levelSigns[static_cast<std::size_t>(finding.level)];
}

constexpr std::size_t indent = 2;

/// The text is broken into lines behind the sign.
void printText(Context& context, const app::Finding& finding) {
    const LevelSign& row = levelSignOf(finding);
    const Span sign{row.style, context.terminal.isUtf8 ? row.sign : row.asciiSign};
    const std::string lines = wrapped(safeText(finding.text), indent, context.terminal.columns);
    context.out.write(drawn({sign, {Style::plain, " "}}, context.terminal));
    context.out.write(lines.substr(std::min(indent, lines.size())));
}

/// The sign stands where the tail of a shell's prompt would.
std::string commandOf(const app::Finding& finding) {
    return finding.command.empty() ? "" : "$ " + safeText(commandLine(finding.command));
}

void printBelow(Context& context, const std::string& text) {
    if (!text.empty()) {
        context.out.line(drawn({{Style::dim, std::string(indent, ' ') + text}}, context.terminal));
    }
}

/// Path and command, which must stay whole, have lines of their own. A text that many findings
/// share stands once above their paths; `before` is the finding above, null for the first.
void printInTerminal(Context& context, const app::Finding& finding, const app::Finding* before) {
    if (before == nullptr || before->text != finding.text || finding.path.empty()) {
        printText(context, finding);
    }
    printBelow(context, safeText(finding.path));
    printBelow(context, commandOf(finding));
}

void printLine(Context& context, const app::Finding& finding) {
    Spans line{{levelSignOf(finding).style, fmt::format("{:<7}", levelName(finding.level))},
               {Style::plain, "  " + safeText(finding.text)}};
    for (const std::string& text : {safeText(finding.path), commandOf(finding)}) {
        if (!text.empty()) {
            line.push_back({Style::dim, "  " + text});
        }
    }
    context.out.line(drawn(line, context.terminal));
}

}  // namespace

Exit runDoctor(Context& context) {
    const auto findings = app::examine(context.services, context.readOptions());
    context.progress.erase();
    if (context.cancelled) {
        return Exit::couldNot;
    }
    const app::Finding* before = nullptr;
    for (const app::Finding& finding : findings) {
        if (context.invocation.json) {
            context.out.line(recordOf(finding).text());
        } else if (context.terminal.isTerminal) {
            printInTerminal(context, finding, before);
        } else {
            printLine(context, finding);
        }
        before = &finding;
    }
    return Exit::done;
}

}  // namespace tessaly::cli
