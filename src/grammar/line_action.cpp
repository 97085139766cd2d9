// SPDX-License-Identifier: MIT
#include "grammar/line_action.h"

#include <optional>

#include "base/utf8.h"
#include "grammar/date_tags.h"
#include "grammar/line_scanner.h"
#include "grammar/patterns.h"

namespace tessaly::grammar {

namespace {

constexpr char withoutBox[] = "$1 $2";
constexpr std::string_view bullet = "* ";

/// A line in both forms: the patterns count UTF-16 units, and what is kept are the line's bytes.
class Line {
public:
    explicit Line(std::string_view bytes) : _bytes(bytes), _units(base::toUtf16(bytes)) {}

    bool matches(const char16_t* pattern) const { return match(pattern).has_value(); }

    /// The line with the match replaced; nothing where there is none.
    std::optional<std::string> replaced(const char16_t* pattern, const char* withTemplate) const;

private:
    std::optional<base::RegexMatch> match(const char16_t* pattern) const {
        return pattern == nullptr ? std::nullopt : patterns::compiled(pattern).matchStart(_units);
    }
    std::string_view bytesIn(const std::optional<base::TextRange>& range) const;

    std::string_view _bytes;
    const std::u16string _units;
};

std::string_view Line::bytesIn(const std::optional<base::TextRange>& range) const {
    if (!range) {
        return {};
    }
    const std::size_t start = base::byteOffset(_bytes, range->location);
    return _bytes.substr(start, base::byteOffset(_bytes, range->end()) - start);
}

std::optional<std::string> Line::replaced(const char16_t* pattern, const char* withTemplate) const {
    const auto found = match(pattern);
    if (!found) {
        return std::nullopt;
    }
    const std::string_view with = withTemplate == nullptr ? "" : withTemplate;
    std::string result;
    for (std::size_t at = 0; at < with.size(); ++at) {
        const char next = at + 1 < with.size() ? with[at + 1] : '\0';
        if (with[at] != '$' || next < '1' || next > '9') {
            result += with[at];
            continue;
        }
        const auto group = static_cast<std::size_t>(next - '0');
        result += group < found->groups.size() ? bytesIn(found->groups[group]) : "";
        ++at;
    }
    return result += _bytes.substr(bytesIn(found->groups[0]).size());
}

}  // namespace

constinit const StateAction markAsDone{{.linePattern = patterns::actionableLine,
                                        .applyTemplate = "$1[x] $2",
                                        .stripPattern = patterns::anyBox,
                                        .stripTemplate = withoutBox,
                                        .appliedPattern = patterns::doneBox,
                                        .removeTemplate = withoutBox},
                                       StateAction::DoneTag::stays};

constinit const StateAction markAsCanceled{{.linePattern = patterns::actionableLine,
                                            .applyTemplate = "$1[-] $2",
                                            .stripPattern = patterns::anyBox,
                                            .stripTemplate = withoutBox,
                                            .appliedPattern = patterns::canceledBox,
                                            .removeTemplate = withoutBox},
                                           StateAction::DoneTag::goes};

constinit const StateAction markAsScheduled{{.linePattern = patterns::actionableLine,
                                             .applyTemplate = "$1[>] $2",
                                             .stripPattern = patterns::openOrScheduledBox,
                                             .stripTemplate = withoutBox,
                                             .appliedPattern = patterns::scheduledBox,
                                             .removeTemplate = withoutBox,
                                             .exclusionPattern = patterns::doneOrCanceledBox},
                                            StateAction::DoneTag::goes};

std::string applied(const LineAction& action, std::string_view line) {
    const Line read(line);
    if (read.matches(action.exclusionPattern)) {
        return std::string(line);
    }
    if (auto without = read.replaced(action.appliedPattern, action.removeTemplate)) {
        return *std::move(without);
    }
    const auto stripped = read.replaced(action.stripPattern, action.stripTemplate);
    const auto result = stripped
                            ? Line(*stripped).replaced(action.linePattern, action.applyTemplate)
                            : read.replaced(action.linePattern, action.applyTemplate);
    return result.value_or(std::string(line));
}

std::string applied(const StateAction& action, std::string_view line) {
    const LineClass found = classifyLine(line, {});
    if (!isTask(found.type) && found.type != TodoType::list) {
        return std::string(line);
    }
    // The records decide by the box alone. A bullet stands for whatever marker is before it: a
    // pattern would be given up on a number or an indentation of a million characters.
    const std::string_view box = line.substr(found.boxStart, found.contentStart - found.boxStart);
    const std::string head = std::string(bullet) + std::string(box);
    std::string rest(line.substr(found.contentStart));
    if (action.doneTag == StateAction::DoneTag::goes && isApplicable(action.record, head)) {
        rest = DateTags::findAndRemoveDoneTag(rest);
    }
    return std::string(line.substr(0, found.boxStart)) +
           applied(action.record, head).substr(bullet.size()) + rest;
}

bool isApplicable(const LineAction& action, std::string_view line) {
    const Line read(line);
    return !read.matches(action.exclusionPattern) && read.matches(action.linePattern);
}

}  // namespace tessaly::grammar
