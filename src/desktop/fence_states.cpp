// SPDX-License-Identifier: MIT
#include "desktop/fence_states.h"

#include <QTextBlock>
#include <QTextDocument>
#include <algorithm>
#include <utility>

#include "desktop/qt_text.h"

namespace tessaly::desktop {

namespace {

/// More lines than these are looked at when they are asked for.
constexpr int mostLinesAtOnce = 64;

}  // namespace

FenceStates::FenceStates(const QTextDocument& document, std::function<void(int block)> onChanged)
    : _document(document), _onChanged(std::move(onChanged)) {}

void FenceStates::replace(int first, int oldCount, int newCount) {
    const State before = first < _known ? _states[at(first)] : State::outside;
    const auto start = _states.begin() + first;
    _states.insert(_states.erase(start, start + oldCount), at(newCount), before);
    const int behind = first + newCount;
    const int knownBehind = _known - oldCount + newCount;
    _known = first == 0 ? std::min(1, newCount) : std::min(_known, first + 1);
    if (newCount > mostLinesAtOnce || knownBehind <= behind) {
        return;
    }
    const State then = _states[at(behind)];
    this->before(behind);
    if (_states[at(behind)] == then) {
        _known = knownBehind;
    }
}

app::FenceState FenceStates::before(int block) {
    QTextBlock line;
    for (; _known <= block; ++_known) {
        line = line.isValid() ? line.next() : _document.findBlockByNumber(_known - 1);
        set(_known, after(line.text(), _states[at(_known - 1)]));
    }
    return _states[at(block)];
}

app::FenceState FenceStates::after(const QString& line, State before) {
    const bool canBeFence = line.contains(u'`') || line.contains(u'~');
    return canBeFence ? app::fenceAfter(utf8(line), before) : before;
}

void FenceStates::set(int block, State state) {
    if (std::exchange(_states[at(block)], state) != state) {
        _onChanged(block);
    }
}

}  // namespace tessaly::desktop
