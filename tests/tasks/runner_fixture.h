// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/notes_in_text.h"
#include "support/temp_folder.h"
#include "tasks/runner_process.h"

namespace tessaly::tests {

using base::Failure;
using base::NoteType;
using Edit = tasks::LineEdit;
using tasks::NoteStep;
using tasks::Operation;

inline const platform::GivenTime now = platform::parseTime("2019-12-31T14:07:33").value();

struct Killed {};

inline const std::string source = "Calendar/20191231.txt";
inline const std::string target = "Calendar/20200103.txt";
inline const std::string earlier = "Calendar/20200102.txt";

inline NoteStep step(const std::string& name, const Edit& edit) {
    NoteStep result;
    result.type = base::noteTypeOfFolder(name.substr(0, name.find('/')));
    result.filename = name.substr(name.find('/') + 1);
    result.edits = {edit};
    return result;
}

inline NoteStep copied(const std::string& name = target) {
    return step(name, {Edit::Kind::append, 0, 0, "", "* Call <2019-12-31", "", 0});
}

inline NoteStep marked(const std::string& name = source) {
    return step(name, {Edit::Kind::replace, 1, 1, "* Call", "* [>] Call >2020-01-03", "", 0});
}

inline NoteStep removed() {
    return step(earlier, {Edit::Kind::remove, 1, 0, "* Call <2019-12-31", "", "", 0});
}

inline Operation planOf(std::vector<NoteStep> steps) {
    Operation plan;
    plan.time = now.instant;
    plan.cause = store::ChangeCause::scheduled;
    plan.tasks = 1;
    plan.title = "Call";
    plan.steps = std::move(steps);
    return plan;
}

/// A task of the source, scheduled anew: its copy moves from the earlier note to the target.
inline const Notes before = {{source, "# Day\n* Call\nend"},
                             {target, "first\n"},
                             {earlier, "# Then\n* Call <2019-12-31\nlast\n"}};
inline const Notes after = {{source, "# Day\n* [>] Call >2020-01-03\nend"},
                            {target, "first\n* Call <2019-12-31\n"},
                            {earlier, "# Then\nlast\n"}};

inline Notes withLineAbove(Notes notes) {
    for (auto& [name, text] : notes) {
        text = "theirs\n" + text;
    }
    return notes;
}

struct RunnerFixture {
    explicit RunnerFixture(const Notes& notes = before) {
        folder.mkdir("data/Calendar");
        put(notes);
    }

    FailingFiles& failing() { return process->failing; }
    tasks::OperationRunner& runner() { return process->runner; }

    void put(const Notes& notes) const {
        for (const auto& [name, text] : notes) {
            folder.write("data/" + name, text);
        }
    }

    Notes notes() const {
        Notes found;
        for (const std::string& name : folder.names("data/Calendar")) {
            if (!name.starts_with('.')) {
                found["Calendar/" + name] = folder.read("data/Calendar/" + name);
            }
        }
        return found;
    }

    base::Result<Operation> schedule() {
        return runner().make(planOf({copied(), marked(), removed()}));
    }

    /// Those of the journal, without a call that could fail.
    std::vector<Operation> operations() {
        const tasks::OperationJournal::Tools tools{process->files, process->changes, process->locks,
                                                   process->clock};
        return tasks::OperationJournal(tools, folder / "undo", folder / "data")
            .operations(9)
            .value();
    }

    base::Result<tasks::Undone> undoLast() {
        const auto made = operations();
        return made.empty() ? base::Result<tasks::Undone>(Failure{}) : runner().undo(made.front());
    }

    void restart() { process = std::make_unique<RunnerProcess>(folder, now); }

    void dieBefore(const std::string& operation, const std::string& name) {
        failing().before([=, this](int, std::string_view called, const std::string& path) {
            if (called == operation && path == folder / ("data/" + name)) {
                throw Killed{};
            }
        });
    }

    TempFolder folder;
    std::unique_ptr<RunnerProcess> process = std::make_unique<RunnerProcess>(folder, now);
};

inline Notes with(Notes notes, const std::string& name, const std::optional<std::string>& text) {
    notes.erase(name);
    if (text) {
        notes[name] = *text;
    }
    return notes;
}

inline const std::string copy = "* Call <2019-12-31";

}  // namespace tessaly::tests
