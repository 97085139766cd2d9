// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "search/folded_text.h"
#include "search/needle.h"
#include "search/search_query.h"

namespace tessaly::search {

/// What queries ask of the text of a line, made ready to be asked of millions. Lines and titles are
/// given as `Needle` takes them. A value that does not change; any thread.
class LineTest {
public:
    /// How well a line answers.
    enum class Rank : std::uint8_t {
        whole,  ///< the query's whole text stands there, or all tags
        apart,  ///< its words do, or a tag's token as part of something else
        none
    };

    /// Of a search for tags: what is shown as the match.
    enum class Shown { tag, text };

    /// All queries hold; the first with a text gives the rank and the highlight, without one the
    /// first phrase gives the latter. With `tags` (folded), these give the rank, and the first of
    /// them the highlight, unless the text is to be `shown` and there is one.
    explicit LineTest(const std::vector<SearchQuery>& queries,
                      const std::vector<std::string>& tags = {}, Shown shown = Shown::tag);

    /// What each line holds that passes; of all such texts the longest, so that it is found in few
    /// others. Empty: there is none.
    const Needle& candidate() const { return _candidate; }

    /// No line passes, since a text is asked for that spans several.
    bool isHopeless() const { return _isHopeless; }
    /// A text is looked for, not only the lack of one.
    bool isSeeking() const { return !_candidate.empty(); }
    bool isOfTag() const { return !_tags.empty(); }
    /// A text is looked for, and nothing else is asked.
    bool isPlain() const { return isSeeking() && _isPlain && !_isHopeless; }
    /// Whether lines that pass differ in rank.
    bool hasRanks() const { return !_whole.empty() || isOfTag(); }

    /// The rank of a line that holds the candidate. `whether` tells only `none` from others, and
    /// may be quicker.
    enum class Detail { whether, rank };
    Rank rankOfCandidate(std::string_view line, Detail detail) const {
        return _isPlain ? Rank::whole : rankBeyondCandidate(line, detail);
    }
    /// The rank of any text.
    Rank rankOf(std::string_view text) const;

    /// What is to be shown as the match in a line of this rank; empty where no text is looked for.
    Stretch highlight(std::string_view line, Rank rank) const;

private:
    void showTag();
    void require(const std::string& text);
    bool carriesTags(std::string_view line) const;
    void takeText(const SearchQuery& query);
    void chooseCandidate();
    bool holdsTheRest(std::string_view line) const;
    Rank rankBeyondCandidate(std::string_view line, Detail detail) const;

    std::vector<Needle> _required;  // but for the candidate
    std::vector<Needle> _excluded;
    Needle _candidate;
    std::vector<std::string> _tags;
    Needle _whole;      // tells the ranks apart, where words suffice
    Needle _highlight;  // of `apart` lines, and of all where there are no ranks
    bool _showsTag = false;
    bool _isPlain = false;  // the candidate is all that is asked
    bool _isHopeless = false;
};

}  // namespace tessaly::search
