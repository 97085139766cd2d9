// SPDX-License-Identifier: MIT
#include "search/line_test.h"

#include <algorithm>
#include <utility>

#include "search/tag_marks.h"

namespace tessaly::search {

namespace {

bool isShorter(const Needle& a, const Needle& b) {
    return a.text().size() < b.text().size();
}

const std::string& longestOf(const std::vector<std::string>& words) {
    return *std::max_element(
        words.begin(), words.end(),
        [](const std::string& a, const std::string& b) { return a.size() < b.size(); });
}

}  // namespace

LineTest::LineTest(const std::vector<SearchQuery>& queries, const std::vector<std::string>& tags,
                   Shown shown)
    : _tags(tags) {
    for (const std::string& tag : tags) {
        require(tag);
    }
    if (isOfTag() && shown == Shown::tag) {
        showTag();
    }
    for (const SearchQuery& query : queries) {
        takeText(query);
    }
    for (const SearchQuery& query : queries) {
        for (const std::string& phrase : query.phrases) {
            require(phrase);
            _highlight = _highlight.empty() ? Needle(phrase) : _highlight;
        }
        for (const std::string& word : query.excluded) {
            _excluded.emplace_back(word);
        }
    }
    if (isOfTag() && _highlight.empty()) {
        showTag();
    }
    chooseCandidate();
    _isPlain = _required.empty() && _excluded.empty() && !hasRanks();
}

void LineTest::showTag() {
    _showsTag = true;
    _highlight = Needle(_tags.front());
}

/// A line that holds the whole text holds its words.
void LineTest::takeText(const SearchQuery& query) {
    if (query.text.empty()) {
        return;
    }
    const bool isFirst = _highlight.empty();
    if (query.words.empty()) {
        require(query.text);
    } else if (isFirst) {
        _whole = Needle(query.text);
    }
    for (const std::string& word : query.words) {
        require(word);
    }
    if (isFirst) {
        _highlight = Needle(query.words.empty() ? query.text : longestOf(query.words));
    }
}

void LineTest::require(const std::string& text) {
    if (!text.empty()) {
        _isHopeless = _isHopeless || text.find('\n') != std::string::npos;
        _required.emplace_back(text);
    }
}

void LineTest::chooseCandidate() {
    const auto longest = std::max_element(_required.begin(), _required.end(), isShorter);
    if (longest != _required.end()) {
        _candidate = std::move(*longest);
        _required.erase(longest);
    }
}

bool LineTest::holdsTheRest(std::string_view line) const {
    const auto isIn = [&](const Needle& needle) { return needle.isIn(line); };
    return std::all_of(_required.begin(), _required.end(), isIn) &&
           std::none_of(_excluded.begin(), _excluded.end(), isIn);
}

bool LineTest::carriesTags(std::string_view line) const {
    return std::all_of(_tags.begin(), _tags.end(),
                       [&](const std::string& tag) { return findTag(line, tag).has_value(); });
}

LineTest::Rank LineTest::rankBeyondCandidate(std::string_view line, Detail detail) const {
    if (!holdsTheRest(line)) {
        return Rank::none;
    }
    if (isOfTag()) {
        return carriesTags(line) ? Rank::whole : Rank::apart;
    }
    return detail == Detail::whether || _whole.empty() || _whole.isIn(line) ? Rank::whole
                                                                            : Rank::apart;
}

LineTest::Rank LineTest::rankOf(std::string_view text) const {
    return _candidate.isIn(text) ? rankOfCandidate(text, Detail::rank) : Rank::none;
}

Stretch LineTest::highlight(std::string_view line, Rank rank) const {
    if (_showsTag && rank == Rank::whole) {
        return findTag(line, _tags.front()).value_or(Stretch{});
    }
    for (const Needle* const shown : {&_whole, &_highlight}) {
        const std::size_t found = shown->empty() ? Needle::npos : shown->find(line);
        if (found != Needle::npos) {
            return {found, found + shown->text().size()};
        }
    }
    return {};
}

}  // namespace tessaly::search
