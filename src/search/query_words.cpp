// SPDX-License-Identifier: MIT
#include "search/query_words.h"

#include <array>
#include <cstddef>

#include "base/utf8.h"
#include "search/folded_text.h"

namespace tessaly::search {
namespace {

using Kind = QueryWord::Kind;
using Reason = MisreadWord::Reason;

constexpr std::array<std::string_view, 6> names{"is", "in", "on", "before", "after", "title"};

/// How a word begins: its kind and the bytes before its value.
struct Head {
    Kind kind = Kind::plain;
    std::size_t size = 0;
};

Head headOf(std::string_view rest) {
    if (rest.front() == '"') {
        return {Kind::phrase, 0};
    }
    if (rest.front() == '-') {
        // Options ("--all") and rulers ("---") are what notes hold, not what users leave out.
        return rest.starts_with("--") ? Head{} : Head{Kind::excluded, 1};
    }
    for (const std::string_view name : names) {
        if (rest.starts_with(name) && rest.substr(name.size()).starts_with(':')) {
            return {Kind::named, name.size() + 1};
        }
    }
    return {};
}

std::size_t endOfWord(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size()) {
        const base::CodePoint next = base::codePointAt(text, at);
        if (base::isWhiteSpace(next.value)) {
            break;
        }
        at += next.size;
    }
    return at;
}

bool endsAt(std::string_view text, std::size_t at) {
    return at == text.size() || base::isWhiteSpace(base::codePointAt(text, at).value);
}

/// A value, and the bytes that it takes with its quotes.
struct Value {
    std::string_view text;
    std::size_t size = 0;
};

/// Nothing when a quote is opened and the next one does not end the word. Then there is no other
/// before that one, so that all searches for quotes together pass the query once.
std::optional<Value> valueAt(std::string_view rest) {
    if (!rest.starts_with('"')) {
        const std::size_t size = endOfWord(rest);
        return Value{rest.substr(0, size), size};
    }
    const std::size_t close = rest.find('"', 1);
    if (close == std::string_view::npos || !endsAt(rest, close + 1)) {
        return std::nullopt;
    }
    return Value{rest.substr(1, close - 1), close + 1};
}

std::optional<QueryWord> takeMisread(std::string_view& rest, Reason reason) {
    auto word = takePlainWord(rest);
    if (word && word->whole != "-") {
        word->misread = reason;
    }
    return word;
}

}  // namespace

std::optional<QueryWord> takePlainWord(std::string_view& rest) {
    rest = base::trimmedStart(rest);
    if (rest.empty()) {
        return std::nullopt;
    }
    QueryWord word;
    word.whole = rest.substr(0, endOfWord(rest));
    rest.remove_prefix(word.whole.size());
    return word;
}

std::string foldedAsTyped(std::string_view query) {
    return base::isUtf8(query) ? folded(query) : folded(base::toUtf8(base::toUtf16(query)));
}

std::optional<QueryWord> takeWord(std::string_view& rest) {
    rest = base::trimmedStart(rest);
    const Head head = rest.empty() ? Head{} : headOf(rest);
    if (head.kind == Kind::plain) {
        return takePlainWord(rest);
    }
    const auto value = valueAt(rest.substr(head.size));
    if (!value) {
        return takeMisread(rest, Reason::openQuote);
    }
    if (base::trimmed(value->text).empty()) {
        return takeMisread(rest, Reason::nothingNamed);
    }
    QueryWord word;
    word.kind = head.kind;
    word.whole = rest.substr(0, head.size + value->size);
    word.name = head.kind == Kind::named ? rest.substr(0, head.size - 1) : std::string_view();
    word.value = value->text;
    rest.remove_prefix(word.whole.size());
    return word;
}

}  // namespace tessaly::search
