// SPDX-License-Identifier: MIT
#include "tasks/archive_plan.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "base/utf8.h"
#include "grammar/line_scanner.h"
#include "tasks/task_rewrites.h"

namespace tessaly::tasks {
namespace {

using grammar::LineClass;
using grammar::TodoType;
using Kind = LineEdit::Kind;
using Lines = std::vector<std::string>;

constexpr std::string_view archiveTitle = "Archive";
constexpr std::string_view archiveHeading = "## Archive";
constexpr std::uint32_t archiveLevel = 2;

/// What becomes of a line: a task that is moved, a line that is moved with one, or one that stays.
enum class Fate { stays, movesAsTask, movesBelow };

std::string_view indentation(std::string_view line) {
    return line.substr(0, line.size() - base::trimmedStart(line).size());
}

bool hasNoWords(std::string_view line) {
    return base::trimmed(line).empty();
}

bool isBelow(std::string_view line, std::string_view task) {
    const std::string_view deeper = indentation(line);
    const std::string_view outer = indentation(task);
    return !hasNoWords(line) && deeper.size() > outer.size() && deeper.starts_with(outer);
}

class Archive {
public:
    Archive(PlannedChanges& plan, const NoteName& note, const Lines& lines)
        : _plan(plan), _note(note), _lines(lines), _fates(lines.size(), Fate::stays) {}

    void make() {
        decide();
        if (std::count(_fates.begin(), _fates.end(), Fate::movesAsTask) == 0) {
            return _plan.tell({_note, 0, {}}, TaskChange::What::nothingToArchive);
        }
        takeOut();
        openSection();
        putIn();
    }

private:
    bool isArchiveHeading(std::size_t index, const LineClass& line) const {
        return line.headingLevel == archiveLevel &&
               base::trimmed(grammar::contentOf(_lines[index], line)) == archiveTitle;
    }

    void decide() {
        bool isInArchive = false;
        for (std::size_t index = 0; index < _lines.size(); ++index) {
            const LineClass line = grammar::classifyLine(_lines[index], _plan.markers());
            if (line.type == TodoType::title && line.headingLevel <= archiveLevel) {
                isInArchive = isArchiveHeading(index, line);
                _heading = isInArchive && !_heading ? index : _heading;
                _isInFirst = isInArchive && _heading == index;
            }
            if (isInArchive) {
                _sectionEnd = _isInFirst && !hasNoWords(_lines[index]) ? index + 1 : _sectionEnd;
            } else if ((line.type == TodoType::done || line.type == TodoType::cancelled) &&
                       _fates[index] == Fate::stays) {
                moveBlock(index);
            }
        }
    }

    void moveBlock(std::size_t task) {
        _fates[task] = Fate::movesAsTask;
        for (std::size_t index = task + 1;
             index < _lines.size() && isBelow(_lines[index], _lines[task]); ++index) {
            _fates[index] = Fate::movesBelow;
        }
    }

    void takeOut() {
        for (std::size_t index = 0; index < _lines.size(); ++index) {
            if (_fates[index] != Fate::stays) {
                LineEdit removal;
                removal.kind = Kind::remove;
                removal.index = index;
                removal.before = _lines[index];
                _plan.edit(Phase::sources, _note, std::move(removal));
            }
        }
    }

    // Finds the line behind which, and the place at which, the first line will be put.
    void openSection() {
        for (std::size_t index = 0; index < (_heading ? _sectionEnd : _lines.size()); ++index) {
            if (_fates[index] == Fate::stays) {
                _anchor = _lines[index];
                ++_place;
            }
        }
        if (!_heading) {
            if (_place > 0 && !hasNoWords(_anchor)) {
                put({});
            }
            put(std::string(archiveHeading));
        }
    }

    void putIn() {
        for (std::size_t index = 0; index < _lines.size(); ++index) {
            if (_fates[index] == Fate::movesAsTask) {
                _plan.count({_note, index, _lines[index]});
                put(_lines[index], TaskChange::What::archived);
            } else if (_fates[index] == Fate::movesBelow) {
                put(_lines[index]);
            }
        }
    }

    void put(const std::string& line, std::optional<TaskChange::What> what = {}) {
        LineEdit insertion;
        insertion.kind = Kind::insert;
        insertion.newIndex = _place++;
        insertion.after = line;
        insertion.anchor = std::exchange(_anchor, line);
        _plan.edit(Phase::sources, _note, std::move(insertion), what);
    }

    PlannedChanges& _plan;
    const NoteName& _note;
    const Lines& _lines;
    std::vector<Fate> _fates;
    std::optional<std::size_t> _heading;  // of the note's first archive
    bool _isInFirst = false;
    std::size_t _sectionEnd = 0;  // behind the last line of that archive that is not blank
    std::string _anchor;
    std::size_t _place = 0;
};

}  // namespace

void planArchive(PlannedChanges& plan, const NoteName& note, const Lines& lines) {
    Archive(plan, note, lines).make();
}

}  // namespace tessaly::tasks
