// SPDX-License-Identifier: MIT
#include "tasks/operation_text.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <limits>
#include <map>
#include <utility>
#include <vector>

#include "base/enum_names.h"
#include "store/record_fields.h"

namespace tessaly::tasks {
namespace {

using Fields = std::vector<std::string>;

constexpr std::string_view firstLine = "tessaly operation 1";
constexpr std::string_view madeWord = "made";

std::string row(std::string_view word, std::initializer_list<std::string_view> fields = {}) {
    std::string line(word);
    for (const std::string_view field : fields) {
        line.append("\t").append(store::escaped(field, "\\\t\n\r"));
    }
    return line + "\n";
}

std::string rowOf(const LineEdit& edit) {
    return row(base::rawValue(edit.kind),
               {std::to_string(edit.index), std::to_string(edit.newIndex),
                std::to_string(edit.alike), edit.before, edit.after, edit.anchor});
}

std::string rowsOf(std::size_t index, const NoteStep& step) {
    std::string text = row("step", {std::to_string(index), base::rawValue(step.type), step.filename,
                                    step.hashBefore, step.hashAfter});
    text += step.staysWhenUndone ? row("stays") : "";
    text += row("bytes",
                {std::to_string(step.change.offset), step.change.removed, step.change.inserted});
    for (const LineEdit& edit : step.edits) {
        text += rowOf(edit);
    }
    return text + row("end");
}

// The fields of a line, its word first; nothing when one is not understood.
std::optional<Fields> fieldsOf(std::string_view line) {
    Fields fields;
    do {
        // A tab at the end is followed by one more field, which is empty.
        const bool isLast = line.find('\t') == line.npos;
        auto field = store::unescaped(store::takeField(line));
        if (!field) {
            return std::nullopt;
        }
        fields.push_back(*std::move(field));
        if (isLast) {
            return fields;
        }
    } while (true);
}

template <class Value, class Read>
bool set(Value& target, const std::optional<Read>& read) {
    if (read) {
        target = *read;
    }
    return read.has_value();
}

bool setNumber(std::size_t& target, std::string_view text) {
    return set(target, store::numberOf(text, std::numeric_limits<std::size_t>::max()));
}

/// What stands before the first step.
struct Head {
    Operation operation;
    std::size_t steps = 0;
};

struct HeadRow {
    std::string_view word;
    bool isNeeded;
    bool (*read)(Head& head, const std::string& text);
};

const std::array<HeadRow, 7> headRows{{
    {"time", true,
     [](Head& head, const std::string& text) {
         return set(head.operation.time, store::timeOf(text));
     }},
    {"cause", true,
     [](Head& head, const std::string& text) {
         return set(head.operation.cause, base::fromRawValue<store::ChangeCause>(text));
     }},
    {"day", false,
     [](Head& head, const std::string& text) {
         return set(head.operation.day, base::dayFromTagText(text));
     }},
    {"undoes", false,
     [](Head& head, const std::string& text) {
         return set(head.operation.undoes,
                    store::numberOf(text, std::numeric_limits<std::uint64_t>::max()));
     }},
    {"tasks", true,
     [](Head& head, const std::string& text) { return setNumber(head.operation.tasks, text); }},
    {"title", true,
     [](Head& head, const std::string& text) {
         head.operation.title = text;
         return true;
     }},
    {"steps", true,
     [](Head& head, const std::string& text) { return setNumber(head.steps, text); }},
}};

bool readStepLine(NoteStep& step, const Fields& fields) {
    if (fields.size() == 1 && fields[0] == "stays") {
        step.staysWhenUndone = true;
        return true;
    }
    if (fields.size() == 4 && fields[0] == "bytes") {
        step.change.removed = fields[2];
        step.change.inserted = fields[3];
        return setNumber(step.change.offset, fields[1]);
    }
    LineEdit edit;
    const bool isEdit = fields.size() == 7 &&
                        set(edit.kind, base::fromRawValue<LineEdit::Kind>(fields[0])) &&
                        setNumber(edit.index, fields[1]) && setNumber(edit.newIndex, fields[2]) &&
                        setNumber(edit.alike, fields[3]);
    if (isEdit) {
        edit.before = fields[4];
        edit.after = fields[5];
        edit.anchor = fields[6];
        step.edits.push_back(std::move(edit));
    }
    return isEdit;
}

/// Reads line after line.
class Reader {
public:
    /// No: this is no operation.
    bool read(std::string_view line) {
        if (line == "step" || line.starts_with("step\t")) {
            beginStep(line);
            return true;
        }
        if (!_isBehindHead) {
            return readHead(line);
        }
        if (_isInStep) {
            return readInStep(line);
        }
        // Behind a step may be the first bytes of what was interrupted.
        readStepsMade(line);
        return true;
    }

    std::optional<Operation> operation() && {
        for (std::size_t at = 0; at < headRows.size(); ++at) {
            if (headRows[at].isNeeded && !_isRead[at]) {
                return std::nullopt;
            }
        }
        const bool isWhole = _steps.size() == _head.steps &&
                             (_steps.empty() || _steps.rbegin()->first == _head.steps - 1);
        if (!isWhole) {
            return std::nullopt;
        }
        _head.operation.stepsMade = std::min(_head.operation.stepsMade, _head.steps);
        for (auto& [index, step] : _steps) {
            _head.operation.steps.push_back(std::move(step));
        }
        return std::move(_head.operation);
    }

private:
    bool readHead(std::string_view line) {
        const auto fields = fieldsOf(line);
        for (std::size_t at = 0; fields && fields->size() == 2 && at < headRows.size(); ++at) {
            if (headRows[at].word == fields->front()) {
                _isRead[at] = true;
                return headRows[at].read(_head, fields->back());
            }
        }
        return false;
    }

    void beginStep(std::string_view line) {
        _isBehindHead = true;
        _isInStep = true;
        _step = {};
        const auto fields = fieldsOf(line);
        _isGood = fields && fields->size() == 6 && setNumber(_index, (*fields)[1]) &&
                  set(_step.type, base::fromRawValue<base::NoteType>((*fields)[2]));
        if (_isGood) {
            _step.filename = (*fields)[3];
            _step.hashBefore = (*fields)[4];
            _step.hashAfter = (*fields)[5];
        }
    }

    // Only its end tells whether a line that is not understood was cut off by an interruption.
    bool readInStep(std::string_view line) {
        if (line != "end") {
            const auto fields = fieldsOf(line);
            _isGood = _isGood && fields && readStepLine(_step, *fields);
            return true;
        }
        _isInStep = false;
        _steps[_index] = std::move(_step);
        return _isGood;
    }

    void readStepsMade(std::string_view line) {
        const auto fields = fieldsOf(line);
        if (fields && fields->size() == 2 && fields->front() == madeWord) {
            setNumber(_head.operation.stepsMade, fields->back());
        }
    }

    Head _head;
    std::array<bool, headRows.size()> _isRead{};
    bool _isBehindHead = false;

    bool _isInStep = false;
    bool _isGood = false;
    std::size_t _index = 0;
    NoteStep _step;
    std::map<std::size_t, NoteStep> _steps;
};

}  // namespace

std::string textOf(const Operation& operation) {
    std::string text = row(firstLine);
    text += row("time", {store::timeText(operation.time)});
    text += row("cause", {base::rawValue(operation.cause)});
    text += operation.day ? row("day", {base::tagText(*operation.day)}) : "";
    text += operation.undoes ? row("undoes", {std::to_string(*operation.undoes)}) : "";
    text += row("tasks", {std::to_string(operation.tasks)});
    text += row("title", {operation.title});
    text += row("steps", {std::to_string(operation.steps.size())});
    for (std::size_t at = 0; at < operation.steps.size(); ++at) {
        text += rowsOf(at, operation.steps[at]);
    }
    return text;
}

std::string textOf(std::size_t index, const NoteStep& step) {
    return "\n" + rowsOf(index, step);
}

std::string textOfStepsMade(std::size_t count) {
    return "\n" + row(madeWord, {std::to_string(count)});
}

std::optional<Operation> operationOf(std::string_view text) {
    Reader reader;
    bool isFirst = true;
    for (std::size_t end = text.find('\n'); end != text.npos; end = text.find('\n')) {
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end + 1);
        if (isFirst ? line != firstLine : !line.empty() && !reader.read(line)) {
            return std::nullopt;
        }
        isFirst = false;
    }
    return isFirst ? std::nullopt : std::move(reader).operation();
}

}  // namespace tessaly::tasks
