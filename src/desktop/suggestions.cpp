// SPDX-License-Identifier: MIT
#include "desktop/suggestions.h"

#include <fmt/format.h>

#include "base/localisation.h"
#include "desktop/qt_text.h"

namespace tessaly::desktop {

namespace {

using app::CompletionKind;

QString signOf(CompletionKind kind) {
    return kind == CompletionKind::hashtag   ? QStringLiteral("#")
           : kind == CompletionKind::mention ? QStringLiteral("@")
                                             : QString();
}

FloatingRow suggestionRow(const app::CompletionWord& word, CompletionKind kind) {
    const QString sign = signOf(kind);
    FloatingRow row{sign + qt(word.text), {}, sign + qt(word.text), word.ranges};
    for (base::TextRange& range : row.ranges) {
        range.location += static_cast<std::size_t>(sign.size());
    }
    if (word.notes > 0) {
        row.detail = QString::number(word.notes);
        row.spoken = qt(fmt::format(
            fmt::runtime(base::trPlural("{}, in {} note", "{}, in {} notes", word.notes)),
            utf8(row.text), word.notes));
    }
    return row;
}

/// A new tag is not to become another one because it reminds of it, and what stands there whole
/// already is left alone. Brackets that are open say that a title is wanted.
int firstChoice(const app::CompletionPlace& place, const app::OfferedWords& offered) {
    const bool isSure =
        !offered.words.empty() && (place.kind == CompletionKind::noteTitle ||
                                   (!offered.isWhole && offered.words.front().begins));
    return place.isWord && isSure ? 0 : -1;
}

}  // namespace

Suggestions suggestionsOf(const app::CompletionPlace& place, const app::OfferedWords& offered,
                          const std::vector<app::NextMark>& marks) {
    Suggestions all;
    for (const app::CompletionWord& word : offered.words) {
        all.rows.push_back(suggestionRow(word, place.kind));
        all.choices.push_back({word.text, std::nullopt});
    }
    for (const app::NextMark& mark : marks) {
        const QString text = signOf(place.kind) + qt(mark.word);
        all.rows.push_back({text, {}, text, {}});
        all.choices.push_back({mark.word, mark});
    }
    all.first = firstChoice(place, offered);
    return all;
}

}  // namespace tessaly::desktop
