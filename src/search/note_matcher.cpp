// SPDX-License-Identifier: MIT
#include "search/note_matcher.h"

#include <algorithm>
#include <utility>

namespace tessaly::search {

namespace {

bool areAboutNotesOnly(const std::vector<SearchQuery>& queries) {
    return std::all_of(queries.begin(), queries.end(),
                       [](const SearchQuery& query) { return query.isAboutNotesOnly(); });
}

}  // namespace

NoteMatcher::NoteMatcher(const std::vector<SearchQuery>& queries, FilterConditions filter)
    : NoteMatcher(queries, std::move(filter), LineTest(queries)) {}

NoteMatcher NoteMatcher::forTags(const std::vector<std::string>& tokens, FilterConditions filter,
                                 const std::vector<SearchQuery>& queries, LineTest::Shown shown) {
    return {queries, std::move(filter), LineTest(queries, tokens, shown)};
}

NoteMatcher::NoteMatcher(const std::vector<SearchQuery>& queries, FilterConditions filter,
                         LineTest test)
    : _test(std::move(test)),
      _filter(std::move(filter)),
      _days(_filter.days),
      _isAboutNotesOnly(!_filter.isActive && !_test.isOfTag() && areAboutNotesOnly(queries)) {
    for (const SearchQuery& query : queries) {
        for (const std::string& title : query.titles) {
            _titles.emplace_back(title);
        }
        if (!query.folders.empty()) {
            _folders.push_back(query.folders);
        }
        _kinds = _kinds.with(query.kinds);
        _days = _days.with(query.days);
    }
}

void NoteMatcher::match(const SearchedNote& note, Collect collect, NoteMatches& matches,
                        std::size_t mostLines) const {
    matches.clear();
    if (!isAskedOf(note)) {
        return;
    }
    const NoteWalk::Others others = othersOf(note);
    if (_isAboutNotesOnly) {
        matches.hasNoteRow = others.mayGiveRow;
        matches.rows = others.mayGiveRow ? 1 : 0;
        return;
    }
    const NoteWalk::Asked asked{_test, _filter.kinds.with(_kinds), _days};
    NoteWalk(asked, note, others, collect, mostLines, matches).run();
    if (_test.hasRanks()) {
        std::stable_sort(matches.lines.begin(), matches.lines.end(),
                         [](const LineMatch& a, const LineMatch& b) { return a.rank < b.rank; });
    }
}

bool NoteMatcher::isAskedOf(const SearchedNote& note) const {
    return std::all_of(_titles.begin(), _titles.end(),
                       [&](const Needle& title) { return title.isIn(note.foldedTitle); }) &&
           std::all_of(_folders.begin(), _folders.end(),
                       [&](const std::vector<std::string>& folders) {
                           return std::any_of(folders.begin(), folders.end(),
                                              [&](const std::string& folder) {
                                                  return isInFolder(note.foldedFolder, folder);
                                              });
                       });
}

NoteWalk::Others NoteMatcher::othersOf(const SearchedNote& note) const {
    if (!_kinds.hasOther() || !_days.holds(note.day.value_or(note.changedDay))) {
        return {};
    }
    NoteWalk::Others others;
    others.areRows = _filter.kinds.hasOther();
    others.mayGiveRow =
        note.type == base::NoteType::calendar ? _filter.calendarItem : _filter.noteItem;
    others.titleMatches = others.mayGiveRow && !_isAboutNotesOnly && !_test.isOfTag() &&
                          _test.rankOf(note.foldedTitle) != LineTest::Rank::none;
    return others;
}

bool NoteMatcher::isPlain() const {
    return _test.isPlain() && !_filter.isActive && _titles.empty() && _folders.empty() &&
           _kinds == LineKinds::all() && _days.isOpen();
}

std::optional<Stretch> NoteMatcher::matchTitle(std::string_view foldedTitle) const {
    if (!_kinds.hasOther() || !_titles.empty() || !_folders.empty()) {
        return std::nullopt;
    }
    const LineTest::Rank rank = _test.rankOf(foldedTitle);
    if (rank == LineTest::Rank::none || (_test.isOfTag() && rank != LineTest::Rank::whole)) {
        return std::nullopt;
    }
    return _test.highlight(foldedTitle, rank);
}

}  // namespace tessaly::search
