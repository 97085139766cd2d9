// SPDX-License-Identifier: MIT
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "base/words.h"

using namespace tessaly;

namespace {

/// "[one] [two's]"
std::string words(std::string_view text) {
    std::vector<base::WordSpan> found;
    base::findWords(text, found);
    CHECK(base::wordCount(text) == found.size());
    std::string told;
    for (const base::WordSpan word : found) {
        told += (told.empty() ? "[" : " [") + std::string(word.in(text)) + "]";
    }
    return told;
}

}  // namespace

TEST_CASE("words are parted by Unicode's rules, in every script") {
    struct Row {
        std::string_view text, words;
    };
    for (const Row& row : std::initializer_list<Row>{
             {"", ""},
             {"Call Bob, then go.", "[Call] [Bob] [then] [go]"},
             {"don't 3.5 1,000 e.g. well-known", "[don't] [3.5] [1,000] [e.g] [well] [known]"},
             {"** -- # | []", ""},
             {"snake_case _x_ ___", "[snake_case] [_x_]"},
             {"don\u2019t \u00FCber na\u0308he", "[don\u2019t] [\u00FCber] [na\u0308he]"},
             {"\u043F\u0440\u0438\u0432\u0435\u0442 \u05E9\u05DC\u05D5\u05DD",
              "[\u043F\u0440\u0438\u0432\u0435\u0442] [\u05E9\u05DC\u05D5\u05DD]"},
             {"\U0001F469\u200D\U0001F52C \u2192 a", "[a]"},
             {"\u00E9\xFF"
              "a",
              "[\u00E9] [a]"}}) {
        CAPTURE(row.text);
        CHECK(words(row.text) == row.words);
    }
}

/// ASCII is read in a quicker way, which must not be seen: a letter of another script at the end
/// makes the same text be read by Unicode's rules.
TEST_CASE("words of ASCII are those of Unicode's rules") {
    constexpr std::string_view alphabet = "aZ09_'.,;:-/ \"@#\t\r(";
    std::mt19937 random(20190305);
    for (int i = 0; i < 20'000; ++i) {
        std::string text;
        for (std::size_t length = random() % 12; text.size() < length;) {
            text += alphabet[random() % alphabet.size()];
        }
        CAPTURE(text);
        const std::string expected = words(text);
        REQUIRE(words(text + " \u00E9") == expected + (expected.empty() ? "" : " ") + "[\u00E9]");
    }
}

TEST_CASE("what is of letters alone can be looked up") {
    for (const char* word :
         {"word", "don't", "don\u2019t", "\u00FCber", "na\u0308he", "\u05E9\u05DC"}) {
        CAPTURE(word);
        CHECK(base::isOfLetters(word));
    }
    for (const char* other : {"", "3rd", "a.b", "snake_case", "'tis", "end'", "\u0308a", "a-b"}) {
        CAPTURE(other);
        CHECK_FALSE(base::isOfLetters(other));
    }
}
