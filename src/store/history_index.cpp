// SPDX-License-Identifier: MIT
#include "store/history_index.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <iterator>
#include <utility>

#include <fmt/format.h>

#include "base/enum_names.h"

namespace tessaly::store {
namespace {

using std::chrono::nanoseconds;

constexpr std::array<std::pair<char, char>, 3> escapes{{{'\\', '\\'}, {'\t', 't'}, {'\n', 'n'}}};

std::string escaped(std::string_view path) {
    std::string text;
    text.reserve(path.size());
    for (const char c : path) {
        const auto* const row = std::find_if(escapes.begin(), escapes.end(),
                                             [&](const auto& escape) { return escape.first == c; });
        if (row == escapes.end()) {
            text += c;
        } else {
            text.append({'\\', row->second});
        }
    }
    return text;
}

std::optional<std::string> unescaped(std::string_view text) {
    std::string path;
    path.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\t') {
            return std::nullopt;
        }
        if (text[at] != '\\') {
            path += text[at];
            continue;
        }
        const char letter = ++at < text.size() ? text[at] : '\0';
        const auto* const row =
            std::find_if(escapes.begin(), escapes.end(),
                         [&](const auto& escape) { return escape.second == letter; });
        if (row == escapes.end()) {
            return std::nullopt;
        }
        path += row->first;
    }
    return path;
}

std::string timeText(base::Instant time) {
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::hh_mm_ss<nanoseconds> clock{time - day};
    return fmt::format("{}T{:02}:{:02}:{:02}.{:09}Z", base::tagText(base::Day{day}),
                       clock.hours().count(), clock.minutes().count(), clock.seconds().count(),
                       clock.subseconds().count());
}

template <class Number>
std::optional<Number> numberOf(std::string_view text, Number highest) {
    Number value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    const bool read = !text.empty() && text.front() != '-' && error == std::errc() && stop == end;
    return read && value <= highest ? std::optional(value) : std::nullopt;
}

std::optional<base::Instant> timeOf(std::string_view text) {
    constexpr std::string_view form = "0000-00-00T00:00:00.000000000Z";
    if (text.size() != form.size() || text[10] != 'T' || text[13] != ':' || text[16] != ':' ||
        text[19] != '.' || text[29] != 'Z') {
        return std::nullopt;
    }
    const auto day = base::dayFromTagText(text.substr(0, 10));
    const auto hour = numberOf(text.substr(11, 2), 23);
    const auto minute = numberOf(text.substr(14, 2), 59);
    const auto second = numberOf(text.substr(17, 2), 59);
    const auto fraction = numberOf(text.substr(20, 9), 999'999'999);
    // Instants count nanoseconds in 64 bits, which end in these years.
    if (!day || !hour || !minute || !second || !fraction || int{day->year()} < 1678 ||
        int{day->year()} > 2261) {
        return std::nullopt;
    }
    return std::chrono::sys_days{*day} + std::chrono::hours{*hour} + std::chrono::minutes{*minute} +
           std::chrono::seconds{*second} + nanoseconds{*fraction};
}

bool isHash(std::string_view text) {
    return text.size() == 64 && text.find_first_not_of("0123456789abcdef") == text.npos;
}

// Takes what stands before the next tab off the front of a line; all of it where there is none.
std::string_view takeField(std::string_view& line) {
    const std::string_view field = line.substr(0, line.find('\t'));
    line.remove_prefix(std::min(field.size() + 1, line.size()));
    return field;
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

std::vector<HistoryEntry> newestOf(std::string_view index, std::string_view path,
                                   std::size_t count) {
    const std::string ending = "\t" + escaped(path) + "\n";
    const std::boyer_moore_horspool_searcher searcher(ending.rbegin(), ending.rend());
    std::vector<HistoryEntry> newest;
    while (newest.size() < count) {
        const auto hit = std::search(index.rbegin(), index.rend(), searcher);
        if (hit == index.rend()) {
            break;
        }
        const auto end = static_cast<std::size_t>(std::distance(hit, index.rend()));
        const std::size_t start = startOfLine(index, end);
        if (auto entry = entryOfLine(index.substr(start, end - 1 - start))) {
            newest.push_back(*std::move(entry));
        }
        index = index.substr(0, start);
    }
    return newest;
}

}  // namespace tessaly::store
