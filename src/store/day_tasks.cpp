// SPDX-License-Identifier: MIT
#include "store/day_tasks.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <set>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "base/utf8.h"
#include "grammar/date_tags.h"
#include "grammar/todo_helper.h"
#include "store/paths.h"

namespace tessaly::store {
namespace {

using grammar::MarkKind;
using grammar::TodoType;

constexpr std::size_t firstMemory = 64 << 10;  // bytes

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
    scanDayTasks(type, filename, bytes, settings, scanner, _found);
    keep(type, filename, _found);
}

std::string DayTasks::record(base::NoteType type, std::string_view filename, std::string_view bytes,
                             const grammar::MarkerSettings& settings,
                             grammar::NoteScanner& scanner) {
    DayTaskLines found;
    scanDayTasks(type, filename, bytes, settings, scanner, found);
    return recordOfDayTasks(found);
}

bool DayTasks::addRecord(base::NoteType type, std::string_view filename, std::string_view record) {
    if (record.empty()) {
        return true;
    }
    _found.noteDay = dayOfNote(type, filename);
    if (!readDayTasks(record, _found)) {
        return false;
    }
    keep(type, filename, _found);
    return true;
}

void DayTasks::keep(base::NoteType type, std::string_view filename, const DayTaskLines& found) {
    if (found.lines.empty()) {
        return;
    }
    if (_memory.empty()) {
        _memory.push_back(std::make_unique<Memory>(firstMemory));
    }
    const std::span lines(std::pmr::polymorphic_allocator<DayTaskLine>(_memory.front().get())
                              .allocate(found.lines.size()),
                          found.lines.size());
    std::uninitialized_copy(found.lines.begin(), found.lines.end(), lines.begin());
    for (DayTaskLine& line : lines) {
        line.text = kept(line.text);
    }
    _notes.push_back({type, kept(filename), kept(found.title), found.noteDay, lines});
}

std::string_view DayTasks::kept(std::string_view text) {
    char* const place =
        std::pmr::polymorphic_allocator<char>(_memory.front().get()).allocate(text.size());
    std::copy(text.begin(), text.end(), place);
    return {place, text.size()};
}

void DayTasks::join(DayTasks&& other) {
    std::move(other._memory.begin(), other._memory.end(), std::back_inserter(_memory));
    _notes.insert(_notes.end(), other._notes.begin(), other._notes.end());
    other._memory.clear();
    other._notes.clear();
}

template <class Visit>
void DayTasks::eachTask(Visit visit) const {
    for (const Note& note : _notes) {
        for (const DayTaskLine& line : note.lines) {
            visit(Found{&note, &line});
        }
    }
}

// What a bare content begins with, as far as that shows before the tags are taken out: the first
// bytes of its first word. It ends at what may begin a tag, and at the first byte of any white
// space.
class Beginning {
public:
    explicit Beginning(std::string_view content) {
        content = base::trimmedStart(content);
        while (_length < sizeof _bytes && _length < content.size() && isOfWord(content[_length])) {
            _bytes = _bytes << 8 | static_cast<unsigned char>(content[_length++]);
        }
    }

    /// Whether one content may begin with both.
    bool agreesWith(const Beginning& other) const {
        const std::size_t shorter = std::min(_length, other._length);
        return shorter == 0 || first(shorter) == other.first(shorter);
    }

private:
    static bool isOfWord(char c) {
        constexpr std::string_view tagsAndSpaces = "<>@\x7F\xC2\xE1\xE2\xE3";
        return static_cast<unsigned char>(c) > ' ' && tagsAndSpaces.find(c) == tagsAndSpaces.npos;
    }
    std::uint64_t first(std::size_t length) const { return _bytes >> 8 * (_length - length); }

    std::uint64_t _bytes = 0;
    std::size_t _length = 0;
};

// Tells of scheduled lines whether the day that they name holds a copy. Of a day's tasks only those
// are made bare that begin as a line does that asks, once for all that ask.
class DayTasks::Copies {
public:
    explicit Copies(const DayTasks& tasks) {
        for (const Note& note : tasks._notes) {
            if (note.day) {
                _notes.emplace_back(std::chrono::sys_days{*note.day}, &note);
            }
        }
        std::sort(_notes.begin(), _notes.end());
    }

    bool hasCopyOf(const Found& task) {
        if (!mayHaveCopy(task)) {
            return false;
        }
        OfDay& there = ofDay(std::chrono::sys_days{*task.line->scheduledTo});
        if (!mayHold(there, Beginning(behindBox(task)))) {
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

    struct Candidate {
        Found task;
        Beginning beginning;
        bool isInLinks = false;
    };
    // A day that has been asked for.
    struct OfDay {
        std::vector<Candidate> tasks;
        std::unordered_map<std::string, Links> links;  // by bare content
    };

    OfDay& ofDay(std::chrono::sys_days day) {
        const auto [there, isNew] = _days.try_emplace(day.time_since_epoch().count());
        if (isNew) {
            const std::pair<std::chrono::sys_days, const Note*> from{day, nullptr};
            for (auto at = std::lower_bound(_notes.begin(), _notes.end(), from);
                 at != _notes.end() && at->first == day; ++at) {
                for (const DayTaskLine& line : at->second->lines) {
                    const Found task{at->second, &line};
                    there->second.tasks.push_back({task, Beginning(behindBox(task))});
                }
            }
        }
        return there->second;
    }

    // Whether the day may hold a task that begins so; if it may, its `links` are filled with those.
    static bool mayHold(OfDay& there, const Beginning& beginning) {
        bool found = false;
        for (Candidate& task : there.tasks) {
            if (task.beginning.agreesWith(beginning)) {
                found = true;
                if (!std::exchange(task.isInLinks, true)) {
                    addLink(there, task.task);
                }
            }
        }
        return found;
    }

    static void addLink(OfDay& there, const Found& task) {
        Links& links = there.links[bareContent(contentOf(task))];
        const auto link = backLinkDay(task.line->text);
        links.ofTasks.insert(link);
        if (task.line->line.type == TodoType::open) {
            links.ofOpenTasks.insert(link);
        }
    }

    static std::string_view behindBox(const Found& task) {
        return task.line->text.substr(task.line->line.contentStart);
    }

    static std::string_view contentOf(const Found& task) {
        return grammar::contentOf(task.line->text, task.line->line);
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

bool DayTasks::mayBeOverdue(const Found& task, base::Day today) {
    if (plannedDay(task) >= today) {
        return false;
    }
    // One that a day's note schedules to another day has been moved there.
    const TodoType type = task.line->line.type;
    return type == TodoType::open ||
           (type == TodoType::scheduled &&
            (!task.note->day || task.note->day == task.line->scheduledTo));
}

OverdueTasks DayTasks::overdue(base::Day today, base::Executor& executor, std::size_t most) const {
    const std::size_t parts = executor.width() + 1;
    // The tasks that name one day are of one part, so that its copies are looked at once.
    const auto partOf = [parts](const Found& task) {
        const auto& day = task.line->scheduledTo;
        return day ? static_cast<std::size_t>(std::chrono::sys_days{*day}.time_since_epoch() /
                                              std::chrono::days{1}) %
                         parts
                   : 0;
    };
    std::vector<std::vector<Found>> found(parts);
    base::parallelFor(executor, parts, [&](std::size_t part) {
        Copies copies(*this);
        eachTask([&](const Found& task) {
            if (partOf(task) == part && mayBeOverdue(task, today) && !copies.hasCopyOf(task)) {
                found[part].push_back(task);
            }
        });
    });
    std::vector<Found> tasks;
    for (const std::vector<Found>& part : found) {
        tasks.insert(tasks.end(), part.begin(), part.end());
    }
    const std::size_t total = tasks.size();
    return {inOrder(std::move(tasks), most), total};
}

// By planned day, then by file and line, whatever order the notes were read in.
std::vector<NoteTask> DayTasks::inOrder(std::vector<Found> tasks, std::size_t most) {
    const auto place = [](const Found& task) {
        return std::tuple(plannedDay(task), base::folderName(task.note->type), task.note->filename,
                          task.line->index);
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
    const DayTaskLine& line = *found.line;
    std::vector<grammar::Mark> marks;
    grammar::findMarks(line.text, marks);
    NoteTask task{
        note.type, std::string(note.filename), note.day,
        grammar::TodoHelper::todoOf({line.index, 0, line.text, line.line, marks}, note.day),
        plannedDay(found)};
    task.todo.title = note.title;
    task.todo.filename = joined(base::folderName(note.type), note.filename);
    return task;
}

}  // namespace tessaly::store
