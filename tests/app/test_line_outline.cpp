// SPDX-License-Identifier: MIT
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "app/line_outline.h"
#include "store/line_diff.h"

using namespace tessaly;

namespace {

struct Outline {
    std::vector<app::OutlineLine> lines;

    explicit Outline(std::string_view text) {
        app::FenceState fence = app::FenceState::outside;
        for (const std::string_view line : store::linesOfText(text)) {
            lines.push_back(app::outlineLine(line, fence));
            fence = app::fenceAfter(line, fence);
        }
    }

    app::OutlineLines reader() const {
        return [this](std::size_t line) {
            return line < lines.size() ? std::optional(lines[line]) : std::nullopt;
        };
    }
};

}  // namespace

TEST_CASE("which lines belong to a line") {
    struct Row {
        std::string_view text;
        std::size_t line;
        int last;  ///< -1: none
    };
    const Row rows[] = {
        {"# a\nb\n## c\nd\n# e", 0, 3},
        {"# a\nb\n## c\nd\n# e", 2, 3},
        {"# a\n\n\n# e", 0, -1},
        {"# a\nb\n\n", 0, 1},
        {"* a\n\t* b\n\n\t* c\n\n* d", 0, 3},
        {"* a\n  * b\n* c", 0, 1},
        {"* a\n  b\n    c\nd", 0, 2},
        {"\t* a\n    * b\n", 0, -1},
        {"\t* a\n     * b\n", 0, 1},
        {"1. a\n\t- [x] b\n# c\n\t* d", 0, 1},
        {"words\n\t* b", 0, -1},
        {"> quoted\n\t* b", 0, -1},
        {"", 0, -1},
        // What looks like a heading in code ends nothing, and has nothing.
        {"# a\n```\n# no heading\n```\nb\n# c", 0, 4},
        {"# a\n```\n# no heading\nb\n```", 2, -1},
        {"* a\n\t```\n\t# x\n\t```\nb", 0, 3},
    };
    for (const Row& row : rows) {
        CAPTURE(row.text);
        CAPTURE(row.line);
        const Outline outline(row.text);
        const auto last = app::lastOfItsLines(row.line, outline.reader());
        CHECK((last ? static_cast<int>(*last) : -1) == row.last);
        CHECK(app::hasItsLines(row.line, outline.reader()) == last.has_value());
    }
}
