// SPDX-License-Identifier: MIT
#include "search/task_day.h"

#include <vector>

#include "grammar/line_scanner.h"
#include "grammar/todo_helper.h"

namespace tessaly::search {

std::optional<base::Day> dayOfTask(std::string_view line, std::optional<base::Day> noteDay) {
    if (line.find('>') == std::string_view::npos) {
        return noteDay;
    }
    thread_local std::vector<grammar::Mark> marks;
    grammar::findMarks(line, marks);
    const grammar::ScannedLine scanned{0, 0, line, {}, marks};
    const auto day = grammar::TodoHelper::firstDay(scanned, grammar::MarkKind::scheduleTag);
    return day ? day : noteDay;
}

}  // namespace tessaly::search
