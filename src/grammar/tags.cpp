// SPDX-License-Identifier: MIT
#include "grammar/tags.h"

#include <algorithm>

#include "base/normalise.h"
#include "base/utf8.h"
#include "grammar/line_scanner.h"

namespace tessaly::grammar {

namespace {

/// Parents of a tag are listed up to so many bytes in all: a tag of thousands of levels is damage,
/// and its parents together would be thousands of times its length.
constexpr std::size_t maxParentBytes = 64 * 1024;

std::vector<std::string> marksOf(std::string_view line, MarkKind kind) {
    std::vector<Mark> marks;
    findMarks(line, marks);
    std::vector<std::string> tags;
    for (const Mark& mark : marks) {
        if (mark.kind == kind) {
            tags.emplace_back(line.substr(mark.start, mark.end - mark.start));
        }
    }
    return tags;
}

/// Whether a tag, which no white space surrounds, is surely as lists hold it.
bool isNormalised(std::string_view tag) {
    return std::none_of(tag.begin(), tag.end(), [](char c) {
        return static_cast<unsigned char>(c) >= 0x80 || (c >= 'A' && c <= 'Z');
    });
}

/// Calls `visit` with each beginning of `tag` that names a parent.
template <class Visit>
void eachParent(std::string_view tag, Visit visit) {
    const std::size_t nameEnd = std::min(tag.find('('), tag.size());
    std::size_t bytes = 0;
    for (std::size_t at = 1; at < nameEnd && bytes + at <= maxParentBytes; ++at) {
        const bool endsPart = tag[at] == '/' && tag[at - 1] != '/' && at > 1;
        if (endsPart) {
            visit(tag.substr(0, at));
            bytes += at;
        }
    }
}

}  // namespace

std::vector<std::string> hashtagsOf(std::string_view line) {
    return marksOf(line, MarkKind::hashtag);
}

std::vector<std::string> mentionsOf(std::string_view line) {
    return marksOf(line, MarkKind::mention);
}

bool isBookkeeping(std::string_view mention) {
    return mention.starts_with("@done(") || mention.starts_with("@repeat(") ||
           mention.starts_with("@final-repeat");
}

std::string normalisedTag(std::string_view tag) {
    // Lower case can leave what was composed in pieces.
    return base::nfc(base::lowerCased(base::nfc(base::trimmed(tag))));
}

std::vector<std::string> withParents(std::string_view tag) {
    std::vector<std::string> tags;
    eachParent(tag, [&tags](std::string_view parent) { tags.emplace_back(parent); });
    tags.emplace_back(tag);
    return tags;
}

void TagList::add(std::string_view tag) {
    if (isBookkeeping(tag)) {
        return;
    }
    if (isNormalised(tag)) {
        addWithParents(tag);
    } else {
        addWithParents(normalisedTag(tag));
    }
}

void TagList::addWithParents(std::string_view tag) {
    eachParent(tag, [this](std::string_view parent) { addOnce(parent); });
    addOnce(tag);
}

void TagList::addOnce(std::string_view tag) {
    if (_tags.size() < smallSize) {
        if (std::find(_tags.begin(), _tags.end(), tag) == _tags.end()) {
            _tags.emplace_back(tag);
        }
        return;
    }
    if (_known.empty()) {
        _known.insert(_tags.begin(), _tags.end());
    }
    if (_known.emplace(tag).second) {
        _tags.emplace_back(tag);
    }
}

}  // namespace tessaly::grammar
