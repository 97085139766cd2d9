// SPDX-License-Identifier: MIT
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "base/temporary_name.h"

namespace tessaly::base {
namespace {

std::string repeated(std::string_view text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

TEST_CASE("a temporary name tells the file that it stands beside") {
    struct Row {
        std::string name;
        std::string told;
    };
    for (const Row& row : std::vector<Row>{
             {"note.md", "note.md"},
             {".hidden", ".hidden"},
             {"a.b~", "a.b~"},
             {"\xff\xfe", "\xff\xfe"},
             {std::string(243, 'n'), std::string(243, 'n')},
             {std::string(255, 'n'), std::string(243, 'n')},
             {repeated("\u20ac", 85), repeated("\u20ac", 81)},
             {"x" + repeated("\u20ac", 84), "x" + repeated("\u20ac", 80)},
             {".~note.md.0123abcz~", "note.md"},
         }) {
        CAPTURE(row.name);
        const std::string temporary = temporaryName(row.name);
        CAPTURE(temporary);
        CHECK(temporary.size() <= 255);
        CHECK(nameOfTemporary(temporary) == row.told);
    }
}

TEST_CASE("names that only look like temporary ones are left alone") {
    for (const std::string_view name :
         {"", ".", "..", "~", ".~~", ".~note~", ".~note.md", "note.abcdefgh~", ".~.abcdefgh~",
          ".~note.abcdefg~", ".~note.abcdefghi~", ".~note.Abcdefgh~", ".~note.abcd-fgh~",
          ".~noteabcdefghi~", "~note.abcdefgh~", ".~note.abcdefgh", ".~lock.note.md#",
          ".~note.abcdefgh~.md"}) {
        CAPTURE(name);
        CHECK(nameOfTemporary(name) == std::nullopt);
    }
}

TEST_CASE("no two temporary names are the same") {
    std::set<std::string> names;
    for (int i = 0; i < 1000; ++i) {
        names.insert(temporaryName("note"));
    }
    CHECK(names.size() == 1000);
}

}  // namespace
}  // namespace tessaly::base
