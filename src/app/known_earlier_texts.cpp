// SPDX-License-Identifier: MIT
#include "app/known_earlier_texts.h"

#include <algorithm>
#include <set>
#include <utility>

#include "app/held_texts.h"
#include "app/start_up_index.h"

namespace tessaly::app {

namespace {

void addFromHistory(const store::History& history, const std::string& path,
                    std::vector<KnownEarlierText>& texts) {
    auto found = history.entries(path);
    if (!found) {
        return;
    }
    std::vector<store::HistoryEntry> entries = *std::move(found);
    std::reverse(entries.begin(), entries.end());
    // Those that a watching program has held were kept later than it saw them.
    std::stable_sort(entries.begin(), entries.end(),
                     [](const auto& one, const auto& other) { return one.time < other.time; });
    std::set<std::string_view> seen;
    for (const store::HistoryEntry& entry : entries) {
        if (!seen.insert(entry.hash).second) {
            continue;
        }
        if (auto text = history.text(entry)) {
            texts.push_back({entry.time, *std::move(text)});
        }
    }
}

void addFromIndex(Services& services, base::NoteType type, const std::string& filename,
                  std::vector<KnownEarlierText>& texts) {
    const auto index = services.startUpIndex().get();
    const auto time = index ? indexTime(services) : std::nullopt;
    const auto bytes = time ? index->earlierBytes(type, filename) : std::nullopt;
    const bool isNew = bytes && std::none_of(texts.begin(), texts.end(), [&](const auto& text) {
                           return text.bytes == *bytes;
                       });
    if (!isNew) {
        return;
    }
    const auto later = std::find_if(texts.begin(), texts.end(),
                                    [&](const auto& text) { return text.time > *time; });
    texts.insert(later, {*time, std::string(*bytes)});
}

}  // namespace

std::vector<KnownEarlierText> knownEarlierTexts(Services& services, base::NoteType type,
                                                const std::string& filename,
                                                const std::string& path) {
    std::vector<KnownEarlierText> texts;
    addFromHistory(services.history(), path, texts);
    addFromIndex(services, type, filename, texts);
    return texts;
}

}  // namespace tessaly::app
