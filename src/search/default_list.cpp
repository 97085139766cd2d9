// SPDX-License-Identifier: MIT
#include "search/default_list.h"

#include <tuple>

#include "base/localisation.h"
#include "base/utf8.h"
#include "grammar/line_scanner.h"
#include "search/note_lines.h"

namespace tessaly::search {

namespace {

/// Whether a line names a day, in whatever way: also one that does not exist, which its writer will
/// want to mend where the day was meant.
bool isDated(std::string_view line, std::vector<grammar::Mark>& marks) {
    if (line.find_first_of("<>@") == std::string_view::npos) {
        return false;
    }
    grammar::findMarks(line, marks);
    return std::any_of(marks.begin(), marks.end(), [](const grammar::Mark& mark) {
        return mark.kind != grammar::MarkKind::hashtag && mark.kind != grammar::MarkKind::mention;
    });
}

LineMatch wholeLine(const TaskPlace& task) {
    LineMatch match;
    match.lineIndex = task.lineIndex;
    match.line = {task.start, task.end()};
    match.match = {task.start, task.start};
    match.type = task.todoType();
    return match;
}

/// General notes before others.
auto orderOf(const NoteAge& age) {
    return std::tuple(age.type != base::NoteType::note, age.filename);
}

}  // namespace

DefaultList defaultListCalled(std::string_view name) {
    const std::string wanted = base::lowerCased(base::trimmed(name));
    return wanted == "recent"  ? DefaultList::recent
           : wanted == "inbox" ? DefaultList::inbox
                               : DefaultList::none;
}

NoteMatches inboxOf(const SearchedNote& note) {
    NoteMatches matches;
    if (note.type != base::NoteType::note) {
        return matches;
    }
    NoteLines lines(note, {});
    std::vector<grammar::Mark> marks;
    for (const TaskPlace& task : note.tasks) {
        if (task.todoType() != grammar::TodoType::open) {
            continue;
        }
        const LineMatch match = wholeLine(task);
        if (!isDated(lines.textOf(match), marks)) {
            matches.lines.push_back(match);
        }
    }
    matches.rows = matches.taskRows = matches.lines.size();
    return matches;
}

void addRecentNotes(ResultRows& rows, std::span<const SearchedNote> newestFirst) {
    rows.beginList(base::tr("Recent"));
    for (const SearchedNote& note : newestFirst) {
        rows.addListedNote(note);
    }
}

bool isNewer(const NoteAge& a, const NoteAge& b) {
    return a.modified != b.modified ? a.modified > b.modified : orderOf(a) < orderOf(b);
}

}  // namespace tessaly::search
