// SPDX-License-Identifier: MIT
#include "store/day_task_lines.h"

#include "grammar/todo_helper.h"
#include "store/note_document.h"
#include "store/note_names.h"
#include "store/note_tags.h"

namespace tessaly::store {
namespace {

// A quick look that spares most general notes their scan.
bool mayHoldScheduleTag(std::string_view text) {
    for (std::size_t at = text.find('>'); at != text.npos; at = text.find('>', at + 1)) {
        if (at + 1 < text.size() && text[at + 1] >= '0' && text[at + 1] <= '9') {
            return true;
        }
    }
    return false;
}

}  // namespace

std::optional<base::Day> dayOfNote(base::NoteType type, std::string_view filename) {
    return type == base::NoteType::calendar ? dayOfCalendarFilename(filename) : std::nullopt;
}

void scanDayTasks(base::NoteType type, std::string_view filename, std::string_view bytes,
                  const grammar::MarkerSettings& settings, grammar::NoteScanner& scanner,
                  DayTaskLines& found) {
    found.lines.clear();
    found.noteDay = dayOfNote(type, filename);
    if (!found.noteDay && !mayHoldScheduleTag(bytes)) {
        return;
    }
    const std::string_view text = decodedText(bytes).value_or(std::string_view());
    scanner.start(text, settings);
    const auto next =
        found.noteDay ? &grammar::NoteScanner::next : &grammar::NoteScanner::nextWithSign;
    while (const grammar::ScannedLine* scanned = (scanner.*next)()) {
        if (!grammar::isTask(scanned->line.type)) {
            continue;
        }
        const auto scheduledTo =
            grammar::TodoHelper::firstDay(*scanned, grammar::MarkKind::scheduleTag);
        if (scheduledTo || found.noteDay) {
            found.lines.push_back({scanned->text, static_cast<std::uint32_t>(scanned->index),
                                   scanned->line, scheduledTo});
        }
    }
    if (!found.lines.empty()) {
        const std::string_view name = baseName(filename);
        found.title = found.noteDay ? std::string(name) : grammar::noteTitle(text, name);
    }
}

}  // namespace tessaly::store
