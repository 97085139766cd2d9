// SPDX-License-Identifier: MIT
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "base/text_range.h"
#include "base/utf8.h"
#include "editor/edit.h"
#include "editor/editor_commands.h"
#include "editor/selected_lines.h"
#include "editor/splices.h"
#include "grammar/line_scanner.h"
#include "grammar/todo.h"

namespace tessaly::editor {

namespace {

bool isItem(std::string_view line) {
    const grammar::TodoType type = grammar::classifyLine(line, {}).type;
    return grammar::isTask(type) || type == grammar::TodoType::list;
}

std::optional<Splice> shifted(std::string_view text, ByteSpan line, Indentation indentation) {
    if (indentation == Indentation::more) {
        return Splice{line.start, 0, "\t"};
    }
    const base::CodePoint first = base::codePointAt(text, line.start);
    if (!base::isWhiteSpace(first.value)) {
        return std::nullopt;
    }
    return Splice{line.start, first.size, ""};
}

}  // namespace

std::optional<Edit> indent(std::string_view text, base::TextRange selection,
                           Indentation indentation) {
    const ByteSpan selected = bytesOf(text, selection);
    const auto lines = linesTouched(text, selected);
    if (lines.size() == 1 && !isItem(lines.front().in(text))) {
        return std::nullopt;
    }
    Splices splices;
    for (const ByteSpan line : lines) {
        if (isBlank(line.in(text))) {
            continue;
        }
        if (auto splice = shifted(text, line, indentation)) {
            splices.push_back(std::move(*splice));
        }
    }
    if (splices.empty()) {
        return std::nullopt;
    }
    const std::size_t start = locationAfter(text, splices, selected.start, Side::behind);
    const std::size_t end = locationAfter(text, splices, selected.end, Side::behind);
    return editOf(text, splices, {start, end - start});
}

}  // namespace tessaly::editor
