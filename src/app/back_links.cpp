// SPDX-License-Identifier: MIT
#include "app/back_links.h"

#include <iterator>
#include <utility>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/note_type.h"
#include "grammar/todo_helper.h"
#include "store/note_names.h"
#include "store/paths.h"

namespace tessaly::app {

void BackLinks::add(const store::NoteFile& file, bool isKnown,
                    const grammar::MarkerSettings& markers) {
    const auto day = file.type == base::NoteType::calendar
                         ? store::dayOfCalendarFilename(file.filename)
                         : std::nullopt;
    if (!day) {
        return;
    }
    bool& holdsTasks = _days[*day];
    holdsTasks = holdsTasks || !isKnown;
    _scanner.start(isKnown ? file.bytes : std::string_view(), markers);
    while (const grammar::ScannedLine* line = _scanner.next()) {
        if (!grammar::isTask(line->line.type)) {
            continue;
        }
        holdsTasks = true;
        if (const auto to = grammar::TodoHelper::firstDay(*line, grammar::MarkKind::backLink)) {
            _links.push_back({*to, fmt::format("{}/{}:{}", base::folderName(file.type),
                                               file.filename, line->index + 1)});
        }
    }
}

void BackLinks::join(BackLinks&& other) {
    std::move(other._links.begin(), other._links.end(), std::back_inserter(_links));
    for (const auto& [day, holdsTasks] : other._days) {
        _days[day] = _days[day] || holdsTasks;
    }
}

// A placeholder has an extension more than its note.
void BackLinks::addUnread(std::string_view path) {
    const std::string_view name = store::lastComponent(path);
    for (const std::string_view filename : {name, name.substr(0, name.rfind('.'))}) {
        if (const auto day = store::dayOfCalendarFilename(filename)) {
            _days[*day] = true;
        }
    }
}

std::vector<Finding> BackLinks::broken() const {
    std::vector<Finding> findings;
    for (const Link& link : _links) {
        const auto day = _days.find(link.to);
        if (day != _days.end() && day->second) {
            continue;
        }
        const std::string text = day == _days.end()
                                     ? base::tr("Points back to {}, which has no note")
                                     : base::tr("Points back to {}, whose note holds no task");
        findings.push_back({Finding::Level::note, "brokenBackLink",
                            fmt::format(fmt::runtime(text), base::tagText(base::Day{link.to})),
                            link.path});
    }
    return findings;
}

}  // namespace tessaly::app
