// SPDX-License-Identifier: MIT
#include <atomic>

#include <doctest/doctest.h>

#include "app/note_address.h"
#include "app/planner.h"

using namespace tessaly;
using tests::Planner;

namespace {

struct DayRow {
    std::string text;
    std::string day;  // "" for none
    std::string locale = "en_GB";
};

const DayRow dayRows[] = {
    {"2019-02-28", "2019-02-28"},
    {" Today ", "2019-03-05"},
    {"yesterday", "2019-03-04"},
    {"+3d", "2019-03-08"},
    {"-1W", "2019-02-26"},
    {"+2m", "2019-05-05"},
    {"+1y", "2020-03-05"},
    {"wed", "2019-03-06"},
    {"Monday", "2019-03-11"},
    {"tue", "2019-03-12"},  // today is a Tuesday: the next one is meant
    {"Mi.", "2019-03-06", "de_DE"},
    {"mi", "2019-03-06", "de_DE"},
    {"SA\xcc\x81"
     "bado",
     "2019-03-09", "es_ES"},  // a letter and its accent apart
    {"", ""},
    {"fr", ""},
    {"+d", ""},
    {"3d", ""},
    {"+-3d", ""},
    {"+3", ""},
    {"+9999y", ""},
    {"+99999d", ""},
};

constexpr const char* notes =
    "-- Calendar/20190305.txt\n* Task\n"
    "-- Calendar/2019-3-5.txt\nStray\n"
    "-- Notes/Plans.md\n# Plans\n"
    "-- Notes/Work/Plans.txt\n# Plans\n"
    "-- Notes/Work/Budget.txt\n## Budget 2019\n"
    "-- Notes/Work/Budget (conflicted).txt\n## Budget 2019\n"
    "-- Notes/Work/Budget.txt.conflict1\n## Budget 2019\n"
    "-- Notes/Work/v1.2.txt\nVersion\n"
    "-- Notes/Caf\xc3\xa9.txt\n# Cafe\xcc\x81 notes\n"
    "-- Notes/First.txt\n# Reading list\n"
    "-- Notes/Second.txt\n# reading LIST\n"
    "-- Notes/Third.txt\n# Groceries\n"
    "-- Notes/Fourth.txt\n# Groceries\n"
    "-- Notes/Latin.txt\n# caf\xe9\n"
    "-- Notes/Calendar/Meetings.txt\n# Meetings\n"
    "-- Notes/20181224.txt\n# Christmas\n"
    "-- Notes/.hidden.txt\n# Hidden\n"
    "-- Notes/photo.png\nno note\n";

struct AddressRow {
    std::string text;
    std::string expected;
};

const AddressRow addressRows[] = {
    // Days, whether there is a note or not.
    {"today", "Calendar/20190305.txt 2019-03-05"},
    {"2019-03-06", "Calendar/20190306.txt 2019-03-06"},
    {"Calendar/20190306.txt", "Calendar/20190306.txt 2019-03-06"},
    {"20181224.txt", "Notes/20181224.txt"},
    {"Calendar/2019-3-5.txt", "Calendar/2019-3-5.txt"},
    // File names.
    {"Work/Plans.txt", "Notes/Work/Plans.txt"},
    {"Work/Plans", "Notes/Work/Plans.txt"},
    {"Plans", "Notes/Plans.md"},
    {"Work/v1.2", "Notes/Work/v1.2.txt"},
    {"Calendar/Meetings", "Notes/Calendar/Meetings.txt"},
    {"work/budget.TXT", "Notes/Work/Budget.txt"},
    {"Cafe\xcc\x81", "Notes/Caf\xc3\xa9.txt"},
    {"Work/Budget.txt.conflict1", "Notes/Work/Budget.txt.conflict1"},
    // Titles.
    {"Budget 2019", "Notes/Work/Budget.txt"},
    {"Caf\xc3\xa9 notes", "Notes/Caf\xc3\xa9.txt"},
    {"reading LIST", "Notes/Second.txt"},
    {"Meetings", "Notes/Calendar/Meetings.txt"},
    // Failures.
    {"Groceries", "malformed: several notes are called “Groceries”: Fourth.txt, Third.txt"},
    {"READING list", "malformed: several notes are called “READING list”: First.txt, Second.txt"},
    {"Grocerys", "notFound: there is no note called “Grocerys”; did you mean “Groceries”?"},
    {"budget", "notFound: there is no note called “budget”; did you mean “Budget 2019”?"},
    {"", "notFound: there is no note called “”"},
    {"../../etc/passwd", "notFound: there is no note called “../../etc/passwd”"},
    {".hidden.txt", "notFound: there is no note called “.hidden.txt”"},
};

std::string addressText(const base::Result<app::NoteAddress>& address) {
    if (!address) {
        const bool several = address.failure().kind == base::Failure::Kind::malformed;
        const bool none = address.failure().kind == base::Failure::Kind::notFound;
        return (several ? "malformed: "
                : none  ? "notFound: "
                        : "other: ") +
               address.failure().description;
    }
    return std::string{base::folderName(address->type)} + "/" + address->filename +
           (address->day ? " " + base::tagText(*address->day) : "");
}

}  // namespace

TEST_CASE("a day is read as a user writes it") {
    const base::Day today = *base::dayFromTagText("2019-03-05");
    for (const DayRow& row : dayRows) {
        CAPTURE(row.text);
        const auto day = app::parseDay(row.text, today, base::LocaleFormats(row.locale));
        CHECK((day ? base::tagText(*day) : "") == row.day);
    }
}

TEST_CASE("a note is found by day, file name or title") {
    Planner planner;
    planner.write(notes);
    for (const AddressRow& row : addressRows) {
        CAPTURE(row.text);
        CHECK(addressText(app::findNote(planner.services(), row.text)) == row.expected);
    }
}

TEST_CASE("a search for a title can be cancelled") {
    Planner planner;
    planner.write("-- Notes/First.txt\n# Groceries\n");
    const std::atomic<bool> cancelled = true;
    store::NoteReader::Options options;
    options.cancelled = &cancelled;
    const auto note = app::findNote(planner.services(), "Groceries", options);
    REQUIRE_FALSE(note.ok());
    CHECK(note.failure().kind == base::Failure::Kind::cancelled);
}

TEST_CASE("a link that leaves the data folder is no note") {
    Planner planner;
    planner.write("-- Notes/Inside.txt\n# Inside\n");
    planner.folder().write("secret.txt", "# Secret\n");
    planner.folder().link(std::string{Planner::root} + "Notes/Out.txt", "../../../secret.txt");
    CHECK_FALSE(app::findNote(planner.services(), "Out.txt").ok());
    CHECK_FALSE(app::findNote(planner.services(), "Secret").ok());
    CHECK(app::findNote(planner.services(), "Inside").ok());
}
