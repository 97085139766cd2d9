// SPDX-License-Identifier: MIT
#include "app/line_look.h"

#include <algorithm>
#include <iterator>

#include "app/inline_parts.h"
#include "app/line_fences.h"
#include "base/utf8.h"
#include "grammar/line_parts.h"
#include "grammar/line_scanner.h"

namespace tessaly::app {

namespace {

using editor::ByteSpan;
using grammar::LineClass;
using grammar::TodoType;
using LookKind = LineLook::Kind;

/// Where the bytes of a line are in UTF-16, told in one step each.
class UnitsOfLine {
public:
    explicit UnitsOfLine(std::string_view line) {
        if (base::isAscii(line)) {
            return;
        }
        _units.reserve(line.size() + 1);
        std::size_t units = 0;
        for (std::size_t at = 0; at < line.size();) {
            const base::CodePoint next = base::codePointAt(line, at);
            _units.insert(_units.end(), next.size, units);
            units += next.value > 0xFFFF ? 2 : 1;
            at += next.size;
        }
        _units.push_back(units);
    }

    base::TextRange of(ByteSpan span) const {
        const std::size_t start = unit(span.start);
        return {start, unit(span.end) - start};
    }

private:
    std::size_t unit(std::size_t byte) const { return _units.empty() ? byte : _units[byte]; }

    std::vector<std::size_t> _units;  // none for ASCII, where they are the bytes
};

bool hasNumber(const LineClass& found) {
    return found.marker == base::TodoCharacter::number;
}

bool countsBare(const LineClass& found, const grammar::MarkerSettings& markers) {
    switch (found.marker) {
        case base::TodoCharacter::asterisk: return markers.isAsteriskTodo;
        case base::TodoCharacter::dash: return markers.isDashTodo;
        default: return markers.isNumbersTodo;
    }
}

LookKind kindOfText(std::string_view line) {
    return isRule(line) ? LookKind::rule : isTableRow(line) ? LookKind::table : LookKind::text;
}

LookKind kindByGrammar(std::string_view line, const LineClass& found,
                       const grammar::MarkerSettings& markers) {
    if (grammar::isTask(found.type)) {
        return countsBare(found, markers) ? LookKind::task : LookKind::checklist;
    }
    switch (found.type) {
        case TodoType::title: return LookKind::heading;
        case TodoType::quote: return LookKind::quote;
        case TodoType::list: return hasNumber(found) ? LookKind::numbered : LookKind::bullet;
        default: return kindOfText(line);
    }
}

LookKind kindOfLine(std::string_view line, FenceState before, const LineClass& found,
                    const grammar::MarkerSettings& markers) {
    if (line.size() > longestStyledLine && base::utf16Length(line) > longestStyledLine) {
        return LookKind::plain;
    }
    if (before != FenceState::outside) {
        return closesFence(line, before) ? LookKind::fence : LookKind::code;
    }
    return fenceOpenedBy(line) != FenceState::outside ? LookKind::fence
                                                      : kindByGrammar(line, found, markers);
}

bool hasParts(LookKind kind) {
    return kind != LookKind::rule && kind != LookKind::code && kind != LookKind::fence &&
           kind != LookKind::plain;
}

/// A stretch of a line with its look, still in bytes.
struct StyledBytes {
    SpanKind kind;
    ByteSpan span;
    ByteSpan target;
};

/// The part's signs and words, and a link's address behind its title.
void addStyled(const InlinePart& part, std::vector<StyledBytes>& styled) {
    const bool hasAddress = part.target.start >= part.words.end;
    const std::size_t signsEnd = hasAddress ? part.target.start : part.whole.end;
    const std::size_t addressEnd = hasAddress ? part.target.end : part.whole.end;
    const StyledBytes all[] = {
        {part.kind, part.words, part.target},
        {SpanKind::markup, {part.whole.start, part.words.start}, {}},
        {SpanKind::markup, {part.words.end, signsEnd}, {}},
        {SpanKind::address, {signsEnd, addressEnd}, {}},
        {SpanKind::markup, {addressEnd, part.whole.end}, {}},
    };
    std::copy_if(std::begin(all), std::end(all), std::back_inserter(styled),
                 [](const StyledBytes& each) { return each.span.start < each.span.end; });
}

bool standsBefore(const StyledBytes& a, const StyledBytes& b) {
    return a.span.start != b.span.start ? a.span.start < b.span.start : a.span.end > b.span.end;
}

std::vector<LookSpan> spansOfParts(std::string_view line, std::size_t contentStart,
                                   const UnitsOfLine& units) {
    std::vector<StyledBytes> styled;
    for (const InlinePart& part : findInlineParts(line, contentStart)) {
        addStyled(part, styled);
    }
    std::stable_sort(styled.begin(), styled.end(), standsBefore);
    std::vector<LookSpan> spans;
    spans.reserve(styled.size());
    for (const StyledBytes& each : styled) {
        spans.push_back({each.kind, units.of(each.span), std::string(each.target.in(line))});
    }
    return spans;
}

/// The box of a line that has one, without its blank.
ByteSpan boxOf(const LineClass& found) {
    return found.hasBox ? ByteSpan{found.boxStart, found.contentStart - 1U} : ByteSpan{};
}

void addParts(std::string_view line, const LineClass& found, LineLook& look) {
    const UnitsOfLine units(line);
    const std::size_t indentEnd = grammar::skipSpace(line, 0);
    look.indent = units.of({0, indentEnd});
    if (found.contentStart > 0) {
        look.marker = units.of({indentEnd, found.contentStart});
    }
    look.box = units.of(boxOf(found));
    look.spans = spansOfParts(line, found.contentStart, units);
}

std::string_view withoutReturnAtEnd(std::string_view line) {
    return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

}  // namespace

LineLook lineLook(std::string_view line, FenceState before,
                  const grammar::MarkerSettings& markers) {
    const LineClass found = grammar::classifyLine(line, markers);
    LineLook look;
    look.state = found.type;
    look.kind = kindOfLine(line, before, found, markers);
    if (hasParts(look.kind)) {
        look.headingLevel = found.headingLevel;
        addParts(withoutReturnAtEnd(line), found, look);
    }
    return look;
}

}  // namespace tessaly::app
