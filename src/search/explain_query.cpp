// SPDX-License-Identifier: MIT
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "base/localisation.h"
#include "search/filter_conditions.h"
#include "search/search_query.h"

namespace tessaly::search {
namespace {

using base::tr;
using Reason = MisreadWord::Reason;

std::string with(const std::string& sentence, const std::string& text) {
    return fmt::format(fmt::runtime(sentence), text);
}

/// What is said of each of `texts`.
void addEach(std::vector<std::string>& lines, const std::string& sentence,
             const std::vector<std::string>& texts) {
    for (const std::string& text : texts) {
        lines.push_back(with(sentence, text));
    }
}

std::string joined(const std::vector<std::string>& parts) {
    std::string list;
    for (const std::string& part : parts) {
        list.append(list.empty() ? "" : ", ").append(part);
    }
    return list;
}

std::string folderList(const std::vector<std::string>& folders) {
    std::vector<std::string> quoted;
    addEach(quoted, tr("“{}”"), folders);
    return joined(quoted);
}

std::string stateList(LineKinds kinds) {
    const std::pair<grammar::TodoType, std::string> rows[] = {
        {grammar::TodoType::open, tr("open")},
        {grammar::TodoType::done, tr("done")},
        {grammar::TodoType::scheduled, tr("scheduled")},
        {grammar::TodoType::cancelled, tr("cancelled")}};
    std::vector<std::string> states;
    for (const auto& [type, name] : rows) {
        if (kinds.has(type)) {
            states.push_back(name);
        }
    }
    return joined(states);
}

bool isAllTasks(LineKinds kinds) {
    return kinds.with(LineKinds::tasks()) == LineKinds::tasks();
}

std::string explainTasks(LineKinds kinds) {
    return isAllTasks(kinds) ? tr("tasks, in any state")
                             : with(tr("tasks in these states: {}"), stateList(kinds));
}

std::string explainWord(const MisreadWord& misread) {
    switch (misread.reason) {
        case Reason::noState:
            return with(
                tr("“{}” is looked for as text: a task is open, done, scheduled or cancelled"),
                misread.word);
        case Reason::noDay:
            return with(tr("“{}” is looked for as text: no day is called so"), misread.word);
        case Reason::nothingNamed:
            return with(tr("“{}” is looked for as text: nothing is named"), misread.word);
        case Reason::openQuote: break;
    }
    return with(tr("“{}” is looked for as text: no quote closes it"), misread.word);
}

void addText(std::vector<std::string>& lines, const SearchQuery& query) {
    if (query.text.empty()) {
        return;
    }
    lines.push_back(with(query.words.empty()
                             ? tr("with the text “{}”")
                             : tr("with the text “{}”, or, further down, with all of its words"),
                         query.text));
}

std::string rowList(const FilterConditions& conditions) {
    const std::pair<bool, std::string> rows[] = {{conditions.noteItem, tr("general notes")},
                                                 {conditions.calendarItem, tr("calendar notes")},
                                                 {conditions.eventItem, tr("events")},
                                                 {conditions.reminderItem, tr("reminders")}};
    std::vector<std::string> names;
    for (const auto& [isOn, name] : rows) {
        if (isOn) {
            names.push_back(name);
        }
    }
    return joined(names);
}

void addFilteredLines(std::vector<std::string>& lines, LineKinds kinds) {
    lines.push_back(kinds.hasTasks() ? explainTasks(kinds) : tr("no tasks"));
    if (kinds.hasOther()) {
        lines.push_back(tr("lines that are no tasks, each by itself"));
    }
}

void addDays(std::vector<std::string>& lines, const DayRange& days) {
    if (!days.isOpen()) {
        lines.push_back(explainDays(days));
    }
}

}  // namespace

std::vector<std::string> explainQuery(const SearchQuery& query) {
    std::vector<std::string> lines;
    addText(lines, query);
    addEach(lines, tr("with the text “{}”"), query.phrases);
    addEach(lines, tr("without the text “{}”"), query.excluded);
    addEach(lines, tr("in notes with “{}” in their title"), query.titles);
    if (!query.folders.empty()) {
        lines.push_back(with(
            query.folders.size() == 1 ? tr("in the folder {}") : tr("in one of the folders {}"),
            folderList(query.folders)));
    }
    if (query.kinds != LineKinds::all()) {
        lines.push_back(isAllTasks(query.kinds) ? tr("only tasks") : explainTasks(query.kinds));
    }
    addDays(lines, query.days);
    const std::vector<std::string> misread = explainMisread(query);
    lines.insert(lines.end(), misread.begin(), misread.end());
    return lines;
}

std::vector<std::string> explainMisread(const SearchQuery& query) {
    std::vector<std::string> lines;
    for (const MisreadWord& misread : query.misread) {
        lines.push_back(explainWord(misread));
    }
    return lines;
}

std::vector<std::string> explainRoute(const RoutedQuery& routed) {
    if (routed.route == SearchRoute::text) {
        return {};
    }
    if (routed.route == SearchRoute::tags) {
        return {with(tr("lines that carry “{}”, or, if none does, hold it in their text"),
                     routed.query)};
    }
    if (routed.query == "recent") {
        return {tr("the notes last changed")};
    }
    if (routed.query == "inbox") {
        return {tr("open tasks of general notes without a date")};
    }
    return {with(tr("nothing: there is no list “{}”, only “recent” and “inbox”"), routed.query)};
}

std::vector<std::string> explainFilter(const FilterConditions& conditions) {
    std::vector<std::string> lines;
    if (!conditions.isActive) {
        return lines;
    }
    addFilteredLines(lines, conditions.kinds);
    const std::string rows = rowList(conditions);
    lines.push_back(rows.empty() ? tr("neither notes nor events nor reminders")
                                 : with(tr("of notes, events and reminders: {}"), rows));
    addDays(lines, conditions.days);
    const RoutedQuery keyword = routeQuery(conditions.keyword, true);
    if (keyword.route == SearchRoute::tags) {
        lines.push_back(explainRoute(keyword).front());
    } else if (!keyword.query.empty()) {
        lines.push_back(with(tr("with the keyword “{}”"), conditions.keyword));
    }
    lines.insert(lines.end(), conditions.unreadable.begin(), conditions.unreadable.end());
    return lines;
}

}  // namespace tessaly::search
