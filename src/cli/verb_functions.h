// SPDX-License-Identifier: MIT
#pragma once

#include "cli/verbs.h"

namespace tessaly::cli {

/// The verbs. Each prints its result to the context's output and, when it could not, the reason to
/// standard error.
Exit runToday(Context& context);
Exit runDay(Context& context);
Exit runWeek(Context& context);
Exit runOverdue(Context& context);
Exit runList(Context& context);
Exit runShow(Context& context);
Exit runWhere(Context& context);
Exit runTasks(Context& context);
Exit runTags(Context& context);
Exit runMentions(Context& context);
Exit runSearch(Context& context);
Exit runOpen(Context& context);
Exit runFilter(Context& context);
Exit runSideBar(Context& context);
Exit runWatch(Context& context);
Exit runDone(Context& context);
Exit runCancel(Context& context);
Exit runReopen(Context& context);
Exit runSchedule(Context& context);
Exit runRepeat(Context& context);
Exit runArchive(Context& context);
Exit runUndo(Context& context);
Exit runNew(Context& context);
Exit runAdd(Context& context);
Exit runTrash(Context& context);
Exit runHistory(Context& context);
Exit runMigrate(Context& context);
Exit runConflicts(Context& context);
Exit runResolve(Context& context);
Exit runMark(Context& context);
Exit runRpc(Context& context);
Exit runParse(Context& context);
Exit runSettings(Context& context);
Exit runDoctor(Context& context);
Exit runIndex(Context& context);

}  // namespace tessaly::cli
