// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "app/doctor.h"
#include "cli/context.h"
#include "cli/help.h"
#include "cli/json_records.h"
#include "cli/safe_text.h"
#include "cli/spans.h"
#include "cli/verb_functions.h"

namespace tessaly::cli {

namespace {

struct LevelSign {
    Style style;
    const char* sign;
    const char* asciiSign;
};

constexpr std::array signs{
    LevelSign{Style::done, "✓", "+"},
    LevelSign{Style::scheduled, "•", "*"},
    LevelSign{Style::warning, "!", "!"},
};

/// The text is broken into lines behind the sign; the path, which must stay whole, has its own.
void printInTerminal(Context& context, const LevelSign& row, const app::Finding& finding) {
    constexpr std::size_t indent = 2;
    const Span sign{row.style, context.terminal.isUtf8 ? row.sign : row.asciiSign};
    const std::string lines = wrapped(safeText(finding.text), indent, context.terminal.columns);
    context.out.write(drawn({sign, {Style::plain, " "}}, context.terminal));
    context.out.write(lines.substr(std::min(indent, lines.size())));
    if (!finding.path.empty()) {
        const std::string path = std::string(indent, ' ') + safeText(finding.path);
        context.out.line(drawn({{Style::dim, path}}, context.terminal));
    }
}

void printFinding(Context& context, const app::Finding& finding) {
    const LevelSign& row = signs[static_cast<std::size_t>(finding.level)];
    if (context.terminal.isTerminal) {
        printInTerminal(context, row, finding);
        return;
    }
    Spans line{{row.style, fmt::format("{:<7}", levelName(finding.level))},
               {Style::plain, "  " + safeText(finding.text)}};
    if (!finding.path.empty()) {
        line.push_back({Style::dim, "  " + safeText(finding.path)});
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
    for (const app::Finding& finding : findings) {
        if (context.invocation.json) {
            context.out.line(recordOf(finding).text());
        } else {
            printFinding(context, finding);
        }
    }
    return Exit::done;
}

}  // namespace tessaly::cli
