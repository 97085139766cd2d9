// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace tessaly::grammar {

/// The hashtags of one line, as written, in order, signs and arguments included.
std::vector<std::string> hashtagsOf(std::string_view line);

/// The mentions of one line, likewise; `@done(…)`, `@repeat(…)` and `@final-repeat` among them.
std::vector<std::string> mentionsOf(std::string_view line);

/// Whether a mention is the program's own book-keeping, which no list of mentions shows: it begins
/// with "@done(", "@repeat(" or "@final-repeat". Case-sensitive.
bool isBookkeeping(std::string_view mention);

/// A tag as lists hold it: trimmed, in lower case and NFC, so that each spelling of an accent is
/// the same tag.
std::string normalisedTag(std::string_view tag);

/// A tag and the parents that its "/"-separated name implies, parents first; an argument belongs to
/// the tag alone: `#a/b(c/d)` gives `#a`, `#a/b(c/d)`. Empty parts make no
/// parent, and only the first do, up to 64 KB in all.
std::vector<std::string> withParents(std::string_view tag);

/// Adds the tags and their parents to a list that holds each once, in order of appearance.
class TagList {
public:
    /// `tag` as a scan finds it in the text, with its sign; book-keeping mentions are left out.
    void add(std::string_view tag);

    const std::vector<std::string>& tags() const { return _tags; }
    /// Gives the list away; the object is then as new.
    std::vector<std::string> take() {
        _known.clear();
        return std::exchange(_tags, {});
    }

private:
    /// Up to this many tags, which nearly every note stays below, a search is quicker than a set.
    static constexpr std::size_t smallSize = 16;

    void addWithParents(std::string_view tag);
    void addOnce(std::string_view tag);

    std::vector<std::string> _tags;
    std::unordered_set<std::string> _known;  // filled from `smallSize` tags on
};

}  // namespace tessaly::grammar
