// SPDX-License-Identifier: MIT
#include "sync/debounce.h"

#include <algorithm>

namespace tessaly::sync {

void Debounce::request(Time now) {
    if (!_first) {
        _first = now;
    }
    _last = now;
}

std::optional<Debounce::Time> Debounce::due() const {
    return _first ? std::optional(std::min(_last + _quiet, *_first + _longest)) : std::nullopt;
}

bool Debounce::fire(Time now) {
    const auto when = due();
    if (!when || now < *when) {
        return false;
    }
    _first.reset();
    return true;
}

}  // namespace tessaly::sync
