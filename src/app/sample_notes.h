// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "base/day.h"
#include "base/locale_formats.h"
#include "base/note_type.h"

namespace tessaly::app {

/// A note to be made for a new user.
struct SampleNote {
    base::NoteType type = base::NoteType::none;
    std::string filename;  ///< relative to its kind's folder
    std::string text;
};

/// The notes that a new user finds, in the user's language: the welcome note and those of
/// yesterday, today, tomorrow and the same weekday of next week. Their dates are reckoned from
/// `now`; each scheduled task stands with its copy in the day it names.
std::vector<SampleNote> sampleNotes(const base::LocalTime& now, base::HourCycle cycle);

}  // namespace tessaly::app
