// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "search/searchable_notes.h"

namespace tessaly::search {

/// Remembers which notes hold a text, for the searches that follow it while a word is typed: what
/// does not hold "me" does not hold "mee". Not for two threads at once.
class Narrowing {
public:
    using Notes = std::shared_ptr<const NotesInOrder>;

    /// The notes among which are all that hold `text` (folded) in a line or the title: `all`, or,
    /// where a part of the text has been looked for among the same, those that hold that.
    /// What is known of other notes than `all` is forgotten.
    Notes among(const Notes& all, std::string_view text);

    /// Whether it is worth the time, in which a newer search waits, to remember so many of `all`.
    static bool isWorthwhile(std::size_t holding, const Notes& all);
    /// `holding`: all notes of `all` that hold `text`.
    void remember(const Notes& all, std::string text, NotesInOrder holding);

private:
    Notes _all;  ///< null: nothing is remembered
    std::string _text;
    Notes _holding;
};

}  // namespace tessaly::search
