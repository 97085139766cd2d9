// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/services.h"
#include "base/day.h"
#include "base/failure.h"
#include "base/note_type.h"
#include "store/note_reader.h"

namespace tessaly::app {

/// A day as a user writes it: "20190305", "2019-03-05", "today", "tomorrow", "yesterday" (English
/// or the user's words), "+3d", "-1w", "+2m", "+1y", or a weekday ("fri", "friday", the user's
/// words too): its next occurrence after `today`. Case does not matter. Nothing for any other text.
std::optional<base::Day> parseDay(std::string_view text, base::Day today,
                                  const base::LocaleFormats& formats);

/// A note that a user named, and where it lies.
struct NoteAddress {
    base::NoteType type = base::NoteType::none;
    std::string filename;          ///< relative to its kind's folder
    std::optional<base::Day> day;  ///< of a calendar note, whose file need not exist
};

/// The note called `text`: a day, else a file name relative to its folder ("Work/Plans.txt", also
/// "Notes/Work/Plans.txt" or without the extension), else a title, compared exactly after
/// composition, then ignoring case. A title is looked for among all
/// general notes, which are visited with `options`, whose types are ignored. A conflict copy is
/// found by its exact file name only. Failure, in words for the user: `notFound` with the nearest
/// titles named; `malformed` when several notes have the title, with their file names; `cancelled`,
/// without words.
base::Result<NoteAddress> findNote(Services& services, std::string_view text,
                                   store::NoteReader::Options options = {});

}  // namespace tessaly::app
