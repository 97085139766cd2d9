// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "base/failure.h"
#include "tasks/operation.h"
#include "tasks/operation_journal.h"
#include "tasks/operation_run.h"
#include "tasks/step_writer.h"

namespace tessaly::tasks {

/// What became of an undoing.
struct Undone {
    /// The steps as they were taken back, each a step of its own that leads back; those that could
    /// not be are not among them.
    std::vector<NoteStep> steps;
    /// All was taken back. No: a line of the operation was changed or gone, or a note cannot be
    /// edited; what still could be has been.
    bool isComplete = true;
    /// Copies without a link stay in their notes.
    bool leftCopies = false;
};

/// Makes operations and takes them back, so that whatever happens they are made as a whole, and no
/// line is lost or doubled. Any thread and process, one operation at a time. Failures of files are
/// logged as "couldn't create the url" (a name that leads out of the data folder), "file does not
/// exist", and "Could not read and write into the note: "; those of the journal as "Could not write
/// the journal: ". An operation that is refused since lines have changed is not logged.
class OperationRunner {
public:
    using Tools = StepWriter::Tools;

    /// All outlive this object.
    OperationRunner(Tools tools, OperationJournal& journal)
        : _notes(tools, journal.root()), _journal(journal) {}

    /// Makes `plan`, whose steps tell their edits alone: tries them all in memory, writes the plan
    /// down, then changes note after note. A note that is not there is made by a step that only
    /// appends. Returns the operation as it was made. Failure: it is refused as a whole (`changed`:
    /// a line is not what the plan says), or a step failed and those before it were taken back; if
    /// that failed too, the operation stays pending, and is made whole by the next one or the next
    /// start.
    base::Result<Operation> make(Operation plan);

    /// Takes an operation of the journal back, the last step first: a note that still has the bytes
    /// that the operation gave it gets those back that it had (one that was made goes), in another
    /// one each line is taken back that is found, but none of those that had stood there before. A
    /// line that cannot be restored keeps its copies where they are. The operation is forgotten,
    /// unless its files could not be read or written; then it can be tried again (the failure's).
    base::Result<Undone> undo(const Operation& operation);

    /// Finishes what a process that died was making or undoing. A step that can never be made, as
    /// its lines have changed, is left out where it is one that undoes; otherwise the steps before
    /// it are taken back. Takes no lock when nothing is pending. Failure: it is still pending.
    base::Result<base::Done> settle();

private:
    /// What was undone for a process that died meanwhile.
    struct Finished {
        std::uint64_t number = 0;
        Undone undone;
    };

    // Under the journal's lock; they log their failures.
    base::Result<std::optional<Finished>> settlePending();
    base::Result<std::optional<Finished>> resume(Operation operation);
    base::Result<base::Done> giveUp(OperationRun& run, const OperationRun::Stop& stop);
    base::Result<base::Done> abandon();
    base::Result<base::Done> begin(const Operation& operation);
    /// All steps of an operation, which is pending then, or none.
    base::Result<base::Done> makeAll(Operation& operation);
    base::Result<base::Done> finish(Operation& operation);
    base::Result<base::Done> finishUndo(const Operation& undo);
    base::Result<std::optional<Operation>> find(std::uint64_t number);

    const StepWriter _notes;
    OperationJournal& _journal;
};

}  // namespace tessaly::tasks
