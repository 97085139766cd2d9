// SPDX-License-Identifier: MIT
#include "app/examine_watching.h"

#include <algorithm>
#include <bit>
#include <utility>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/note_type.h"
#include "store/paths.h"

namespace tessaly::app {
namespace {

using Level = Finding::Level;

/// What is enough for most, as the manual has it.
constexpr std::size_t manyWatches = 524288;
constexpr std::size_t manyInstances = 1024;

std::vector<std::string> raisingCommand(std::string_view limit, std::size_t to) {
    return {"sudo", "sysctl", fmt::format("fs.inotify.{}={}", limit, to)};
}

bool isBelow(const ports::BlindFolder& one, const ports::BlindFolder& above) {
    return above.fileSystem == one.fileSystem && store::isInside(one.folder, above.folder);
}

/// A folder below one that is told already is left out, unless its file system is another one.
void tellBlindFolders(const std::string& root, const std::vector<ports::BlindFolder>& blind,
                      Findings& findings) {
    std::vector<Finding> kind;
    std::vector<ports::BlindFolder> told;
    for (const ports::BlindFolder& one : blind) {
        if (std::any_of(told.begin(), told.end(),
                        [&](const auto& above) { return isBelow(one, above); })) {
            continue;
        }
        told.push_back(one);
        const bool isRoot = one.folder == root;
        kind.push_back(
            {Level::note, "blindFileSystem",
             fmt::format(fmt::runtime(base::tr("On a file system ({}) that does not report what "
                                               "others change; to watch it, it is looked at again "
                                               "and again")),
                         one.fileSystem),
             isRoot ? root : one.folder.substr(root.size() + (root.ends_with('/') ? 0 : 1))});
    }
    findings.addKind(std::move(kind));
}

void tellLimit(std::size_t folders, std::size_t limit, const base::LocaleFormats& formats,
               Findings& findings) {
    if (folders <= limit / 2) {
        return;
    }
    const bool isTooLow = folders > limit;
    const std::string text =
        isTooLow ? base::tr(
                       "To watch the {0} folders takes more than the {1} watches that the "
                       "system allows")
                 : base::tr(
                       "To watch the {0} folders takes more than half of the {1} watches that "
                       "all your programs share");
    findings.add(
        {isTooLow ? Level::warning : Level::note,
         "watchLimit",
         fmt::format(fmt::runtime(text), formats.number(static_cast<long long>(folders)),
                     formats.number(static_cast<long long>(limit))),
         {},
         raisingCommand("max_user_watches", std::max(manyWatches, std::bit_ceil(2 * folders)))});
}

}  // namespace

void examineWatching(Services& services, std::vector<std::string> folders, Findings& findings) {
    const std::string root = services.dataStore().root();
    for (const base::NoteType type : {base::NoteType::calendar, base::NoteType::note}) {
        folders.emplace_back(base::folderName(type));
    }
    folders.emplace_back();
    std::sort(folders.begin(), folders.end());
    for (std::string& folder : folders) {
        folder = store::joined(root, folder);
    }
    const ports::WatchOutlook outlook = services.ports().watchOutlook(folders);
    tellBlindFolders(root, outlook.blind, findings);
    if (outlook.maxFolders) {
        tellLimit(folders.size(), *outlook.maxFolders, services.dateStrings().formats(), findings);
    }
    if (outlook.refusal) {
        findings.add({Level::warning,
                      "watchRefused",
                      fmt::format(fmt::runtime(base::tr("No folder can be watched now: {}")),
                                  outlook.refusal->description),
                      {},
                      raisingCommand("max_user_instances", manyInstances)});
    }
}

}  // namespace tessaly::app
