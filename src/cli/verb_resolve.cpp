// SPDX-License-Identifier: MIT
#include <charconv>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "app/conflicts.h"
#include "base/localisation.h"
#include "base/log.h"
#include "cli/change_report.h"
#include "cli/context.h"
#include "cli/json_times.h"
#include "cli/safe_text.h"
#include "cli/shell_words.h"
#include "cli/verb_functions.h"
#include "cli/version_rows.h"

namespace tessaly::cli {

namespace {

using base::tr;

template <class... Values>
std::string inWords(const std::string& text, const Values&... values) {
    return fmt::format(fmt::runtime(text), values...);
}

/// What to keep: a version's number, or 0 for all that there is.
using Wish = std::size_t;
constexpr Wish merge = 0;

std::optional<Wish> numberIn(const std::string& text) {
    std::size_t number = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    const bool isNumber = read.ec == std::errc{} && read.ptr == end && number > 0;
    return isNumber ? std::optional{number} : std::nullopt;
}

/// Nothing: it has complained of what is asked for.
std::optional<Wish> wishOf(const Invocation& invocation) {
    const bool isKeep = invocation.has("--keep");
    if (isKeep == invocation.has("--merge")) {
        complain(tr("resolve needs either --keep N or --merge"));
        return std::nullopt;
    }
    if (!isKeep) {
        return merge;
    }
    const auto number = numberIn(invocation.value("--keep"));
    if (!number) {
        complain(inWords(tr("“{}” is no number of a version, from 1"),
                         safeText(invocation.value("--keep"))));
    }
    return number;
}

std::string whereOthersAre(const app::ConflictedNote& note) {
    return inWords(tr("What the versions held is in the history: {}"),
                   commandLine({"tessaly", "history", safeText(nameOf(note))}));
}

std::vector<std::string> wordsOfMerge(Context& context, const app::Resolved& resolved) {
    std::vector<std::string> lines{
        inWords(base::trPlural("Merged {1} version of {0}", "Merged {1} versions of {0}",
                               static_cast<unsigned long>(resolved.note.versions.size())),
                safeText(nameOf(resolved.note)), resolved.note.versions.size())};
    if (!resolved.baseTime) {
        lines.push_back(tr("No text is known that they were made from, so all lines were kept."));
        return lines;
    }
    lines.push_back(inWords(tr("They were compared with what the note held on {}."),
                            dateInWords(context, *resolved.baseTime)));
    if (resolved.linesTaken > 0) {
        lines.push_back(inWords(
            base::trPlural(
                "{} line of a version is not in it, as another had deleted or changed it.",
                "{} lines of versions are not in it, as others had deleted or changed them.",
                static_cast<unsigned long>(resolved.linesTaken)),
            resolved.linesTaken));
    }
    return lines;
}

std::vector<std::string> wordsOf(Context& context, const app::Resolved& resolved) {
    std::vector<std::string> lines =
        resolved.kept == merge
            ? wordsOfMerge(context, resolved)
            : std::vector{inWords(tr("Kept version {1} of {0}"), safeText(nameOf(resolved.note)),
                                  resolved.kept)};
    lines.push_back(whereOthersAre(resolved.note));
    return lines;
}

std::string resolvedRecord(const app::Resolved& resolved) {
    JsonObject object;
    object.add("did", resolved.kept == merge ? "merged" : "kept")
        .add("type", base::rawValue(resolved.note.type))
        .add("filename", resolved.note.filename)
        .add("path", resolved.note.path)
        .add("versions", resolved.note.versions.size());
    if (resolved.kept == merge) {
        object
            .add("base",
                 resolved.baseTime ? std::optional{rfc3339(*resolved.baseTime)} : std::nullopt)
            .add("linesTaken", resolved.linesTaken);
    } else {
        object.add("number", resolved.kept);
    }
    return object.add("isResolved", resolved.isResolved).text();
}

ChangeReport report(Context& context, const app::Resolved& resolved) {
    if (!resolved.isResolved) {
        complain(inWords(tr("{} is in conflict still: something has changed meanwhile, or could "
                            "not be written"),
                         safeText(nameOf(resolved.note))));
        return {Exit::couldNot, {}};
    }
    return {Exit::done, context.invocation.json ? std::vector{resolvedRecord(resolved)}
                                                : wordsOf(context, resolved)};
}

ChangeReport resolve(Context& context, app::Services& services, Wish wish) {
    const auto note =
        app::conflictOf(services, context.invocation.arguments.front(), context.readOptions());
    if (!note) {
        return {couldNot(context, note.failure()), {}};
    }
    const auto resolved = wish == merge ? app::mergeVersions(services, *note)
                                        : app::keepVersion(services, *note, wish);
    if (!resolved) {
        return {couldNot(context, resolved.failure()), {}};
    }
    return report(context, *resolved);
}

}  // namespace

Exit runResolve(Context& context) {
    const auto wish = wishOf(context.invocation);
    if (!wish) {
        return Exit::misuse;
    }
    base::setRoutineLog(false);  // its steps are for who watches an editor
    return carryOut(context, [&, wish = *wish](app::Services& services) {
        return resolve(context, services, wish);
    });
}

}  // namespace tessaly::cli
