// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include "cli/rpc_times.h"

using namespace tessaly;

TEST_CASE("times on the wall are read in one form alone") {
    const auto check = [](std::string_view text, std::string_view expected) {
        CAPTURE(text);
        const auto time = cli::timeFromText(text);
        CHECK((time ? cli::textOfTime(*time) : "") == expected);
    };
    check("2019-05-21T14:07", "2019-05-21T14:07:00");
    check("2020-02-29T23:59:59", "2020-02-29T23:59:59");
    check("0001-01-01T00:00", "0001-01-01T00:00:00");
    for (const std::string_view text :
         {"", "2019-05-21", "2019-05-21T", "2019-05-21T14", "2019-05-21T14:", "2019-05-21T14:7",
          "2019-05-21T14:07:", "2019-05-21T14:07:5", "2019-05-21T14:07:055", "2019-05-21T24:00",
          "2019-05-21T14:60", "2019-05-21T14:07:60", "2019-02-29T14:07", "2019-05-21 14:07",
          "2019-05-21T14:07Z", "2019-05-21T-1:07", "2019-05-21T14:-7", "2019-05-21T+1:07"}) {
        check(text, "");
    }
}
