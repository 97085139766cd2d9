// SPDX-License-Identifier: MIT
#include "store/note_model.h"

#include <array>
#include <utility>

#include "store/note_names.h"
#include "store/note_tags.h"

namespace tessaly::store {

using grammar::TodoType;

NoteModel::NoteModel(std::string name, base::NoteType kind, std::string_view content,
                     const CountSettings& settings, grammar::NoteScanner& scanner)
    : filename(std::move(name)), type(kind) {
    if (type == base::NoteType::calendar) {
        date = dayOfCalendarFilename(filename);
    }
    NoteTags tags;
    scanner.start(content, settings.markers);
    while (const grammar::ScannedLine* line = scanner.next()) {
        count(line->line, settings);
        tags.add(*line);
    }
    numClosedTodos = saturatingAdd(numDoneTodos, numCancelledTodos);
    hashTags = tags.hashTags.take();
    atTags = tags.atTags.take();
}

NoteModel::NoteModel(std::string name, base::NoteType kind, std::string_view content,
                     const CountSettings& settings) {
    grammar::NoteScanner scanner;
    *this = NoteModel(std::move(name), kind, content, settings, scanner);
}

void NoteModel::count(const grammar::LineClass& line, const CountSettings& settings) {
    static_assert(TodoType::scheduled == TodoType{0} && TodoType::open == TodoType{1} &&
                  TodoType::cancelled == TodoType{2} && TodoType::done == TodoType{3});
    static constexpr std::array counters{&NoteModel::numScheduledTodos, &NoteModel::numOpenTodos,
                                         &NoteModel::numCancelledTodos, &NoteModel::numDoneTodos};
    if (!grammar::isTask(line.type) || (line.indents > 0 && !settings.isIndentedTasksInCalendar)) {
        return;
    }
    std::uint8_t& counter = this->*counters[static_cast<std::size_t>(line.type)];
    counter = saturatingAdd(counter, 1);
}

std::uint8_t NoteModel::totalCount() const {
    std::uint8_t sum = 0;
    for (const std::uint8_t items :
         {numReminders, numEvents, numOpenTodos, numScheduledTodos, numDoneTodos,
          numCompletedReminders, numOpenNoteTodos, numDoneNoteTodos}) {
        sum = saturatingAdd(sum, items);
    }
    return sum;
}

base::Color NoteModel::dotColor(int index) const {
    if (index >= totalCount()) {
        return base::darkGray;
    }
    const std::uint8_t events = saturatingAdd(numReminders, numEvents);
    const std::uint8_t open = saturatingAdd(saturatingAdd(events, numOpenTodos), numOpenNoteTodos);
    const std::uint8_t scheduled = saturatingAdd(open, numScheduledTodos);
    const std::array<std::pair<int, base::Color>, 4> firstBehind{{
        {numReminders, base::reminderRed},
        {events, base::eventPurple},
        {open, base::todoOrange},
        {scheduled, base::scheduleBlue},
    }};
    for (const auto& [end, color] : firstBehind) {
        if (index < end) {
            return color;
        }
    }
    return base::doneGreen;
}

}  // namespace tessaly::store
