// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/text_range.h"

namespace tessaly::base {

/// One match: range 0 is the whole, the others the groups in order; a group that took no part is
/// nothing. Ranges are UTF-16 units of the text that was searched.
struct RegexMatch {
    std::vector<std::optional<TextRange>> groups;
};

/// A compiled pattern in ICU syntax, with `^` and `$` matching at line starts and ends. Immutable,
/// so that any number of threads may share it; each search makes its own matcher.
class Regex {
public:
    /// Never fails here: `valid()` tells whether the pattern compiled, `error()` why not. Every
    /// search with an invalid pattern finds nothing.
    explicit Regex(std::u16string_view pattern);
    ~Regex();
    Regex(Regex&&) noexcept;
    Regex& operator=(Regex&&) noexcept;

    bool valid() const;
    const std::string& error() const;

    /// The first match at or behind UTF-16 unit `from`. Nothing also when the search exceeded its
    /// time limit (about half a second), which is logged as "a pattern took too long".
    std::optional<RegexMatch> find(std::u16string_view text, std::size_t from = 0) const;

    /// The match that begins at the text's very start, where `find` also takes a later one. Nothing
    /// and the log as above.
    std::optional<RegexMatch> matchStart(std::u16string_view text) const;

    /// All matches, in order, none overlapping; those found so far when the search exceeded its
    /// time limit.
    std::vector<RegexMatch> findAll(std::u16string_view text) const;

    /// `text` with each match that `findAll` finds replaced by `replacement`, in which `$1` … `$9`
    /// stand for groups and every other character for itself. A group that took no part, or that
    /// the pattern does not have, is empty.
    std::u16string replaceAll(std::u16string_view text, std::u16string_view replacement) const;

private:
    struct Compiled;
    std::unique_ptr<const Compiled> _compiled;
};

/// The text of a range.
inline std::u16string_view textIn(std::u16string_view text, TextRange range) {
    return text.substr(range.location, range.length);
}

}  // namespace tessaly::base
