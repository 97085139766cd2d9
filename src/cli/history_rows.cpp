// SPDX-License-Identifier: MIT
#include "cli/history_rows.h"

#include <algorithm>
#include <array>
#include <span>

#include <fmt/format.h>

#include "base/graphemes.h"
#include "base/localisation.h"
#include "cli/json_times.h"
#include "cli/note_text.h"
#include "cli/safe_text.h"
#include "cli/spans.h"

namespace tessaly::cli {

namespace {

using base::N_;
using base::tr;
using store::ChangeCause;

struct CauseRow {
    ChangeCause cause;
    const char* text;
};

constexpr std::array causeRows{
    CauseRow{ChangeCause::found, N_("written elsewhere")},
    CauseRow{ChangeCause::created, N_("new note")},
    CauseRow{ChangeCause::added, N_("text added")},
    CauseRow{ChangeCause::deleted, N_("text deleted")},
    CauseRow{ChangeCause::merged, N_("stray file merged")},
    CauseRow{ChangeCause::restored, N_("restored")},
    CauseRow{ChangeCause::trashed, N_("moved to the trash")},
    CauseRow{ChangeCause::unfinished, N_("unfinished write")},
    CauseRow{ChangeCause::completed, N_("task done")},
    CauseRow{ChangeCause::cancelled, N_("task cancelled")},
    CauseRow{ChangeCause::reopened, N_("task reopened")},
    CauseRow{ChangeCause::scheduled, N_("task scheduled")},
    CauseRow{ChangeCause::repeated, N_("task repeated")},
    CauseRow{ChangeCause::archived, N_("tasks archived")},
    CauseRow{ChangeCause::undone, N_("undone")},
    CauseRow{ChangeCause::resolved, N_("conflict resolved")},
    CauseRow{ChangeCause::held, N_("before a conflict")},
    CauseRow{ChangeCause::saved, N_("filter saved")},
    CauseRow{ChangeCause::typed, N_("typed")},
    CauseRow{ChangeCause::renamed, N_("note renamed")},
};

std::string timeOf(Context& context, const store::HistoryEntry& entry) {
    app::Services& services = context.services;
    const base::LocalTime time = services.ports().clock.local(entry.time);
    const grammar::DateStringHelper& words = services.dateStrings();
    return fmt::format("{} {}", words.dateWithYear(time.day), words.time(time));
}

enum class Column { time, cause, size, name };
using Columns = std::span<const Column>;

// A program finds what may hold blanks at the end; a person, what is cut off first.
constexpr std::array inPipe{Column::time, Column::cause, Column::size, Column::name};
constexpr std::array inTerminal{Column::time, Column::name, Column::cause, Column::size};
constexpr std::array ofOneFile{Column::time, Column::cause, Column::size};

std::string cellOf(Context& context, const app::HistoryRow& row, Column column) {
    switch (column) {
        case Column::time: return timeOf(context, row.entry);
        case Column::cause: return causeInWords(row.entry.cause);
        case Column::size: return sizeInWords(context, row.entry.bytes);
        case Column::name: return safeText(row.name);
    }
    return {};
}

std::string padded(const std::string& text, std::size_t columns, Column column) {
    const bool isRight = column == Column::time || column == Column::size;
    const std::string blanks(columns - base::terminalWidth(text), ' ');
    return isRight ? blanks + text : text + blanks;
}

class Table {
public:
    Table(Context& context, const std::vector<app::HistoryRow>& rows, Columns columns)
        : _columns(columns), _widths(columns.size()) {
        for (const app::HistoryRow& row : rows) {
            std::vector<std::string>& cells = _cells.emplace_back();
            for (std::size_t index = 0; index < columns.size(); ++index) {
                cells.push_back(cellOf(context, row, columns[index]));
                _widths[index] = std::max(_widths[index], base::terminalWidth(cells.back()));
            }
        }
    }

    Spans cellsOf(std::size_t row) const {
        Spans spans;
        for (std::size_t index = 0; index < _columns.size(); ++index) {
            const bool isLast = index + 1 == _columns.size() && _columns[index] == Column::name;
            const std::string& text = _cells[row][index];
            const Style style = _columns[index] == Column::cause || _columns[index] == Column::size
                                    ? Style::dim
                                    : Style::plain;
            spans.push_back(
                {style, "  " + (isLast ? text : padded(text, _widths[index], _columns[index]))});
        }
        return spans;
    }

private:
    Columns _columns;
    std::vector<std::size_t> _widths;
    std::vector<std::vector<std::string>> _cells;
};

Columns columnsFor(const Context& context, Of of) {
    if (!context.terminal.isTerminal) {
        return inPipe;
    }
    return of == Of::oneFile ? Columns{ofOneFile} : Columns{inTerminal};
}

void printLine(Context& context, const app::HistoryRow& row, const Spans& cells) {
    const bool isTerminal = context.terminal.isTerminal;
    Spans line{{Style::date, row.id}};
    if (isTerminal) {
        line.push_back({Style::done, row.isCurrent ? "*" : " "});
    }
    line.insert(line.end(), cells.begin(), cells.end());
    if (!isTerminal && row.isCurrent) {
        line.push_back({Style::done, "  " + tr("(as it is now)")});
    }
    if (isTerminal) {
        line = cutTo(line, context.terminal.columns, context.terminal);
    }
    context.out.line(drawn(line, context.terminal));
}

}  // namespace

std::string causeInWords(ChangeCause cause) {
    const auto row = std::find_if(causeRows.begin(), causeRows.end(),
                                  [&](const CauseRow& one) { return one.cause == cause; });
    return row == causeRows.end() ? std::string{} : tr(row->text);
}

JsonObject recordOf(const app::HistoryRow& row) {
    JsonObject object;
    object.add("id", row.id)
        .add("hash", row.entry.hash)
        .add("time", rfc3339(row.entry.time))
        .add("cause", base::rawValue(row.entry.cause))
        .add("bytes", row.entry.bytes)
        .add("path", row.entry.path)
        .add("current", row.isCurrent);
    return object;
}

void printRows(Context& context, const std::vector<app::HistoryRow>& rows, Of of) {
    if (context.invocation.json) {
        for (const app::HistoryRow& row : rows) {
            context.out.line(recordOf(row).text());
        }
        return;
    }
    const Table table{context, rows, columnsFor(context, of)};
    for (std::size_t index = 0; index < rows.size(); ++index) {
        printLine(context, rows[index], table.cellsOf(index));
    }
}

}  // namespace tessaly::cli
