// SPDX-License-Identifier: MIT
#include "cli/search_rows.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "base/day.h"
#include "base/enum_names.h"
#include "base/localisation.h"
#include "base/note_type.h"
#include "base/utf8.h"
#include "cli/json_line.h"
#include "cli/json_records.h"
#include "cli/safe_text.h"
#include "cli/spans.h"
#include "cli/task_lines.h"

namespace tessaly::cli {

namespace {

using base::tr;
using search::NotesViewItemPosition;
using search::SearchResultItem;
using search::SearchResultType;

constexpr std::array<std::string_view, 4> positionNames{"firstInGroup", "first", "inBetween",
                                                        "last"};

std::string pathOf(const SearchResultItem& row) {
    return fmt::format("{}/{}", base::folderName(row.noteType), row.filename);
}

std::string withLine(std::string note, const SearchResultItem& row) {
    return row.lineIndex ? fmt::format("{}:{}", note, *row.lineIndex + 1) : note;
}

/// "2019-12-31:3", "Work/Plans:12": for the eye, and for verbs.
std::string shortAddressOf(const SearchResultItem& row) {
    if (row.noteType == base::NoteType::calendar && row.day) {
        return withLine(base::tagText(*row.day), row);
    }
    std::string_view name = row.filename;
    if (name.ends_with(".txt")) {
        name.remove_suffix(4);
    }
    return withLine(safeText(name), row);
}

bool isTaskRow(const SearchResultItem& row) {
    return (row.type == SearchResultType::calendarTodo || row.type == SearchResultType::noteTodo) &&
           grammar::isTask(row.lineType);
}

/// A note by its title, as where it was found by that; how it begins is for the eye.
Spans titleOf(const SearchResultItem& row, const Terminal& terminal) {
    Spans spans{{Style::plain, safeText(row.title)}};
    if (terminal.isTerminal && !row.content.empty()) {
        spans.push_back({Style::dim, "  " + safeText(row.content)});
    }
    return spans;
}

Spans contentOf(const SearchResultItem& row, const Terminal& terminal) {
    if (row.type == SearchResultType::note && !row.lineIndex) {
        return titleOf(row, terminal);
    }
    const std::string_view content = row.content;
    const std::size_t start = base::byteOffset(content, row.highlightRange.location);
    const std::size_t end = base::byteOffset(content, row.highlightRange.end());
    return {{Style::plain, safeText(content.substr(0, start))},
            {Style::match, safeText(content.substr(start, end - start))},
            {Style::plain, safeText(content.substr(end))}};
}

void append(Spans& line, Spans more) {
    std::move(more.begin(), more.end(), std::back_inserter(line));
}

void printSection(Context& context, const SearchResultItem& row) {
    const Spans left{{Style::section, safeText(row.title)}};
    const Spans right{{Style::dim, row.filename.empty() ? "" : safeText(pathOf(row))}};
    context.out.line(drawn(withRightPart(left, right, context.terminal), context.terminal));
}

void printInTerminal(Context& context, const SearchResultItem& row) {
    if (row.type == SearchResultType::section) {
        printSection(context, row);
        return;
    }
    Spans left{{Style::plain, "  "}};
    const Span sign = signOf(row.lineType, context.terminal);
    left.push_back(isTaskRow(row) ? sign : Span{Style::plain, std::string(widthOf({sign}), ' ')});
    left.push_back({Style::plain, " "});
    append(left, contentOf(row, context.terminal));
    const Spans right{{Style::dim, shortAddressOf(row)}};
    context.out.line(drawn(withRightPart(left, right, context.terminal), context.terminal));
}

void printPlain(Context& context, const SearchResultItem& row) {
    Spans line{{Style::dim, withLine(safeText(pathOf(row)), row)}, {Style::plain, "  "}};
    if (isTaskRow(row)) {
        append(line, {signOf(row.lineType, context.terminal), {Style::plain, " "}});
    }
    append(line, contentOf(row, context.terminal));
    context.out.line(drawn(line, context.terminal));
}

std::optional<std::size_t> lineNumber(const SearchResultItem& row) {
    return row.lineIndex ? std::optional(*row.lineIndex + 1) : std::nullopt;
}

JsonObject recordOf(const SearchResultItem& row) {
    JsonObject object;
    object.add("type", base::rawValue(row.type))
        .add("title", row.title)
        .add("content", row.content)
        .add("highlight", cli::recordOf(row.highlightRange))
        .add("path", row.filename.empty() ? std::nullopt : std::optional(pathOf(row)))
        .add("line", lineNumber(row))
        .add("state", isTaskRow(row) ? std::optional(base::rawValue(row.lineType)) : std::nullopt)
        .add("day", row.day ? std::optional(base::tagText(*row.day)) : std::nullopt)
        .add("position", positionNames[static_cast<std::size_t>(row.position)]);
    return object;
}

void tellOfMore(Context& context, const search::SearchResults& results) {
    const auto shown = static_cast<std::size_t>(std::count_if(
        results.items.begin(), results.items.end(),
        [](const SearchResultItem& row) { return row.type != SearchResultType::section; }));
    if (shown < results.total) {
        const base::LocaleFormats& formats = context.services.dateStrings().formats();
        const std::string text =
            fmt::format(fmt::runtime(tr("… and {} more; --limit 0 shows all")),
                        formats.number(static_cast<long long>(results.total - shown)));
        context.out.line(drawn({{Style::dim, text}}, context.terminal));
    } else if (shown == 0) {
        context.out.line(drawn({{Style::dim, tr("nothing found")}}, context.terminal));
    }
}

void printGroups(Context& context, const search::SearchResults& results) {
    for (const SearchResultItem& row : results.items) {
        printInTerminal(context, row);
    }
    tellOfMore(context, results);
}

}  // namespace

void printResults(Context& context, const search::SearchResults& results) {
    const bool isJson = context.invocation.json;
    if (context.terminal.isTerminal && !isJson) {
        printGroups(context, results);
        return;
    }
    for (const SearchResultItem& row : results.items) {
        if (row.type == SearchResultType::section) {
            continue;
        }
        if (isJson) {
            context.out.line(recordOf(row).text());
        } else {
            printPlain(context, row);
        }
    }
}

}  // namespace tessaly::cli
