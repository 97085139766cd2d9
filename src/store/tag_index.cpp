// SPDX-License-Identifier: MIT
#include "store/tag_index.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace tessaly::store {
namespace {

TagCounts::Pointer counted(std::string_view tag, std::size_t notes) {
    return notes == 0 ? nullptr
                      : std::make_shared<const TagCount>(TagCount{std::string(tag), notes});
}

}  // namespace

void TagTally::add(const std::vector<std::string>& tags) {
    for (const std::string& tag : tags) {
        ++_notes[tag];
    }
}

void TagTally::join(const TagTally& other) {
    for (const auto& [tag, notes] : other._notes) {
        _notes[tag] += notes;
    }
}

TagCounts TagTally::counts() const {
    std::vector<std::pair<std::string_view, std::size_t>> sorted(_notes.begin(), _notes.end());
    std::sort(sorted.begin(), sorted.end());
    std::vector<TagCounts::Pointer> items;
    items.reserve(sorted.size());
    for (const auto& [tag, notes] : sorted) {
        items.push_back(counted(tag, notes));
    }
    return TagCounts(std::move(items));
}

void TagDifferences::add(const std::vector<std::string>& before,
                         const std::vector<std::string>& after) {
    if (before == after) {
        return;
    }
    for (const std::string& tag : before) {
        --_notes[tag];
    }
    for (const std::string& tag : after) {
        ++_notes[tag];
    }
}

bool TagDifferences::any() const {
    return std::any_of(_notes.begin(), _notes.end(),
                       [](const auto& entry) { return entry.second != 0; });
}

TagCounts TagDifferences::appliedTo(const TagCounts& counts) const {
    std::vector<TagCounts::Change> changes;
    for (const auto& [tag, difference] : _notes) {
        if (difference != 0) {
            const auto held = counts.find(tag);
            const auto before = static_cast<std::int64_t>(held ? held->notes : 0);
            changes.push_back({tag, counted(tag, static_cast<std::size_t>(before + difference))});
        }
    }
    std::sort(changes.begin(), changes.end(),
              [](const auto& a, const auto& b) { return a.key < b.key; });
    return counts.with(changes);
}

}  // namespace tessaly::store
