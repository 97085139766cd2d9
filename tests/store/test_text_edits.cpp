// SPDX-License-Identifier: MIT
#include <string>
#include <string_view>

#include <doctest/doctest.h>

#include "store/text_edits.h"

using namespace tessaly;
using base::WriteMode;

namespace {

constexpr std::string_view unchanged = "(unchanged)";

}  // namespace

TEST_CASE("text is added on lines of its own, with the note's line breaks") {
    const auto row = [](WriteMode mode, std::string_view content, std::string_view text,
                        std::string_view expected) {
        CAPTURE(content);
        CAPTURE(text);
        CHECK(store::withTextAdded(content, text, mode).value_or(std::string(unchanged)) ==
              expected);
    };
    constexpr auto append = WriteMode::append;
    row(append, "", "new", "new");
    row(append, "old", "", unchanged);
    row(append, "old", "new", "old\nnew");
    row(append, "old\n", "new", "old\nnew\n");
    row(append, "old", "new\n", "old\nnew\n");
    row(append, "old", "\nnew", "old\nnew");
    row(append, "old\n", "\nnew", "old\n\nnew\n");
    row(append, "old\n\n", "new", "old\n\nnew\n");
    row(append, "a\r\nb", "c\nd", "a\r\nb\r\nc\r\nd");
    row(append, "a\r\nb", "\r\nc\r\n", "a\r\nb\r\nc\r\n");
    row(append, "a\nb\r\n", "c\r\nd", "a\nb\r\nc\nd\n");
    row(append, "one line", "a\r\nb", "one line\r\na\r\nb");
    row(append, "a\n", "b\rc", "a\nb\rc\n");

    constexpr auto prepend = WriteMode::prepend;
    row(prepend, "# Monday\n- task", "Buy milk", "Buy milk\n# Monday\n- task");
    row(prepend, "\n# Monday", "Buy milk", "Buy milk\n# Monday");
    row(prepend, "\n# Monday", "Buy milk\n", "Buy milk\n\n# Monday");
    row(prepend, "\r\n# Monday", "Buy milk", "Buy milk\r\n# Monday");
    row(prepend, "", "Buy milk", "Buy milk\n");
    row(prepend, "old", "", unchanged);
    row(prepend, "a\r\nb", "c\nd", "c\r\nd\r\na\r\nb");

    constexpr auto overwrite = WriteMode::overwrite;
    row(overwrite, "a\r\nb\r\n", "c\nd", "c\nd");
    row(overwrite, "old", "", "");
    row(overwrite, "old", "old", unchanged);
}

TEST_CASE("exactly the range goes, or it is refused") {
    // "é" is one unit of UTF-16, the emoji two.
    const std::string text = "a\xC3\xA9\xF0\x9F\x98\x80z\r\nend";
    const auto row = [&](base::TextRange range, std::optional<std::string> expected,
                         std::string_view result) {
        CAPTURE(range.location);
        CAPTURE(range.length);
        const auto edited = store::withoutRange(text, range, expected);
        CHECK((edited ? *edited : "refused: " + edited.failure().description) == result);
    };
    constexpr std::size_t most = static_cast<std::size_t>(-1);
    const char* pastEnd = "refused: the range goes past the end of the text";
    const char* split = "refused: the range cuts a character in two";
    const char* other = "refused: another text stands there now";
    row({0, 1}, {}, "\xC3\xA9\xF0\x9F\x98\x80z\r\nend");
    row({1, 1}, "\xC3\xA9", "a\xF0\x9F\x98\x80z\r\nend");
    row({2, 2}, "\xF0\x9F\x98\x80", "a\xC3\xA9z\r\nend");
    row({4, 3}, "z\r\n",
        "a\xC3\xA9\xF0\x9F\x98\x80"
        "end");
    row({7, 3}, "end", "a\xC3\xA9\xF0\x9F\x98\x80z\r\n");
    row({10, 0}, {}, text);
    row({3, 0}, {}, split);
    row({2, 1}, {}, split);
    row({7, 4}, {}, pastEnd);
    row({11, 0}, {}, pastEnd);
    row({1, most}, {}, pastEnd);
    row({most, 2}, {}, pastEnd);
    row({7, 3}, "End", other);
}

TEST_CASE("lines are found as whole lines, whatever their ends") {
    const auto row = [](std::string_view content, std::string_view text, bool expected) {
        CAPTURE(content);
        CAPTURE(text);
        CHECK(store::holdsLines(content, text) == expected);
    };
    row("a\nb\nc\n", "b\nc\n", true);
    row("a\nb\nc", "b\r\nc\r\n", true);
    row("a\r\nb\r\n", "a\nb", true);
    row("a\nbc\n", "b", false);
    row("ab\nb", "b", true);
    row("a\n\nb", "a\nb", false);
    row("a\nx", "a\n\n", false);
    row("a\n\nx", "a\n\n", true);
    row("", "a", false);
    row("a", "", true);
    row("aab", "ab", false);
}
