// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/services.h"
#include "app/usage_log.h"
#include "base/failure.h"

namespace tessaly::app {

/// The steps that bring the program up, in the one order in which they run.
enum class StartUpStep {
    moveToApplicationsFolder,
    setUpDropbox,
    recordLaunch,
    checkForUpdates,
    registerDefaults,
    startReporting,
    showWhatIsNew,
    registerUrlHandler,
};

/// What became of a step.
struct StepResult {
    StartUpStep step;
    enum class Outcome { done, notNeeded } outcome;
    std::string_view name;  ///< the step's name, English, fixed
    std::string note;       ///< what was done, English; or why it was not needed, a text for `tr`
};

/// Settles the changes of notes that a program left half done when it died, so that whoever reads
/// next finds nothing of them. To be called after `startUp` by who is about to work on the data
/// folder. Costs next to nothing when nobody died. Failure: they stay for the next start, and what
/// is to be done can be done all the same.
base::Result<base::Done> settleUnfinished(Services& services);

/// Runs every step and tells what became of each. Makes no network call, reads no note and writes
/// nothing: the first launch is known by the absence of settings and of a data folder.
std::vector<StepResult> startUp(Services& services, const UsageLog& usage = {});

/// The steps that have no meaning on this system and why, without running any.
std::vector<StepResult> stepsWithoutMeaning();

}  // namespace tessaly::app
