// SPDX-License-Identifier: MIT
#include "grammar/disassembled_todo.h"

#include <algorithm>

#include "base/utf8.h"
#include "grammar/line_parts.h"

namespace tessaly::grammar {

namespace {

/// Where the parts of a line end, in bytes.
struct Ends {
    std::size_t pattern;
    std::size_t state;
    std::size_t rest;
    TodoState todoState;
};

TodoState stateOf(TodoType type) {
    switch (type) {
        case TodoType::done: return TodoState::done;
        case TodoType::cancelled: return TodoState::canceled;
        case TodoType::scheduled: return TodoState::scheduled;
        default: return TodoState::open;
    }
}

Ends endsOf(std::string_view line) {
    base::TodoCharacter marker{};
    const std::size_t space = skipSpace(line, 0);
    const std::size_t pattern = std::max(space, markerEnd(line, space, Quotes::yes, marker));
    const Box box = boxAt(line, pattern);
    const std::size_t state = std::max(pattern, box.end);
    return {pattern, state, state + upToTerminator(line.substr(state)).size(),
            box.end == 0 ? TodoState::open : stateOf(box.type)};
}

base::TextRange rangeOf(std::string_view line, std::size_t from, std::size_t to) {
    return {base::utf16Length(line.substr(0, from)),
            base::utf16Length(line.substr(from, to - from))};
}

/// Behind a box " [x]" as `anyPrefix` allows it, which a blank must follow; else `place`.
std::size_t skipBox(std::string_view line, std::size_t place) {
    constexpr std::string_view states = " x>-";
    const bool isBox = charAt(line, place) == ' ' && charAt(line, place + 1) == '[' &&
                       states.find(charAt(line, place + 2)) != std::string_view::npos &&
                       charAt(line, place + 3) == ']' && charAt(line, place + 4) == ' ';
    return isBox ? place + 4 : place;
}

}  // namespace

DisassembledTodo disassemble(std::string_view line) {
    const Ends ends = endsOf(line);
    DisassembledTodo todo;
    todo.pattern = line.substr(0, ends.pattern);
    todo.patternRange = rangeOf(line, 0, ends.pattern);
    todo.state = line.substr(ends.pattern, ends.state - ends.pattern);
    todo.stateRange = rangeOf(line, ends.pattern, ends.state);
    todo.todoState = ends.todoState;
    todo.rest = line.substr(ends.state, ends.rest - ends.state);
    todo.restRange = rangeOf(line, ends.state, ends.rest);
    return todo;
}

std::size_t contentLocation(std::string_view line) {
    return base::utf16Length(line.substr(0, endsOf(line).state));
}

std::string withoutPrefix(std::string_view line) {
    base::TodoCharacter marker{};
    const std::size_t start = skipSpace(line, 0);
    std::size_t end = signEnd(line, start, Quotes::yes, marker);
    if (charAt(line, start) == '#') {
        end = std::min(line.find_first_not_of('#', start), line.size());
    }
    if (end == 0) {
        return std::string(line);
    }
    end = skipBox(line, end);
    return charAt(line, end) == ' ' ? std::string(upToTerminator(line.substr(end + 1)))
                                    : std::string(line);
}

}  // namespace tessaly::grammar
