// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "store/cached_notes.h"

namespace tessaly::store {

/// Counts in how many notes each tag occurs, over many notes. Texts are not copied: the notes must
/// stay.
class TagTally {
public:
    /// The tags of one note, each once.
    void add(const std::vector<std::string>& tags);
    void join(const TagTally& other);
    TagCounts counts() const;

private:
    std::unordered_map<std::string_view, std::size_t> _notes;
};

/// By how many notes more or fewer hold each tag. Costs as much as the tags that differ.
class TagDifferences {
public:
    /// A note's tags, each once, before and after a change of it; none: the note was not there, or
    /// is not any more.
    void add(const std::vector<std::string>& before, const std::vector<std::string>& after);

    /// Whether any tag came, went, or is in more or fewer notes.
    bool any() const;
    TagCounts appliedTo(const TagCounts& counts) const;

private:
    std::unordered_map<std::string, std::int64_t> _notes;
};

}  // namespace tessaly::store
