// SPDX-License-Identifier: MIT
#include "desktop/note_folds.h"

#include <QTextBlock>
#include <QTextDocument>
#include <algorithm>
#include <utility>

#include "desktop/fence_states.h"
#include "desktop/qt_text.h"

namespace tessaly::desktop {

namespace {

using OutlineKind = app::OutlineLine::Kind;

}  // namespace

NoteFolds::NoteFolds(QTextDocument& document, FenceStates& fences,
                     std::function<void(int block)> onHidden)
    : _document(document), _fences(fences), _onHidden(std::move(onHidden)) {}

app::OutlineLine NoteFolds::outlineOf(int block) const {
    return app::outlineLine(utf8(_document.findBlockByNumber(block).text()), _fences.before(block));
}

app::OutlineLines NoteFolds::lines() const {
    const auto count = static_cast<std::size_t>(_document.blockCount());
    return [this, count](std::size_t line) -> std::optional<app::OutlineLine> {
        return line < count ? std::optional(outlineOf(static_cast<int>(line))) : std::nullopt;
    };
}

std::optional<int> NoteFolds::lastOf(int block) const {
    const auto last = app::lastOfItsLines(static_cast<std::size_t>(block), lines());
    return last ? std::optional(static_cast<int>(*last)) : std::nullopt;
}

bool NoteFolds::canFold(int block) const {
    return app::hasItsLines(static_cast<std::size_t>(block), lines());
}

bool NoteFolds::isFolded(int block) const {
    return std::any_of(_folds.begin(), _folds.end(),
                       [&](const Fold& fold) { return fold.head.blockNumber() == block; });
}

std::vector<int> NoteFolds::heads() const {
    std::vector<int> found;
    for (const Fold& fold : _folds) {
        found.push_back(fold.head.blockNumber());
    }
    return found;
}

int NoteFolds::hiddenBy(int block) const {
    const auto found = std::find_if(_folds.begin(), _folds.end(), [&](const Fold& fold) {
        return fold.head.blockNumber() == block;
    });
    return found == _folds.end() ? 0 : found->lines;
}

bool NoteFolds::fold(int block) {
    if (isFolded(block) || !canFold(block)) {
        return false;
    }
    add(block);
    return apply();
}

void NoteFolds::add(int block) {
    _folds.push_back(foldTo(_document.findBlockByNumber(block), *lastOf(block)));
}

NoteFolds::Fold NoteFolds::foldTo(const QTextBlock& head, int last) const {
    int lines = 0;
    for (QTextBlock block = head.next(); block.blockNumber() <= last && block.isValid();
         block = block.next()) {
        lines += block.text().trimmed().isEmpty() ? 0 : 1;
    }
    return {QTextCursor(head), last, lines};
}

bool NoteFolds::unfold(int block) {
    return std::erase_if(_folds,
                         [&](const Fold& fold) { return fold.head.blockNumber() == block; }) > 0 &&
           apply();
}

bool NoteFolds::foldAll() {
    std::vector<int> headings;
    std::vector<int> items;
    for (int block = 0; block < _document.blockCount(); ++block) {
        const app::OutlineLine line = outlineOf(block);
        const bool isOuterItem = line.kind == OutlineKind::item && line.indent == 0;
        if (line.kind == OutlineKind::heading || isOuterItem) {
            (isOuterItem ? items : headings).push_back(block);
        }
    }
    // A title over all of the note would leave nothing to see.
    if (headings.size() > 1 && lastOf(headings.front()) >= headings.back()) {
        headings.erase(headings.begin());
    }
    for (const int block : headings.empty() ? items : headings) {
        if (!isFolded(block) && canFold(block)) {
            add(block);
        }
    }
    return apply();
}

bool NoteFolds::unfoldAll() {
    _folds.clear();
    return apply();
}

bool NoteFolds::reveal(int block) {
    return std::erase_if(_folds,
                         [&](const Fold& fold) {
                             return fold.head.blockNumber() < block && block <= fold.last;
                         }) > 0 &&
           apply();
}

/// The first that is not blank.
int NoteFolds::lineBehind(int last) const {
    QTextBlock block = _document.findBlockByNumber(last).next();
    while (block.isValid() && block.text().trimmed().isEmpty()) {
        block = block.next();
    }
    return block.isValid() ? block.blockNumber() : _document.blockCount();
}

bool NoteFolds::touches(int first, int last) const {
    return std::any_of(_folds.begin(), _folds.end(), [&](const Fold& fold) {
        return fold.head.blockNumber() <= last && first <= lineBehind(fold.last);
    });
}

void NoteFolds::replaced(int first, int oldCount, int newCount) {
    if (_folds.empty() || (oldCount == newCount && !touches(first, first + newCount - 1))) {
        return;
    }
    forgetOutdated();
    apply();
}

void NoteFolds::forgetOutdated() {
    std::vector<int> seen;
    std::erase_if(_folds, [&](Fold& fold) {
        const int head = fold.head.blockNumber();
        const auto last = lastOf(head);
        if (!last || _document.findBlockByNumber(*last).isVisible() ||
            std::find(seen.begin(), seen.end(), head) != seen.end()) {
            return true;
        }
        fold = foldTo(fold.head.block(), *last);
        seen.push_back(head);
        return false;
    });
}

bool NoteFolds::apply() {
    std::vector<bool> hidden(static_cast<std::size_t>(_document.blockCount()));
    for (const Fold& fold : _folds) {
        for (int block = fold.head.blockNumber() + 1; block <= fold.last; ++block) {
            hidden[static_cast<std::size_t>(block)] = true;
        }
    }
    bool isChanged = false;
    for (QTextBlock block = _document.begin(); block.isValid(); block = block.next()) {
        const bool isSeen = !hidden[static_cast<std::size_t>(block.blockNumber())];
        if (block.isVisible() != isSeen) {
            block.setVisible(isSeen);
            _onHidden(block.blockNumber());
            isChanged = true;
        }
    }
    return isChanged;
}

}  // namespace tessaly::desktop
