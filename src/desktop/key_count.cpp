// SPDX-License-Identifier: MIT
#include "desktop/key_count.h"

#include <algorithm>
#include <utility>

namespace tessaly::desktop {

namespace {

constexpr int mostTimes = 999;

}  // namespace

bool KeyCount::take(const QString& typed) {
    const bool isDigit = typed.size() == 1 && typed[0] >= u'0' && typed[0] <= u'9';
    if (!isDigit || (_count == 0 && typed[0] == u'0')) {
        return false;
    }
    _count = std::min(_count * 10 + typed[0].digitValue(), mostTimes);
    return true;
}

int KeyCount::spend() {
    return std::max(std::exchange(_count, 0), 1);
}

}  // namespace tessaly::desktop
