// SPDX-License-Identifier: MIT
#include "grammar/date_tags.h"

#include <fmt/format.h>

#include "base/utf8.h"
#include "grammar/mark_finder.h"

namespace tessaly::grammar {

namespace {

bool isDate(const Mark& mark) {
    return mark.kind == MarkKind::scheduleTag || mark.kind == MarkKind::backLink ||
           mark.kind == MarkKind::plainDate;
}

bool isDone(const Mark& mark) {
    return mark.kind == MarkKind::doneTag;
}

std::string_view textOf(std::string_view line, const Mark& mark) {
    return line.substr(mark.start, mark.end - mark.start);
}

/// Walks the marks of a line that `wanted` picks, and tells where each lies in UTF-16 units.
template <class Wanted, class Visit>
void eachMark(std::string_view line, Wanted wanted, Visit visit) {
    std::vector<Mark> marks;
    findMarks(line, marks);
    std::size_t units = 0;
    std::size_t counted = 0;
    for (const Mark& mark : marks) {
        if (wanted(mark)) {
            units += base::utf16Length(line.substr(counted, mark.start - counted));
            const std::size_t length = base::utf16Length(textOf(line, mark));
            visit(mark, base::TextRange{units, length});
            units += length;
            counted = mark.end;
        }
    }
}

template <class Wanted>
std::string without(std::string_view line, Wanted wanted) {
    std::string kept;
    std::size_t from = 0;
    eachMark(line, wanted, [&](const Mark& mark, base::TextRange) {
        kept += line.substr(from, mark.start - from);
        from = mark.end;
    });
    return kept += line.substr(from);
}

/// "09:05 PM" on a 24-hour clock. Twelve is the only hour that a marker of the morning moves back.
base::LocalTime timeOf(base::Day day, std::string_view text) {
    int hour = (text[0] - '0') * 10 + text[1] - '0';
    const int minute = (text[3] - '0') * 10 + text[4] - '0';
    const char marker = text.size() > 5 ? text[text.size() - 2] : ' ';
    if ((marker == 'p' || marker == 'P') && hour < 12) {
        hour += 12;
    } else if ((marker == 'a' || marker == 'A') && hour == 12) {
        hour = 0;
    }
    return {day, hour, minute};
}

}  // namespace

std::optional<base::Day> DateTags::dayOf(std::string_view mark) {
    return base::dayFromTagText(mark.substr(mark.size() - tagDateLength));
}

std::vector<DateTag> DateTags::findDateTags(std::string_view line) {
    std::vector<DateTag> tags;
    eachMark(line, isDate, [&](const Mark& mark, base::TextRange range) {
        const std::string_view text = textOf(line, mark);
        tags.push_back(
            {mark.kind, range, std::string(text.substr(text.size() - tagDateLength)), dayOf(text)});
    });
    return tags;
}

std::optional<DateTag> DateTags::findDateTag(std::string_view line) {
    auto tags = findDateTags(line);
    return tags.empty() ? std::nullopt : std::optional{std::move(tags.front())};
}

std::string DateTags::removeDateTags(std::string_view line) {
    return without(line, isDate);
}

DoneTag DateTags::readDoneTag(std::string_view mark) {
    const std::size_t date = mark.find(doneOpener) + doneOpener.size();
    const std::string_view behind = mark.substr(date + tagDateLength);
    DoneTag tag;
    tag.dateText = mark.substr(date, tagDateLength);
    tag.day = base::dayFromTagText(tag.dateText);
    if (behind.size() > 1) {
        tag.timeText = behind.substr(1, behind.size() - 2);
        if (tag.day) {
            tag.time = timeOf(*tag.day, tag.timeText);
        }
    }
    return tag;
}

std::vector<DoneTag> DateTags::findDoneTags(std::string_view line) {
    std::vector<DoneTag> tags;
    eachMark(line, isDone, [&](const Mark& mark, base::TextRange range) {
        tags.push_back(readDoneTag(textOf(line, mark)));
        tags.back().range = range;
    });
    return tags;
}

std::optional<DoneTag> DateTags::findDoneTag(std::string_view line) {
    auto tags = findDoneTags(line);
    return tags.empty() ? std::nullopt : std::optional{std::move(tags.front())};
}

std::string DateTags::findAndRemoveDoneTag(std::string_view line) {
    return without(line, isDone);
}

std::string writeTagDate(const base::LocalTime& time, TagTime with, base::HourCycle cycle) {
    std::string text = base::tagText(time.day);
    if (with == TagTime::none) {
        return text;
    }
    if (cycle == base::HourCycle::twentyFour) {
        return text + fmt::format(" {:02}:{:02}", time.hour, time.minute);
    }
    const int hour = time.hour % 12 == 0 ? 12 : time.hour % 12;
    text += fmt::format(" {:02}:{:02}", hour, time.minute);
    if (with == TagTime::timeAndMarker) {
        text += time.hour < 12 ? " AM" : " PM";
    }
    return text;
}

}  // namespace tessaly::grammar
