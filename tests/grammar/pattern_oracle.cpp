// SPDX-License-Identifier: MIT
#include "grammar/pattern_oracle.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

#include "base/utf8.h"
#include "grammar/disassembled_todo.h"
#include "grammar/patterns.h"

namespace tessaly::grammar::testing {

namespace {

using base::RegexMatch;
using base::TextRange;

struct Found {
    std::size_t location;
    std::string text;

    auto operator<=>(const Found&) const = default;
};

std::string groupText(std::u16string_view line, const std::optional<TextRange>& group) {
    return group ? base::toUtf8(base::textIn(line, *group)) : "";
}

std::size_t groupLength(const std::optional<TextRange>& group) {
    return group ? group->length : 0;
}

/// A match counts at the line's start alone, wherever else `^` may match.
std::optional<RegexMatch> atStart(const char16_t* pattern, std::u16string_view line) {
    auto match = patterns::compiled(pattern).find(line);
    return match && match->groups[0]->location == 0 ? match : std::nullopt;
}

std::string describe(TodoType type, std::size_t indents, std::size_t level,
                     std::string_view content) {
    return fmt::format("{} indents={} level={} content={{{}}}", base::rawValue(type), indents,
                       level, content);
}

TodoType typeOfItem(std::u16string_view line, const RegexMatch& match,
                    const MarkerSettings& settings) {
    const std::u16string_view box = base::textIn(line, *match.groups[4]);
    if (!box.empty()) {
        switch (box[1]) {
            case u'x': return TodoType::done;
            case u'-': return TodoType::cancelled;
            case u'>': return TodoType::scheduled;
            default: return TodoType::open;
        }
    }
    const std::u16string_view marker = base::textIn(line, *match.groups[1]);
    const char16_t sign = marker[marker.size() - 2];
    const bool counts = sign == u'*'   ? settings.isAsteriskTodo
                        : sign == u'-' ? settings.isDashTodo
                                       : settings.isNumbersTodo;
    return counts ? TodoType::open : TodoType::list;
}

std::size_t leadingTabs(std::string_view line) {
    return std::min(line.find_first_not_of('\t'), line.size());
}

std::string classByPatterns(std::string_view utf8, std::u16string_view line,
                            const MarkerSettings& settings) {
    if (base::trimmed(utf8).empty()) {
        return describe(TodoType::empty, leadingTabs(utf8), 0, "");
    }
    if (const auto match = atStart(patterns::taskOrList, line)) {
        return describe(typeOfItem(line, *match, settings),
                        groupLength(match->groups[2]) + groupLength(match->groups[3]), 0,
                        groupText(line, match->groups[5]));
    }
    if (const auto match = atStart(patterns::headingOrQuote, line)) {
        const bool heading = line[0] == u'#';
        return describe(heading ? TodoType::title : TodoType::quote, groupLength(match->groups[2]),
                        heading ? match->groups[1]->length - 1 : 0,
                        groupText(line, match->groups[3]));
    }
    return describe(TodoType::text, leadingTabs(utf8), 0,
                    utf8.ends_with('\r') ? utf8.substr(0, utf8.size() - 1) : utf8);
}

std::string classByScanner(std::string_view line, const MarkerSettings& settings) {
    const LineClass found = classifyLine(line, settings);
    const bool empty = found.type == TodoType::empty;
    return describe(found.type, found.indents, found.headingLevel,
                    empty ? "" : contentOf(line, found));
}

std::string partsByPatterns(std::string_view utf8, std::u16string_view line) {
    const auto match = atStart(patterns::disassembled, line);
    const auto text = [&](std::size_t group) { return groupText(line, match->groups[group]); };
    const auto content = atStart(patterns::contentPrefix, line);
    const auto prefix = atStart(patterns::anyPrefix, line);
    return fmt::format(" parts={{{}{}|{}|{}}} content@{} bare={{{}}}", text(1), text(2), text(3),
                       text(7), content->groups[0]->end(),
                       prefix ? groupText(line, prefix->groups[1]) : std::string(utf8));
}

std::string partsByScanner(std::string_view line) {
    const DisassembledTodo todo = disassemble(line);
    return fmt::format(" parts={{{}|{}|{}}} content@{} bare={{{}}}", todo.pattern, todo.state,
                       todo.rest, contentLocation(line), withoutPrefix(line));
}

std::string join(std::string_view name, std::vector<Found> tags) {
    std::sort(tags.begin(), tags.end());
    std::string text;
    for (const Found& tag : tags) {
        text += fmt::format(" {}@{}{{{}}}", name, tag.location, tag.text);
    }
    return text;
}

std::vector<Found> foundByPattern(const char16_t* pattern, std::size_t group,
                                  std::u16string_view line) {
    std::vector<Found> found;
    for (const RegexMatch& match : patterns::compiled(pattern).findAll(line)) {
        found.push_back({match.groups[group]->location, groupText(line, match.groups[group])});
    }
    return found;
}

template <class Wanted>
std::vector<Found> foundByScanner(std::string_view line, const std::vector<Mark>& marks,
                                  Wanted wanted) {
    std::vector<Found> found;
    for (const Mark& mark : marks) {
        if (wanted(mark.kind)) {
            found.push_back({base::utf16Length(line.substr(0, mark.start)),
                             std::string(line.substr(mark.start, mark.end - mark.start))});
        }
    }
    return found;
}

}  // namespace

std::string readByPatterns(std::string_view utf8, const MarkerSettings& settings) {
    const std::u16string line = base::toUtf16(utf8);
    return classByPatterns(utf8, line, settings) + partsByPatterns(utf8, line) +
           join("hashtag", foundByPattern(patterns::hashtag, 3, line)) +
           join("mention", foundByPattern(patterns::mention, 3, line)) +
           join("date", foundByPattern(patterns::dateTag, 1, line)) +
           join("done", foundByPattern(patterns::doneTag, 1, line));
}

std::string readByScanner(std::string_view line, const MarkerSettings& settings) {
    std::vector<Mark> marks;
    findMarks(line, marks);
    const auto kind = [](MarkKind wanted) {
        return [wanted](MarkKind found) { return found == wanted; };
    };
    const auto date = [](MarkKind found) {
        return found == MarkKind::scheduleTag || found == MarkKind::backLink ||
               found == MarkKind::plainDate;
    };
    return classByScanner(line, settings) + partsByScanner(line) +
           join("hashtag", foundByScanner(line, marks, kind(MarkKind::hashtag))) +
           join("mention", foundByScanner(line, marks, kind(MarkKind::mention))) +
           join("date", foundByScanner(line, marks, date)) +
           join("done", foundByScanner(line, marks, kind(MarkKind::doneTag)));
}

}  // namespace tessaly::grammar::testing
