// SPDX-License-Identifier: MIT
#include "tasks/undo_edits.h"

#include <cstddef>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

#include "base/utf8.h"
#include "grammar/line_scanner.h"
#include "tasks/copies_of_tasks.h"
#include "tasks/line_matching.h"
#include "tasks/text_lines.h"

namespace tessaly::tasks {
namespace {

using Kind = LineEdit::Kind;

// Blank lines are anybody's.
bool marksText(const LineEdit& edit) {
    return !removesLine(edit) && !base::trimmed(edit.after).empty();
}

std::string bareLine(std::string_view line) {
    return bareContent(grammar::contentOf(line, grammar::classifyLine(line, {})));
}

}  // namespace

std::vector<LineEdit> ownEdits(std::span<const LineEdit> made, std::string_view text) {
    LinePlaces places;
    for (const LineEdit& edit : made) {
        places.want(edit.after);
    }
    places.fill(linesIn(text));
    std::unordered_map<std::string_view, std::ptrdiff_t> own;
    for (const LineEdit& edit : made) {
        own.try_emplace(edit.after, static_cast<std::ptrdiff_t>(places.of(edit.after).size()) -
                                        static_cast<std::ptrdiff_t>(edit.alike));
    }
    for (const LineEdit& edit : made) {
        if (const auto line = own.find(edit.before); takesLine(edit) && line != own.end()) {
            ++line->second;
        }
    }
    std::vector<LineEdit> edits;
    for (const LineEdit& edit : made) {
        if (!marksText(edit) || own.at(edit.after)-- > 0) {
            edits.push_back(edit);
        }
    }
    return edits;
}

std::vector<std::string> notRestored(std::span<const LineEdit> made,
                                     std::span<const LineEdit> back) {
    std::map<std::pair<std::string_view, std::string_view>, std::size_t> restored;
    for (const LineEdit& edit : back) {
        restored[{edit.after, edit.before}] += edit.kind == Kind::replace ? 1 : 0;
    }
    std::vector<std::string> lines;
    for (const LineEdit& edit : made) {
        if (edit.kind != Kind::replace) {
            continue;
        }
        std::size_t& count = restored[{edit.before, edit.after}];
        if (count == 0) {
            lines.push_back(edit.before);
        } else {
            --count;
        }
    }
    return lines;
}

std::vector<NoteStep> withoutCopiesOf(std::span<const std::string> lines,
                                      std::vector<NoteStep> steps) {
    std::multiset<std::string> tasks;
    for (const std::string& line : lines) {
        tasks.insert(bareLine(line));
    }
    for (NoteStep& step : steps) {
        auto left = tasks;
        const auto isOfTask = [&](const LineEdit& edit) {
            const bool isCopy = edit.kind != Kind::replace;
            const auto task =
                isCopy ? left.find(bareLine(removesLine(edit) ? edit.before : edit.after))
                       : left.end();
            const bool isFound = task != left.end();
            if (isFound) {
                left.erase(task);
            }
            return isFound;
        };
        if (std::erase_if(step.edits, isOfTask) > 0) {
            step.hashBefore.clear();
            step.hashAfter.clear();
        }
    }
    std::erase_if(steps, [](const NoteStep& step) { return step.edits.empty(); });
    return steps;
}

}  // namespace tessaly::tasks
