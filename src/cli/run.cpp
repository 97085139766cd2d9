// SPDX-License-Identifier: MIT
#include "cli/run.h"

#include <string>

#include <fmt/format.h>

#include "app/index_keeper.h"
#include "app/sample_folder.h"
#include "app/start_up.h"
#include "app/usage_log.h"
#include "base/localisation.h"
#include "base/log.h"
#include "cli/context.h"
#include "cli/desktop_program.h"
#include "cli/documents.h"
#include "cli/help.h"
#include "cli/safe_text.h"
#include "cli/verb_functions.h"

namespace tessaly::cli {

namespace {

using base::tr;

/// Whether the output goes to another program, which wants no notes, and no word that it did not
/// ask for: an editor may put all that it reads into the text.
bool isForPrograms(const VerbRow* verb) {
    return verb != nullptr && (verb->run == runMark || verb->run == runRpc);
}

/// A folder that the user named must be there: else a slip of the pen would look like an empty one.
bool isNamedRootThere(app::Services& services) {
    const auto& root = services.ports().dataFolder;
    if (!root) {
        return true;
    }
    const auto kind = services.ports().files.kindOf(*root);
    if (!kind) {
        complain(safeText(kind.failure().description));
        return false;
    }
    if (*kind != ports::FolderEntry::Kind::folder) {
        complain(fmt::format(fmt::runtime(tr("{} is no folder")), safeText(*root)));
        return false;
    }
    return true;
}

/// Gives a new user notes to begin with, in the default data folder only. A user whose cloud drive
/// is missing is not new.
void welcome(app::Services& services) {
    if (services.ports().dataFolder || services.isCloudDriveMissing()) {
        return;
    }
    const auto made = app::makeSampleNotes(services);
    if (!made) {
        complain(safeText(made.failure().description));
    } else if (*made > 0) {
        complain(
            fmt::format(fmt::runtime(base::trPlural("welcome! {} note to begin with is in {}",
                                                    "welcome! {} notes to begin with are in {}",
                                                    static_cast<unsigned long>(*made))),
                        *made, safeText(services.dataStore().root())));
    }
}

/// Left-over writes, of a run that was killed, do not keep the user from anything.
void settle(app::Services& services, const Invocation& invocation) {
    const bool needsDataFolder =
        invocation.verb == nullptr || invocation.verb->needs == Needs::dataFolder;
    if (needsDataFolder && !invocation.has("--dry-run")) {
        (void)app::settleUnfinished(services);  // a verb that is hindered by the cause tells it
    }
}

void tellOfDamagedSettings(const Context& context) {
    const VerbRow* verb = context.invocation.verb;
    const bool isReported = verb == findVerb("doctor");
    if (!isReported && !isForPrograms(verb) &&
        context.services.ports().standardDefaults.problem()) {
        complain(
            tr("the settings cannot be read, so all have their defaults; see: tessaly doctor"));
    }
}

void tellOfMissingCloudDrive(const Context& context) {
    const VerbRow* verb = context.invocation.verb;
    const bool isReported = verb == findVerb("doctor") || verb == findVerb("migrate");
    if (!isReported && !isForPrograms(verb) && context.services.isCloudDriveMissing()) {
        complain(fmt::format(
            fmt::runtime(tr("the cloud drive's folder cannot be used now, so these are the local "
                            "notes: {}")),
            safeText(context.services.globals().cloudDriveContainer())));
    }
}

void pointToHelp(const VerbRow* verb) {
    const std::string command = verb == nullptr ? "tessaly" : fmt::format("tessaly {}", verb->name);
    complain(fmt::format(fmt::runtime(tr("{} --help tells what there is.")), command));
}

/// Whether the verb runs until it is ended, so that what there is to tell cannot wait for that.
bool stays(const VerbRow* verb) {
    return verb != nullptr && verb->run == runWatch;
}

void tellOfCircumstances(const Context& context) {
    tellOfDamagedSettings(context);
    tellOfMissingCloudDrive(context);
}

Exit runVerb(Context& context) {
    const VerbRow* verb = context.invocation.verb;
    if (verb == nullptr) {
        welcome(context.services);
        return runToday(context);
    }
    const Exit exit = verb->run(context);
    if (exit == Exit::misuse) {
        pointToHelp(verb);
    }
    return exit;
}

Exit printDocument(const std::string& name, Output& out) {
    const auto document = documentNamed(name);
    if (!document) {
        return refuse({base::Failure::Kind::malformed,
                       "--dump: man, completion-bash, completion-zsh, completion-fish"},
                      nullptr);
    }
    out.write(*document);
    return Exit::done;
}

}  // namespace

std::optional<Exit> runWithoutServices(const Invocation& invocation, Output& out) {
    if (invocation.dump) {
        return printDocument(*invocation.dump, out);
    }
    if (invocation.version) {
        out.line(versionText());
        return Exit::done;
    }
    if (invocation.help) {
        const Terminal terminal = describeStandardOutput(invocation.color);
        out.write(invocation.verb == nullptr ? helpText(terminal)
                                             : verbHelpText(*invocation.verb, terminal));
        return Exit::done;
    }
    return wantsWindow(invocation) ? runDesktopProgram() : std::nullopt;
}

Exit run(app::Services& services, const Invocation& invocation, Output& out,
         const std::atomic<bool>& cancelled) {
    if (!isForPrograms(invocation.verb) && !isNamedRootThere(services)) {
        return Exit::couldNot;
    }
    base::setRoutineLog(invocation.has("--verbose"));
    const app::UsageLog usage;  // off: a sink is for those who want to know
    app::startUp(services, usage);
    settle(services, invocation);
    const Terminal terminal = describeStandardOutput(invocation.color);
    Progress progress{base::LocaleFormats{services.ports().locale.formats}};
    Context context{services, invocation, out, terminal, progress, cancelled};
    const bool isToldFirst = stays(invocation.verb);
    if (isToldFirst) {
        tellOfCircumstances(context);
    }
    const Exit exit = runVerb(context);
    // Behind the result, so that in a terminal it is not scrolled away.
    if (out.flush() && !isToldFirst) {
        tellOfSkipped(context);
        tellOfCircumstances(context);
    }
    if (context.isIndexStale) {
        app::refreshIndexLater(services);
    }
    usage.record(app::UsageEvent::exit);
    return exit;
}

Exit refuse(const base::Failure& misuse, const VerbRow* verb) {
    complain(misuse.description);
    pointToHelp(verb);
    return Exit::misuse;
}

Exit finish(Output& out, Exit exit) {
    if (out.flush()) {
        return exit;
    }
    complain(fmt::format(fmt::runtime(tr("could not write: {}")), out.error()));
    return Exit::couldNot;
}

}  // namespace tessaly::cli
