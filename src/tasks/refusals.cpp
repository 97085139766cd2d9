// SPDX-License-Identifier: MIT
#include "tasks/refusals.h"

#include <optional>

#include <fmt/format.h>

#include "base/localisation.h"
#include "store/note_names.h"

namespace tessaly::tasks {

using base::Failure;
using base::tr;

namespace {

std::string lineName(const NoteName& note, std::size_t lineIndex) {
    return fmt::format("{}:{}", pathOf(note), lineIndex + 1);
}

}  // namespace

std::string pathOf(const NoteName& note) {
    return fmt::format("{}/{}", base::folderName(note.type), note.filename);
}

Failure noteIsNotThere(const NoteName& note) {
    const auto day = note.type == base::NoteType::calendar
                         ? store::dayOfCalendarFilename(note.filename)
                         : std::nullopt;
    return {Failure::Kind::notFound,
            day ? fmt::format(fmt::runtime(tr("there is no note of {}")), base::tagText(*day))
                : fmt::format(fmt::runtime(tr("there is no file {}")), pathOf(note))};
}

Failure noteIsNotText(const NoteName& note) {
    return {Failure::Kind::malformed,
            fmt::format(fmt::runtime(tr("{} is not UTF-8 text")), pathOf(note))};
}

Failure lineRefused(const NoteName& note, std::size_t lineIndex, const char* english,
                    Failure::Kind kind) {
    return {kind, fmt::format(fmt::runtime(tr(english)), lineName(note, lineIndex))};
}

Failure lineHasMoved(const NoteName& note, std::size_t lineIndex, std::size_t nowIndex) {
    return {Failure::Kind::changed,
            fmt::format(fmt::runtime(tr("{0}: the line has changed; what was meant now stands in "
                                        "line {1}")),
                        lineName(note, lineIndex), nowIndex + 1)};
}

}  // namespace tessaly::tasks
