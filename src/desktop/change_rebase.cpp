// SPDX-License-Identifier: MIT
#include "desktop/change_rebase.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tessaly::desktop {

namespace {

/// A stretch of the text that changes run over, or what they put in between two.
struct ChangePart {
    enum class Kind { kept, removed, inserted } kind = Kind::kept;
    int length = 0;
    QString inserted;
};

/// Goes through changes part by part; behind the last, everything is kept.
class ChangeReader {
public:
    explicit ChangeReader(const DocumentChanges& changes) {
        int position = 0;
        for (const DocumentChange& change : changes) {
            add({ChangePart::Kind::kept, change.position - position, {}});
            add({ChangePart::Kind::inserted, static_cast<int>(change.inserted.size()),
                 change.inserted});
            add({ChangePart::Kind::removed, change.removed, {}});
            position = change.position + change.removed;
        }
    }

    bool isAtEnd() const { return _next == _parts.size(); }
    bool isInsert() const { return !isAtEnd() && _parts[_next].kind == ChangePart::Kind::inserted; }
    bool isRemoval() const { return !isAtEnd() && _parts[_next].kind == ChangePart::Kind::removed; }
    int length() const {
        return isAtEnd() ? std::numeric_limits<int>::max() : _parts[_next].length;
    }
    const QString& inserted() const { return _parts[_next].inserted; }
    void pass(int length) {
        if (!isAtEnd() && (_parts[_next].length -= length) == 0) {
            ++_next;
        }
    }

private:
    void add(ChangePart part) {
        if (part.length > 0) {
            _parts.push_back(std::move(part));
        }
    }

    std::vector<ChangePart> _parts;
    std::size_t _next = 0;
};

class ChangeWriter {
public:
    void keep(int length) { _position += length; }
    void insert(const QString& text) { changeHere().inserted += text; }
    void remove(int length) {
        changeHere().removed += length;
        _position += length;
    }
    DocumentChanges take() { return std::move(_changes); }

private:
    DocumentChange& changeHere() {
        if (_changes.empty() || _changes.back().position + _changes.back().removed != _position) {
            _changes.push_back({_position, 0, {}});
        }
        return _changes.back();
    }

    DocumentChanges _changes;
    int _position = 0;
};

}  // namespace

DocumentChanges inverseOf(const DocumentChanges& changes, const QString& before) {
    DocumentChanges inverse;
    int shift = 0;
    for (const DocumentChange& change : changes) {
        const auto inserted = static_cast<int>(change.inserted.size());
        inverse.push_back(
            {change.position + shift, inserted, before.mid(change.position, change.removed)});
        shift += inserted - change.removed;
    }
    return inverse;
}

DocumentChanges rebased(const DocumentChanges& own, const DocumentChanges& others,
                        InsertOrder order) {
    ChangeReader mine(own);
    ChangeReader theirs(others);
    ChangeWriter made;
    while (!mine.isAtEnd()) {
        if (mine.isInsert() && (order == InsertOrder::ownFirst || !theirs.isInsert())) {
            made.insert(mine.inserted());
            mine.pass(mine.length());
        } else if (theirs.isInsert()) {
            made.keep(theirs.length());
            theirs.pass(theirs.length());
        } else {
            const int length = std::min(mine.length(), theirs.length());
            if (!theirs.isRemoval()) {
                mine.isRemoval() ? made.remove(length) : made.keep(length);
            }
            mine.pass(length);
            theirs.pass(length);
        }
    }
    return made.take();
}

}  // namespace tessaly::desktop
