// SPDX-License-Identifier: MIT
#include <fmt/format.h>

#include "app/note_lists.h"
#include "app/side_bar_view.h"
#include "base/graphemes.h"
#include "cli/context.h"
#include "cli/json_records.h"
#include "cli/safe_text.h"
#include "cli/spans.h"
#include "cli/verb_functions.h"

namespace tessaly::cli {

namespace {

constexpr std::size_t widestTag = 40;  // columns; longer tags push their number to the right

std::size_t columnOf(const std::vector<app::TagRow>& rows) {
    std::size_t column = 0;
    for (const app::TagRow& row : rows) {
        column = std::max(column, base::terminalWidth(safeText(row.tag)));
    }
    return std::min(column, widestTag);
}

Exit runTagList(Context& context, app::TagKind kind, Style style) {
    app::TagRows tags = app::listTags(context.services, kind, context.readOptions());
    if (!isComplete(context, tags.report)) {
        return Exit::couldNot;
    }
    app::sortAsInSideBar(tags.rows);
    const std::size_t column = context.terminal.isTerminal ? columnOf(tags.rows) : 0;
    for (const app::TagRow& row : tags.rows) {
        if (context.invocation.json) {
            context.out.line(recordOf(row).text());
            continue;
        }
        const std::string tag = safeText(row.tag);
        const std::size_t width = base::terminalWidth(tag);
        const std::string number = context.terminal.isTerminal ? fmt::format("  {:>5}", row.notes)
                                                               : fmt::format("  {}", row.notes);
        const std::string blanks(column - std::min(column, width), ' ');
        context.out.line(drawn({{style, tag}, {Style::dim, blanks + number}}, context.terminal));
    }
    return Exit::done;
}

}  // namespace

Exit runTags(Context& context) {
    return runTagList(context, app::TagKind::hashtags, Style::hashtag);
}

Exit runMentions(Context& context) {
    return runTagList(context, app::TagKind::mentions, Style::mention);
}

}  // namespace tessaly::cli
