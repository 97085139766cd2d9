// SPDX-License-Identifier: MIT
#include "store/conflict_patterns.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <vector>

#include "base/utf8.h"

namespace tessaly::store {
namespace {

using Place = ConflictPattern::Place;

// DEVICE and DAY stand for these. A device may have brackets of its own: "Ann's laptop (2)".
constexpr std::string_view device = R"(((?:[^()]|\([^()]*\))+?))";
constexpr std::string_view day = "[0-9]{4}-[0-9]{2}-[0-9]{2}";

constexpr std::string_view syncthing = R"(\.sync-conflict-[0-9]{8}-[0-9]{6}(?:-([A-Z2-7]{7})?)?)";
constexpr std::string_view seafile = R"( \(SFConflict (?:DEVICE )?DAY(?:-[0-9]{2}){3}\))";
constexpr std::string_view nextcloudOld = R"(_conflict-(?:(.+)-)?[0-9]{8}-[0-9]{6})";
constexpr std::string_view nextcloud = R"( \(conflicted copy (?:DEVICE )?DAY [0-9]{6}\))";
constexpr std::string_view nextcloudCase = R"( \(case clash from (?:DEVICE )?DAY [0-9]{6}\))";
constexpr std::string_view dropbox =
    R"( \((?:DEVICE(?:'s|’s)? )?conflict(?:ed|ing) copy(?: DAY)?(?: [0-9]+)?\)(?: \([0-9]+\))?)";
constexpr std::string_view dropboxFrench = R"( \(Copie en conflit de DEVICE DAY\)(?: \([0-9]+\))?)";
constexpr std::string_view dropboxGerman =
    R"( \(In Konflikt stehende Kopie von DEVICE DAY\)(?: \([0-9]+\))?)";
constexpr std::string_view dropboxGermanGenitive =
    R"( \(DEVICEs? in Konflikt stehende Kopie DAY\)(?: \([0-9]+\))?)";
constexpr std::string_view dropboxSpanish =
    R"( \(Copia (?:conflictiva|en conflicto) de DEVICE DAY\)(?: \([0-9]+\))?)";
constexpr std::string_view dropboxClash =
    R"( \((?:Case|Unicode Encoding|White ?[Ss]pace|Selective Sync) Conflict(?: [0-9]+)?\))";
constexpr std::string_view dropboxClashLowerCase =
    R"( \((?:case|unicode encoding|white ?space|selective sync) conflict(?: [0-9]+)?\))";
constexpr std::string_view pCloud = R"( \(conflicted(?: [0-9]+)?\))";
constexpr std::string_view pCloudEnd = R"(\.conflicted)";
constexpr std::string_view oneDrive = R"(-([^-]+)-safeBackup-[0-9]{4})";
constexpr std::string_view rclone = R"(\.conflict[0-9]+)";
constexpr std::string_view rcloneOld = R"(\.\.path[12])";
constexpr std::string_view unison = R"( \(conflict(?: #[0-9]+)?_on_DAY(?:_was_deleted)?\))";
constexpr std::string_view resilio = R"(\.Conflict[0-9]*)";
constexpr std::string_view synology =
    R"(_([^_]+)_[A-Z][a-z]{2}-[0-9]{2}-[0-9]{4}-[0-9]{4})"
    R"(_(?:Case|WhiteSpace|TailCharacter|UnicodeEncoding)?Conflict(?:_[0-9]+)?)";

// Left out are three forms that users' own names have much more often than conflict copies: "Plans
// 2.txt", "Plans (1).txt" and "Plans-hostname.txt". A second file of a day that comes of the first
// of them is a stray calendar file.
constexpr std::array patterns{
    ConflictPattern{.client = "Syncthing",
                    .hint = "sync-conflict",
                    .mark = syncthing,
                    .deviceOf = DeviceOf::original},
    ConflictPattern{.client = "Seafile", .hint = "SFConflict", .mark = seafile},
    ConflictPattern{.client = "Nextcloud", .hint = "_conflict-", .mark = nextcloudOld},
    ConflictPattern{.client = "Nextcloud", .hint = "conflicted copy", .mark = nextcloud},
    ConflictPattern{.client = "Nextcloud", .hint = "case clash from", .mark = nextcloudCase},
    ConflictPattern{.client = "Dropbox", .hint = "conflict", .mark = dropbox},
    ConflictPattern{.client = "Dropbox", .hint = "Copie en conflit", .mark = dropboxFrench},
    ConflictPattern{.client = "Dropbox", .hint = "In Konflikt", .mark = dropboxGerman},
    ConflictPattern{.client = "Dropbox", .hint = "in Konflikt", .mark = dropboxGermanGenitive},
    ConflictPattern{.client = "Dropbox", .hint = "onflict", .mark = dropboxSpanish},
    ConflictPattern{.client = "Dropbox", .hint = " Conflict", .mark = dropboxClash},
    ConflictPattern{.client = "Dropbox", .hint = " conflict", .mark = dropboxClashLowerCase},
    ConflictPattern{.client = "pCloud", .hint = "conflicted", .mark = pCloud},
    ConflictPattern{
        .client = "pCloud", .hint = ".conflicted", .mark = pCloudEnd, .place = Place::atEnd},
    ConflictPattern{.client = "OneDrive", .hint = "-safeBackup-", .mark = oneDrive, .divider = '-'},
    ConflictPattern{.client = "rclone", .hint = ".conflict", .mark = rclone},
    ConflictPattern{.client = "rclone", .hint = "..path", .mark = rcloneOld, .place = Place::atEnd},
    ConflictPattern{.client = "Unison", .hint = "(conflict", .mark = unison},
    ConflictPattern{.client = "Resilio", .hint = ".Conflict", .mark = resilio},
    ConflictPattern{.client = "Synology", .hint = "Conflict", .mark = synology, .divider = '_'},
};

// Each pattern's hint holds one of these, so that most names are done with after four searches.
constexpr std::array<std::string_view, 4> commonHints{"onfli", "case clash", "afeBackup", "..path"};

constexpr bool isAnyIn(std::string_view text) {
    return std::any_of(commonHints.begin(), commonHints.end(),
                       [&](std::string_view hint) { return text.find(hint) != text.npos; });
}

static_assert(std::all_of(patterns.begin(), patterns.end(),
                          [](const ConflictPattern& pattern) { return isAnyIn(pattern.hint); }));

void replaceWord(std::string& text, std::string_view word, std::string_view by) {
    if (const std::size_t at = text.find(word); at != text.npos) {
        text.replace(at, word.size(), by);
    }
}

base::Regex compiled(const ConflictPattern& pattern) {
    std::string mark(pattern.mark);
    replaceWord(mark, "DEVICE", device);
    replaceWord(mark, "DAY", day);
    const bool isAtEnd = pattern.place == Place::atEnd;
    return base::Regex(
        base::toUtf16(R"((?s)\A(.*))" + mark + (isAtEnd ? R"(\z)" : R"((\.[^.]*)?\z)")));
}

std::vector<base::Regex> compiledPatterns() {
    std::vector<base::Regex> result;
    std::transform(patterns.begin(), patterns.end(), std::back_inserter(result), compiled);
    return result;
}

}  // namespace

std::span<const ConflictPattern> conflictPatterns() {
    return patterns;
}

bool mayBeConflictName(std::string_view name) {
    return isAnyIn(name);
}

const base::Regex& compiledConflictPattern(std::size_t index) {
    static const std::vector<base::Regex> all = compiledPatterns();
    return all[index];
}

}  // namespace tessaly::store
