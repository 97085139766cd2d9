// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "grammar/line_scanner.h"

namespace tessaly::grammar {

inline constexpr std::string_view doneOpener = "@done(";
/// Of a date as tags hold it, "2019-05-21".
inline constexpr std::size_t tagDateLength = 10;

/// Finds the marks of one line from the places of its signs, given in order. Remembers how far it
/// has looked for a closing parenthesis and for the end of digits and punctuation, so that no line
/// makes it look at a byte more than a few times.
class MarkFinder {
public:
    /// `marks` is appended to.
    MarkFinder(std::string_view line, std::vector<Mark>& marks) : _line(line), _marks(marks) {}

    /// Looks at the sign ("#", "@", "<" or ">") at byte `place`.
    void sign(std::size_t place);

private:
    /// A stretch over which the answer to "where does it end?" is known to be the same.
    struct Known {
        std::size_t from = 0;
        std::size_t to = 0;  // exclusive; nothing is known while from == to
        std::size_t answer = 0;
    };

    void tag(std::size_t place, MarkKind kind, std::size_t& resume);
    void date(std::size_t place, MarkKind kind);
    void completion(std::size_t place);

    bool mayPrecedeTag(std::size_t place) const;
    bool isOnlyDigitsAndPunctuation(std::size_t place);
    std::size_t nameEnd(std::size_t place) const;
    std::size_t argumentEnd(std::size_t place);
    std::size_t withSpaceBefore(std::size_t place) const;
    void add(MarkKind kind, std::size_t start, std::size_t end);

    std::string_view _line;
    std::vector<Mark>& _marks;
    std::size_t _hashtagResume = 0;
    std::size_t _mentionResume = 0;
    Known _digitsAndPunctuation;
    Known _argument;
};

/// Whether `text` begins with a date as tags hold it, "2019-05-21" (days 01–31 in every month).
bool startsWithDate(std::string_view text);

/// The length of a time with its marker that `text` begins with ("09:05", "09:05 PM"); 0 for none.
std::size_t tagTimeLength(std::string_view text);

}  // namespace tessaly::grammar
