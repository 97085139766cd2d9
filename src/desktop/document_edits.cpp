// SPDX-License-Identifier: MIT
#include "desktop/document_edits.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "base/utf8.h"
#include "desktop/qt_text.h"
#include "store/line_diff.h"

namespace tessaly::desktop {

namespace {

using Pieces = std::vector<std::string_view>;

bool isWordByte(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 || (byte >= '0' && byte <= '9') ||
           ((byte | 0x20) >= 'a' && (byte | 0x20) <= 'z');
}

/// Words, and each other character by itself.
Pieces wordsOfText(std::string_view text) {
    Pieces words;
    while (!text.empty()) {
        std::size_t size = 1;
        if (isWordByte(text[0])) {
            while (size < text.size() && isWordByte(text[size])) {
                ++size;
            }
        }
        words.push_back(text.substr(0, size));
        text.remove_prefix(size);
    }
    return words;
}

/// Pieces that lie one behind the other in a text.
std::string_view joinedPieces(std::span<const std::string_view> pieces) {
    if (pieces.empty()) {
        return {};
    }
    const char* end = pieces.back().data() + pieces.back().size();
    return {pieces.front().data(), static_cast<std::size_t>(end - pieces.front().data())};
}

int commonStart(const QString& a, const QString& b) {
    const auto differing = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first;
    auto size = static_cast<int>(differing - a.begin());
    return size > 0 && a[size - 1].isHighSurrogate() ? size - 1 : size;
}

int commonEnd(const QString& a, const QString& b, int start) {
    const int most = static_cast<int>(std::min(a.size(), b.size())) - start;
    int size = 0;
    while (size < most && a[a.size() - 1 - size] == b[b.size() - 1 - size]) {
        ++size;
    }
    return size > 0 && a[a.size() - size].isLowSurrogate() ? size - 1 : size;
}

/// What differs of a text at `position` of the document.
DocumentChange trimmedChange(int position, const QString& from, const QString& to) {
    const int start = commonStart(from, to);
    const int end = commonEnd(from, to, start);
    return {position + start, static_cast<int>(from.size()) - start - end,
            to.mid(start, to.size() - start - end)};
}

/// Changes of words in a text that begins at `position` of the document.
void addWordChanges(std::string_view from, std::string_view to, int position,
                    DocumentChanges& changes) {
    const Pieces old = wordsOfText(from);
    const Pieces made = wordsOfText(to);
    std::size_t next = 0;
    for (const store::LineHunk& hunk : store::diffLines(old, made)) {
        position += unitsOf(joinedPieces(std::span(old).subspan(next, hunk.oldStart - next)));
        const QString removed =
            documentText(joinedPieces(std::span(old).subspan(hunk.oldStart, hunk.oldCount)));
        const QString inserted =
            documentText(joinedPieces(std::span(made).subspan(hunk.newStart, hunk.newCount)));
        changes.push_back(trimmedChange(position, removed, inserted));
        position += static_cast<int>(removed.size());
        next = hunk.oldStart + hunk.oldCount;
    }
}

/// A hunk whose first line begins at `start` of the document, or would.
void addLineChanges(std::span<const std::string_view> old, std::span<const std::string_view> made,
                    const store::LineHunk& hunk, int start, DocumentChanges& changes) {
    const std::string_view removed = joinedPieces(old.subspan(hunk.oldStart, hunk.oldCount));
    const std::string_view inserted = joinedPieces(made.subspan(hunk.newStart, hunk.newCount));
    const bool isAtEnd = hunk.oldStart + hunk.oldCount == old.size();
    if (hunk.oldCount > 0 && hunk.newCount > 0) {
        addWordChanges(removed, inserted, start, changes);
    } else if (hunk.oldCount == 0) {
        const QString lines = documentText(inserted);
        const QChar end = u'\n';
        changes.push_back(isAtEnd ? DocumentChange{start - 1, 0, end + lines}
                                  : DocumentChange{start, 0, lines + end, true});
    } else {
        changes.push_back({isAtEnd ? start - 1 : start, unitsOf(removed) + 1, {}});
    }
}

}  // namespace

QString documentText(std::string_view shown) {
    const std::u16string units = base::toUtf16(shown);
    return QString(reinterpret_cast<const QChar*>(units.data()),
                   static_cast<qsizetype>(units.size()));
}

std::string textOfDocument(const QTextDocument& document) {
    QString text = document.toRawText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    return base::toUtf8(
        {reinterpret_cast<const char16_t*>(text.utf16()), static_cast<std::size_t>(text.size())});
}

QString selectedTextOf(const QTextCursor& cursor) {
    QString text = cursor.selectedText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    return text;
}

base::TextRange selectionOf(const QTextCursor& cursor) {
    const int start = cursor.selectionStart();
    return {static_cast<std::size_t>(start),
            static_cast<std::size_t>(cursor.selectionEnd() - start)};
}

QTextCursor cursorAt(QTextDocument& document, base::TextRange selection) {
    QTextCursor cursor(&document);
    const int last = document.characterCount() - 1;
    cursor.setPosition(std::min(static_cast<int>(selection.location), last));
    cursor.setPosition(std::min(static_cast<int>(selection.end()), last), QTextCursor::KeepAnchor);
    return cursor;
}

DocumentChanges changesBetween(const std::string& from, const std::string& to) {
    const Pieces old = store::linesOfText(from);
    const Pieces made = store::linesOfText(to);
    DocumentChanges changes;
    int position = 0;
    std::size_t next = 0;
    const auto pass = [&](std::size_t until) {
        for (; next < until; ++next) {
            position += unitsOf(old[next]) + 1;
        }
    };
    for (const store::LineHunk& hunk : store::diffLines(old, made)) {
        pass(hunk.oldStart);
        addLineChanges(old, made, hunk, position, changes);
        pass(hunk.oldStart + hunk.oldCount);
    }
    return changes;
}

void makeChanges(QTextDocument& document, const DocumentChanges& changes) {
    QTextCursor cursor(&document);
    cursor.beginEditBlock();
    for (auto change = changes.rbegin(); change != changes.rend(); ++change) {
        cursor.setPosition(change->position);
        cursor.setPosition(change->position + change->removed, QTextCursor::KeepAnchor);
        cursor.insertText(change->inserted);
    }
    cursor.endEditBlock();
}

int positionAfter(int position, const DocumentChanges& changes) {
    int moved = position;
    for (const DocumentChange& change : changes) {
        const auto inserted = static_cast<int>(change.inserted.size());
        const int within = position - change.position;
        const bool isBehind =
            change.removed > 0 ? within >= change.removed : within > 0 || change.isBeforeLine;
        if (within < 0) {
            break;
        }
        moved += isBehind ? inserted - change.removed : std::min(within, inserted) - within;
    }
    return moved;
}

void makeEdit(QTextDocument& document, const editor::Edit& edit) {
    const QString before = selectedTextOf(cursorAt(document, edit.range));
    const QString after = documentText(edit.replacement);
    makeChanges(document, {trimmedChange(static_cast<int>(edit.range.location), before, after)});
}

}  // namespace tessaly::desktop
