// SPDX-License-Identifier: MIT
#include <algorithm>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "app/table_columns.h"

using namespace tessaly;
using app::CellWidths;
using app::ColumnAlign;

namespace {

std::string told(const std::optional<std::vector<ColumnAlign>>& aligns) {
    std::string words = aligns ? "" : "-";
    for (const ColumnAlign align : aligns.value_or(std::vector<ColumnAlign>())) {
        words += "lcr"[static_cast<std::size_t>(align)];
    }
    return words;
}

/// Where each sign stands, from the first.
std::vector<double> signPlaces(const CellWidths& row, const std::vector<app::CellRoom>& rooms) {
    std::vector<double> places{0};
    for (std::size_t i = 0; i < row.size(); ++i) {
        places.push_back(places.back() + row[i] + rooms[i].before + rooms[i].behind);
    }
    return places;
}

}  // namespace

TEST_CASE("the signs that part cells") {
    struct Row {
        std::string_view line;
        std::vector<std::size_t> signs;
    };
    const Row rows[] = {
        {"|a|b|", {0, 2, 4}},     {"  | a | b", {2, 6}},
        {"||", {0, 1}},           {"|a\\|b|", {0, 5}},
        {"|a\\\\|b|", {0, 4, 6}}, {"|`a|b`|c|", {0, 6, 8}},
        {"|`a|b|", {0, 3, 5}},    {"|\xc3\xa4|\xf0\x9f\x8c\xb1|x|", {0, 2, 5, 7}},
        {"|\xff|", {0, 2}},       {"no table", {}},
    };
    for (const Row& row : rows) {
        CAPTURE(row.line);
        CHECK(app::cellSigns(row.line) == row.signs);
    }
}

TEST_CASE("the row that says how columns stand") {
    struct Row {
        std::string_view line;
        const char* aligns;
    };
    const Row rows[] = {
        {"|---|", "l"},
        {"|-|:-:|-:|:-|", "lcrl"},
        {"  | --- | :---: | --: ", "lcr"},
        {"|---|---|\r", "ll"},
        {"|", "-"},
        {"||", "-"},
        {"|:|", "-"},
        {"|::|", "-"},
        {"|- -|", "-"},
        {"|---|a|", "-"},
        {"---", "-"},
        {"|--:-|", "-"},
    };
    for (const Row& row : rows) {
        CAPTURE(row.line);
        CHECK(told(app::columnAligns(row.line)) == row.aligns);
    }
}

TEST_CASE("room makes signs stand below each other") {
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        std::vector<CellWidths> rows(1 + random() % 6);
        for (CellWidths& row : rows) {
            row.resize(random() % 6);
            std::generate(row.begin(), row.end(),
                          [&] { return 1.0 + static_cast<double>(random() % 40); });
        }
        const CellWidths columns = app::columnWidths(rows);
        std::vector<double> ends{0};
        for (const double column : columns) {
            ends.push_back(ends.back() + column);
        }
        const std::vector<ColumnAlign> aligns{ColumnAlign::right, ColumnAlign::centre};
        for (const CellWidths& row : rows) {
            const auto rooms = app::cellRooms(row, columns, aligns);
            REQUIRE(rooms.size() == row.size());
            const auto places = signPlaces(row, rooms);
            for (std::size_t i = 0; i < places.size(); ++i) {
                REQUIRE(places[i] == doctest::Approx(ends[i]));
            }
            for (std::size_t i = 0; i < rooms.size(); ++i) {
                REQUIRE(rooms[i].before >= 0);
                REQUIRE(rooms[i].behind >= 0);
                const double even = i == 1 ? rooms[i].behind : 0;
                REQUIRE(rooms[i].before == doctest::Approx(i == 0 ? rooms[i].before : even));
                REQUIRE((i != 0 || rooms[i].behind == 0));
            }
        }
    }
}

TEST_CASE("a cell that is wider than its column pushes the next ones as far as they give way") {
    // The row with shown markup is not counted for the columns.
    const CellWidths columns{10, 20, 30};
    const auto places = signPlaces({16, 5, 10}, app::cellRooms({16, 5, 10}, columns, {}));
    CHECK(places == std::vector<double>{0, 16, 30, 60});
    CHECK(signPlaces({40, 5, 10, 7}, app::cellRooms({40, 5, 10, 7}, columns, {})) ==
          std::vector<double>{0, 40, 45, 60, 67});
}
