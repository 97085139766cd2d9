// SPDX-License-Identifier: MIT
#include <algorithm>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "app/side_bar_view.h"
#include "base/enum_names.h"
#include "base/localisation.h"
#include "cli/context.h"
#include "cli/json_line.h"
#include "cli/safe_text.h"
#include "cli/spans.h"
#include "cli/verb_functions.h"

namespace tessaly::cli {

namespace {

using search::SideBarItem;
using search::SideBarItemType;

constexpr std::size_t widestRow = 48;   // columns; longer rows push their number to the right
constexpr std::size_t numberWidth = 8;  // with the blanks before it

enum class Below { expanded, all };

void gatherRows(const SideBarItem::Rows& rows, Below wanted,
                std::vector<const SideBarItem*>& gathered) {
    for (const auto& row : rows) {
        gathered.push_back(row.get());
        if (wanted == Below::all || row->isExpanded) {
            gatherRows(row->subItems, wanted, gathered);
        }
    }
}

JsonObject sideBarRecord(const SideBarItem& row) {
    JsonObject record;
    record.add("type", base::rawValue(row.type))
        .add("text", row.text)
        .add("displayText", row.displayText)
        .add("level", row.subItemLevel)
        .add("count", row.count)
        .add("isExpanded", row.isExpanded);
    return record;
}

Style styleOf(const SideBarItem& row) {
    switch (row.type) {
        case SideBarItemType::hashtag: return Style::hashtag;
        case SideBarItemType::attag: return Style::mention;
        case SideBarItemType::folder: return Style::section;
        default: return row.isSubItem() ? Style::plain : Style::heading;
    }
}

/// The tree for the eye: a sign before what has rows below it, the numbers in a column.
class Tree {
public:
    Tree(Context& context, const std::vector<const SideBarItem*>& rows, Below below)
        : _context(context), _rows(rows), _below(below) {}

    void print() const {
        const std::size_t column = columnOfNumbers();
        for (const SideBarItem* row : _rows) {
            if (!row->isSubItem() && row != _rows.front() && isTerminal()) {
                _context.out.line("");
            }
            printRow(*row, column);
        }
    }

private:
    bool isTerminal() const { return _context.terminal.isTerminal; }

    Spans textOf(const SideBarItem& row) const {
        return {{Style::plain, std::string(static_cast<std::size_t>(row.subItemLevel) * 2, ' ')},
                {Style::dim, isTerminal() ? signOf(row) : ""},
                {styleOf(row), safeText(row.displayText)}};
    }

    std::string signOf(const SideBarItem& row) const {
        if (row.subItems.empty()) {
            return "  ";
        }
        const bool isOpen = _below == Below::all || row.isExpanded;
        const bool isUtf8 = _context.terminal.isUtf8;
        return isOpen ? (isUtf8 ? "▾ " : "- ") : (isUtf8 ? "▸ " : "+ ");
    }

    std::size_t columnOfNumbers() const {
        std::size_t column = 0;
        for (const SideBarItem* row : _rows) {
            column = std::max(column, row->count > 0 && isTerminal() ? widthOf(textOf(*row)) : 0);
        }
        return std::min({column, widestRow, _context.terminal.columns - numberWidth});
    }

    void printRow(const SideBarItem& row, std::size_t column) const {
        Spans line = textOf(row);
        const std::size_t room = _context.terminal.columns - (row.count > 0 ? numberWidth : 0);
        if (isTerminal()) {
            line = cutTo(line, room, _context.terminal);
        }
        if (row.count > 0) {
            const std::string blanks(column - std::min(column, widthOf(line)), ' ');
            line.push_back({Style::dim, isTerminal() ? fmt::format("{}  {:>6}", blanks, row.count)
                                                     : fmt::format("  {}", row.count)});
        }
        _context.out.line(drawn(line, _context.terminal));
    }

    Context& _context;
    const std::vector<const SideBarItem*>& _rows;
    const Below _below;
};

}  // namespace

Exit runSideBar(Context& context) {
    const app::SideBarView view = app::sideBarView(context.services, context.readOptions());
    if (!isComplete(context, view.report)) {
        return Exit::couldNot;
    }
    const Below below = context.invocation.has("--all") ? Below::all : Below::expanded;
    std::vector<const SideBarItem*> rows;
    gatherRows(view.sideBar->items(), below, rows);
    if (context.invocation.json) {
        for (const SideBarItem* row : rows) {
            context.out.line(sideBarRecord(*row).text());
        }
    } else {
        Tree(context, rows, below).print();
    }
    return view.noFilters ? couldNot(context, *view.noFilters) : Exit::done;
}

}  // namespace tessaly::cli
