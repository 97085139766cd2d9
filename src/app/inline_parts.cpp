// SPDX-License-Identifier: MIT
#include "app/inline_parts.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <utility>

#include "app/inline_emphasis.h"
#include "app/inline_links.h"
#include "grammar/line_parts.h"
#include "grammar/line_scanner.h"

namespace tessaly::app {

namespace {

using editor::ByteSpan;
using grammar::MarkKind;

bool spanHolds(ByteSpan outer, ByteSpan inner) {
    return outer.start <= inner.start && inner.end <= outer.end;
}

bool isTitled(const InlinePart& part) {
    return part.kind == SpanKind::link && part.target != part.words;
}

void fillSpan(std::string& text, ByteSpan span, char with) {
    std::fill(text.begin() + static_cast<std::ptrdiff_t>(span.start),
              text.begin() + static_cast<std::ptrdiff_t>(span.end), with);
}

void fillAll(std::string& text, const InlineParts& parts) {
    for (const InlinePart& part : parts) {
        fillSpan(text, part.whole, readAlready);
    }
}

InlineParts findEmphasisIn(std::string_view text, ByteSpan within) {
    InlineParts parts = findEmphasis(std::string(within.in(text)));
    for (InlinePart& part : parts) {
        for (ByteSpan* span : {&part.whole, &part.words}) {
            span->start += within.start;
            span->end += within.start;
        }
    }
    return parts;
}

constexpr std::array<SpanKind, 6> spanKinds{SpanKind::hashtag,     SpanKind::mention,
                                            SpanKind::scheduleTag, SpanKind::backLink,
                                            SpanKind::plainDate,   SpanKind::doneTag};
static_assert(spanKinds[static_cast<std::size_t>(MarkKind::doneTag)] == SpanKind::doneTag);

/// The grammar's marks. What is both a mention and a date is a date.
InlineParts findGrammarMarks(std::string_view line) {
    std::vector<grammar::Mark> marks;
    grammar::findMarks(line, marks);
    InlineParts parts;
    for (const grammar::Mark& mark : marks) {
        const ByteSpan span{grammar::skipSpace(line, mark.start), mark.end};
        if (mark.kind != MarkKind::mention || parts.empty() || parts.back().whole != span) {
            parts.push_back({spanKinds[static_cast<std::size_t>(mark.kind)], span, span, {}});
        }
    }
    return parts;
}

/// Whether other parts lie within the words of this one.
bool mayHoldParts(const InlinePart& part) {
    return part.kind != SpanKind::code && part.kind != SpanKind::noteLink &&
           part.kind != SpanKind::image && (part.kind != SpanKind::link || isTitled(part));
}

/// By start, the outer first, without those that cross another, its signs or its address.
InlineParts nestedParts(InlineParts parts) {
    std::stable_sort(parts.begin(), parts.end(), [](const InlinePart& a, const InlinePart& b) {
        return a.whole.start != b.whole.start ? a.whole.start < b.whole.start
                                              : a.whole.end > b.whole.end;
    });
    InlineParts kept;
    std::vector<std::size_t> around;
    for (const InlinePart& part : parts) {
        while (!around.empty() && kept[around.back()].whole.end <= part.whole.start) {
            around.pop_back();
        }
        const bool fits = around.empty() || (mayHoldParts(kept[around.back()]) &&
                                             spanHolds(kept[around.back()].words, part.whole));
        if (fits) {
            around.push_back(kept.size());
            kept.push_back(part);
        }
    }
    return kept;
}

/// Reads a line in the order of what goes before what: code, links, addresses, marks, emphasis.
/// Two copies tell what is left to read: one outside all of these, one for the titles of links.
class LineReading {
public:
    LineReading(std::string_view line, std::size_t contentStart)
        : _line(line), _contentStart(contentStart), _inTitles(line) {
        fillSpan(_inTitles, {0, contentStart}, ' ');
    }

    InlineParts all() {
        readCode();
        readLinks();
        readMarks();
        readEmphasis();
        return nestedParts(std::move(_parts));
    }

private:
    void readCode() {
        _parts = findCode(_inTitles);
        fillAll(_inTitles, _parts);
    }

    void readLinks() {
        const InlineParts links = findLinks(_inTitles);
        std::copy_if(links.begin(), links.end(), std::back_inserter(_titled), isTitled);
        _outside = _inTitles;
        fillAll(_outside, links);
        appendParts(_parts, links);
        const InlineParts addresses = findAddresses(_outside);
        fillAll(_outside, addresses);
        appendParts(_parts, addresses);
    }

    void readMarks() {
        InlineParts marks = findGrammarMarks(_line);
        const auto isTaken = [this](const InlinePart& mark) { return !isFree(mark.whole); };
        marks.erase(std::remove_if(marks.begin(), marks.end(), isTaken), marks.end());
        fillAll(_outside, marks);
        fillAll(_inTitles, marks);
        appendParts(_parts, marks);
    }

    void readEmphasis() {
        appendParts(_parts, findEmphasis(_outside));
        for (const InlinePart& link : _titled) {
            appendParts(_parts, findEmphasisIn(_inTitles, link.words));
        }
    }

    bool isFree(ByteSpan mark) const {
        const std::string_view text = mark.in(_line);
        return mark.start >= _contentStart &&
               (mark.in(_outside) == text || (isInTitle(mark) && mark.in(_inTitles) == text));
    }

    bool isInTitle(ByteSpan mark) const {
        const auto behind = std::upper_bound(
            _titled.begin(), _titled.end(), mark.start,
            [](std::size_t at, const InlinePart& link) { return at < link.words.start; });
        return behind != _titled.begin() && spanHolds(std::prev(behind)->words, mark);
    }

    const std::string_view _line;
    const std::size_t _contentStart;
    InlineParts _parts;
    InlineParts _titled;
    std::string _inTitles;
    std::string _outside;
};

}  // namespace

void appendParts(InlineParts& parts, const InlineParts& more) {
    parts.insert(parts.end(), more.begin(), more.end());
}

InlineParts findInlineParts(std::string_view line, std::size_t contentStart) {
    return LineReading(line, contentStart).all();
}

}  // namespace tessaly::app
