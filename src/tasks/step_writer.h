// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "base/failure.h"
#include "ports/file_changes.h"
#include "ports/file_system.h"
#include "store/change_cause.h"
#include "store/safe_files.h"
#include "tasks/line_edit.h"
#include "tasks/note_step.h"
#include "tasks/operation.h"

namespace tessaly::tasks {

/// Reads and changes the notes that the steps of operations are about. Logs no failure. Any thread.
class StepWriter {
public:
    struct Tools {
        ports::FileSystem& files;
        ports::FileChanges& changes;
        store::SafeFiles& safeFiles;
    };

    StepWriter(Tools tools, std::string root) : _tools(tools), _root(std::move(root)) {}

    /// The note of a step. Failures: `outside`; `unavailable` for one that a sync client has not
    /// downloaded; those of the disk.
    base::Result<NoteBytes> read(const NoteStep& step) const;

    /// Told of a step before it is made in another way than was told last.
    using Record = std::function<base::Result<base::Done>(const NoteStep& step)>;

    struct How {
        Strictness strictness = Strictness::allOrNothing;
        store::ChangeCause cause = store::ChangeCause::completed;
        /// Whether the step may have been made before: then it is looked whether it was.
        enum class Earlier { no, maybe } earlier = Earlier::no;
        Record record;
    };

    /// Makes a prepared step in the note as it is now; returns it as it was made. Failures as those
    /// of `read`, `located`, `record`, and of `SafeFiles`.
    base::Result<NoteStep> write(const NoteStep& step, const How& how) const;

private:
    base::Result<std::string> pathOf(const NoteStep& step) const;
    base::Result<base::Done> create(const std::string& path, const NoteStep& step,
                                    store::ChangeCause cause) const;
    base::Result<base::Done> remove(const std::string& path, const NoteStep& step) const;
    /// Makes or removes the note, where that is what the step does.
    base::Result<base::Done> replaceWhole(const std::string& path, const NoteStep& step,
                                          store::ChangeCause cause) const;

    Tools _tools;
    std::string _root;
};

}  // namespace tessaly::tasks
