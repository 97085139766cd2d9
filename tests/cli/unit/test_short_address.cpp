// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include "cli/short_address.h"
#include "store/note_names.h"

using namespace tessaly;
using base::NoteType;

namespace {

/// Of the line with the index 1 or, with `npos`, of the note.
std::string shortOf(NoteType type, std::string filename, std::size_t lineIndex = 1) {
    const auto isDay = [](const std::string& name) {
        return name == "fri" || name == "2019-12-31";
    };
    cli::NotePlace place{type, std::move(filename), std::nullopt, std::nullopt};
    place.day =
        type == NoteType::calendar ? store::dayOfCalendarFilename(place.filename) : std::nullopt;
    if (lineIndex != std::string::npos) {
        place.lineIndex = lineIndex;
    }
    return cli::shortAddressOf(place, isDay);
}

}  // namespace

TEST_CASE("an address is shortened only where no verb takes it for another note") {
    struct Row {
        NoteType type;
        const char* filename;
        const char* expected;
    };
    const Row rows[] = {
        {NoteType::note, "Work/Plans.txt", "Work/Plans:2"},
        {NoteType::note, "Work/Plans.md", "Work/Plans.md:2"},
        {NoteType::note, "a:3.txt", "a:3:2"},
        {NoteType::note, "Work/fri.txt", "Work/fri:2"},
        {NoteType::note, "20191231.md", "20191231.md:2"},
        {NoteType::calendar, "20191231.txt", "2019-12-31:2"},
        // A day.
        {NoteType::note, "fri.txt", "Notes/fri.txt:2"},
        {NoteType::note, "2019-12-31.txt", "Notes/2019-12-31.txt:2"},
        {NoteType::note, "20191231.txt.txt", "Notes/20191231.txt.txt:2"},
        // A name with its folder.
        {NoteType::note, "Notes/Plans.txt", "Notes/Notes/Plans.txt:2"},
        {NoteType::note, "Calendar/Plans.md", "Notes/Calendar/Plans.md:2"},
        // Another file, which may be there.
        {NoteType::note, "Plans.md.txt", "Notes/Plans.md.txt:2"},
        {NoteType::note, "Plans .txt", "Notes/Plans .txt:2"},
        // An option.
        {NoteType::note, "-x.txt", "Notes/-x.txt:2"},
        // A file that is no day's.
        {NoteType::calendar, "notaday.txt", "Calendar/notaday.txt:2"},
        {NoteType::calendar, "20191231.md", "Calendar/20191231.md:2"},
    };
    for (const Row& row : rows) {
        CHECK(shortOf(row.type, row.filename) == row.expected);
    }
    CHECK(shortOf(NoteType::note, "a.txt", std::string::npos) == "a");
    CHECK(shortOf(NoteType::note, "a:3.txt", std::string::npos) == "Notes/a:3.txt");
}
