// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/day.h"
#include "base/failure.h"
#include "grammar/todo.h"
#include "ports/file_system.h"
#include "store/change_cause.h"
#include "tasks/note_texts.h"
#include "tasks/operation.h"
#include "tasks/task_outcome.h"

namespace tessaly::tasks {

/// The parts of an operation, in the order in which they are made: a task that moves is written
/// where it goes before it is marked where it was, so that it is lost at no moment.
enum class Phase { copies, sources, earlierCopies };

/// A line of a note as it was read.
struct NoteLine {
    NoteName note;
    std::size_t index = 0;
    std::string text;
};

/// What an operation is going to change, gathered line by line: edits of one note in the same phase
/// become one step. Also what is to be told of it. One thread.
class PlannedChanges {
public:
    PlannedChanges(ports::FileSystem& files, const std::string& root,
                   const grammar::MarkerSettings& markers)
        : _markers(markers), _notes(files, root) {}

    const grammar::MarkerSettings& markers() const { return _markers; }
    NoteTexts& notes() { return _notes; }

    /// A line that the user named, and how.
    struct Named {
        TaskReference task;
        NoteLine line;
    };
    /// The lines that are meant, each once; the others are refused.
    std::vector<Named> find(std::span<const TaskReference> tasks);

    /// Whether the user named a line.
    bool isNamed(const NoteName& note, std::size_t index) const {
        return _named.contains({note, index});
    }

    /// `english` is about the line, "{0}".
    void refuse(const Named& line, const char* english);
    void refuse(const TaskReference& task, base::Failure failure) {
        _refusals.push_back({task, std::move(failure)});
    }

    using What = TaskChange::What;
    using Day = std::optional<base::Day>;

    /// Counts a line among those that the operation is about.
    void count(const NoteLine& line);

    void replace(const NoteLine& line, const std::string& after, What what, Day day = {});
    /// Nothing happens when the line is to be removed already.
    void remove(Phase phase, const NoteLine& line, What what, Day day = {});
    /// Adds a copy to a note.
    void append(const NoteName& note, const std::string& line, What what, Day day = {});
    /// Any edit; of one without `what` nothing is told.
    void edit(Phase phase, const NoteName& note, LineEdit edit, std::optional<What> what = {},
              Day day = {});
    /// Tells of a line that is not edited.
    void tell(const NoteLine& line, What what, Day day = {});

    /// Copies cannot be told from other lines when the operation is undone. To be said first.
    void letCopiesStay() { _copiesStay = true; }

    bool isEmpty() const { return _steps.empty(); }
    Operation operation(base::Instant now, store::ChangeCause cause, Day day) const;

    /// What came of it; `made` is the operation as it was made, null when nothing was to be.
    TaskOutcome outcome(const Operation* made) const;

private:
    struct Step {
        Phase phase;
        NoteStep step;
    };
    struct EditPlace {
        std::size_t step;  // in `_steps`
        std::size_t edit;
    };
    struct Told {
        TaskChange change;
        std::optional<EditPlace> edit;
    };
    std::size_t stepOf(Phase phase, const NoteName& note);
    std::vector<std::size_t> order() const;

    const grammar::MarkerSettings _markers;
    NoteTexts _notes;
    std::set<std::pair<NoteName, std::size_t>> _named;
    std::set<std::pair<NoteName, std::size_t>> _removed;
    std::vector<Step> _steps;  // as they came up
    std::map<std::pair<Phase, NoteName>, std::size_t> _stepOf;
    std::vector<Told> _told;
    std::vector<TaskRefusal> _refusals;
    std::size_t _tasks = 0;
    std::string _title;
    bool _copiesStay = false;
};

}  // namespace tessaly::tasks
