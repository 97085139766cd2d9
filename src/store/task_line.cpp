// SPDX-License-Identifier: MIT
#include "store/task_line.h"

#include "base/utf8.h"
#include "grammar/line_scanner.h"

namespace tessaly::store {

namespace {

std::string_view familyOf(grammar::MarkKind kind, std::string_view core) {
    using grammar::MarkKind;
    const bool isDate =
        kind == MarkKind::scheduleTag || kind == MarkKind::backLink || kind == MarkKind::plainDate;
    return isDate ? core.substr(0, 1) : core.substr(0, core.find('('));
}

std::string_view blankStart(std::string_view text) {
    return text.substr(0, text.size() - base::trimmedStart(text).size());
}
std::string_view blankEnd(std::string_view text) {
    return text.substr(base::trimmedEnd(text).size());
}

/// Parts the content of a line into text and tags.
class ContentReader {
public:
    ContentReader(std::string_view line, std::size_t start, TaskLine& task)
        : _line(line), _done(start), _task(task) {}

    void read() {
        std::vector<grammar::Mark> marks;
        grammar::findMarks(_line, marks);
        for (const grammar::Mark& mark : marks) {
            const std::string_view whole = _line.substr(mark.start, mark.end - mark.start);
            const std::size_t start = mark.start + blankStart(whole).size();
            // A completion tag is a mention too, and a date may stand in an argument.
            if (start >= _done) {
                add(mark.kind, start, mark.end);
            }
        }
        _task.text += _line.substr(_done);
    }

private:
    void add(grammar::MarkKind kind, std::size_t start, std::size_t end) {
        const std::string_view before = _line.substr(_done, start - _done);
        TaskTag tag;
        tag.lead = blankEnd(before);
        tag.core = _line.substr(start, end - start);
        tag.family = familyOf(kind, tag.core);
        _task.text += before.substr(0, before.size() - tag.lead.size());
        if (_task.text.empty() && tag.lead.empty()) {
            tag.trail = blankStart(_line.substr(end));
        }
        tag.place = _task.text.size();
        _done = end + tag.trail.size();
        _task.tags.push_back(tag);
    }

    std::string_view _line;
    std::size_t _done;  // what stands before is read
    TaskLine& _task;
};

}  // namespace

std::optional<TaskLine> readTaskLine(std::string_view line) {
    const grammar::LineClass found = grammar::classifyLine(
        line, {.isAsteriskTodo = true, .isDashTodo = true, .isNumbersTodo = true});
    if (!grammar::isTask(found.type)) {
        return std::nullopt;
    }
    TaskLine task;
    task.prefix = line.substr(0, found.boxStart);
    task.box = line.substr(found.boxStart, found.contentStart - found.boxStart);
    task.tail = blankEnd(line.substr(found.contentStart));
    line.remove_suffix(task.tail.size());
    ContentReader(line, found.contentStart, task).read();
    return task;
}

}  // namespace tessaly::store
