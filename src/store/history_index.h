// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "store/history_entry.h"

namespace tessaly::store {

/// The line of an entry with its line break: time (RFC 3339 in UTC, to the nanosecond), cause,
/// hash, number of bytes and path, separated by tabs; in the path "\\", "\t" and "\n" stand for
/// themselves.
std::string lineOf(const HistoryEntry& entry);

/// The entry of a line without its line break; nothing when it is torn or not understood.
std::optional<HistoryEntry> entryOfLine(std::string_view line);

/// What has to be put between an index and a line that is added: the end of a line that a kill cut
/// off, such that it is not taken for an entry of a shorter path.
std::string_view endOfTornLine(std::string_view index);

/// The start of the line that ends, with its line break, before byte `end` of an index.
std::size_t startOfLine(std::string_view index, std::size_t end);

/// The lines of an index, oldest first, each with its line break. A torn one at the end is left
/// out.
std::vector<std::string_view> linesOf(std::string_view index);

/// The hashes that stand in an index, also in lines that are not understood: a later version's
/// lines name texts too.
std::unordered_set<std::string> hashesIn(std::string_view index);

/// A line with its line break.
struct IndexLine {
    std::string_view text;
    std::optional<HistoryEntry> entry;  ///< nothing: it is not understood
};

/// The lines of an index, oldest first, without those of entries that are thinned out.
std::vector<IndexLine> standingLines(std::string_view index);

/// At most `count` entries of the file `path` that stand, newest first. Searches from the end,
/// without reading the lines of other files.
std::vector<HistoryEntry> newestOf(std::string_view index, std::string_view path,
                                   std::size_t count);

}  // namespace tessaly::store
