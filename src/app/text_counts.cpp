// SPDX-License-Identifier: MIT
#include "app/text_counts.h"

#include <fmt/format.h>

#include "app/line_look.h"
#include "base/graphemes.h"
#include "base/localisation.h"
#include "base/words.h"
#include "grammar/line_scanner.h"

namespace tessaly::app {

namespace {

using grammar::MarkKind;
using grammar::TodoType;

bool isTimeMark(MarkKind kind) {
    return kind != MarkKind::hashtag && kind != MarkKind::mention;
}

std::size_t wordsOfLine(const grammar::ScannedLine& scanned) {
    const std::string_view line = scanned.text;
    std::size_t count = 0;
    std::size_t from = scanned.line.contentStart;
    for (const grammar::Mark& mark : scanned.marks) {
        if (isTimeMark(mark.kind) && mark.start >= from) {
            count += base::wordCount(line.substr(from, mark.start - from));
            from = mark.end;
        }
    }
    return count + base::wordCount(line.substr(from));
}

/// A fence that opens or closes is outside of what it holds.
bool isInFence(std::string_view line, FenceState& state) {
    const bool wasInside = state != FenceState::outside;
    if (line.find_first_of("`~") != std::string_view::npos) {
        state = fenceAfter(line, state);
    }
    return wasInside && state != FenceState::outside;
}

std::string numbered(const std::string& words, std::size_t count,
                     const base::LocaleFormats& formats) {
    return fmt::format(fmt::runtime(words), formats.number(static_cast<long long>(count)));
}

}  // namespace

TextCounts countText(std::string_view text, const grammar::MarkerSettings& markers) {
    TextCounts counts;
    FenceState fence = FenceState::outside;
    grammar::NoteScanner scanner;
    scanner.start(text, markers);
    while (const grammar::ScannedLine* scanned = scanner.next()) {
        std::string_view line = scanned->text;
        line.remove_suffix(line.ends_with('\r') ? 1 : 0);
        counts.characters += base::graphemeCount(line);
        if (isInFence(line, fence)) {
            counts.words += base::wordCount(line);
            continue;
        }
        counts.words += wordsOfLine(*scanned);
        counts.openTasks += scanned->line.type == TodoType::open ? 1 : 0;
        counts.doneTasks += scanned->line.type == TodoType::done ? 1 : 0;
    }
    return counts;
}

std::string countsInWords(const TextCounts& whole, const std::optional<TextCounts>& selected,
                          const base::LocaleFormats& formats) {
    if (selected) {
        return fmt::format(fmt::runtime(base::trPlural("{0} of {1} word selected",
                                                       "{0} of {1} words selected", whole.words)),
                           formats.number(static_cast<long long>(selected->words)),
                           formats.number(static_cast<long long>(whole.words)));
    }
    std::string text =
        numbered(base::trPlural("{} word", "{} words", whole.words), whole.words, formats);
    if (const std::size_t tasks = whole.openTasks + whole.doneTasks; tasks > 0) {
        text += " · " + fmt::format(fmt::runtime(base::trPlural("{0} of {1} task done",
                                                                "{0} of {1} tasks done", tasks)),
                                    formats.number(static_cast<long long>(whole.doneTasks)),
                                    formats.number(static_cast<long long>(tasks)));
    }
    return text;
}

std::string charactersInWords(const TextCounts& counts, const base::LocaleFormats& formats) {
    return numbered(base::trPlural("{} character", "{} characters", counts.characters),
                    counts.characters, formats);
}

}  // namespace tessaly::app
