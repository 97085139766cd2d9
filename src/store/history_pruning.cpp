// SPDX-License-Identifier: MIT
#include "store/history_pruning.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "store/history_index.h"

namespace tessaly::store {
namespace {

auto dayOf(base::Instant time) {
    return std::chrono::floor<std::chrono::days>(time);
}

struct Line : IndexLine {
    bool isSpared = false;
};

/// An entry is no older than those before it, whatever the clock said, unless that was ahead.
std::vector<Line> youngLines(std::string_view index, base::Instant now, std::chrono::days age) {
    std::vector<Line> lines;
    bool isYoung = false;
    for (IndexLine& line : standingLines(index)) {
        const auto& entry = line.entry;
        const bool isOfNow = entry && entry->time >= now - age;
        isYoung = isYoung || (isOfNow && entry->time <= now);
        if (!entry || isOfNow || isYoung) {
            lines.push_back({std::move(line)});
        }
    }
    return lines;
}

void spareLastTwo(std::vector<Line>& lines, std::string_view path) {
    int spared = 0;
    for (auto line = lines.rbegin(); line != lines.rend() && spared < 2; ++line) {
        if (line->entry && line->entry->path == path) {
            line->isSpared = true;
            ++spared;
        }
    }
}

/// What a list of lines takes on the disk.
class Room {
public:
    explicit Room(const std::vector<Line>& lines) {
        for (const Line& line : lines) {
            _indexBytes += line.text.size();
            if (line.entry && _uses[line.entry->hash]++ == 0) {
                _textBytes += line.entry->bytes;
            }
        }
    }

    std::uint64_t indexBytes() const { return _indexBytes; }
    std::uint64_t textBytes() const { return _textBytes; }

    void drop(const Line& line) {
        _indexBytes -= line.text.size();
        if (line.entry && --_uses[line.entry->hash] == 0) {
            _textBytes -= line.entry->bytes;
        }
    }

private:
    std::uint64_t _indexBytes = 0;
    std::uint64_t _textBytes = 0;
    std::unordered_map<std::string_view, std::size_t> _uses;
};

}  // namespace

EntriesOfDay entriesOfDay(std::string_view index, base::Instant time) {
    EntriesOfDay ofDay;
    bool isEmpty = true;
    for (std::size_t end = index.rfind('\n') + 1; end > 0;) {
        const std::size_t start = startOfLine(index, end);
        const auto entry = entryOfLine(index.substr(start, end - 1 - start));
        end = start;
        if (entry && dayOf(entry->time) < dayOf(time)) {
            ofDay.hasEarlierDay = isEmpty;
            break;
        }
        isEmpty = isEmpty && !entry;
        ofDay.bytes += entry ? entry->bytes : 0;
    }
    return ofDay;
}

bool isPruningDue(std::size_t indexBytes, const EntriesOfDay& ofDay, const HistoryEntry& entry,
                  const HistoryLimits& limits) {
    return indexBytes > limits.indexBytes || ofDay.hasEarlierDay ||
           ofDay.bytes / limits.step != (ofDay.bytes + entry.bytes) / limits.step;
}

std::string pruned(std::string_view index, const HistoryLimits& limits, base::Instant now,
                   std::string_view changing) {
    std::vector<Line> lines = youngLines(index, now, limits.age);
    spareLastTwo(lines, changing);
    Room room(lines);
    const std::uint64_t mostText = limits.bytes - std::min(limits.bytes, limits.step);
    const std::uint64_t mostIndex = limits.indexBytes / 4 * 3;
    std::string left;
    left.reserve(index.size());
    for (const Line& line : lines) {
        const bool isTooMuch =
            room.indexBytes() > mostIndex || (line.entry && room.textBytes() > mostText);
        if (isTooMuch && !line.isSpared) {
            room.drop(line);
        } else {
            left += line.text;
        }
    }
    return left;
}

}  // namespace tessaly::store
