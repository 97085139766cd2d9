// SPDX-License-Identifier: MIT
#include "search/narrowing.h"

#include <utility>

namespace tessaly::search {

Narrowing::Notes Narrowing::among(const Notes& all, std::string_view text) {
    if (_all != all) {
        *this = {};
    }
    return _all && text.find(_text) != std::string_view::npos ? _holding : all;
}

bool Narrowing::isWorthwhile(std::size_t holding, const Notes& all) {
    return holding < all->size() / 3;
}

void Narrowing::remember(const Notes& all, std::string text, NotesInOrder holding) {
    _all = all;
    _text = std::move(text);
    _holding = std::make_shared<const NotesInOrder>(std::move(holding));
}

}  // namespace tessaly::search
