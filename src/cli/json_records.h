// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/day_view.h"
#include "app/doctor.h"
#include "app/note_lists.h"
#include "base/day.h"
#include "base/text_range.h"
#include "cli/json_line.h"
#include "grammar/todo.h"
#include "ports/clock.h"
#include "store/day_tasks.h"

namespace tessaly::cli {

/// The records as JSON: the fields in their order and by their names, days "yyyy-MM-dd", times as
/// RFC 3339, null for what is absent. `clock` knows the zone.

/// "yyyy-MM-dd"; nothing for no day.
std::optional<std::string> dayText(std::optional<base::Day> day);

JsonObject recordOf(base::TextRange range);

JsonObject recordOf(const grammar::Todo& todo, ports::Clock& clock);

/// A task in a list: `address` is what `show` and other verbs take, `todo` has the fields that are
/// known of a line on its own.
JsonObject recordOf(const store::NoteTask& task, ports::Clock& clock);

JsonObject recordOf(const app::DayView& view, ports::Clock& clock);
JsonObject recordOf(const app::NoteRow& row);
JsonObject recordOf(const app::TagRow& row);
JsonObject recordOf(const app::Finding& finding);

/// The counters and tags of a note, added to `object`.
void addModel(JsonObject& object, const store::NoteModel& model);

/// What tells whether a finding is good or bad: "fine", "note", "warning".
std::string_view levelName(app::Finding::Level level);

}  // namespace tessaly::cli
