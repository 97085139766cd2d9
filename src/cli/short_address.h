// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "base/day.h"
#include "base/note_type.h"
#include "cli/context.h"

namespace tessaly::cli {

/// A note, or a line of it, that is shown.
struct NotePlace {
    base::NoteType type = base::NoteType::none;
    std::string filename;                  ///< relative to its kind's folder
    std::optional<base::Day> day;          ///< of a calendar note
    std::optional<std::size_t> lineIndex;  ///< from 0
};

/// As every verb takes it: "Calendar/20191231.txt:3", lines from 1.
std::string addressOf(const NotePlace& place);

/// The same, but shorter for the eye where verbs take that for this note and no other:
/// "2019-12-31:3", "Work/Plans:12". A general note that is called like a day, or as if it lay in
/// one of the data folder's own folders, keeps its whole address. `isDay` tells what verbs read as
/// a day; the disk is not asked.
std::string shortAddressOf(const NotePlace& place,
                           const std::function<bool(const std::string& name)>& isDay);
/// With the days that the user may write.
std::string shortAddressOf(const Context& context, const NotePlace& place);

}  // namespace tessaly::cli
