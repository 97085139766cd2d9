// SPDX-License-Identifier: MIT
#include "search/tag_marks.h"

#include <algorithm>
#include <vector>

#include "grammar/line_scanner.h"
#include "search/lowered_ascii.h"

namespace tessaly::search {

namespace {

bool startsWith(std::string_view text, std::string_view token) {
    return text.size() >= token.size() &&
           std::equal(token.begin(), token.end(), text.begin(),
                      [](char a, char b) { return a == loweredAscii(b); });
}

bool isTagOf(std::string_view mark, std::string_view token) {
    return startsWith(mark, token) && (mark.size() == token.size() || token.ends_with('/') ||
                                       mark[token.size()] == '/' || mark[token.size()] == '(');
}

bool isTag(const grammar::Mark& mark) {
    return mark.kind == grammar::MarkKind::hashtag || mark.kind == grammar::MarkKind::mention;
}

}  // namespace

std::optional<Stretch> findTag(std::string_view line, std::string_view token) {
    thread_local std::vector<grammar::Mark> marks;
    grammar::findMarks(line, marks);
    for (const grammar::Mark& mark : marks) {
        if (isTag(mark) && isTagOf(line.substr(mark.start, mark.end - mark.start), token)) {
            return Stretch{mark.start, mark.start + token.size()};
        }
    }
    return std::nullopt;
}

}  // namespace tessaly::search
