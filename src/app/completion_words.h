// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/fuzzy_match.h"
#include "base/text_range.h"
#include "store/cached_notes.h"

namespace tessaly::app {

/// A word that is offered.
struct CompletionWord {
    std::string text;                     ///< of a tag without its sign
    std::size_t notes = 0;                ///< that have the tag; of titles 0
    bool begins = false;                  ///< with what is typed
    std::vector<base::TextRange> ranges;  ///< of `text`, that answer it

    bool operator==(const CompletionWord&) const = default;
};

/// What is offered for what is typed, the best first.
struct OfferedWords {
    std::vector<CompletionWord> words;
    bool isWhole = false;  ///< what is typed is one of all the words itself
};

/// All words of a kind, ready to be asked at each key. A value; any thread may ask it.
class CompletionWords {
public:
    CompletionWords() = default;
    /// Tags, without sign and argument: "due(" stands for all "due(…)".
    static CompletionWords ofTags(const store::TagCounts& tags);
    /// The titles that a link can name, each once.
    static CompletionWords ofTitles(const store::GeneralNotes& notes);

    /// Words that begin with what is typed, those in most notes or changed last before the others;
    /// then those that have its letters in their order, by how well. A tag is offered part by part:
    /// those below it once it is typed whole. What is typed whole is no tag that is offered, but a
    /// title.
    OfferedWords matching(std::string_view typed, std::size_t most) const;

private:
    struct Entry {
        std::string text;
        std::string folded;
        std::uint64_t letters;  ///< as of `lettersIn`
        std::int64_t weight;    ///< the higher, the more likely
    };
    struct Found {
        const Entry* entry;
        int score;
    };
    enum class Kind { tags, titles };

    void add(std::string text, std::int64_t weight);
    bool isNext(const Entry& entry, std::string_view typed, bool isWhole) const;
    std::vector<Found> beginningWith(std::string_view typed, bool isWhole) const;
    std::vector<Found> withLettersOf(FuzzyPattern& typed) const;
    void offer(const std::vector<Found>& found, FuzzyPattern& typed, std::size_t most,
               OfferedWords& offered) const;

    Kind _kind = Kind::tags;
    std::vector<Entry> _entries;
};

}  // namespace tessaly::app
