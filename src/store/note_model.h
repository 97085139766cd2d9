// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/color.h"
#include "base/day.h"
#include "base/note_type.h"
#include "grammar/line_scanner.h"

namespace tessaly::store {

/// What the counting of tasks depends on.
struct CountSettings {
    grammar::MarkerSettings markers;
    bool isIndentedTasksInCalendar = true;
};

/// `a + b`, or 255 where that is more.
constexpr std::uint8_t saturatingAdd(std::uint8_t a, std::uint8_t b) {
    const unsigned sum = static_cast<unsigned>(a) + b;
    return sum > 255 ? std::uint8_t{255} : static_cast<std::uint8_t>(sum);
}

/// The summary of a note that lists, sidebar and calendar show. Counters and their sums stop at
/// 255. Has no lock of its own: who holds the collection guards it.
class NoteModel {
public:
    NoteModel() = default;

    /// Counts the tasks of `content` and gathers its tags. `date` is filled for a calendar note
    /// whose file name is a day.
    NoteModel(std::string name, base::NoteType kind, std::string_view content,
              const CountSettings& settings);

    /// As above, with a scanner that the caller uses again for the next note.
    NoteModel(std::string name, base::NoteType kind, std::string_view content,
              const CountSettings& settings, grammar::NoteScanner& scanner);

    /// Of reminders, events and tasks, the sum that decides how many dots a day has; cancelled and
    /// closed tasks have none.
    std::uint8_t totalCount() const;

    /// The colour of the dot at `index` (from 0): reminders, events, open tasks, scheduled tasks,
    /// then all that is done; dark grey behind the last.
    base::Color dotColor(int index) const;

    std::string filename;  ///< relative to its kind's folder
    std::optional<base::Day> date;
    base::NoteType type = base::NoteType::none;
    std::uint8_t numOpenTodos = 0;
    std::uint8_t numScheduledTodos = 0;
    std::uint8_t numDoneTodos = 0;
    std::uint8_t numCancelledTodos = 0;
    std::uint8_t numClosedTodos = 0;  ///< done and cancelled
    std::uint8_t numReminders = 0;
    std::uint8_t numCompletedReminders = 0;
    std::uint8_t numEvents = 0;
    std::uint8_t numOpenNoteTodos = 0;  ///< of general notes, scheduled to this day
    std::uint8_t numDoneNoteTodos = 0;
    std::vector<std::string> atTags;  ///< lower case, parents before their children
    std::vector<std::string> hashTags;

private:
    void count(const grammar::LineClass& line, const CountSettings& settings);
};

}  // namespace tessaly::store
