// SPDX-License-Identifier: MIT
#include "app/conflicts.h"

#include <algorithm>
#include <set>
#include <utility>

#include <fmt/format.h>

#include "app/known_earlier_texts.h"
#include "app/note_address.h"
#include "base/localisation.h"
#include "base/utf8.h"
#include "store/foreign_names.h"
#include "store/line_diff.h"
#include "store/merge_base.h"
#include "store/merge_versions.h"
#include "store/note_document.h"
#include "store/note_names.h"
#include "store/paths.h"
#include "sync/conflict_manager.h"
#include "sync/file_versions.h"

namespace tessaly::app {
namespace {

using base::Failure;
using base::NoteType;
using base::Result;
using base::tr;

template <class... Values>
std::string inWords(const std::string& text, const Values&... values) {
    return fmt::format(fmt::runtime(text), values...);
}

sync::FileVersions fileVersions(Services& services) {
    return sync::FileVersions(
        {services.ports().files, services.safeFiles(), services.dataStore().root()});
}

std::string nameOf(const ConflictedNote& note) {
    return store::joined(base::folderName(note.type), note.filename);
}

/// Failure: the note is neither there nor in conflict, or it cannot be looked at.
Result<ConflictedNote> versionsOf(Services& services, NoteType type, const std::string& filename) {
    auto path = services.dataStore().pathOf(type, filename);
    if (!path) {
        return path.failure();
    }
    auto versions = fileVersions(services).versionsOfItem(*path);
    if (!versions) {
        return versions.failure();
    }
    ConflictedNote note{type, filename, *std::move(path), {}};
    if (versions->current) {
        note.versions.push_back(*versions->current);
    } else if (versions->unresolved.empty() ||
               versions->current.failure().kind != Failure::Kind::notFound) {
        return versions->current.failure();
    }
    note.versions.insert(note.versions.end(), versions->unresolved.begin(),
                         versions->unresolved.end());
    return note;
}

/// The note that a conflict copy's name means.
Result<ConflictedNote> noteOfCopy(Services& services, NoteType type, const std::string& filename) {
    const std::string folder = filename.substr(0, filename.rfind('/') + 1);
    Failure failure{Failure::Kind::notFound, {}};
    std::string name(store::lastComponent(filename));
    // A copy may be a copy's.
    while (const auto copy = store::conflictName(name)) {
        name = copy->original;
        if (store::isNoteFilename(name)) {
            auto note = versionsOf(services, type, folder + name);
            if (note && note->isInConflict()) {
                return note;
            }
        }
    }
    return failure;
}

/// What `findNote` does not find, as it is there under its versions' names alone.
Result<ConflictedNote> goneNote(Services& services, std::string_view text) {
    for (const NoteType type : {NoteType::calendar, NoteType::note}) {
        std::string_view name = text;
        const std::string folder = std::string(base::folderName(type)) + "/";
        if (name.starts_with(folder)) {
            name.remove_prefix(folder.size());
        }
        for (const std::string_view extension : {"", ".txt", ".md"}) {
            const std::string filename = std::string(name).append(extension);
            auto note = store::isNoteFilename(store::lastComponent(filename))
                            ? versionsOf(services, type, filename)
                            : noteOfCopy(services, type, filename);
            if (note && note->isInConflict()) {
                return note;
            }
        }
    }
    return Failure{Failure::Kind::notFound, {}};
}

/// Looks at the versions again, and reads them.
class Resolving {
public:
    Resolving(Services& services, const ConflictedNote& note)
        : _services(services),
          _note(note),
          _versions(fileVersions(services)),
          _manager({_versions, services.dateStrings().formats(), services.ports().clock}) {
        _manager.setSelectedNoteUrl(note.path);
    }

    /// Failure, in words for the user: it cannot be resolved as it is.
    Result<base::Done> look() {
        if (!_note.isInConflict()) {
            return Failure{Failure::Kind::notFound,
                           inWords(tr("there is only one version of {}"), nameOf(_note))};
        }
        _manager.checkForConflicts();
        if (_manager.conflictedNotes() != _note.versions) {
            return Failure{Failure::Kind::changed,
                           inWords(tr("the versions of {} have just changed; look at them again"),
                                   nameOf(_note))};
        }
        return base::Done{};
    }

    const Result<std::string>& textOf(std::size_t index) const { return _manager.textOf(index); }

    /// Each version's bytes that the note loses goes into its history, not only into the copy's.
    Result<base::Done> keepTexts() {
        for (std::size_t index = 0; index < _note.versions.size(); ++index) {
            if (!_note.versions[index].isConflict || !textOf(index)) {
                continue;
            }
            if (auto kept = _services.history().keepOld(_note.path, *textOf(index)); !kept) {
                return kept;
            }
        }
        return base::Done{};
    }

    bool keep(std::size_t index) {
        for (std::size_t shown = 0; shown < index; ++shown) {
            _manager.showOtherVersion();
        }
        return _manager.chooseThisVersion();
    }

    bool put(std::string_view text) { return _manager.chooseText(text); }

private:
    Services& _services;
    const ConflictedNote& _note;
    sync::FileVersions _versions;
    sync::ConflictManager _manager;
};

/// Lines of the versions, each counted once, that the merged text does not have.
std::size_t linesTaken(const std::vector<std::string_view>& versions, std::string_view merged) {
    const auto addLines = [](std::string_view text, std::set<std::string_view>& lines) {
        for (std::string_view line : store::linesOfText(*store::decodedText(text))) {
            lines.insert(line.substr(0, line.size() - (line.ends_with('\r') ? 1 : 0)));
        }
    };
    std::set<std::string_view> present{""};
    addLines(merged, present);
    std::set<std::string_view> all;
    for (const std::string_view version : versions) {
        addLines(version, all);
    }
    return static_cast<std::size_t>(
        std::count_if(all.begin(), all.end(), [&](auto line) { return !present.contains(line); }));
}

/// Fills in what there is to say of the merge.
std::string mergedText(Services& services, const std::vector<std::string_view>& versions,
                       Resolved& resolved) {
    const ConflictedNote& note = resolved.note;
    const auto known = knownEarlierTexts(services, note.type, note.filename, note.path);
    std::vector<std::string_view> earlier;
    for (const KnownEarlierText& text : known) {
        earlier.push_back(text.bytes);
    }
    const auto base = store::mergeBase(earlier, versions);
    if (!base) {
        return store::mergeVersions(versions);
    }
    std::string merged = store::mergeVersions(base->text, versions);
    resolved.baseTime = known[base->index].time;
    resolved.linesTaken = linesTaken(versions, merged);
    return merged;
}

}  // namespace

Conflicts listConflicts(Services& services, store::NoteReader::Options options) {
    options.wanted = store::NoteReader::Wanted::dayTasks;
    Conflicts conflicts;
    conflicts.report =
        services.noteCache().visit(options, [](std::size_t, const store::NoteFile&) {});
    std::set<std::string> originals;
    for (const store::ConflictCopy& copy : conflicts.report.conflictCopies) {
        originals.insert(copy.original);
    }
    for (const std::string& original : originals) {
        const std::size_t slash = original.find('/');
        const NoteType type = base::noteTypeOfFolder(original.substr(0, slash));
        auto note = versionsOf(services, type, original.substr(slash + 1));
        if (note && note->isInConflict()) {
            conflicts.notes.push_back(*std::move(note));
        }
    }
    return conflicts;
}

Result<ConflictedNote> conflictOf(Services& services, std::string_view note,
                                  store::NoteReader::Options options) {
    const std::string_view wanted = base::trimmed(note);
    const auto found = findNote(services, wanted, std::move(options));
    if (!found) {
        auto gone = found.failure().kind == Failure::Kind::notFound
                        ? goneNote(services, wanted)
                        : Result<ConflictedNote>(found.failure());
        return gone ? std::move(gone) : found.failure();
    }
    auto versions = versionsOf(services, found->type, found->filename);
    if (versions && versions->isInConflict()) {
        return versions;
    }
    auto original = noteOfCopy(services, found->type, found->filename);
    return original ? std::move(original) : std::move(versions);
}

Result<Resolved> keepVersion(Services& services, const ConflictedNote& note, std::size_t number) {
    Resolving resolving(services, note);
    if (const auto looked = resolving.look(); !looked) {
        return looked.failure();
    }
    if (number < 1 || number > note.versions.size()) {
        return Failure{Failure::Kind::notFound,
                       inWords(tr("{0} has versions 1 to {1}, and no {2}"), nameOf(note),
                               note.versions.size(), number)};
    }
    for (const std::size_t index : {std::size_t{0}, number - 1}) {
        if (!resolving.textOf(index)) {
            return resolving.textOf(index).failure();
        }
    }
    if (const auto kept = resolving.keepTexts(); !kept) {
        return kept.failure();
    }
    Resolved resolved;
    resolved.note = note;
    resolved.kept = number;
    resolved.isResolved = resolving.keep(number - 1);
    return resolved;
}

Result<Resolved> mergeVersions(Services& services, const ConflictedNote& note) {
    Resolving resolving(services, note);
    if (const auto looked = resolving.look(); !looked) {
        return looked.failure();
    }
    std::vector<std::string_view> versions;
    for (std::size_t index = 0; index < note.versions.size(); ++index) {
        const auto& text = resolving.textOf(index);
        if (!text) {
            return text.failure();
        }
        if (!store::decodedText(*text)) {
            return Failure{Failure::Kind::malformed,
                           inWords(tr("{} is not UTF-8 text and cannot be merged; keep one of the "
                                      "versions with --keep"),
                                   note.versions[index].url)};
        }
        versions.push_back(*text);
    }
    Resolved resolved;
    resolved.note = note;
    const std::string merged = mergedText(services, versions, resolved);
    if (const auto kept = resolving.keepTexts(); !kept) {
        return kept.failure();
    }
    resolved.isResolved = resolving.put(merged);
    return resolved;
}

}  // namespace tessaly::app
