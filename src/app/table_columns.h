// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace tessaly::app {

/// The signs "|" of a table's row that part its cells, in UTF-16 units of the line: not those in
/// code, and not "\|".
std::vector<std::size_t> cellSigns(std::string_view line);

enum class ColumnAlign : std::uint8_t { left, centre, right };

/// How the row below a table's head, "|---|:--:|--:|", has its columns stand; nothing: it is none.
std::optional<std::vector<ColumnAlign>> columnAligns(std::string_view line);

/// From the start of each sign to that of the next one, in whatever unit the text is measured in.
using CellWidths = std::vector<double>;

/// How wide each column must be for all rows; a row may have fewer cells than others.
CellWidths columnWidths(const std::vector<CellWidths>& rows);

/// Room that is put into a cell, behind its first sign and before the next one.
struct CellRoom {
    double before = 0;
    double behind = 0;
};
/// Makes the signs of a row stand at those of the columns, `aligns` telling where the words of a
/// cell are within; columns that it does not name have them on the left. A cell that is wider than
/// its column moves those behind it no further than they have to give way.
std::vector<CellRoom> cellRooms(const CellWidths& row, const CellWidths& columns,
                                const std::vector<ColumnAlign>& aligns);

}  // namespace tessaly::app
