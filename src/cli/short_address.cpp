// SPDX-License-Identifier: MIT
#include "cli/short_address.h"

#include <string_view>

#include <fmt/format.h>

#include "app/note_address.h"
#include "app/task_address.h"
#include "base/utf8.h"
#include "cli/safe_text.h"
#include "store/foreign_names.h"
#include "store/note_names.h"

namespace tessaly::cli {

namespace {

constexpr std::string_view extension = ".txt";

std::string withLine(std::string note, const NotePlace& place) {
    return place.lineIndex ? fmt::format("{}:{}", note, *place.lineIndex + 1) : note;
}

bool liesInFolder(std::string_view name, base::NoteType type) {
    const std::string_view folder = base::folderName(type);
    return name.starts_with(folder) && name.substr(folder.size()).starts_with('/');
}

// A name is tried as it is before ".txt" is put behind it.
bool mayNameAnotherFile(std::string_view name) {
    const std::string_view last = name.substr(name.rfind('/') + 1);
    return store::isNoteFilename(last) || store::conflictName(last);
}

bool mayBeAnother(const std::string& name, bool isShortened) {
    return (isShortened && mayNameAnotherFile(name)) || store::dayOfCalendarFilename(name) ||
           liesInFolder(name, base::NoteType::note) || liesInFolder(name, base::NoteType::calendar);
}

/// Whether the text says something else to the command line, or to who reads addresses.
bool isMisread(const std::string& name, const NotePlace& place) {
    const bool isLineRead = !place.lineIndex && !app::readTaskName(name).line.empty();
    return name.starts_with('-') || base::trimmed(name) != name || isLineRead;
}

}  // namespace

std::string addressOf(const NotePlace& place) {
    return withLine(fmt::format("{}/{}", base::folderName(place.type), safeText(place.filename)),
                    place);
}

std::string shortAddressOf(const NotePlace& place,
                           const std::function<bool(const std::string& name)>& isDay) {
    if (place.day && place.filename == store::calendarFilename(*place.day)) {
        return withLine(base::tagText(*place.day), place);
    }
    if (place.type != base::NoteType::note) {
        return addressOf(place);
    }
    std::string name = place.filename;
    const bool isShortened = name.ends_with(extension);
    if (isShortened) {
        name.resize(name.size() - extension.size());
    }
    // No day is written with a slash, and to ask costs more than all the rest.
    const bool isUnsafe = mayBeAnother(name, isShortened) || isMisread(name, place) ||
                          (name.find('/') == std::string::npos && isDay(name));
    return isUnsafe ? addressOf(place) : withLine(safeText(name), place);
}

std::string shortAddressOf(const Context& context, const NotePlace& place) {
    app::Services& services = context.services;
    return shortAddressOf(place, [&services](const std::string& name) {
        return app::parseDay(name, services.today(), services.dateStrings().formats()).has_value();
    });
}

}  // namespace tessaly::cli
