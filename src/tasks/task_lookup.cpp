// SPDX-License-Identifier: MIT
#include "tasks/task_lookup.h"

#include "base/localisation.h"
#include "grammar/line_scanner.h"
#include "grammar/todo_helper.h"
#include "tasks/refusals.h"

namespace tessaly::tasks {
namespace {

using base::N_;
using FailureKind = base::Failure::Kind;

// What shortening puts at the end, "(\.\.\.$)".
constexpr std::string_view dots = "...";

}  // namespace

bool isLineCalled(std::string_view line, std::string_view text,
                  const grammar::MarkerSettings& markers) {
    if (text.ends_with('\r')) {
        text.remove_suffix(1);
    }
    const std::string_view content = grammar::contentOf(line, grammar::classifyLine(line, markers));
    if (text.ends_with(dots)) {
        const std::string_view beginning = text.substr(0, text.size() - dots.size());
        return line.starts_with(beginning) || content.starts_with(beginning);
    }
    return line == text || content == text;
}

base::Result<std::size_t> findLine(const std::vector<std::string>& lines, const TaskReference& task,
                                   const grammar::MarkerSettings& markers) {
    const std::size_t index = task.lineIndex;
    if (!task.text) {
        return index < lines.size()
                   ? base::Result<std::size_t>(index)
                   : lineRefused(task.note, index, N_("{0}: there is no such line"),
                                 FailureKind::notFound);
    }
    if (index < lines.size() && isLineCalled(lines[index], *task.text, markers)) {
        return index;
    }
    std::vector<std::size_t> found;
    for (std::size_t other = 0; other < lines.size(); ++other) {
        if (isLineCalled(lines[other], *task.text, markers)) {
            found.push_back(other);
        }
    }
    if (found.size() > 1) {
        return lineRefused(task.note, index,
                           N_("{0}: the line has changed, and several others read as it did"),
                           FailureKind::changed);
    }
    if (found.empty()) {
        return lineRefused(task.note, index, N_("{0}: the line has changed"), FailureKind::changed);
    }
    return task.where == TaskReference::Where::anywhere
               ? base::Result<std::size_t>(found.front())
               : lineHasMoved(task.note, index, found.front());
}

}  // namespace tessaly::tasks
