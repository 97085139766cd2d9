// SPDX-License-Identifier: MIT
#include "store/stray_notes.h"

#include <cstddef>
#include <string>

#include "store/foreign_names.h"
#include "store/note_names.h"

namespace tessaly::store {
namespace {

constexpr std::size_t dayCharacters = 8;

// "2019-3-5": the only form of year, month and day that is no longer than "20190305".
std::optional<base::Day> dayOfShortForm(std::string_view text) {
    if (text.size() != dayCharacters || text[4] != '-' || text[6] != '-') {
        return std::nullopt;
    }
    std::string padded(text);
    return base::dayFromTagText(padded.insert(7, "0").insert(5, "0"));
}

}  // namespace

std::optional<base::Day> dayOfStray(std::string_view filename) {
    if (!isNoteFilename(filename) || filename.find('/') != filename.npos ||
        dayOfCalendarFilename(filename) || conflictName(filename)) {
        return std::nullopt;
    }
    const std::string_view name = baseName(filename);
    const auto day = base::dayFromFileText(name.substr(0, dayCharacters));
    return day ? day : dayOfShortForm(name);
}

}  // namespace tessaly::store
