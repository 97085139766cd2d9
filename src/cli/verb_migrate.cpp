// SPDX-License-Identifier: MIT
#include <array>
#include <string>

#include <fmt/format.h>

#include "app/cloud_offers.h"
#include "app/migration.h"
#include "base/localisation.h"
#include "cli/change_report.h"
#include "cli/context.h"
#include "cli/json_line.h"
#include "cli/migration_lines.h"
#include "cli/safe_text.h"
#include "cli/shell_words.h"
#include "cli/verb_functions.h"

namespace tessaly::cli {

namespace {

using app::Migration;
using base::N_;
using base::tr;

struct Obstacle {
    Migration state;
    Exit exit;
    const char* text;  // {} is the cloud drive's folder
};

constexpr std::array obstacles{
    Obstacle{Migration::nothingLocal, Exit::done,
             N_("There is nothing to move: no notes lie in the local folder.")},
    Obstacle{Migration::noCloudDrive, Exit::couldNot,
             N_("there is no cloud drive to move the notes to; its folder is named with: tessaly "
                "settings set cloudDriveContainer FOLDER")},
    Obstacle{Migration::cloudDriveMissing, Exit::couldNot,
             N_("the cloud drive's folder cannot be used now, so nothing was moved: {}")},
    Obstacle{Migration::dropboxLinked, Exit::couldNot,
             N_("the notes stay in the local folder while a Dropbox account is linked")},
    Obstacle{Migration::folderNamed, Exit::couldNot,
             N_("only the notes of the local folder can be moved, but --root or TESSALY_ROOT names "
                "another one")},
};

void tellOffers(app::Services& services) {
    for (const ports::CloudFolder& offer : app::cloudDriveOffers(services)) {
        complain(fmt::format(fmt::runtime(tr("a folder of {0} may be it: {1}")), offer.client,
                             safeText(commandLine(app::acceptingCommand(offer)))));
    }
}

Exit tellOf(Context& context, const Obstacle& obstacle) {
    if (obstacle.exit != Exit::done) {
        complain(fmt::format(fmt::runtime(tr(obstacle.text)),
                             safeText(context.services.globals().cloudDriveContainer())));
        if (obstacle.state == Migration::noCloudDrive) {
            tellOffers(context.services);
        }
    } else if (context.invocation.json) {
        context.out.line(JsonObject{}.add("did", "unchanged").add("files", 0).text());
    } else {
        context.out.line(tr(obstacle.text));
    }
    return obstacle.exit;
}

std::string renamedLine(bool json, const store::MoveReport::Renamed& one) {
    if (json) {
        return JsonObject{}.add("did", "renamed").add("from", one.from).add("to", one.to).text();
    }
    return fmt::format(fmt::runtime(tr("The name {0} was taken: it is now {1}")),
                       safeText(one.from), safeText(one.to));
}

std::string movedLine(app::Services& services, bool json, std::size_t moved) {
    const std::string root = services.dataStore().root();
    if (json) {
        return JsonObject{}.add("did", "moved").add("files", moved).add("path", root).text();
    }
    return fmt::format(
        fmt::runtime(base::trPlural("Moved {0} file to {1}", "Moved {0} files to {1}", moved)),
        moved, safeText(root));
}

ChangeReport reportOf(app::Services& services, bool json, const store::MoveReport& report) {
    ChangeReport lines;
    for (const store::MoveReport::Renamed& one : report.renamed) {
        lines.lines.push_back(renamedLine(json, one));
    }
    lines.lines.push_back(movedLine(services, json, report.moved));
    lines.exit = app::isWhole(report) ? Exit::done : Exit::couldNot;
    return lines;
}

Exit move(Context& context) {
    return carryOut(context, [&](app::Services& services) {
        const store::MoveOptions options{
            [&](std::size_t files) { context.progress.tell(files, Work::moving); },
            &context.cancelled};
        const store::MoveReport report = app::migrate(services, options);
        context.progress.erase();
        complainOf(report);
        return reportOf(services, context.invocation.json, report);
    });
}

Exit moveAndTell(Context& context) {
    const Exit exit = move(context);
    if (exit == Exit::done && context.out.flush()) {
        context.services.migrationOffer().tellOfMove();
    }
    return exit;
}

Exit showPreferences(Context& context) {
    const std::string container = context.services.globals().cloudDriveContainer();
    if (context.invocation.json) {
        context.out.line(
            JsonObject{}.add("key", "cloudDriveContainer").add("value", container).text());
        return Exit::done;
    }
    for (const std::string& line : syncPreferences(container)) {
        context.out.line(line);
    }
    return Exit::done;
}

Exit ask(Context& context) {
    const auto answer = context.services.migrationOffer().ask();
    if (!answer) {
        return couldNot(context, answer.failure());
    }
    switch (*answer) {
        case sync::MigrationAnswer::move: return moveAndTell(context);
        case sync::MigrationAnswer::seePreferences: return showPreferences(context);
        case sync::MigrationAnswer::never: return Exit::done;
        case sync::MigrationAnswer::notGiven: break;
    }
    complain(tr("there is no answer, so nothing was moved; with --yes there is no question"));
    return Exit::couldNot;
}

}  // namespace

Exit runMigrate(Context& context) {
    const Migration state = app::migrationState(context.services);
    for (const Obstacle& obstacle : obstacles) {
        if (obstacle.state == state) {
            return tellOf(context, obstacle);
        }
    }
    const bool isAsked = !context.invocation.has("--yes") && !context.invocation.has("--dry-run");
    return isAsked ? ask(context) : move(context);
}

}  // namespace tessaly::cli
