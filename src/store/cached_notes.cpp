// SPDX-License-Identifier: MIT
#include "store/cached_notes.h"

#include <array>
#include <memory>
#include <utility>

#include "store/paths.h"

namespace tessaly::store {

GeneralNotes::Pointer generalNote(std::string filename, base::SharedText content,
                                  const ports::FileStamp& stamp, const CountSettings& settings,
                                  grammar::NoteScanner& scanner) {
    return std::make_shared<const GeneralNote>(GeneralNote{
        loadNote(std::move(filename), std::move(content), stamp, settings, scanner), stamp});
}

GeneralNotes::Pointer folderOfNotes(std::string filename) {
    GeneralNote folder;
    folder.note.title = lastComponent(filename);
    folder.note.filename = std::move(filename);
    folder.note.isFolder = true;
    return std::make_shared<const GeneralNote>(std::move(folder));
}

CalendarNotes::Pointer calendarNote(std::string filename, base::SharedText content,
                                    const ports::FileStamp& stamp, const CountSettings& settings,
                                    grammar::NoteScanner& scanner) {
    NoteModel model(std::move(filename), base::NoteType::calendar, content, settings, scanner);
    return std::make_shared<const CalendarNote>(
        CalendarNote{std::move(model), std::move(content), stamp});
}

void keepOthersCounts(NoteModel& model, const NoteModel& before) {
    constexpr std::array counters{&NoteModel::numReminders, &NoteModel::numCompletedReminders,
                                  &NoteModel::numEvents, &NoteModel::numOpenNoteTodos,
                                  &NoteModel::numDoneNoteTodos};
    for (const auto counter : counters) {
        model.*counter = before.*counter;
    }
}

}  // namespace tessaly::store
