// SPDX-License-Identifier: MIT
#include "store/day_tasks.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <map>
#include <set>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "base/utf8.h"
#include "grammar/date_tags.h"
#include "grammar/todo_helper.h"
#include "store/note_document.h"
#include "store/note_names.h"
#include "store/note_tags.h"
#include "store/paths.h"

namespace tessaly::store {
namespace {

using grammar::MarkKind;
using grammar::ScannedLine;
using grammar::TodoType;

// A quick look that spares most general notes their scan.
bool mayHoldScheduleTag(std::string_view text) {
    for (std::size_t at = text.find('>'); at != text.npos; at = text.find('>', at + 1)) {
        if (at + 1 < text.size() && text[at + 1] >= '0' && text[at + 1] <= '9') {
            return true;
        }
    }
    return false;
}

// What an original and its copy have in common.
std::string bareContent(std::string_view content) {
    if (content.find_first_of("<>@") == content.npos) {
        return std::string(base::trimmed(content));
    }
    const std::string bare =
        grammar::DateTags::removeDateTags(grammar::DateTags::findAndRemoveDoneTag(content));
    return std::string(base::trimmed(bare));
}

std::optional<base::Day> backLinkDay(std::string_view text) {
    std::vector<grammar::Mark> marks;
    grammar::findMarks(text, marks);
    return grammar::TodoHelper::firstDay({0, 0, text, {}, marks}, MarkKind::backLink);
}

}  // namespace

void DayTasks::add(base::NoteType type, std::string_view filename, std::string_view bytes,
                   const grammar::MarkerSettings& settings, grammar::NoteScanner& scanner) {
    const auto noteDay =
        type == base::NoteType::calendar ? dayOfCalendarFilename(filename) : std::nullopt;
    if (!noteDay && !mayHoldScheduleTag(bytes)) {
        return;
    }
    const std::string_view text = decodedText(bytes).value_or(std::string_view());
    Note note;
    scanner.start(text, settings);
    const auto next = noteDay ? &grammar::NoteScanner::next : &grammar::NoteScanner::nextWithSign;
    while (const ScannedLine* scanned = (scanner.*next)()) {
        if (!grammar::isTask(scanned->line.type)) {
            continue;
        }
        const auto scheduledTo = grammar::TodoHelper::firstDay(*scanned, MarkKind::scheduleTag);
        if (scheduledTo || noteDay) {
            note.lines.push_back({static_cast<std::uint32_t>(note.text.size()),
                                  static_cast<std::uint32_t>(scanned->text.size()),
                                  static_cast<std::uint32_t>(scanned->index), scanned->line,
                                  scheduledTo});
            note.text += scanned->text;
        }
    }
    if (note.lines.empty()) {
        return;
    }
    const std::string_view name = baseName(filename);
    note.type = type;
    note.filename = filename;
    note.title = noteDay ? std::string(name) : grammar::noteTitle(text, name);
    note.day = noteDay;
    _notes.push_back(std::make_unique<const Note>(std::move(note)));
}

void DayTasks::join(DayTasks&& other) {
    std::move(other._notes.begin(), other._notes.end(), std::back_inserter(_notes));
    other._notes.clear();
}

template <class Visit>
void DayTasks::eachTask(Visit visit) const {
    for (const auto& note : _notes) {
        for (const Line& line : note->lines) {
            visit(Found{note.get(), &line});
        }
    }
}

// Stands for a content that begins with what may be a tag, so that its first character is not known
// before the tags are taken out.
constexpr char32_t anyCharacter = 0;

// What the bare content begins with.
char32_t firstCharacter(std::string_view content) {
    content = base::trimmedStart(content);
    const bool isKnown =
        !content.empty() && std::string_view("<>@").find(content[0]) == content.npos;
    return isKnown ? base::codePointAt(content, 0).value : anyCharacter;
}

// Tells of scheduled lines whether the day that they name holds a copy. Of a day's tasks only those
// are made bare that begin as a line does that asks, once for all that ask.
class DayTasks::Copies {
public:
    explicit Copies(const DayTasks& tasks) {
        for (const auto& note : tasks._notes) {
            if (note->day) {
                _notes.emplace_back(std::chrono::sys_days{*note->day}, note.get());
            }
        }
        std::sort(_notes.begin(), _notes.end());
    }

    bool hasCopyOf(const Found& task) {
        if (!mayHaveCopy(task)) {
            return false;
        }
        const std::chrono::sys_days day{*task.line->scheduledTo};
        OfDay& there = _days[day.time_since_epoch().count()];
        if (!mayHold(there, day, firstCharacter(behindBox(task)))) {
            return false;
        }
        const auto copies = there.links.find(bareContent(contentOf(task)));
        if (copies == there.links.end()) {
            return false;
        }
        const auto& source = task.note->day;
        if (task.line->line.type == TodoType::open) {
            return copies->second.ofOpenTasks.contains(source);
        }
        const auto& links = copies->second.ofTasks;
        return !source || links.contains(std::nullopt) || links.contains(source);
    }

private:
    // An original that was opened again still has its copy. Only a link shows that an open task is
    // no task of its own.
    static bool mayHaveCopy(const Found& task) {
        if (!task.line->scheduledTo || task.line->scheduledTo == task.note->day) {
            return false;
        }
        const TodoType type = task.line->line.type;
        return type == TodoType::scheduled || (type == TodoType::open && task.note->day);
    }

    // Where the tasks of a day that read alike link back to; nothing: nowhere.
    struct Links {
        std::set<std::optional<base::Day>> ofTasks;
        std::set<std::optional<base::Day>> ofOpenTasks;
    };

    // What has been asked of a day.
    struct OfDay {
        std::map<char32_t, bool> characters;           // whether a task may begin with it
        std::unordered_map<std::string, Links> links;  // by bare content
    };

    // Whether the day may hold a task that begins so; if it may, its `links` are filled with those.
    bool mayHold(OfDay& there, std::chrono::sys_days day, char32_t first) const {
        const auto [known, isNew] = there.characters.try_emplace(first, false);
        if (!isNew) {
            return known->second;
        }
        const std::pair<std::chrono::sys_days, const Note*> from{day, nullptr};
        for (auto at = std::lower_bound(_notes.begin(), _notes.end(), from);
             at != _notes.end() && at->first == day; ++at) {
            for (const Line& line : at->second->lines) {
                const Found task{at->second, &line};
                const char32_t own = firstCharacter(behindBox(task));
                if (own == first || own == anyCharacter || first == anyCharacter) {
                    known->second = true;
                    Links& links = there.links[bareContent(contentOf(task))];
                    const auto link = backLinkDay(at->second->textOf(line));
                    links.ofTasks.insert(link);
                    if (line.line.type == TodoType::open) {
                        links.ofOpenTasks.insert(link);
                    }
                }
            }
        }
        return known->second;
    }

    static std::string_view behindBox(const Found& task) {
        return task.note->textOf(*task.line).substr(task.line->line.contentStart);
    }

    static std::string_view contentOf(const Found& task) {
        return grammar::contentOf(task.note->textOf(*task.line), task.line->line);
    }

    std::vector<std::pair<std::chrono::sys_days, const Note*>> _notes;  // of days, in order
    std::unordered_map<std::chrono::days::rep, OfDay> _days;            // those asked for
};

std::vector<NoteTask> DayTasks::ofNote(base::Day day) const {
    std::vector<Found> tasks;
    eachTask([&](const Found& task) {
        if (task.note->day == day) {
            tasks.push_back(task);
        }
    });
    std::vector<NoteTask> records;
    std::transform(tasks.begin(), tasks.end(), std::back_inserter(records), recordOf);
    return records;
}

std::vector<DayTasks::Found> DayTasks::foundFor(base::Day day) const {
    Copies copies(*this);
    std::vector<Found> tasks;
    eachTask([&](const Found& task) {
        if (task.line->scheduledTo == day && task.note->day != day && !copies.hasCopyOf(task)) {
            tasks.push_back(task);
        }
    });
    return tasks;
}

std::vector<NoteTask> DayTasks::scheduledTo(base::Day day) const {
    return inOrder(foundFor(day), everyTask);
}

DayTasks::Counts DayTasks::countGeneral(base::Day day) const {
    Counts counts;
    for (const Found& task : foundFor(day)) {
        const TodoType type = task.line->line.type;
        if (task.note->type == base::NoteType::note) {
            counts.open += type == TodoType::open || type == TodoType::scheduled;
            counts.done += type == TodoType::done;
        }
    }
    return counts;
}

OverdueTasks DayTasks::overdue(base::Day today, std::size_t most) const {
    Copies copies(*this);
    std::vector<Found> tasks;
    eachTask([&](const Found& task) {
        const TodoType type = task.line->line.type;
        if (plannedDay(task) >= today) {
            return;
        }
        // One that a day's note schedules to another day has been moved there.
        const bool standsForItself =
            type == TodoType::open ||
            (type == TodoType::scheduled &&
             (!task.note->day || task.note->day == task.line->scheduledTo));
        if (standsForItself && !copies.hasCopyOf(task)) {
            tasks.push_back(task);
        }
    });
    const std::size_t total = tasks.size();
    return {inOrder(std::move(tasks), most), total};
}

// By planned day, then by file and line, whatever order the notes were read in.
std::vector<NoteTask> DayTasks::inOrder(std::vector<Found> tasks, std::size_t most) {
    const auto place = [](const Found& task) {
        return std::tuple(plannedDay(task), base::folderName(task.note->type),
                          std::string_view(task.note->filename), task.line->index);
    };
    const std::size_t count = std::min(most, tasks.size());
    std::partial_sort(tasks.begin(), tasks.begin() + static_cast<std::ptrdiff_t>(count),
                      tasks.end(),
                      [&](const Found& a, const Found& b) { return place(a) < place(b); });
    tasks.resize(count);
    std::vector<NoteTask> records;
    records.reserve(count);
    std::transform(tasks.begin(), tasks.end(), std::back_inserter(records), recordOf);
    return records;
}

std::optional<base::Day> DayTasks::plannedDay(const Found& task) {
    return task.line->scheduledTo ? task.line->scheduledTo : task.note->day;
}

NoteTask DayTasks::recordOf(const Found& found) {
    const Note& note = *found.note;
    const Line& line = *found.line;
    const std::string_view text = note.textOf(line);
    std::vector<grammar::Mark> marks;
    grammar::findMarks(text, marks);
    NoteTask task{note.type, note.filename, note.day,
                  grammar::TodoHelper::todoOf({line.index, 0, text, line.line, marks}, note.day),
                  plannedDay(found)};
    task.todo.title = note.title;
    task.todo.filename = joined(base::folderName(note.type), note.filename);
    return task;
}

}  // namespace tessaly::store
