// SPDX-License-Identifier: MIT
#include "search/day_range.h"

#include <fmt/format.h>

#include "base/localisation.h"

namespace tessaly::search {

using base::tagText;
using base::tr;

std::string explainDays(const DayRange& days) {
    if (days.isOpen()) {
        return {};
    }
    if (!days.last) {
        return fmt::format(fmt::runtime(tr("on {} or later")), tagText(*days.first));
    }
    if (!days.first) {
        return fmt::format(fmt::runtime(tr("on {} or earlier")), tagText(*days.last));
    }
    if (*days.first == *days.last) {
        return fmt::format(fmt::runtime(tr("on {}")), tagText(*days.first));
    }
    if (*days.last < *days.first) {
        return tr("on no day: no day is in all the ranges that are asked for");
    }
    return fmt::format(fmt::runtime(tr("from {} to {}")), tagText(*days.first),
                       tagText(*days.last));
}

}  // namespace tessaly::search
