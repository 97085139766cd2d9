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
#include "cli/short_address.h"
#include "cli/spans.h"
#include "cli/task_lines.h"
#include "search/task_day.h"

namespace tessaly::cli {

namespace {

using base::tr;
using search::NotesViewItemPosition;
using search::SearchResultItem;
using search::SearchResultType;

constexpr std::array<std::string_view, 4> positionNames{"firstInGroup", "first", "inBetween",
                                                        "last"};

/// How an excerpt tells that the line goes on.
constexpr std::string_view cutMark = "…";

std::string pathOf(const SearchResultItem& row) {
    return fmt::format("{}/{}", base::folderName(row.noteType), row.filename);
}

NotePlace placeOf(const SearchResultItem& row) {
    return {row.noteType, row.filename, row.day, row.lineIndex};
}

bool isTaskRow(const SearchResultItem& row) {
    return (row.type == SearchResultType::calendarTodo || row.type == SearchResultType::noteTodo) &&
           grammar::isTask(row.lineType);
}

/// Where the match lies in the marker or the box, the row shows them as part of the line.
bool showsMarker(const SearchResultItem& row) {
    std::string_view text = row.content;
    if (text.ends_with(cutMark)) {
        text.remove_suffix(cutMark.size());
    }
    return !text.starts_with(cutMark) && !base::trimmedStart(row.title).starts_with(text);
}

/// Whether a sign of the task's state goes before its row: one is enough.
bool hasSign(const SearchResultItem& row) {
    return isTaskRow(row) && !showsMarker(row);
}

/// A note by its title, as where it was found by that; how it begins is for the eye.
Spans titleOf(const SearchResultItem& row, const Terminal& terminal) {
    Spans spans{{Style::plain, safeText(row.title)}};
    if (terminal.isTerminal && !row.content.empty()) {
        spans.push_back({Style::dim, "  " + safeText(row.content)});
    }
    return spans;
}

Spans foundContentOf(const SearchResultItem& row, const Terminal& terminal) {
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
    left.push_back(hasSign(row) ? sign : Span{Style::plain, std::string(widthOf({sign}), ' ')});
    left.push_back({Style::plain, " "});
    append(left, foundContentOf(row, context.terminal));
    const Spans right{{Style::dim, shortAddressOf(context, placeOf(row))}};
    context.out.line(drawn(withRightPart(left, right, context.terminal), context.terminal));
}

void printPlain(Context& context, const SearchResultItem& row) {
    Spans line{{Style::dim, addressOf(placeOf(row))}, {Style::plain, "  "}};
    if (hasSign(row)) {
        append(line, {signOf(row.lineType, context.terminal), {Style::plain, " "}});
    }
    append(line, foundContentOf(row, context.terminal));
    context.out.line(drawn(line, context.terminal));
}

std::optional<std::size_t> lineNumber(const SearchResultItem& row) {
    return row.lineIndex ? std::optional(*row.lineIndex + 1) : std::nullopt;
}

JsonObject foundRecord(const SearchResultItem& row) {
    const auto day = isTaskRow(row) ? search::dayOfTask(row.title, row.day) : row.day;
    JsonObject object;
    object.add("type", base::rawValue(row.type))
        .add("title", row.title)
        .add("content", row.content)
        .add("highlight", recordOf(row.highlightRange))
        .add("path", row.filename.empty() ? std::nullopt : std::optional(pathOf(row)))
        .add("line", lineNumber(row))
        .add("state", isTaskRow(row) ? std::optional(base::rawValue(row.lineType)) : std::nullopt)
        .add("day", day ? std::optional(base::tagText(*day)) : std::nullopt)
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
            context.out.line(foundRecord(row).text());
        } else {
            printPlain(context, row);
        }
    }
}

}  // namespace tessaly::cli
