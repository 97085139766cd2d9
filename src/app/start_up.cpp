// SPDX-License-Identifier: MIT
#include "app/start_up.h"

#include <fmt/format.h>

#include "base/failure.h"
#include "base/localisation.h"
#include "settings/setting_rows.h"

namespace tessaly::app {
namespace {

using base::N_;

using Run = std::string (*)(Services&, const UsageLog&);

struct StepRow {
    StartUpStep step;
    std::string_view name;
    Run run;               ///< null for a step without meaning here
    std::string_view why;  ///< then: why it has none, a sentence for `tr`
};

// Nothing is stored to know this by, so that a program that only reads leaves no trace.
bool isFirstLaunch(Services& services) {
    const Ports& ports = services.ports();
    const auto folder = ports.files.kindOf(services.dataStore().root());
    return !folder && folder.failure().kind == base::Failure::Kind::notFound &&
           ports.standardDefaults.keys().empty() && !ports.standardDefaults.problem();
}

std::string recordLaunch(Services&, const UsageLog& usage) {
    usage.record(UsageEvent::launching);
    return "usage events stay on this machine";
}

std::string registerDefaults(Services&, const UsageLog&) {
    return fmt::format("{} settings have their defaults", settings::settingRows().size());
}

std::string showWhatIsNew(Services& services, const UsageLog& usage) {
    services.globals().runTime().launchedBefore = !isFirstLaunch(services);
    if (services.globals().runTime().launchedBefore) {
        return "launched before";
    }
    usage.record(UsageEvent::firstLaunch);
    return "first launch";
}

constexpr StepRow steps[] = {
    {StartUpStep::moveToApplicationsFolder, "move to the applications folder", nullptr,
     N_("The program stays where its package put it")},
    {StartUpStep::setUpDropbox, "set up Dropbox", nullptr,
     N_("This version does not mirror to Dropbox")},
    {StartUpStep::recordLaunch, "record the launch", recordLaunch, {}},
    {StartUpStep::checkForUpdates, "check for updates", nullptr,
     N_("Updates come with the system's packages")},
    {StartUpStep::registerDefaults, "register the defaults", registerDefaults, {}},
    {StartUpStep::startReporting, "start crash reports and usage analytics", nullptr,
     N_("Nothing is reported to anyone: no crash reports, no usage analytics")},
    {StartUpStep::showWhatIsNew, "show what is new", showWhatIsNew, {}},
    {StartUpStep::registerUrlHandler, "register the URL handler", nullptr,
     N_("This version answers no URLs")},
};

StepResult withoutMeaning(const StepRow& row) {
    return {row.step, StepResult::Outcome::notNeeded, row.name, std::string{row.why}};
}

}  // namespace

std::vector<StepResult> startUp(Services& services, const UsageLog& usage) {
    std::vector<StepResult> results;
    for (const StepRow& row : steps) {
        results.push_back(row.run == nullptr ? withoutMeaning(row)
                                             : StepResult{row.step, StepResult::Outcome::done,
                                                          row.name, row.run(services, usage)});
    }
    return results;
}

base::Result<base::Done> settleUnfinished(Services& services) {
    auto settled = services.safeFiles().settle(services.dataStore().root());
    const auto journal = services.operationJournal();
    const auto finished = services.operationRunner(*journal).settle();
    return settled ? finished : settled;
}

std::vector<StepResult> stepsWithoutMeaning() {
    std::vector<StepResult> results;
    for (const StepRow& row : steps) {
        if (row.run == nullptr) {
            results.push_back(withoutMeaning(row));
        }
    }
    return results;
}

}  // namespace tessaly::app
