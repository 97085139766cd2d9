// SPDX-License-Identifier: MIT
#include <string>
#include <string_view>

#include <doctest/doctest.h>

#include "app/spelling_words.h"
#include "base/utf8.h"

using namespace tessaly;

namespace {

/// "[Call] [Bob]": the words that are to be looked up.
std::string spelt(std::string_view line, app::FenceState before = app::FenceState::outside) {
    const std::u16string units = base::toUtf16(line);
    std::string told;
    for (const base::TextRange word :
         app::spellingWords(line, app::lineLook(line, before, grammar::MarkerSettings{}))) {
        told += (told.empty() ? "[" : " [") +
                base::toUtf8(std::u16string_view(units).substr(word.location, word.length)) + "]";
    }
    return told;
}

}  // namespace

TEST_CASE("words of a language are looked up, and nothing else") {
    struct Row {
        std::string_view line, words;
    };
    for (const Row& row : std::initializer_list<Row>{
             {"", ""},
             {"Call Bob, don't wait", "[Call] [Bob] [don't] [wait]"},
             {"\t* [x] Send slides", "[Send] [slides]"},
             {"# Plans", "[Plans]"},
             {"> quoted words", "[quoted] [words]"},
             {"1. first", "[first]"},
             {"| cell | other |", "[cell] [other]"},
             // Marks of the planner.
             {"pay #billls @annn >2019-03-08 <2019-03-01 @done(2019-03-05 09:00 AM)", "[pay]"},
             {"write `int mian()` here", "[write] [here]"},
             {"go to [[Projcts]] now", "[go] [to] [now]"},
             // Links: their titles alone.
             {"a [titel here](https://exmple.org/pth) b", "[titel] [here]"},
             {"see https://exmple.org/pth, or www.exmple.org", "[see] [or]"},
             {"mail bobb@exmple.org or /usr/shre ~/notez ..\\dirr end", "[mail] [or] [end]"},
             {"![pictur](fil.png) shows", "[shows]"},
             // What is no word.
             {"and/or v2 3rd 24h NASA ASCIIX x notes.txt snake_case", "[and] [or] [ASCIIX]"},
             // Emphasis belongs to the word, but not the signs.
             {"**bold** _italic_ ==marked== ~~struck~~", "[bold] [italic] [marked] [struck]"},
             {"**b**old and un**do**ne", "[and]"},
             // Places are UTF-16.
             {"\U0001F600 \u00FCber don\u2019t", "[\u00FCber] [don\u2019t]"},
             {"---", ""},
             {"```cpp mian", ""}}) {
        CAPTURE(row.line);
        CHECK(spelt(row.line) == row.words);
    }
    CHECK(spelt("int mian", app::FenceState::backticks).empty());
    CHECK(spelt(std::string(61, 'a') + " ab") == "[ab]");
    CHECK(spelt(std::string(app::longestStyledLine, 'a') + " ab").empty());
}
