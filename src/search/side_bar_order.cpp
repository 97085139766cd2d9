// SPDX-License-Identifier: MIT
#include "search/side_bar_order.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "base/utf8.h"
#include "grammar/tags.h"
#include "search/folded_text.h"
#include "search/lowered_ascii.h"
#include "search/note_order.h"

namespace tessaly::search {
namespace {

constexpr std::array kindsInOrder{
    SideBarItemType::today,   SideBarItemType::week,   SideBarItemType::inbox,
    SideBarItemType::recent,  SideBarItemType::folder, SideBarItemType::note,
    SideBarItemType::archive, SideBarItemType::trash,
};

std::string lowered(std::string_view text) {
    return base::isAscii(text) ? base::lowerCased(text) : folded(text);
}

// What `lowered` would give, without making it.
int compareAscii(std::string_view a, std::string_view b) {
    const std::size_t shared = std::min(a.size(), b.size());
    for (std::size_t at = 0; at < shared; ++at) {
        const int difference = loweredAscii(a[at]) - loweredAscii(b[at]);
        if (difference != 0) {
            return difference;
        }
    }
    return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

/// What a note is sorted by, with the text that it refers to.
struct KeptKey {
    std::string lowerTitle;
    base::Instant modified;
    base::Instant created;
    std::string_view filename;
};

KeptKey keyOf(const SideBarItem& row, base::SortType sortBy) {
    const store::LoadedNote& note = *row.note();
    return {sortBy == base::SortType::title ? lowered(note.title) : std::string(),
            note.contentChangedDate, note.contentCreatedDate, row.text};
}

bool isBefore(const KeptKey& a, const KeptKey& b, base::SortType sortBy) {
    const NoteSortKey keyOfA{a.lowerTitle, a.modified, a.created};
    const NoteSortKey keyOfB{b.lowerTitle, b.modified, b.created};
    return comesBefore(keyOfA, keyOfB, sortBy) ||
           (a.filename < b.filename && !comesBefore(keyOfB, keyOfA, sortBy));
}

}  // namespace

std::ptrdiff_t placeOf(SideBarItemType type) {
    return std::find(kindsInOrder.begin(), kindsInOrder.end(), type) - kindsInOrder.begin();
}

int compareNames(std::string_view a, std::string_view b) {
    const int byName =
        base::isAscii(a) && base::isAscii(b) ? compareAscii(a, b) : lowered(a).compare(lowered(b));
    return byName != 0 ? byName : a.compare(b);
}

bool tagComesBefore(std::string_view a, std::string_view b) {
    const std::vector<std::string> ofA = grammar::withParents(a);
    const std::vector<std::string> ofB = grammar::withParents(b);
    return std::lexicographical_compare(
        ofA.begin(), ofA.end(), ofB.begin(), ofB.end(),
        [](const auto& one, const auto& other) { return compareNames(one, other) < 0; });
}

bool SideBarOrder::operator()(const SideBarItem& a, const SideBarItem& b) const {
    if (a.type != b.type) {
        return placeOf(a.type) < placeOf(b.type);
    }
    if (a.type == SideBarItemType::note) {
        return isBefore(keyOf(a, _sortBy), keyOf(b, _sortBy), _sortBy);
    }
    return compareNames(a.text, b.text) < 0;
}

void SideBarOrder::sortNotes(std::span<std::unique_ptr<SideBarItem>> rows) const {
    using Keyed = std::pair<KeptKey, std::unique_ptr<SideBarItem>>;
    std::vector<Keyed> keyed;
    keyed.reserve(rows.size());
    for (auto& row : rows) {
        KeptKey key = keyOf(*row, _sortBy);
        keyed.emplace_back(std::move(key), std::move(row));
    }
    std::sort(keyed.begin(), keyed.end(), [this](const Keyed& a, const Keyed& b) {
        return isBefore(a.first, b.first, _sortBy);
    });
    std::transform(keyed.begin(), keyed.end(), rows.begin(),
                   [](Keyed& one) { return std::move(one.second); });
}

}  // namespace tessaly::search
