// SPDX-License-Identifier: MIT
#include <string>
#include <vector>

#include <doctest/doctest.h>
#include <fmt/format.h>

#include "base/utf8.h"
#include "grammar/disassembled_todo.h"

using namespace tessaly;
using namespace tessaly::grammar;

namespace {

struct Row {
    const char* line;
    const char* parts;
    TodoState state;
};

std::string partsOf(const DisassembledTodo& todo) {
    return fmt::format("{}|{}|{}", todo.pattern, todo.state, todo.rest);
}

}  // namespace

TEST_CASE("a line is taken apart and put together again") {
    for (const Row& row : std::vector<Row>{
             {"\t* [x] Pay", "\t* |[x] |Pay", TodoState::done},
             {"> [>] Pay", "> |[>] |Pay", TodoState::scheduled},
             {"[x] Pay", "|[x] |Pay", TodoState::done},
             {"  plain 😀", "  ||plain 😀", TodoState::open},
             {"* [X] Pay", "* ||[X] Pay", TodoState::open},
             {"* [\xC2\xA0] Pay", "* |[\xC2\xA0] |Pay", TodoState::open},
             {"", "||", TodoState::open},
         }) {
        CAPTURE(row.line);
        const DisassembledTodo todo = disassemble(row.line);
        CHECK(partsOf(todo) == row.parts);
        CHECK(todo.todoState == row.state);
        CHECK(todo.pattern + todo.state + todo.rest == row.line);
        CHECK(todo.restRange.end() == base::utf16Length(row.line));
        CHECK(contentLocation(row.line) == todo.restRange.location);
    }
}

TEST_CASE("a line of a megabyte is taken apart without a wait") {
    const std::string tabs(1'000'000, '\t');
    CHECK(disassemble(tabs + "* [x] Pay").state == "[x] ");
    CHECK(withoutPrefix(std::string(1'000'000, '\v')) == std::string(1'000'000, '\v'));
}
