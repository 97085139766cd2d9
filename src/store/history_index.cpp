// SPDX-License-Identifier: MIT
#include "store/history_index.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

#include <fmt/format.h>

#include "base/enum_names.h"
#include "store/history_thinning.h"
#include "store/record_fields.h"

namespace tessaly::store {
namespace {

bool isHash(std::string_view text) {
    return text.size() == 64 && text.find_first_not_of("0123456789abcdef") == text.npos;
}

}  // namespace

std::string lineOf(const HistoryEntry& entry) {
    return fmt::format("{}\t{}\t{}\t{}\t{}\n", timeText(entry.time), base::rawValue(entry.cause),
                       entry.hash, entry.bytes, escaped(entry.path));
}

std::optional<HistoryEntry> entryOfLine(std::string_view line) {
    const auto time = timeOf(takeField(line));
    const auto cause = base::fromRawValue<ChangeCause>(takeField(line));
    const std::string_view hash = takeField(line);
    const auto bytes = numberOf(takeField(line), ~std::uint64_t{0});
    auto path = unescaped(line);
    if (!time || !cause || !isHash(hash) || !bytes || !path || !path->starts_with('/')) {
        return std::nullopt;
    }
    return HistoryEntry{*time, *cause, std::string(hash), *bytes, *std::move(path)};
}

std::string_view endOfTornLine(std::string_view index) {
    return index.empty() || index.ends_with('\n') ? "" : "\t\n";
}

std::size_t startOfLine(std::string_view index, std::size_t end) {
    return end < 2 ? 0 : index.rfind('\n', end - 2) + 1;
}

std::vector<std::string_view> linesOf(std::string_view index) {
    std::vector<std::string_view> lines;
    for (std::size_t start = 0, end; (end = index.find('\n', start)) != index.npos;
         start = end + 1) {
        lines.push_back(index.substr(start, end + 1 - start));
    }
    return lines;
}

std::unordered_set<std::string> hashesIn(std::string_view index) {
    std::unordered_set<std::string> hashes;
    for (std::string_view line : linesOf(index)) {
        line.remove_suffix(1);
        while (!line.empty()) {
            if (const std::string_view field = takeField(line); isHash(field)) {
                hashes.emplace(field);
            }
        }
    }
    return hashes;
}

std::vector<IndexLine> standingLines(std::string_view index) {
    const std::vector<std::string_view> lines = linesOf(index);
    std::vector<IndexLine> standing;
    ThinningOut thinningOut;
    for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
        auto entry = entryOfLine(line->substr(0, line->size() - 1));
        if (!entry || thinningOut.spares(*entry)) {
            standing.push_back({*line, std::move(entry)});
        }
    }
    std::reverse(standing.begin(), standing.end());
    return standing;
}

std::vector<HistoryEntry> newestOf(std::string_view index, std::string_view path,
                                   std::size_t count) {
    const std::string ending = "\t" + escaped(path) + "\n";
    const std::boyer_moore_horspool_searcher searcher(ending.rbegin(), ending.rend());
    std::vector<HistoryEntry> newest;
    ThinningOut thinningOut;
    while (newest.size() < count) {
        const auto hit = std::search(index.rbegin(), index.rend(), searcher);
        if (hit == index.rend()) {
            break;
        }
        const auto end = static_cast<std::size_t>(std::distance(hit, index.rend()));
        const std::size_t start = startOfLine(index, end);
        auto entry = entryOfLine(index.substr(start, end - 1 - start));
        if (entry && thinningOut.spares(*entry)) {
            newest.push_back(*std::move(entry));
        }
        index = index.substr(0, start);
    }
    return newest;
}

}  // namespace tessaly::store
