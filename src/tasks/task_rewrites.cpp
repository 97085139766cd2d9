// SPDX-License-Identifier: MIT
#include "tasks/task_rewrites.h"

#include <algorithm>
#include <initializer_list>
#include <vector>

#include <fmt/format.h>

#include "base/utf8.h"
#include "grammar/date_tags.h"
#include "grammar/line_action.h"
#include "grammar/line_scanner.h"
#include "tasks/repeats.h"

namespace tessaly::tasks {

namespace {

using grammar::MarkerSettings;
using grammar::MarkKind;
using grammar::TodoType;

constexpr std::string_view openBox = "[ ] ";

/// A task's or list's line taken apart. Tags are sought in `rest` alone, so that none that is taken
/// out takes the blank of marker or box along.
struct Parts {
    TodoType type;
    std::string_view prefix;  // indentation, marker and its blank
    std::string_view box;     // with its blank; empty when there is none
    std::string_view rest;
    std::string_view end;  // the carriage return, if there is one
};

/// Nothing for other lines.
std::optional<Parts> partsOf(std::string_view line, const MarkerSettings& markers = {}) {
    const std::size_t length = line.size() - (line.ends_with('\r') ? 1 : 0);
    const std::string_view text = line.substr(0, length);
    const grammar::LineClass found = grammar::classifyLine(text, markers);
    if (!grammar::isTask(found.type) && found.type != TodoType::list) {
        return std::nullopt;
    }
    return Parts{found.type, text.substr(0, found.boxStart),
                 text.substr(found.boxStart, found.contentStart - found.boxStart),
                 text.substr(found.contentStart), line.substr(length)};
}

/// The text without the marks of these kinds, all taken out at once.
std::string without(std::string_view text, std::initializer_list<MarkKind> kinds) {
    std::vector<grammar::Mark> marks;
    grammar::findMarks(text, marks);
    std::string kept;
    std::size_t from = 0;
    for (const grammar::Mark& mark : marks) {
        if (std::find(kinds.begin(), kinds.end(), mark.kind) != kinds.end()) {
            kept += text.substr(from, mark.start - from);
            from = mark.end;
        }
    }
    return kept += text.substr(from);
}

/// The line with another rest, and with the box that the state actions know where it is open.
std::string withRest(const Parts& parts, std::string_view rest) {
    const bool isOpen = parts.type == TodoType::open || parts.type == TodoType::list;
    return fmt::format("{}{}{}{}", parts.prefix, isOpen ? openBox : parts.box, rest, parts.end);
}

/// An open task, with a box where the bare marker would not be read as one.
std::string openTask(std::string_view prefix, std::string_view rest,
                     const MarkerSettings& markers) {
    const std::string bare = fmt::format("{}{}", prefix, rest);
    const grammar::LineClass found = grammar::classifyLine(bare, markers);
    return found.type == TodoType::open && !found.hasBox
               ? bare
               : fmt::format("{}{}{}", prefix, openBox, rest);
}

}  // namespace

bool isActionable(std::string_view line) {
    return partsOf(line).has_value();
}

std::string completed(std::string_view line, const base::LocalTime& now,
                      const RewriteSettings& settings) {
    const auto parts = partsOf(line);
    if (!parts) {
        return std::string(line);
    }
    std::string rest(parts->rest);
    if (settings.isAppendCompletionLinks) {
        rest = fmt::format(
            "{} @done({})", without(rest, {MarkKind::doneTag}),
            grammar::writeTagDate(now, grammar::TagTime::timeAndMarker, settings.hourCycle));
    }
    return grammar::applied(grammar::markAsDone, withRest(*parts, rest));
}

std::string cancelled(std::string_view line) {
    const auto parts = partsOf(line);
    return parts ? grammar::applied(grammar::markAsCanceled, withRest(*parts, parts->rest))
                 : std::string(line);
}

std::string reopened(std::string_view line, const MarkerSettings& markers) {
    const auto parts = partsOf(line);
    if (!parts) {
        return std::string(line);
    }
    const std::string rest = parts->type == TodoType::scheduled
                                 ? without(parts->rest, {MarkKind::doneTag, MarkKind::scheduleTag})
                                 : without(parts->rest, {MarkKind::doneTag});
    return openTask(parts->prefix, rest, markers).append(parts->end);
}

std::string scheduled(std::string_view line, base::Day day, WriteDay writeDay) {
    auto parts = partsOf(line);
    if (!parts || parts->type == TodoType::done || parts->type == TodoType::cancelled) {
        return std::string(line);
    }
    // The action would take the box of a scheduled line off.
    parts->type = TodoType::open;
    std::string rest(parts->rest);
    if (writeDay == WriteDay::yes) {
        rest = fmt::format("{} >{}",
                           without(rest, {MarkKind::doneTag, MarkKind::scheduleTag,
                                          MarkKind::backLink, MarkKind::plainDate}),
                           base::tagText(day));
    }
    return grammar::applied(grammar::markAsScheduled, withRest(*parts, rest));
}

std::string copyForDay(std::string_view line, std::optional<base::Day> sourceDay,
                       const RewriteSettings& settings) {
    const auto parts = partsOf(line);
    if (!parts) {
        return std::string(line);
    }
    const bool isLinked = sourceDay && settings.isAppendScheduleLinks;
    std::string rest = isLinked || !sourceDay
                           ? without(parts->rest, {MarkKind::doneTag, MarkKind::scheduleTag,
                                                   MarkKind::backLink, MarkKind::plainDate})
                           : without(parts->rest, {MarkKind::doneTag, MarkKind::scheduleTag});
    if (isLinked) {
        rest += " <" + base::tagText(*sourceDay);
    }
    return openTask(base::trimmedStart(parts->prefix), rest, settings.markers);
}

std::string repeatCopy(std::string_view line, int index, int count, const MarkerSettings& markers) {
    const std::string tag = fmt::format(" @repeat({}/{})", index, count);
    const auto parts = partsOf(line, markers);
    if (!parts || parts->type == TodoType::list) {
        const std::size_t length = line.size() - (line.ends_with('\r') ? 1 : 0);
        return removeRepeatTags(line.substr(0, length)) + tag;
    }
    const std::string rest = removeRepeatTags(
        without(parts->rest, {MarkKind::doneTag, MarkKind::scheduleTag, MarkKind::backLink}));
    return parts->type == TodoType::open && !parts->box.empty()
               ? fmt::format("{}{}{}{}", parts->prefix, openBox, rest, tag)
               : openTask(parts->prefix, rest, markers) + tag;
}

std::optional<std::string> withFinalRepeat(std::string_view line, const MarkerSettings& markers) {
    const auto parts = partsOf(line, markers);
    if (!parts || parts->type != TodoType::done || hasFinalRepeat(parts->rest)) {
        return std::nullopt;
    }
    const auto tag = findRepeatTag(parts->rest);
    if (!tag || tag->index != tag->count) {
        return std::nullopt;
    }
    return fmt::format("{}{}", line.substr(0, line.size() - parts->end.size()), " @final-repeat")
        .append(parts->end);
}

}  // namespace tessaly::tasks
