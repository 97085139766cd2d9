// SPDX-License-Identifier: MIT
#include "search/brute_force.h"

#include <algorithm>

#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include "grammar/date_tags.h"
#include "grammar/tags.h"
#include "grammar/todo_helper.h"

namespace tessaly::tests {

namespace {

using grammar::TodoType;
using icu::UnicodeString;

UnicodeString composed(const UnicodeString& text) {
    UErrorCode status = U_ZERO_ERROR;
    return icu::Normalizer2::getNFCInstance(status)->normalize(text, status);
}

UnicodeString foldedString(std::string_view text) {
    UnicodeString folded = composed(UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size()))));
    folded.toLower(icu::Locale::getRoot());
    folded.findAndReplace(UnicodeString(char16_t{0x3C2}), UnicodeString(char16_t{0x3C3}));
    return composed(folded);
}

bool holds(const UnicodeString& text, const std::string& needle) {
    return needle.empty() || text.indexOf(foldedString(needle)) >= 0;
}

bool holdsAll(const UnicodeString& text, const std::vector<std::string>& needles) {
    return std::all_of(needles.begin(), needles.end(),
                       [&](const std::string& needle) { return holds(text, needle); });
}

/// 0: the whole text, 1: its words; nothing: neither.
std::optional<int> rankOf(const UnicodeString& text, const search::SearchQuery& query) {
    if (!holdsAll(text, query.phrases) ||
        std::any_of(query.excluded.begin(), query.excluded.end(),
                    [&](const std::string& word) { return holds(text, word); })) {
        return std::nullopt;
    }
    if (holds(text, query.text)) {
        return 0;
    }
    return !query.words.empty() && holdsAll(text, query.words) ? std::optional(1) : std::nullopt;
}

std::optional<int> rankOf(const UnicodeString& text, const Asked& asked) {
    std::optional<int> rank;
    bool isRanked = false;
    for (const search::SearchQuery& query : asked.queries) {
        const auto one = rankOf(text, query);
        if (!one) {
            return std::nullopt;
        }
        if (!query.text.empty() && !isRanked) {
            rank = one;
            isRanked = true;
        }
    }
    return isRanked ? rank : 0;
}

/// As `rankOf`, of a tag.
std::optional<int> tagRankOf(std::string_view line, const std::string& tag) {
    const std::string token = foldedByForce(tag);
    for (const auto& found : {grammar::hashtagsOf(line), grammar::mentionsOf(line)}) {
        for (const std::string& mark : found) {
            const std::string folded = foldedByForce(mark);
            if (folded == token || folded.starts_with(token + "/") ||
                folded.starts_with(token + "(") ||
                (token.ends_with('/') && folded.starts_with(token))) {
                return 0;
            }
        }
    }
    return holds(foldedString(line), tag) ? std::optional(1) : std::nullopt;
}

bool isInDays(base::Day day, const Asked& asked) {
    return asked.filter.days.holds(day) &&
           std::all_of(asked.queries.begin(), asked.queries.end(),
                       [&](const search::SearchQuery& query) { return query.days.holds(day); });
}

bool asksForDays(const Asked& asked) {
    return !asked.filter.days.isOpen() ||
           std::any_of(asked.queries.begin(), asked.queries.end(),
                       [](const search::SearchQuery& query) { return !query.days.isOpen(); });
}

std::optional<base::Day> dayOfTask(std::string_view line, std::optional<base::Day> noteDay) {
    for (const grammar::DateTag& tag : grammar::DateTags::findDateTags(line)) {
        if (tag.kind == grammar::MarkKind::scheduleTag) {
            return tag.day ? tag.day : noteDay;
        }
    }
    return noteDay;
}

bool liesIn(const PlainNote& note, const std::vector<std::string>& folders) {
    const std::string inKind = note.filename.substr(0, note.filename.rfind('/') + 1);
    const std::string below = foldedByForce(inKind);
    const std::string whole =
        foldedByForce(std::string(base::folderName(note.type)) + "/" + inKind);
    return folders.empty() ||
           std::any_of(folders.begin(), folders.end(), [&](const std::string& folder) {
               const std::string start = foldedByForce(folder) + "/";
               return whole.starts_with(start) ||
                      (note.type == base::NoteType::note && below.starts_with(start));
           });
}

bool isAskedOf(const PlainNote& note, const Asked& asked) {
    const UnicodeString title = foldedString(note.title);
    return std::all_of(asked.queries.begin(), asked.queries.end(),
                       [&](const search::SearchQuery& query) {
                           return holdsAll(title, query.titles) && liesIn(note, query.folders);
                       });
}

bool isAboutNotesOnly(const Asked& asked) {
    return !asked.filter.isActive && asked.tag.empty() &&
           std::all_of(asked.queries.begin(), asked.queries.end(),
                       [](const search::SearchQuery& query) { return query.isAboutNotesOnly(); });
}

bool titleMatches(const PlainNote& note, const Asked& asked) {
    return asked.tag.empty() && rankOf(foldedString(note.title), asked).has_value();
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

class ForcedSearch {
public:
    ForcedSearch(const PlainNote& note, const Asked& asked) : _note(note), _asked(asked) {}

    FoundRows rows() {
        if (!isAskedOf(_note, _asked)) {
            return {};
        }
        if (isAboutNotesOnly(_asked)) {
            _rows.hasNoteRow = mayHaveNoteRow();
            return _rows;
        }
        _rows.hasNoteRow = mayHaveNoteRow() && titleMatches(_note, _asked);
        std::size_t index = 0;
        for (const std::string& line : linesOf(_note.text)) {
            add(line, index++);
        }
        std::stable_sort(_rows.lines.begin(), _rows.lines.end(),
                         [](const FoundLine& a, const FoundLine& b) { return a.rank < b.rank; });
        return _rows;
    }

private:
    bool isWanted(TodoType type) const {
        return std::all_of(_asked.queries.begin(), _asked.queries.end(),
                           [&](const search::SearchQuery& query) { return query.kinds.has(type); });
    }

    bool mayHaveNoteRow() const {
        return isWanted(TodoType::text) && isInDays(_note.day.value_or(_note.changedDay), _asked) &&
               (_note.type == base::NoteType::calendar ? _asked.filter.calendarItem
                                                       : _asked.filter.noteItem);
    }

    void add(const std::string& line, std::size_t index) {
        const TodoType type = grammar::TodoHelper::parseLine(line, _asked.markers).type;
        if (type == TodoType::empty) {
            return;
        }
        const bool isTitle = !_seenText && _note.type == base::NoteType::note;
        _seenText = true;
        auto rank = rankOf(foldedString(line), _asked);
        if (rank && !_asked.tag.empty()) {
            rank = tagRankOf(line, _asked.tag);
        }
        if (!rank || !isWanted(type)) {
            return;
        }
        if (grammar::isTask(type)) {
            addTask(line, {index, *rank, type});
        } else {
            addOther({index, *rank, TodoType::text}, isTitle);
        }
    }

    void addTask(const std::string& line, const FoundLine& found) {
        const auto day = dayOfTask(line, _note.day);
        if (_asked.filter.kinds.has(found.type) &&
            (day ? isInDays(*day, _asked) : !asksForDays(_asked))) {
            _rows.lines.push_back(found);
        }
    }

    void addOther(const FoundLine& found, bool isTitle) {
        if (_asked.filter.kinds.hasOther() && !isTitle) {
            if (isInDays(_note.day.value_or(_note.changedDay), _asked)) {
                _rows.lines.push_back(found);
            }
        } else if (mayHaveNoteRow()) {
            _rows.hasNoteRow = true;
            if (!_rows.noteLine || found.rank < _rows.noteLine->rank) {
                _rows.noteLine = found;
            }
        }
    }

    const PlainNote& _note;
    const Asked& _asked;
    FoundRows _rows;
    bool _seenText = false;
};

void keepRank(FoundRows& rows, int rank) {
    std::erase_if(rows.lines, [&](const FoundLine& line) { return line.rank != rank; });
    if (rows.noteLine && rows.noteLine->rank != rank) {
        rows.noteLine.reset();
        rows.hasNoteRow = false;
    }
}

bool hasRank(const FoundRows& rows, int rank) {
    return (rows.noteLine && rows.noteLine->rank == rank) ||
           std::any_of(rows.lines.begin(), rows.lines.end(),
                       [&](const FoundLine& line) { return line.rank == rank; });
}

bool comesFirst(const PlainNote& a, const PlainNote& b, base::SortType sortBy) {
    switch (sortBy) {
        case base::SortType::title: return foldedByForce(a.title) < foldedByForce(b.title);
        case base::SortType::modified: return a.modified > b.modified;
        case base::SortType::created: return a.created > b.created;
    }
    return false;
}

std::string escaped(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n') {
            result += "\\n";
        } else if (byte < 0x20 || byte == 0x7F) {
            result += {'\\', 'x', digits[byte >> 4U], digits[byte & 15U]};
        } else {
            result += c;
        }
    }
    return '"' + result + '"';
}

std::string shownList(std::string_view name, const std::vector<std::string>& texts) {
    std::string result;
    for (const std::string& text : texts) {
        result += ' ' + std::string(name) + '=' + escaped(text);
    }
    return result;
}

std::string shownDays(const search::DayRange& days) {
    const auto one = [](const std::optional<base::Day>& day) {
        return day ? base::tagText(*day) : std::string();
    };
    return days.isOpen() ? "" : " days=" + one(days.first) + ".." + one(days.last);
}

std::string shownKinds(search::LineKinds kinds) {
    std::string result = " kinds=";
    for (const auto& [type, name] : base::EnumNames<TodoType>::rows) {
        result += grammar::isTask(type) && kinds.has(type) ? std::string(name) + ',' : "";
    }
    return result + (kinds.hasOther() ? "other" : "");
}

}  // namespace

std::string foldedByForce(std::string_view text) {
    std::string folded;
    foldedString(text).toUTF8String(folded);
    return folded;
}

FoundRows searchByForce(const PlainNote& note, const Asked& asked) {
    return ForcedSearch(note, asked).rows();
}

std::vector<ForcedRow> searchAllByForce(const std::vector<PlainNote>& notes, const Asked& asked,
                                        base::SortType sortBy) {
    std::vector<std::size_t> order(notes.size());
    std::vector<FoundRows> found;
    for (std::size_t i = 0; i < notes.size(); ++i) {
        order[i] = i;
        found.push_back(searchByForce(notes[i], asked));
    }
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return comesFirst(notes[a], notes[b], sortBy);
    });
    const bool hasTags = std::any_of(found.begin(), found.end(),
                                     [](const FoundRows& rows) { return hasRank(rows, 0); });
    std::vector<ForcedRow> rows;
    for (const std::size_t i : order) {
        if (!asked.tag.empty()) {
            keepRank(found[i], hasTags ? 0 : 1);
        }
        if (found[i].hasNoteRow) {
            rows.push_back({notes[i].type, notes[i].filename, std::nullopt});
        }
        for (const FoundLine& line : found[i].lines) {
            rows.push_back({notes[i].type, notes[i].filename, line});
        }
    }
    return rows;
}

std::string shown(const PlainNote& note) {
    return note.filename + " title " + escaped(note.title) + (note.day ? " of a day" : "") +
           " changed " + base::tagText(note.changedDay) + " text " + escaped(note.text);
}

std::string shown(const Asked& asked) {
    std::string result = asked.tag.empty() ? "" : "tag " + escaped(asked.tag);
    for (const search::SearchQuery& query : asked.queries) {
        result += "query text=" + escaped(query.text) + shownList("word", query.words) +
                  shownList("phrase", query.phrases) + shownList("not", query.excluded) +
                  shownList("title", query.titles) + shownList("folder", query.folders) +
                  shownKinds(query.kinds) + shownDays(query.days) + "; ";
    }
    return result + (asked.filter.isActive ? "filter" : "no filter") +
           shownKinds(asked.filter.kinds) + (asked.filter.noteItem ? " noteItem" : "") +
           (asked.filter.calendarItem ? " calendarItem" : "") + shownDays(asked.filter.days);
}

}  // namespace tessaly::tests
