// SPDX-License-Identifier: MIT
#include "desktop/row_matching.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>
#include <tuple>
#include <unordered_map>

namespace tessaly::desktop {
namespace {

using search::SearchResultItem;
using search::SearchResultType;
using Items = std::vector<SearchResultItem>;

bool isLineOfNote(const SearchResultItem& row) {
    return row.type == SearchResultType::calendarTodo || row.type == SearchResultType::noteTodo;
}

/// What a row is looked up by: its text, or the line that it stands on.
struct RowKey {
    SearchResultType type;
    base::NoteType noteType;
    std::string_view filename;
    std::string_view text;
    std::optional<std::size_t> lineIndex;

    bool operator==(const RowKey&) const = default;
};

struct RowKeyHash {
    std::size_t operator()(const RowKey& key) const {
        const std::hash<std::string_view> hash;
        constexpr std::size_t spread = 1'000'003;
        return ((hash(key.filename) * spread + hash(key.text)) * spread +
                key.lineIndex.value_or(0)) *
                   spread +
               static_cast<std::size_t>(key.type);
    }
};

/// A note has one row of its own, whatever that shows.
RowKey keyByText(const SearchResultItem& row) {
    const bool isNote = row.type == SearchResultType::note;
    return {row.type, row.noteType, row.groupFilename,
            isNote ? std::string_view() : std::string_view(row.title), std::nullopt};
}

RowKey keyByLine(const SearchResultItem& row) {
    return {row.type, row.noteType, row.groupFilename, {}, row.lineIndex};
}

bool isMuchTheSame(std::string_view a, std::string_view b) {
    if (a.size() > b.size()) {
        std::swap(a, b);
    }
    const auto ahead = std::mismatch(a.begin(), a.end(), b.begin()).first - a.begin();
    const auto behind = std::mismatch(a.rbegin(), a.rend(), b.rbegin()).first - a.rbegin();
    return static_cast<std::size_t>(ahead + behind) * 2 >= a.size();
}

class RowMatcher {
public:
    RowMatcher(const Items& oldRows, const Items& newRows)
        : _old(oldRows),
          _new(newRows),
          _oldOfNew(newRows.size(), -1),
          _isTaken(oldRows.size(), false) {}

    std::vector<int> match() {
        matchEnds();
        matchRest(keyByText, [](const auto&, const auto&) { return true; });
        matchRest(keyByLine, [](const auto& a, const auto& b) {
            return isLineOfNote(a) && isMuchTheSame(a.title, b.title);
        });
        return std::move(_oldOfNew);
    }

private:
    bool isSame(std::size_t oldRow, std::size_t newRow) const {
        return keyByText(_old[oldRow]) == keyByText(_new[newRow]);
    }

    void take(std::size_t oldRow, std::size_t newRow) {
        _oldOfNew[newRow] = static_cast<int>(oldRow);
        _isTaken[oldRow] = true;
    }

    /// Mostly all but a few rows in the middle are what they were.
    void matchEnds() {
        const std::size_t most = std::min(_old.size(), _new.size());
        std::size_t ahead = 0;
        while (ahead < most && isSame(ahead, ahead)) {
            take(ahead, ahead);
            ++ahead;
        }
        for (std::size_t behind = 1; behind <= most - ahead; ++behind) {
            const std::size_t oldRow = _old.size() - behind;
            const std::size_t newRow = _new.size() - behind;
            if (!isSame(oldRow, newRow)) {
                break;
            }
            take(oldRow, newRow);
        }
    }

    template <class KeyOf, class Accept>
    void matchRest(const KeyOf& keyOf, const Accept& accept) {
        std::unordered_map<RowKey, std::vector<std::size_t>, RowKeyHash> places;
        for (std::size_t row = _old.size(); row-- > 0;) {
            if (!_isTaken[row]) {
                places[keyOf(_old[row])].push_back(row);
            }
        }
        for (std::size_t row = 0; row < _new.size() && !places.empty(); ++row) {
            if (_oldOfNew[row] >= 0) {
                continue;
            }
            const auto found = places.find(keyOf(_new[row]));
            if (found == places.end() || found->second.empty()) {
                continue;
            }
            if (accept(_old[found->second.back()], _new[row])) {
                take(found->second.back(), row);
                found->second.pop_back();
            }
        }
    }

    const Items& _old;
    const Items& _new;
    std::vector<int> _oldOfNew;
    std::vector<bool> _isTaken;
};

}  // namespace

std::vector<int> matchRows(const Items& oldRows, const Items& newRows) {
    return RowMatcher(oldRows, newRows).match();
}

}  // namespace tessaly::desktop
