// SPDX-License-Identifier: MIT
#include "app/table_columns.h"

#include <algorithm>
#include <string>
#include <utility>

#include "app/inline_emphasis.h"
#include "base/utf8.h"

namespace tessaly::app {

namespace {

constexpr char cellSign = '|';

/// A line without the code in it, which keeps its length.
std::string withoutCode(std::string_view line) {
    std::string text(line);
    for (const InlinePart& code : findCode(line)) {
        std::fill(text.begin() + static_cast<std::ptrdiff_t>(code.whole.start),
                  text.begin() + static_cast<std::ptrdiff_t>(code.whole.end), readAlready);
    }
    return text;
}

std::optional<ColumnAlign> alignOf(std::string_view cell) {
    cell = base::trimmed(cell);
    const bool isLeft = cell.starts_with(':');
    const bool isRight = cell.size() > 1 && cell.ends_with(':');
    const std::string_view dashes =
        cell.substr(isLeft ? 1 : 0, cell.size() - (isLeft ? 1 : 0) - (isRight ? 1 : 0));
    if (dashes.empty() || dashes.find_first_not_of('-') != dashes.npos) {
        return std::nullopt;
    }
    return isRight ? (isLeft ? ColumnAlign::centre : ColumnAlign::right) : ColumnAlign::left;
}

}  // namespace

std::vector<std::size_t> cellSigns(std::string_view line) {
    const std::string text = withoutCode(line);
    std::vector<std::size_t> signs;
    std::size_t units = 0;
    bool isEscaped = false;
    for (std::size_t at = 0; at < text.size();) {
        const base::CodePoint next = base::codePointAt(text, at);
        if (next.value == cellSign && !isEscaped) {
            signs.push_back(units);
        }
        isEscaped = next.value == '\\' && !isEscaped;
        units += next.value > 0xFFFF ? 2 : 1;
        at += next.size;
    }
    return signs;
}

std::optional<std::vector<ColumnAlign>> columnAligns(std::string_view line) {
    std::string_view rest = base::trimmed(line);
    if (!rest.starts_with(cellSign) || rest.find_first_not_of("|-: \t") != rest.npos) {
        return std::nullopt;
    }
    std::vector<ColumnAlign> aligns;
    rest.remove_prefix(1);
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(cellSign), rest.size());
        const auto align = alignOf(rest.substr(0, end));
        if (!align) {
            return std::nullopt;
        }
        aligns.push_back(*align);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return aligns.empty() ? std::nullopt : std::optional(std::move(aligns));
}

CellWidths columnWidths(const std::vector<CellWidths>& rows) {
    CellWidths columns;
    for (const CellWidths& row : rows) {
        columns.resize(std::max(columns.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) {
            columns[i] = std::max(columns[i], row[i]);
        }
    }
    return columns;
}

std::vector<CellRoom> cellRooms(const CellWidths& row, const CellWidths& columns,
                                const std::vector<ColumnAlign>& aligns) {
    std::vector<CellRoom> rooms;
    double wanted = 0;  // where the next sign is to stand
    double reached = 0;
    for (std::size_t i = 0; i < row.size(); ++i) {
        wanted += i < columns.size() ? columns[i] : row[i];
        const double room = std::max(0.0, wanted - reached - row[i]);
        reached += row[i] + room;
        const ColumnAlign align = i < aligns.size() ? aligns[i] : ColumnAlign::left;
        const double before = align == ColumnAlign::left    ? 0
                              : align == ColumnAlign::right ? room
                                                            : room / 2;
        rooms.push_back({before, room - before});
    }
    return rooms;
}

}  // namespace tessaly::app
