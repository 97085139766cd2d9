// SPDX-License-Identifier: MIT
#include "desktop/document_history.h"

#include <QScopedValueRollback>
#include <QTextBlock>
#include <QTextDocument>
#include <algorithm>
#include <utility>

#include "desktop/change_rebase.h"
#include "desktop/qt_text.h"

namespace tessaly::desktop {

namespace {

QString textBetween(QTextDocument& document, int start, int end) {
    return selectedTextOf(cursorAt(
        document, {static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)}));
}

QString textOfAll(const QTextDocument& document) {
    QString text = document.toRawText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    return text;
}

/// What a stretch was, and what it is, as the least that differs: what others change in between
/// must not count as the user's.
DocumentChanges leastChanges(int position, const QString& from, const QString& to) {
    if (from == to) {
        return {};
    }
    if (from.isEmpty() || to.isEmpty()) {
        return {{position, static_cast<int>(from.size()), to}};
    }
    DocumentChanges changes = changesBetween(utf8(from), utf8(to));
    for (DocumentChange& change : changes) {
        change.position += position;
    }
    return changes;
}

}  // namespace

DocumentHistory::DocumentHistory(QTextDocument& document, int longestLine, QObject* parent)
    : QObject(parent), _document(document), _longestLine(longestLine) {
    _document.setUndoRedoEnabled(false);
    connect(&_document, &QTextDocument::contentsChange, this, &DocumentHistory::onContentsChange);
    connect(&_document, &QTextDocument::contentsChanged, this, &DocumentHistory::onContentsChanged);
}

void DocumentHistory::begin(const std::function<void()>& set) {
    // Not all of it is told while the document is set up.
    const QScopedValueRollback begun(_change, Change::begin);
    set();
    _text = textOfAll(_document);
    _knownRevision = _document.revision();
    _history.clear();
}

void DocumentHistory::makeOthers(const DocumentChanges& changes) {
    const QScopedValueRollback others(_change, Change::others);
    makeChanges(_document, changes);
    _history.rebase(changes);
}

std::optional<int> DocumentHistory::undo() {
    return go(Change::undo);
}

std::optional<int> DocumentHistory::redo() {
    return go(Change::redo);
}

std::optional<int> DocumentHistory::go(Change way) {
    const auto take = [this](Change where) {
        return where == Change::undo ? _history.undo() : _history.redo();
    };
    const EditHistory::Step step = take(way);
    if (step.empty()) {
        return std::nullopt;
    }
    const int caret = makeStep(step, way);
    // Others may have made the line longer meanwhile.
    if (isTooLong(0, static_cast<int>(_text.size()))) {
        const Change back = way == Change::undo ? Change::redo : Change::undo;
        makeStep(take(back), back);
        Q_EMIT refused();
        return std::nullopt;
    }
    Q_EMIT edited();
    return caret;
}

/// Behind what was put in last.
int DocumentHistory::makeStep(const EditHistory::Step& step, Change way) {
    const QScopedValueRollback change(_change, way);
    int caret = 0;
    for (auto changes = step.rbegin(); changes != step.rend(); ++changes) {
        const DocumentChange& last = changes->back();
        _made = changes->size() == 1 ? &last : nullptr;
        makeChanges(_document, *changes);
        _made = nullptr;
        caret = last.position + static_cast<int>(last.inserted.size());
        for (const DocumentChange& each : *changes) {
            caret += &each == &last ? 0 : static_cast<int>(each.inserted.size()) - each.removed;
        }
    }
    return caret;
}

void DocumentHistory::onContentsChange(int position, int removed, int added) {
    // Layout alone has changed where the revision has not.
    if (std::exchange(_knownRevision, _document.revision()) == _document.revision() ||
        _change == Change::begin) {
        return;
    }
    // The last block's end may be counted with what was removed and added.
    const int length = _document.characterCount() - 1;
    int end = std::min(position + added, length);
    auto oldEnd = std::min(position + removed, static_cast<int>(_text.size()));
    if (_text.size() - oldEnd != length - end) {
        position = 0;
        oldEnd = static_cast<int>(_text.size());
        end = length;
    }
    const QString now = textNow(position, end);
    const QString before = _text.mid(position, oldEnd - position);
    _text.replace(position, before.size(), now);
    if (_change == Change::others) {
        return;
    }
    DocumentChanges changes = leastChanges(0, before, now);
    if (changes.empty()) {
        return;
    }
    DocumentChanges inverse = inverseOf(changes, before);
    for (DocumentChange& change : inverse) {
        change.position += position;
    }
    if (_change == Change::users && isTooLong(position, end)) {
        _refused = std::move(inverse);
        return;
    }
    using Source = EditHistory::Source;
    _history.record(std::move(inverse), _change == Change::undo   ? Source::undo
                                        : _change == Change::redo ? Source::redo
                                        : _joins                  ? Source::sameStep
                                                                  : Source::newStep);
    if (_change == Change::users) {
        Q_EMIT edited();
    }
}

/// What the document holds there. To ask it costs a copy, which is felt where all of it was put in.
QString DocumentHistory::textNow(int position, int end) {
    const bool isMade =
        _made != nullptr && _made->position == position && _made->inserted.size() == end - position;
    return isMade ? _made->inserted : textBetween(_document, position, end);
}

/// The document can be changed only now.
void DocumentHistory::onContentsChanged() {
    const DocumentChanges back = std::exchange(_refused, {});
    if (back.empty()) {
        return;
    }
    {
        const QScopedValueRollback others(_change, Change::others);
        makeChanges(_document, back);
    }
    Q_EMIT refused();
}

bool DocumentHistory::isTooLong(int position, int end) const {
    QTextBlock block = _document.findBlock(position);
    for (; block.isValid() && block.position() <= end; block = block.next()) {
        if (block.length() - 1 > _longestLine) {
            return true;
        }
    }
    return false;
}

}  // namespace tessaly::desktop
