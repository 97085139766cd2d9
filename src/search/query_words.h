// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "search/search_query.h"

namespace tessaly::search {

/// A query of any bytes as it is read and compared: folded, and with U+FFFD for what is no UTF-8,
/// which else would be found within the characters of notes.
std::string foldedAsTyped(std::string_view query);

/// A word of a folded query, by its form alone. All views are of the query.
struct QueryWord {
    enum class Kind { plain, phrase, excluded, named };
    Kind kind = Kind::plain;
    std::string_view whole;  ///< as it stands there
    std::string_view name;   ///< of `named`: "is", "in", "on", "before", "after", "title"
    std::string_view value;  ///< what follows the sign or the name, without its quotes; never empty
    /// Of a plain word: why it is no operator though it looks like one.
    std::optional<MisreadWord::Reason> misread;
};

/// Takes the first word, and white space before it, off `rest`; nothing when there is none.
std::optional<QueryWord> takeWord(std::string_view& rest);

/// Takes up to the next white space, whatever it looks like.
std::optional<QueryWord> takePlainWord(std::string_view& rest);

}  // namespace tessaly::search
