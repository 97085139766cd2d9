// SPDX-License-Identifier: MIT
#include "desktop/completion_keys.h"

#include <QKeyEvent>
#include <algorithm>
#include <iterator>

namespace tessaly::desktop {

namespace {

struct CompletionKeyRow {
    int key;
    CompletionKey ofRows;
    CompletionKey ofDays;
};

constexpr CompletionKeyRow completionKeys[] = {
    {Qt::Key_Escape, CompletionKey::leave, CompletionKey::leave},
    {Qt::Key_Return, CompletionKey::take, CompletionKey::take},
    {Qt::Key_Enter, CompletionKey::take, CompletionKey::take},
    {Qt::Key_Tab, CompletionKey::take, CompletionKey::take},
    {Qt::Key_Down, CompletionKey::next, CompletionKey::next},
    {Qt::Key_Up, CompletionKey::previous, CompletionKey::previous},
    {Qt::Key_PageDown, CompletionKey::none, CompletionKey::monthLater},
    {Qt::Key_PageUp, CompletionKey::none, CompletionKey::monthEarlier},
};

}  // namespace

CompletionKey completionKeyOf(const QKeyEvent& event, CompletionView::Shown shown) {
    const bool isPlain = (event.modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier)) ==
                         Qt::KeyboardModifiers(Qt::NoModifier);
    const auto row =
        std::find_if(std::begin(completionKeys), std::end(completionKeys),
                     [&](const CompletionKeyRow& each) { return each.key == event.key(); });
    if (row == std::end(completionKeys) || !isPlain || shown == CompletionView::Shown::nothing) {
        return CompletionKey::none;
    }
    return shown == CompletionView::Shown::rows ? row->ofRows : row->ofDays;
}

}  // namespace tessaly::desktop
