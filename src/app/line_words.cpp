// SPDX-License-Identifier: MIT
#include "app/line_words.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

#include "app/line_outline.h"
#include "base/localisation.h"
#include "base/utf8.h"
#include "grammar/date_tags.h"
#include "grammar/line_scanner.h"

namespace tessaly::app {

namespace {

using base::tr;
using grammar::TodoType;
using SpokenKind = LineLook::Kind;

constexpr std::size_t mostLinesBelow = 300;

std::string spokenState(TodoType state) {
    switch (state) {
        case TodoType::done: return tr("state of a task", "done");
        case TodoType::cancelled: return tr("state of a task", "cancelled");
        case TodoType::scheduled: return tr("state of a task", "scheduled");
        default: return tr("state of a task", "open");
    }
}

bool isQuietWhenSpoken(SpanKind kind) {
    switch (kind) {
        case SpanKind::markup:
        case SpanKind::address:
        case SpanKind::scheduleTag:
        case SpanKind::backLink:
        case SpanKind::doneTag: return true;
        default: return false;
    }
}

/// The words of a line, without signs and what is said in another way.
std::string spokenText(std::string_view line, const LineLook& look) {
    const std::u16string units = base::toUtf16(line);
    std::u16string kept;
    std::size_t from = std::max(look.indent.end(), look.marker.end());
    for (const LookSpan& span : look.spans) {
        if (isQuietWhenSpoken(span.kind) && span.range.location >= from) {
            kept += units.substr(from, span.range.location - from);
            from = span.range.end();
        }
    }
    kept += units.substr(std::min(from, units.size()));
    return std::string(base::trimmed(base::toUtf8(kept)));
}

std::string spokenDay(base::Day day, base::Day today, const grammar::DateStringHelper& names) {
    const std::string relative = names.relativeDay(day, today);
    if (relative != names.dayHeader(day)) {
        return relative;
    }
    return names.formats().day(day, day.year() == today.year() ? "EEEEdMMMM" : "EEEEdMMMMyyyy");
}

std::string spokenDueDay(std::string_view line, base::Day today,
                         const grammar::DateStringHelper& names) {
    for (const grammar::DateTag& tag : grammar::DateTags::findDateTags(line)) {
        if (tag.kind == grammar::MarkKind::scheduleTag && tag.day) {
            return fmt::format(fmt::runtime(tr("due {}")), spokenDay(*tag.day, today, names));
        }
    }
    return {};
}

std::string spokenSubTasks(std::size_t count) {
    return count == 0
               ? std::string()
               : fmt::format(fmt::runtime(base::trPlural("{} sub-task", "{} sub-tasks", count)),
                             count);
}

std::string spokenParts(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts) {
        text += part.empty() || text.empty() ? part : ", " + part;
    }
    return text;
}

}  // namespace

std::size_t subTasksBelow(std::string_view line, const NextLine& next,
                          const grammar::MarkerSettings& markers) {
    const OutlineLine head = outlineLine(line, FenceState::outside);
    std::size_t count = 0;
    for (std::size_t seen = 0; seen < mostLinesBelow; ++seen) {
        const auto below = next();
        if (!below) {
            break;
        }
        const OutlineLine outline = outlineLine(*below, FenceState::outside);
        if (outline.kind == OutlineLine::Kind::blank) {
            continue;
        }
        if (outline.kind == OutlineLine::Kind::heading || outline.indent <= head.indent) {
            break;
        }
        count += grammar::isTask(grammar::classifyLine(*below, markers).type) ? 1 : 0;
    }
    return count;
}

std::string lineInWords(std::string_view line, const LineLook& look, std::size_t subTasks,
                        base::Day today, const grammar::DateStringHelper& names) {
    switch (look.kind) {
        case SpokenKind::task:
        case SpokenKind::checklist:
            return spokenParts({tr("Task"), spokenState(look.state), spokenText(line, look),
                                spokenDueDay(line, today, names), spokenSubTasks(subTasks)});
        case SpokenKind::heading:
            return spokenParts({fmt::format(fmt::runtime(tr("Heading {}")), look.headingLevel),
                                spokenText(line, look)});
        default: return {};
    }
}

}  // namespace tessaly::app
