// SPDX-License-Identifier: MIT
#include "app/place.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace tessaly::app {

std::optional<std::string> renamedFilename(const std::string& filename, const std::string& from,
                                           const std::string& to) {
    if (from.empty() || !filename.starts_with(from)) {
        return std::nullopt;
    }
    const std::string_view rest = std::string_view(filename).substr(from.size());
    if (!rest.empty() && !rest.starts_with('/')) {
        return std::nullopt;
    }
    return to.empty() ? std::string() : std::string(to).append(rest);
}

void Navigation::go(Place place) {
    if (place == current()) {
        return;
    }
    _places.resize(_index + 1);
    _places.push_back(std::move(place));
    if (_places.size() > mostPlaces) {
        _places.erase(_places.begin());
    }
    _index = _places.size() - 1;
}

void Navigation::back() {
    _index -= canGoBack() ? 1 : 0;
}

void Navigation::forward() {
    _index += canGoForward() ? 1 : 0;
}

void Navigation::renamed(const std::string& from, const std::string& to) {
    std::vector<Place> kept;
    std::size_t index = 0;
    for (std::size_t at = 0; at < _places.size(); ++at) {
        Place place = _places[at];
        const auto name = place.kind == Place::Kind::note
                              ? renamedFilename(place.filename, from, to)
                              : std::nullopt;
        const bool isGone = name && name->empty();
        if (name && !isGone) {
            place.filename = *name;
        }
        // Two steps to one place would make a step that seems to do nothing.
        if (!isGone && (kept.empty() || kept.back() != place)) {
            kept.push_back(std::move(place));
        }
        if (at == _index) {
            index = kept.empty() ? 0 : kept.size() - 1;
        }
    }
    if (!kept.empty()) {
        _places = std::move(kept);
        _index = index;
    }
}

}  // namespace tessaly::app
