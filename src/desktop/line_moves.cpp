// SPDX-License-Identifier: MIT
#include "desktop/line_moves.h"

#include <QTextBlock>
#include <QTextDocument>
#include <algorithm>

namespace tessaly::desktop {

namespace {

constexpr int blanksOfTab = 4;

/// How many units at the start of a line make up so many levels.
int unitsOfLevels(const QString& line, int levels) {
    int place = 0;
    for (; levels > 0 && place < line.size(); --levels) {
        if (line[place] == u'\t') {
            ++place;
            continue;
        }
        const int start = place;
        while (place < line.size() && place - start < blanksOfTab && line[place] == u' ') {
            ++place;
        }
        if (place == start) {
            break;
        }
    }
    return place;
}

QString atLevel(const QString& line, int levels) {
    if (levels > 0 && !line.trimmed().isEmpty()) {
        return QString(levels, u'\t') + line;
    }
    return line.mid(unitsOfLevels(line, -levels));
}

bool staysInPlace(Lines lines, LineTarget target) {
    return target.before >= lines.first && target.before <= lines.last + 1;
}

int endOfLine(const QTextBlock& block) {
    return block.position() + block.length() - 1;
}

/// Only what is added or taken off, so that carets in the lines stay.
DocumentChanges changesOfLevel(const QTextDocument& document, Lines lines, int levels) {
    DocumentChanges changes;
    for (int number = lines.first; number <= lines.last; ++number) {
        const QTextBlock block = document.findBlockByNumber(number);
        const QString before = block.text();
        const QString after = atLevel(before, levels);
        if (before != after) {
            const auto more = static_cast<int>(after.size() - before.size());
            changes.push_back(
                {block.position(), std::max(0, -more), after.left(std::max(0, more))});
        }
    }
    return changes;
}

}  // namespace

int endForLines(const QTextDocument& document) {
    const QTextBlock last = document.lastBlock();
    return last.length() == 1 ? last.blockNumber() : document.blockCount();
}

DocumentChanges changesThatMove(const QTextDocument& document, Lines lines, LineTarget target) {
    if (staysInPlace(lines, target)) {
        return target.levels == 0 ? DocumentChanges()
                                  : changesOfLevel(document, lines, target.levels);
    }
    QStringList moved;
    for (int number = lines.first; number <= lines.last; ++number) {
        moved.push_back(atLevel(document.findBlockByNumber(number).text(), target.levels));
    }
    const QString text = moved.join(u'\n');
    const QTextBlock first = document.findBlockByNumber(lines.first);
    const QTextBlock last = document.findBlockByNumber(lines.last);
    // The last line of all has no end, and takes that of the line before it along.
    const bool isLast = !last.next().isValid();
    const int start = first.position() - (isLast ? 1 : 0);
    const DocumentChange removal{start, endOfLine(last) + (isLast ? 0 : 1) - start, {}};
    const QTextBlock follower = document.findBlockByNumber(target.before);
    const DocumentChange insertion =
        follower.isValid() ? DocumentChange{follower.position(), 0, text + u'\n', true}
                           : DocumentChange{endOfLine(document.lastBlock()), 0, u'\n' + text};
    return target.before < lines.first ? DocumentChanges{insertion, removal}
                                       : DocumentChanges{removal, insertion};
}

int firstLineAfterMove(Lines lines, LineTarget target) {
    return staysInPlace(lines, target)   ? lines.first
           : target.before < lines.first ? target.before
                                         : target.before - (lines.last - lines.first + 1);
}

}  // namespace tessaly::desktop
