// SPDX-License-Identifier: MIT
#include "app/note_lists.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

#include "base/normalise.h"
#include "base/utf8.h"
#include "grammar/date_tags.h"
#include "grammar/line_scanner.h"
#include "grammar/note_title.h"
#include "grammar/todo_helper.h"
#include "store/note_document.h"
#include "store/note_names.h"

namespace tessaly::app {
namespace {

std::vector<base::NoteType> typesOf(NoteScope scope) {
    switch (scope) {
        case NoteScope::general: return {base::NoteType::note};
        case NoteScope::calendar: return {base::NoteType::calendar};
        case NoteScope::all: break;
    }
    return {base::NoteType::calendar, base::NoteType::note};
}

std::string_view textOf(const store::NoteFile& file) {
    return store::decodedText(file.bytes).value_or("");
}

template <class Row>
std::vector<Row> joined(std::vector<std::vector<Row>> byWorker) {
    std::vector<Row> rows;
    for (std::vector<Row>& some : byWorker) {
        std::move(some.begin(), some.end(), std::back_inserter(rows));
    }
    return rows;
}

// The folder as file names below it begin, composed; empty for all.
std::string namePrefixOf(std::string_view folder) {
    constexpr std::string_view notes = "Notes/";
    if (folder.substr(0, notes.size()) == notes) {
        folder.remove_prefix(notes.size());
    }
    while (!folder.empty() && folder.back() == '/') {
        folder.remove_suffix(1);
    }
    return folder.empty() ? std::string{} : base::nfc(folder) + '/';
}

bool isBelow(std::string_view filename, const std::string& prefix) {
    return prefix.empty() || base::nfc(filename).compare(0, prefix.size(), prefix) == 0;
}

std::string rowTitleOf(const store::NoteFile& file, const grammar::DateStringHelper& names,
                       base::Day today) {
    const std::string_view baseName = store::baseName(file.filename);
    if (file.type == base::NoteType::calendar) {
        return names.calendarNoteName(file.filename, today).value_or(std::string{baseName});
    }
    return grammar::noteTitle(textOf(file), baseName);
}

/// A row and what it is sorted by.
struct SortedRow {
    NoteRow row;
    std::string key;  // the title in lower case; of a calendar note nothing, it goes by its day
};

// By title, general notes come before calendar notes, which go by their days: their names tell
// nothing of their order.
bool isBeforeByTitle(const SortedRow& a, const SortedRow& b) {
    const auto key = [](const SortedRow& sorted) {
        return std::tie(sorted.row.model.date, sorted.key, sorted.row.title, sorted.row.filename);
    };
    return key(a) < key(b);
}

template <base::Instant NoteRow::*date>
bool isNewer(const SortedRow& a, const SortedRow& b) {
    return std::tie(b.row.*date, a.row.filename) < std::tie(a.row.*date, b.row.filename);
}

void sortRows(std::vector<SortedRow>& rows, base::SortType order) {
    using Before = bool (*)(const SortedRow&, const SortedRow&);
    const Before before = order == base::SortType::title      ? isBeforeByTitle
                          : order == base::SortType::modified ? isNewer<&NoteRow::changed>
                                                              : isNewer<&NoteRow::created>;
    std::stable_sort(rows.begin(), rows.end(), before);
}

// The day that the line's first schedule tag names, else its note's.
std::optional<base::Day> plannedDay(const grammar::ScannedLine& line,
                                    std::optional<base::Day> noteDay) {
    const auto day = grammar::TodoHelper::firstDay(line, grammar::MarkKind::scheduleTag);
    return day ? day : noteDay;
}

bool isWanted(grammar::TodoType type, const std::vector<grammar::TodoType>& types) {
    return grammar::isTask(type) &&
           (types.empty() || std::find(types.begin(), types.end(), type) != types.end());
}

class TaskCollector {
public:
    TaskCollector(const std::vector<grammar::TodoType>& types,
                  const grammar::MarkerSettings& markers)
        : _types(types), _markers(markers) {}

    void add(const store::NoteFile& file) {
        const auto noteDay = file.type == base::NoteType::calendar
                                 ? store::dayOfCalendarFilename(file.filename)
                                 : std::nullopt;
        const std::string path =
            std::string{base::folderName(file.type)}.append("/").append(file.filename);
        _scanner.start(textOf(file), _markers);
        while (const grammar::ScannedLine* line = _scanner.next()) {
            if (isWanted(line->line.type, _types)) {
                grammar::Todo todo = grammar::TodoHelper::todoOf(*line, noteDay);
                todo.filename = path;
                _tasks.push_back({file.type, std::string{file.filename}, noteDay, std::move(todo),
                                  plannedDay(*line, noteDay)});
            }
        }
    }

    std::vector<store::NoteTask> take() { return std::move(_tasks); }

private:
    const std::vector<grammar::TodoType>& _types;
    grammar::MarkerSettings _markers;
    grammar::NoteScanner _scanner;
    std::vector<store::NoteTask> _tasks;
};

struct TagCounts {
    std::map<std::string, std::size_t> notes;
    grammar::NoteScanner scanner;
};

}  // namespace

NoteRows listNotes(Services& services, NoteScope scope, std::string_view folder,
                   store::NoteReader::Options options) {
    const std::string prefix = namePrefixOf(folder);
    options.types = typesOf(prefix.empty() ? scope : NoteScope::general);
    const store::CountSettings settings = services.countSettings();
    const grammar::DateStringHelper& names = services.dateStrings();
    const base::Day today = services.today();
    const store::NoteCache& cache = services.noteCache();
    std::vector<std::vector<SortedRow>> byWorker(cache.workers());
    std::vector<grammar::NoteScanner> scanners(cache.workers());
    NoteRows result;
    result.report = cache.visit(options, [&](std::size_t worker, const store::NoteFile& file) {
        if (!isBelow(file.filename, prefix)) {
            return;
        }
        std::string filename{file.filename};
        store::NoteModel model(filename, file.type, textOf(file), settings, scanners[worker]);
        std::string title = rowTitleOf(file, names, today);
        std::string key = model.date ? std::string{} : base::lowerCased(base::nfc(title));
        byWorker[worker].push_back({{file.type, std::move(filename), std::move(title),
                                     file.stamp.modified, file.stamp.created, std::move(model)},
                                    std::move(key)});
    });
    std::vector<SortedRow> rows = joined(std::move(byWorker));
    sortRows(rows, services.globals().sortBy());
    for (SortedRow& sorted : rows) {
        result.rows.push_back(std::move(sorted.row));
    }
    return result;
}

TaskRows listTasks(Services& services, NoteScope scope, const std::vector<grammar::TodoType>& types,
                   store::NoteReader::Options options) {
    options.types = typesOf(scope);
    const store::NoteCache& cache = services.noteCache();
    std::vector<TaskCollector> byWorker(cache.workers(),
                                        TaskCollector(types, services.markerSettings()));
    TaskRows result;
    result.report = cache.visit(options, [&](std::size_t worker, const store::NoteFile& file) {
        byWorker[worker].add(file);
    });
    for (TaskCollector& collector : byWorker) {
        auto tasks = collector.take();
        std::move(tasks.begin(), tasks.end(), std::back_inserter(result.tasks));
    }
    std::stable_sort(result.tasks.begin(), result.tasks.end(), [](const auto& a, const auto& b) {
        return std::tie(a.type, a.filename, a.todo.lineIndex) <
               std::tie(b.type, b.filename, b.todo.lineIndex);
    });
    return result;
}

TagRows listTags(Services& services, TagKind kind, store::NoteReader::Options options) {
    options.types = typesOf(NoteScope::all);
    const store::CountSettings settings = services.countSettings();
    const store::NoteCache& cache = services.noteCache();
    std::vector<TagCounts> byWorker(cache.workers());
    TagRows result;
    result.report = cache.visit(options, [&](std::size_t worker, const store::NoteFile& file) {
        TagCounts& counts = byWorker[worker];
        const store::NoteModel model({}, file.type, textOf(file), settings, counts.scanner);
        for (const std::string& tag : kind == TagKind::hashtags ? model.hashTags : model.atTags) {
            ++counts.notes[tag];
        }
    });
    std::map<std::string, std::size_t> all;
    for (const TagCounts& counts : byWorker) {
        for (const auto& [tag, notes] : counts.notes) {
            all[tag] += notes;
        }
    }
    for (const auto& [tag, notes] : all) {
        result.rows.push_back({tag, notes});
    }
    return result;
}

}  // namespace tessaly::app
