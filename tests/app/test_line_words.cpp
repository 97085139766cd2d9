// SPDX-License-Identifier: MIT
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "app/line_words.h"

using namespace tessaly;

namespace {

/// Of the first of these lines, on Tuesday, 5 March 2019.
std::string spoken(const std::vector<std::string>& lines) {
    const grammar::MarkerSettings markers;
    std::size_t next = 1;
    const auto following = [&] {
        return next < lines.size() ? std::optional(lines[next++]) : std::nullopt;
    };
    const std::size_t below = app::subTasksBelow(lines[0], following, markers);
    const grammar::DateStringHelper names{base::LocaleFormats("en_GB")};
    using namespace std::chrono_literals;
    return app::lineInWords(lines[0], app::lineLook(lines[0], app::FenceState::outside, markers),
                            below, 2019y / 3 / 5, names);
}

}  // namespace

TEST_CASE("a line is told as what it is") {
    struct Row {
        std::vector<std::string> lines;
        std::string_view words;
    };
    for (const Row& row : std::initializer_list<Row>{
             {{"* Call Bob >2019-03-08", "\t* number", "\t* [x] time", "* next"},
              "Task, open, Call Bob, due Friday, 8 March, 2 sub-tasks"},
             {{"\t- [x] Send **slides** @done(2019-03-05 08:12 AM)"}, "Task, done, Send slides"},
             {{"* [-] no #work", "\twords", "\t\t* below", "", "\t* elsewhere"},
              "Task, cancelled, no #work, 2 sub-tasks"},
             {{"* [>] moved >2019-03-06"}, "Task, scheduled, moved, due tomorrow"},
             {{"* in a year >2020-03-06"}, "Task, open, in a year, due Friday, 6 March 2020"},
             {{"* no real day >2019-02-31"}, "Task, open, no real day"},
             {{"* see [title](https://example.org) and [[Note]]"},
              "Task, open, see title and Note"},
             {{"* "}, "Task, open"},
             {{"## Plans"}, "Heading 2, Plans"},
             {{"- item", "\t* below"}, ""},
             {{"words"}, ""}}) {
        CAPTURE(row.lines[0]);
        CHECK(spoken(row.lines) == row.words);
    }
}
