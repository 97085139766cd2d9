// SPDX-License-Identifier: MIT
#include "app/completion_words.h"

#include <algorithm>
#include <map>
#include <utility>

#include "base/utf8.h"
#include "search/folded_text.h"
#include "store/note_names.h"

namespace tessaly::app {

namespace {

/// Letters that stand apart somewhere in a word do not remind anybody of it. A title has many
/// words, of which what is typed names some.
constexpr int leastTagScore = 20;
constexpr int leastTitleScore = 14;
constexpr std::size_t leastFuzzyLetters = 2;

/// A tag without its sign, and with the sign of an argument alone where it has one.
std::string_view nameOfTag(std::string_view tag) {
    const std::size_t argument = tag.find('(');
    return tag.substr(1, argument);  // of as many characters as come before it, and itself
}

/// By which a link finds the note; empty: none can.
std::string linkTitle(const store::LoadedNote& note) {
    std::string title =
        note.title.empty() ? std::string(store::baseName(note.filename)) : note.title;
    return title.find_first_of("[]") == std::string::npos ? title : std::string();
}

/// What a pattern looks for: white space in it only parts words.
std::string lettersOf(std::string_view typed) {
    std::string letters;
    for (std::size_t at = 0; at < typed.size();) {
        const base::CodePoint letter = base::codePointAt(typed, at);
        if (!base::isWhiteSpace(letter.value)) {
            letters += typed.substr(at, letter.size);
        }
        at += letter.size;
    }
    return letters;
}

/// Most words that hold the letters do not in this order, and scoring them would take longer.
bool holdsInOrder(std::string_view text, std::string_view letters) {
    auto next = letters.begin();
    for (auto c = text.begin(); c != text.end() && next != letters.end(); ++c) {
        next += *c == *next ? 1 : 0;
    }
    return next == letters.end();
}

}  // namespace

void CompletionWords::add(std::string text, std::int64_t weight) {
    std::string folded = search::folded(text);
    const std::uint64_t letters = lettersIn(folded);
    _entries.push_back({std::move(text), std::move(folded), letters, weight});
}

CompletionWords CompletionWords::ofTags(const store::TagCounts& tags) {
    CompletionWords words;
    words._entries.reserve(tags.size());
    tags.forEach([&](const store::TagCounts::Pointer& count) {
        const std::string_view name = nameOfTag(count->tag);
        const auto notes = static_cast<std::int64_t>(count->notes);
        // In the order of tags, those that differ in the argument alone stand together.
        if (!words._entries.empty() && words._entries.back().text == name) {
            words._entries.back().weight += notes;
        } else {
            words.add(std::string(name), notes);
        }
    });
    return words;
}

CompletionWords CompletionWords::ofTitles(const store::GeneralNotes& notes) {
    std::map<std::string, std::int64_t> changed;
    notes.forEach([&](const store::GeneralNotes::Pointer& note) {
        std::string title = note->note.isFolder ? std::string() : linkTitle(note->note);
        if (!title.empty()) {
            std::int64_t& newest = changed[std::move(title)];
            newest = std::max<std::int64_t>(
                newest, note->note.contentChangedDate.time_since_epoch().count());
        }
    });
    CompletionWords words;
    words._kind = Kind::titles;
    words._entries.reserve(changed.size());
    for (const auto& [title, when] : changed) {
        words.add(title, when);
    }
    return words;
}

OfferedWords CompletionWords::matching(std::string_view typed, std::size_t most) const {
    FuzzyPattern pattern(typed);
    const std::string& folded = pattern.folded();
    OfferedWords offered;
    offered.isWhole = std::any_of(_entries.begin(), _entries.end(),
                                  [&](const Entry& entry) { return entry.folded == folded; });
    offer(beginningWith(folded, offered.isWhole), pattern, most, offered);
    if (offered.words.size() < most) {
        offer(withLettersOf(pattern), pattern, most, offered);
    }
    return offered;
}

/// Whether it may follow what it begins with: of tags the next part alone.
bool CompletionWords::isNext(const Entry& entry, std::string_view typed, bool isWhole) const {
    if (_kind == Kind::titles) {
        return true;
    }
    const std::string_view rest = std::string_view(entry.folded).substr(typed.size());
    const bool isBelow = rest.starts_with('/');
    return !rest.empty() && (!isBelow || isWhole) &&
           rest.find('/', isBelow ? 1 : 0) == std::string_view::npos;
}

std::vector<CompletionWords::Found> CompletionWords::beginningWith(std::string_view typed,
                                                                   bool isWhole) const {
    std::vector<Found> found;
    for (const Entry& entry : _entries) {
        if (entry.folded.starts_with(typed) && isNext(entry, typed, isWhole)) {
            // What stands there whole goes before what is only longer.
            found.push_back({&entry, entry.folded == typed ? 1 : 0});
        }
    }
    return found;
}

std::vector<CompletionWords::Found> CompletionWords::withLettersOf(FuzzyPattern& typed) const {
    const std::string letters = lettersOf(typed.folded());
    const std::size_t count = base::toUtf32(letters).size();
    if (count < leastFuzzyLetters) {
        return {};
    }
    const int least =
        (_kind == Kind::tags ? leastTagScore : leastTitleScore) * static_cast<int>(count);
    std::vector<Found> found;
    for (const Entry& entry : _entries) {
        const bool mayAnswer = (typed.letters() & ~entry.letters) == 0 &&
                               holdsInOrder(entry.folded, letters) &&
                               !entry.folded.starts_with(typed.folded());
        if (!mayAnswer) {
            continue;
        }
        if (const auto score = typed.score(entry.folded); score && *score >= least) {
            found.push_back({&entry, *score});
        }
    }
    return found;
}

/// Adds the best of what was found, up to `most` in all.
void CompletionWords::offer(const std::vector<Found>& found, FuzzyPattern& typed, std::size_t most,
                            OfferedWords& offered) const {
    std::vector<Found> best(std::min(most - offered.words.size(), found.size()));
    std::partial_sort_copy(
        found.begin(), found.end(), best.begin(), best.end(), [](const Found& a, const Found& b) {
            return a.score != b.score                   ? a.score > b.score
                   : a.entry->weight != b.entry->weight ? a.entry->weight > b.entry->weight
                                                        : a.entry < b.entry;
        });
    for (const Found& each : best) {
        const Entry& entry = *each.entry;
        auto match = typed.match(entry.text);
        offered.words.push_back({entry.text,
                                 _kind == Kind::tags ? static_cast<std::size_t>(entry.weight) : 0,
                                 entry.folded.starts_with(typed.folded()),
                                 match && !typed.isEmpty() ? std::move(match->ranges)
                                                           : std::vector<base::TextRange>()});
    }
}

}  // namespace tessaly::app
