// SPDX-License-Identifier: MIT
#pragma once

#include <iterator>

namespace tessaly::sync {

/// Moves all of `more` behind `items`.
template <class Items>
void append(Items& items, Items&& more) {
    items.insert(items.end(), std::make_move_iterator(more.begin()),
                 std::make_move_iterator(more.end()));
}

}  // namespace tessaly::sync
