// SPDX-License-Identifier: MIT
#include "tasks/copies_of_tasks.h"

#include "base/utf8.h"
#include "grammar/date_tags.h"
#include "grammar/line_scanner.h"

namespace tessaly::tasks {
namespace {

using grammar::DateTags;
using grammar::LineClass;
using grammar::MarkKind;
using grammar::TodoType;

std::optional<base::Day> firstDay(std::string_view line, MarkKind kind) {
    for (const grammar::DateTag& tag : DateTags::findDateTags(line)) {
        if (tag.kind == kind) {
            return tag.day;
        }
    }
    return std::nullopt;
}

class Copy {
public:
    Copy(std::string_view line, std::optional<base::Day> sourceDay,
         const grammar::MarkerSettings& markers)
        : _markers(markers),
          _sourceDay(sourceDay),
          _content(contentOf(line, grammar::classifyLine(line, markers))),
          _bare(bareContent(_content)) {}

    void lookAt(std::size_t index, std::string_view line, CopiesOfTask& found) const {
        const LineClass lineClass = grammar::classifyLine(line, _markers);
        if (!grammar::isTask(lineClass.type)) {
            return;
        }
        const std::string_view content = contentOf(line, lineClass);
        if (lineClass.type == TodoType::open && content == _content) {
            found.open.push_back(index);
        } else if (!found.changed && wasCopy(line, content, lineClass.type)) {
            found.changed = index;
        }
    }

private:
    static std::string_view contentOf(std::string_view line, const LineClass& lineClass) {
        return base::trimmedEnd(grammar::contentOf(line, lineClass));
    }

    // A link back tells a copy even when words were added to it or taken from it; one that was
    // scheduled further has lost its link.
    bool wasCopy(std::string_view line, std::string_view content, TodoType type) const {
        const std::string other = bareContent(content);
        if (_bare.empty() || other.empty()) {
            return false;
        }
        if (_sourceDay && firstDay(line, MarkKind::backLink) == _sourceDay) {
            return other.starts_with(_bare) || _bare.starts_with(other);
        }
        return other == _bare && (!_sourceDay || type == TodoType::scheduled);
    }

    const grammar::MarkerSettings& _markers;
    const std::optional<base::Day> _sourceDay;
    const std::string _content;
    const std::string _bare;
};

}  // namespace

std::string bareContent(std::string_view content) {
    const std::string undated =
        DateTags::findAndRemoveDoneTag(DateTags::removeDateTags(std::string(content)));
    return std::string(base::trimmed(undated));
}

CopiesOfTask findCopies(const std::vector<std::string>& lines, std::string_view copy,
                        std::optional<base::Day> sourceDay,
                        const grammar::MarkerSettings& markers) {
    const Copy wanted(copy, sourceDay, markers);
    CopiesOfTask found;
    for (std::size_t index = 0; index < lines.size(); ++index) {
        wanted.lookAt(index, lines[index], found);
    }
    return found;
}

std::optional<base::Day> scheduledDay(std::string_view line) {
    return firstDay(line, MarkKind::scheduleTag);
}

}  // namespace tessaly::tasks
