// SPDX-License-Identifier: MIT
#include "app/findings.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "base/localisation.h"

namespace tessaly::app {

void Findings::addKind(std::vector<Finding> kind) {
    std::stable_sort(kind.begin(), kind.end(),
                     [](const Finding& a, const Finding& b) { return a.path < b.path; });
    if (kind.size() > findingsOfOneKind) {
        const auto more = kind.size() - findingsOfOneKind;
        kind.resize(findingsOfOneKind);
        kind.push_back(
            {kind.front().level,
             kind.front().what,
             fmt::format(fmt::runtime(base::trPlural("and {} more", "and {} more", more)), more),
             {}});
    }
    std::move(kind.begin(), kind.end(), std::back_inserter(_findings));
}

}  // namespace tessaly::app
