// SPDX-License-Identifier: MIT
#include "grammar/calendar_day.h"

#include "base/note_type.h"

namespace tessaly::grammar {

std::optional<base::Day> dayOfCalendarFilename(std::string_view filename) {
    constexpr std::string_view extension = ".txt";
    if (!filename.ends_with(extension)) {
        return std::nullopt;
    }
    return base::dayFromFileText(filename.substr(0, filename.size() - extension.size()));
}

std::optional<base::Day> dayOfNotePath(std::string_view path) {
    const std::size_t slash = path.find('/');
    if (slash == std::string_view::npos ||
        base::noteTypeOfFolder(path.substr(0, slash)) != base::NoteType::calendar) {
        return std::nullopt;
    }
    return dayOfCalendarFilename(path.substr(slash + 1));
}

}  // namespace tessaly::grammar
