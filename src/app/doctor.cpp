// SPDX-License-Identifier: MIT
#include "app/doctor.h"

#include <utility>

#include <fmt/format.h>

#include "app/examine_clouds.h"
#include "app/examine_index.h"
#include "app/examine_notes.h"
#include "app/examine_watching.h"
#include "app/findings.h"
#include "app/start_up.h"
#include "base/failure.h"
#include "base/localisation.h"

namespace tessaly::app {
namespace {

using Level = Finding::Level;

std::string whyThisRoot(const Ports& ports, const store::DataStore& store) {
    if (ports.dataFolder) {
        return base::tr("Notes are kept in the folder that was named for this run");
    }
    if (store.cloudRoot()) {
        return base::tr("Notes are kept in the cloud drive");
    }
    if (ports.dropboxAuthorised && ports.dropboxAuthorised()) {
        return base::tr("Notes are kept in the local folder, since a Dropbox account is linked");
    }
    return base::tr("Notes are kept in the local folder, since there is no cloud drive");
}

void examineFolder(ports::FileSystem& files, const std::string& root, Findings& findings) {
    const auto kind = files.kindOf(root);
    if (!kind && kind.failure().kind == base::Failure::Kind::notFound) {
        findings.add({Level::note, "dataFolderMissing",
                      base::tr("The folder is not there yet; the first note makes it"), root});
    } else if (!kind) {
        findings.add({Level::warning, "dataFolderUnreadable", kind.failure().description, root});
    } else if (*kind != ports::FolderEntry::Kind::folder) {
        findings.add(
            {Level::warning, "dataFolderUnreadable", base::tr("This is not a folder"), root});
    }
}

void examineRoot(Services& services, Findings& findings) {
    const store::DataStore& store = services.dataStore();
    const std::string root = store.root();
    findings.add({Level::fine, "dataFolder", whyThisRoot(services.ports(), store), root});
    examineFolder(services.ports().files, root, findings);
    if (services.isCloudDriveMissing()) {
        findings.add({Level::warning, "cloudDriveMissing",
                      base::tr("The cloud drive's folder cannot be used now"),
                      services.globals().cloudDriveContainer()});
    }
    if (root != store.localRoot() && store.localFolderExists()) {
        findings.add({Level::note, "otherDataFolder",
                      base::tr("There is a local folder of notes too, which is not in use"),
                      store.localRoot()});
    }
}

void examineStore(ports::UserDefaults& defaults, const std::string& folder, Findings& findings) {
    if (const auto problem = defaults.problem()) {
        findings.add({Level::warning, "settings", problem->description, folder});
    }
}

void examineSettings(Services& services, Findings& findings) {
    const Ports& ports = services.ports();
    examineStore(ports.standardDefaults, ports.folders.config, findings);
    examineStore(ports.groupDefaults, ports.folders.config, findings);
    for (const settings::UnreadableSetting& setting : services.globals().unreadable()) {
        findings.add({Level::warning, "settingValue",
                      fmt::format(fmt::runtime(base::tr("The setting {0} counts as its default; it "
                                                        "may be: {1}")),
                                  setting.key, setting.allowed),
                      ports.folders.config});
    }
}

void examineStartUp(Findings& findings) {
    for (const StepResult& step : stepsWithoutMeaning()) {
        findings.add({Level::fine, "startUp", base::tr(step.note.c_str()), {}});
    }
}

}  // namespace

std::vector<Finding> examine(Services& services, store::NoteReader::Options options) {
    Findings findings;
    examineRoot(services, findings);
    examineClouds(services, findings);
    examineSettings(services, findings);
    examineWatching(services, examineNotes(services, std::move(options), findings), findings);
    examineIndex(services, findings);
    examineStartUp(findings);
    return findings.take();
}

}  // namespace tessaly::app
