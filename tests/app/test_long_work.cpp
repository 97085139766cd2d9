// SPDX-License-Identifier: MIT
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "app/long_work.h"

using namespace tessaly;
using namespace std::chrono_literals;
using app::LongWork;

namespace {

struct Told {
    std::chrono::milliseconds at;
    std::size_t done;
};

struct RateRow {
    const char* what;
    std::vector<Told> told;
    std::optional<std::size_t> total;
    std::string expected;
};

const RateRow rateRows[] = {
    {"too early for a rate", {{0ms, 0}, {400ms, 800}}, std::nullopt, "800"},
    {"a rate", {{0ms, 0}, {500ms, 1000}}, std::nullopt, "1,000 · 2,000 a second"},
    {"of a total", {{0ms, 0}, {1s, 1500}}, 3000, "1,500 of 3,000 · 1,500 a second"},
    {"the last seconds count, not the first",
     {{0ms, 0}, {1s, 9000}, {2s, 9100}, {3s, 9200}, {4s, 9300}, {5s, 9400}},
     std::nullopt,
     "9,400 · 100 a second"},
    {"work that stands still", {{0ms, 5}, {1s, 5}, {2s, 5}}, 9, "5 of 9"},
    {"seldom looked at", {{0ms, 0}, {10s, 1000}}, std::nullopt, "1,000 · 100 a second"},
    {"work that has begun anew", {{0ms, 700}, {1s, 20}}, std::nullopt, "20"},
};

void checkRate(const RateRow& row) {
    CAPTURE(row.what);
    LongWork work{"Reading", LongWork::Cancel::never};
    if (row.total) {
        work.tellTotal(*row.total);
    }
    LongWork::View view;
    for (const Told& told : row.told) {
        work.tell(told.done);
        view = work.view(told.at);
    }
    CHECK(app::progressText(view, base::LocaleFormats{"en_GB"}) == row.expected);
}

}  // namespace

TEST_CASE("how far work is, and how fast") {
    for (const RateRow& row : rateRows) {
        checkRate(row);
    }
}

TEST_CASE("only work that allows it is cancelled, and only once") {
    LongWork firm{"Moving", LongWork::Cancel::never};
    firm.cancel();
    CHECK_FALSE(firm.cancelled());

    LongWork work{"Reading", LongWork::Cancel::possible};
    CHECK(work.view(0s).isCancellable);
    work.cancel();
    CHECK(work.cancelled());
    CHECK(work.view(1s).isCancelled);
    CHECK_FALSE(work.view(1s).isCancellable);
}
