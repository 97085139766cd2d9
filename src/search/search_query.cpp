// SPDX-License-Identifier: MIT
#include "search/search_query.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/utf8.h"
#include "search/folded_text.h"
#include "search/query_words.h"

namespace tessaly::search {
namespace {

using Kind = QueryWord::Kind;
using Reason = MisreadWord::Reason;
using grammar::TodoType;

void addOnce(std::vector<std::string>& texts, std::string_view text) {
    if (std::find(texts.begin(), texts.end(), text) == texts.end()) {
        texts.emplace_back(text);
    }
}

std::optional<LineKinds> kindsOf(std::string_view state) {
    static constexpr std::array<std::pair<std::string_view, TodoType>, 5> rows{
        {{"open", TodoType::open},
         {"done", TodoType::done},
         {"scheduled", TodoType::scheduled},
         {"cancelled", TodoType::cancelled},
         {"canceled", TodoType::cancelled}}};
    if (state == "task") {
        return LineKinds::tasks();
    }
    for (const auto& [name, type] : rows) {
        if (state == name) {
            LineKinds kinds;
            kinds.add(type);
            return kinds;
        }
    }
    return std::nullopt;
}

std::string_view withoutOuterSlashes(std::string_view path) {
    while (path.starts_with('/')) {
        path.remove_prefix(1);
    }
    while (path.ends_with('/')) {
        path.remove_suffix(1);
    }
    return path;
}

/// Reads a query word by word.
class QueryReader {
public:
    explicit QueryReader(const ParseDay& parseDay) : _parseDay(parseDay) {}

    SearchQuery read(std::string_view query) {
        std::string_view rest = query;
        while (const auto word = next(rest)) {
            take(*word);
        }
        _query.kinds = _kinds.hasTasks() ? _kinds : LineKinds::all();
        if (!_hasOperators) {
            _query.text = query;
        }
        splitText();
        return std::move(_query);
    }

private:
    std::optional<QueryWord> next(std::string_view& rest) const {
        return _tried < SearchQuery::mostOperators ? takeWord(rest) : takePlainWord(rest);
    }

    void take(const QueryWord& word) {
        _tried += word.kind != Kind::plain || word.misread ? 1 : 0;
        const auto misread = word.kind == Kind::plain ? word.misread : misreadOperator(word);
        if (word.kind != Kind::plain && !misread) {
            _hasOperators = true;
            return;
        }
        _query.text.append(_query.text.empty() ? "" : " ").append(word.whole);
        if (misread) {
            _query.misread.push_back({*misread, std::string(word.whole)});
        }
    }

    /// Obeys an operator, or tells why it is none.
    std::optional<Reason> misreadOperator(const QueryWord& word) {
        switch (word.kind) {
            case Kind::phrase: addOnce(_query.phrases, word.value); return std::nullopt;
            case Kind::excluded: addOnce(_query.excluded, word.value); return std::nullopt;
            default: return misreadNamed(word.name, base::trimmed(word.value));
        }
    }

    std::optional<Reason> misreadNamed(std::string_view name, std::string_view value) {
        if (name == "is") {
            return misreadState(value);
        }
        if (name == "in") {
            return misreadFolder(value);
        }
        if (name == "title") {
            addOnce(_query.titles, value);
            return std::nullopt;
        }
        return misreadDay(name, value);
    }

    std::optional<Reason> misreadState(std::string_view state) {
        const auto kinds = kindsOf(state);
        if (!kinds) {
            return Reason::noState;
        }
        _kinds.add(*kinds);
        return std::nullopt;
    }

    std::optional<Reason> misreadFolder(std::string_view path) {
        const std::string_view folder = withoutOuterSlashes(path);
        if (folder.empty()) {
            return Reason::nothingNamed;
        }
        addOnce(_query.folders, folder);
        return std::nullopt;
    }

    std::optional<Reason> misreadDay(std::string_view name, std::string_view text) {
        const auto day = _parseDay ? _parseDay(text) : std::nullopt;
        if (!day) {
            return Reason::noDay;
        }
        DayRange days{day, day};
        if (name == "before") {
            days = {std::nullopt, base::addDays(*day, -1)};
        } else if (name == "after") {
            days = {base::addDays(*day, 1), std::nullopt};
        }
        _query.days = _query.days.with(days);
        return std::nullopt;
    }

    void splitText() {
        std::string_view rest = _query.text;
        std::size_t count = 0;
        while (const auto word = takePlainWord(rest)) {
            ++count;
            addOnce(_query.words, word->whole);
            if (_query.words.size() > SearchQuery::mostWords) {
                break;
            }
        }
        if (count < 2 || _query.words.size() > SearchQuery::mostWords) {
            _query.words.clear();
        }
    }

    const ParseDay& _parseDay;
    SearchQuery _query;
    LineKinds _kinds;  // of the states that are named
    std::size_t _tried = 0;
    bool _hasOperators = false;
};

bool isOrIsBelow(std::string_view path, std::string_view folder) {
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

}  // namespace

std::optional<base::Day> SearchQuery::agendaDay() const {
    const bool isOneDay = days.first && days.first == days.last;
    const bool isAlone = text.empty() && phrases.empty() && excluded.empty() && titles.empty() &&
                         folders.empty() && kinds == LineKinds::all();
    return isOneDay && isAlone ? days.first : std::nullopt;
}

SearchQuery readQuery(std::string_view query, const ParseDay& parseDay) {
    const std::string foldedQuery = foldedAsTyped(query);
    return QueryReader(parseDay).read(base::trimmed(foldedQuery));
}

bool isInFolder(std::string_view notesFolder, std::string_view folder) {
    static constexpr std::string_view notes = "notes/";
    return isOrIsBelow(notesFolder, folder) ||
           (notesFolder.starts_with(notes) &&
            isOrIsBelow(notesFolder.substr(notes.size()), folder));
}

}  // namespace tessaly::search
