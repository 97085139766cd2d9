// SPDX-License-Identifier: MIT
#include <charconv>
#include <optional>
#include <string>

#include <fmt/format.h>

#include "app/search_notes.h"
#include "base/localisation.h"
#include "cli/context.h"
#include "cli/json_line.h"
#include "cli/safe_text.h"
#include "cli/search_rows.h"
#include "cli/verb_functions.h"
#include "search/filter_conditions.h"

namespace tessaly::cli {

namespace {

using base::tr;

constexpr std::size_t rowsInTerminal = 100;

/// 0: all. Nothing, and the reason told, for what is no number.
std::optional<std::size_t> mostRows(const Context& context) {
    if (!context.invocation.has("--limit")) {
        const bool isForTheEye = context.terminal.isTerminal && !context.invocation.json;
        return isForTheEye ? rowsInTerminal : 0;
    }
    const std::string text = context.invocation.value("--limit");
    std::size_t number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || read.ec != std::errc() || read.ptr != text.data() + text.size()) {
        complain(fmt::format(fmt::runtime(tr("“{}” is no number of rows")), safeText(text)));
        return std::nullopt;
    }
    return number;
}

std::string queryOf(const Invocation& invocation) {
    std::string query;
    for (const std::string& argument : invocation.arguments) {
        query.append(query.empty() ? "" : " ").append(argument);
    }
    return query;
}

void printExplanation(Context& context, const std::vector<std::string>& lines, std::size_t total) {
    if (context.invocation.json) {
        JsonObject object;
        object.add("explanation", lines).add("total", total);
        context.out.line(object.text());
        return;
    }
    for (const std::string& line : lines) {
        context.out.line(safeText(line));
    }
    const auto number =
        context.services.dateStrings().formats().number(static_cast<long long>(total));
    context.out.line(fmt::format(fmt::runtime(base::trPlural("{} row", "{} rows", total)), number));
}

/// On standard error, behind what a terminal says of nothing.
void tellOfMisunderstandings(Context& context, const app::NoteSearch& wanted) {
    const auto remarks = app::remarksOn(context.services, wanted, context.readOptions());
    context.progress.erase();
    (void)context.out.flush();  // what it could not write is told at the end
    for (const std::string& remark : remarks) {
        complain(safeText(remark));
    }
}

/// What of a filter cannot be read, and so does not limit what is found.
void tellOfUnreadable(const Context& context, const app::NoteSearch& wanted) {
    const auto conditions = search::conditionsOf(wanted.filter, context.services.today(),
                                                 context.services.globals().firstDayOfWeek());
    for (const std::string& words : conditions.unreadable) {
        complain(fmt::format("{}: {}", safeText(wanted.filterName), safeText(words)));
    }
}

}  // namespace

Exit runSearch(Context& context) {
    const Invocation& invocation = context.invocation;
    const auto most = mostRows(context);
    if (!most) {
        return Exit::misuse;
    }
    const bool isExplained = invocation.has("--explain");
    app::NoteSearch wanted{queryOf(invocation), {}, isExplained ? 1 : *most};
    if (invocation.has("--filter")) {
        auto filter = context.services.filterHelper().load(invocation.value("--filter"));
        if (!filter) {
            return couldNot(context, filter.failure());
        }
        wanted.filter = *std::move(filter);
        wanted.filterName = invocation.value("--filter");
    }
    const app::FoundNotes found = app::searchNotes(context.services, wanted, context.readOptions());
    if (!isComplete(context, found.report)) {
        return Exit::couldNot;
    }
    if (isExplained) {
        printExplanation(context, app::explainSearch(context.services, wanted),
                         found.results.total);
    } else {
        tellOfUnreadable(context, wanted);
        printResults(context, found.results);
        if (found.results.total == 0) {
            tellOfMisunderstandings(context, wanted);
        }
    }
    return Exit::done;
}

}  // namespace tessaly::cli
