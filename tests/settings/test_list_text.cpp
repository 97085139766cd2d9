// SPDX-License-Identifier: MIT
#include <random>

#include <doctest/doctest.h>

#include "settings/list_text.h"

namespace tessaly::settings {
namespace {

using Texts = std::vector<std::string>;

TEST_CASE("a list is read as people write it") {
    struct Row {
        const char* text;
        std::optional<Texts> items;
    };
    for (const Row& row : std::vector<Row>{
             {"", Texts{}},
             {" , ,, ", Texts{}},
             {"one", Texts{"one"}},
             {" one ,two words,three ", Texts{"one", "two words", "three"}},
             {"a\\,b, c\\\\", Texts{"a,b", "c\\"}},
             {"\\ padded\\ , \\ ", Texts{" padded ", " "}},
             {"\\o\\n\\e", Texts{"one"}},
             {"\u00e9\u20ac", Texts{"\u00e9\u20ac"}},
             {"one\\", std::nullopt},
             {"one\ntwo", std::nullopt},
         }) {
        CAPTURE(row.text);
        CHECK(itemsFromText(row.text) == row.items);
    }
}

TEST_CASE("what is printed of a list is read as that list") {
    std::mt19937 random(20190305);
    const std::string letters = " ,\\ab";
    for (int round = 0; round < 2000; ++round) {
        Texts items(random() % 4);
        for (std::string& item : items) {
            for (std::size_t length = 1 + random() % 5; length > 0; --length) {
                item += letters[random() % letters.size()];
            }
        }
        const std::string text = textOfItems(items);
        CAPTURE(text);
        REQUIRE(itemsFromText(text) == items);
    }
}

}  // namespace
}  // namespace tessaly::settings
