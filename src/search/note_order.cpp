// SPDX-License-Identifier: MIT
#include "search/note_order.h"

namespace tessaly::search {

bool comesBefore(const NoteSortKey& a, const NoteSortKey& b, base::SortType sortBy) {
    switch (sortBy) {
        case base::SortType::title: return a.lowerTitle < b.lowerTitle;
        case base::SortType::modified: return b.modified < a.modified;
        case base::SortType::created: return b.created < a.created;
    }
    return false;
}

}  // namespace tessaly::search
