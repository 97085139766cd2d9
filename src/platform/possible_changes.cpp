// SPDX-License-Identifier: MIT
#include "platform/possible_changes.h"

#include <string_view>
#include <utility>

namespace tessaly::platform {

using ports::PossibleChange;
using Reach = PossibleChange::Reach;

void PossibleChanges::add(PossibleChange change) {
    const bool isTold = anyAbove(change.path, [this](std::string_view folder) {
        const auto above = _places.find(folder);
        return above != _places.end() && above->second == Reach::tree;
    });
    if (isTold) {
        return;
    }
    if (change.reach == Reach::tree) {
        const auto [first, last] = below(_places, change.path);
        _places.erase(first, last);
        _places.insert_or_assign(std::move(change.path), Reach::tree);
    } else {
        _places.try_emplace(std::move(change.path), Reach::entry);
    }
    if (_places.size() > most) {
        _places.clear();
        _places.emplace("", Reach::tree);
    }
}

std::vector<PossibleChange> PossibleChanges::take() {
    std::vector<PossibleChange> all;
    all.reserve(_places.size());
    while (!_places.empty()) {
        auto node = _places.extract(_places.begin());
        all.push_back({std::move(node.key()), node.mapped()});
    }
    return all;
}

}  // namespace tessaly::platform
