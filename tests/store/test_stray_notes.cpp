// SPDX-License-Identifier: MIT
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "base/day.h"
#include "store/stray_notes.h"

using namespace tessaly;

namespace {

struct StrayRow {
    std::string_view day;  ///< "yyyyMMdd"; empty: no stray
    std::vector<std::string_view> filenames;
};

const StrayRow strayRows[] = {
    {"20190305",
     {"20190305 2.txt", "20190305 (1).txt", "20190305-laptop.md", "20190305.md", "20190305x.txt",
      "201903051407.txt", "20190305.txt.txt", "2019-3-5.txt"}},
    {"20200229", {"20200229 2.txt"}},
    // The day's own note, and what names no day or not at the start.
    {"",
     {"20190305.txt", "20190229 2.txt", "20191305 2.txt", "2019030 2.txt", "2019-0-5.txt",
      "2019-3-0.txt", "2019-03-05.txt", "2019-3-05.txt", "2019-3-5 2.txt", "201-3-5.txt",
      "Copy of 20190305.txt", ".txt", ""}},
    // Below a folder, and what is no note.
    {"", {"old/20190305 2.txt", "20190305/2.txt", "20190305.jpg", "20190305.TXT", "20190305"}},
    // What other programs made of a day's note.
    {"",
     {"20190305.sync-conflict-20190306-101010-ABCDEFG.txt", ".20190305.txt",
      ".~20190305.txt.abcdefgh~", "20190305.txt~", "20190305.txt.nextcloud"}},
};

}  // namespace

TEST_CASE("a stray calendar file belongs to the day that its name begins with") {
    for (const StrayRow& row : strayRows) {
        for (const std::string_view filename : row.filenames) {
            CAPTURE(filename);
            const auto day = store::dayOfStray(filename);
            CHECK((day ? base::fileText(*day) : "") == row.day);
        }
    }
}
