// SPDX-License-Identifier: MIT
#include "store/changed_files.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <optional>
#include <span>
#include <utility>

#include "base/utf8.h"
#include "store/entry_role.h"
#include "store/foreign_names.h"
#include "store/note_document.h"
#include "store/notes_by_name.h"
#include "store/paths.h"

namespace tessaly::store {
namespace {

using base::Failure;
using What = FoundNote::What;

constexpr std::size_t namesPerJob = 32;

std::string_view folderPartOf(std::string_view filename) {
    const std::size_t slash = filename.rfind('/');
    return slash == filename.npos ? std::string_view() : filename.substr(0, slash);
}

bool inOneFolder(const NamedNote& a, const NamedNote& b) {
    return a.type == b.type && folderPartOf(a.filename) == folderPartOf(b.filename);
}

What whatFailed(const Failure& failure) {
    const bool isGone =
        failure.kind == Failure::Kind::notFound || failure.kind == Failure::Kind::notAFile;
    return isGone ? What::nothing : What::unknown;
}

/// The kinds' folders, which may be links that stay inside the root.
class KindFolders {
public:
    KindFolders(ports::FileSystem& files, const std::string& root) {
        for (const base::NoteType type : {base::NoteType::calendar, base::NoteType::note}) {
            auto path = files.resolve(joined(root, base::folderName(type)));
            if (path && !isInside(*path, root)) {
                path = Failure{Failure::Kind::outside, *path};
            }
            _paths.emplace(type, std::move(path));
        }
    }

    const base::Result<std::string>& of(base::NoteType type) const { return _paths.at(type); }

private:
    std::map<base::NoteType, base::Result<std::string>> _paths;
};

/// Some names of one folder.
class FolderLook {
public:
    FolderLook(ports::FileSystem& files, std::span<FoundNote> found, const HeldNoteOf& heldNoteOf)
        : _files(files), _heldNoteOf(heldNoteOf) {
        for (FoundNote& each : found) {
            each.held = heldNoteOf(each.name.type, each.name.filename);
            switch (each.name.seen) {
                case NamedNote::Seen::gone: each.what = What::nothing; break;
                case NamedNote::Seen::folder: each.what = What::folder; break;
                case NamedNote::Seen::somehow: _toLookAt.push_back(&each); break;
            }
        }
    }

    void look(const KindFolders& kinds, Expected expected) {
        if (_toLookAt.empty()) {
            return;
        }
        const auto folder = folderIn(kinds);
        if (!folder) {
            setAll(whatFailed(folder.failure()));
            return;
        }
        _folder = *folder;
        if (expected == Expected::changed) {
            readNotes();
        }
        if (!_toLookAt.empty()) {
            survey();
            read();
        }
    }

private:
    base::Result<std::string> folderIn(const KindFolders& kinds) const {
        const FoundNote& first = *_toLookAt.front();
        const auto& kind = kinds.of(first.name.type);
        const std::string_view own = folderPartOf(first.name.filename);
        if (!kind || own.empty()) {
            return kind;
        }
        std::string path = joined(*kind, own);
        if (first.held.general || _heldNoteOf(first.name.type, own).isFolder()) {
            return path;
        }
        auto resolved = _files.resolve(path);
        return !resolved || *resolved == path ? resolved : Failure{Failure::Kind::outside, path};
    }

    void setAll(What what) {
        for (FoundNote* found : _toLookAt) {
            found->what = what;
        }
    }

    // Reads what is named like a note; what then proves to be something else is left to be looked
    // at.
    void readNotes() {
        std::vector<FoundNote*> others;
        for (FoundNote* found : _toLookAt) {
            ports::FolderEntry entry{std::string(lastComponent(found->name.filename)),
                                     ports::FolderEntry::Kind::file};
            if (entryRole(entry) != EntryRole::note || mayBeConflictCopy(entry)) {
                others.push_back(found);
            } else {
                _entries.push_back(std::move(entry));
                _toRead.push_back(found);
            }
        }
        _toLookAt = std::move(others);
        read();
        std::copy_if(_toRead.begin(), _toRead.end(), std::back_inserter(_toLookAt),
                     [](const FoundNote* found) {
                         return found->what == What::unknown || found->what == What::nothing;
                     });
        _entries.clear();
        _toRead.clear();
    }

    void survey() {
        std::vector<std::string> names;
        names.reserve(_toLookAt.size());
        for (const FoundNote* found : _toLookAt) {
            names.emplace_back(lastComponent(found->name.filename));
        }
        const auto entries = _files.surveyNames(_folder, names);
        if (!entries) {
            surveyOneByOne(names, entries.failure());
            return;
        }
        for (std::size_t index = 0; index < names.size(); ++index) {
            enter(*_toLookAt[index], (*entries)[index]);
        }
    }

    // One name that cannot be looked at says nothing about the others.
    void surveyOneByOne(const std::vector<std::string>& names, const Failure& failure) {
        if (names.size() == 1) {
            setAll(whatFailed(failure));
            return;
        }
        for (std::size_t index = 0; index < names.size(); ++index) {
            const auto entry = _files.surveyNames(_folder, std::span(&names[index], 1));
            if (entry) {
                enter(*_toLookAt[index], entry->front());
            } else {
                _toLookAt[index]->what = whatFailed(entry.failure());
            }
        }
    }

    void enter(FoundNote& found, const std::optional<ports::SurveyedEntry>& entry) {
        found.what = entry ? whatIs(*entry) : What::nothing;
        if (!entry) {
            return;
        }
        found.stamp = entry->stamp;
        if (found.what != What::note) {
            return;
        }
        if (found.held.stamp() == entry->stamp) {
            found.what = What::sameNote;
            return;
        }
        _entries.push_back(*entry);
        _toRead.push_back(&found);
    }

    What whatIs(const ports::SurveyedEntry& entry) {
        switch (entryRole(entry)) {
            case EntryRole::folder: return What::folder;
            case EntryRole::unreadable: return What::nothing;
            case EntryRole::passedOver:
            case EntryRole::placeholder: return What::noNote;
            case EntryRole::note: break;
        }
        if (entry.isPlaceholder) {
            return What::unknown;
        }
        return isConflictCopy(entry) ? What::nothing : What::note;
    }

    bool isConflictCopy(const ports::FolderEntry& entry) {
        if (!mayBeConflictCopy(entry)) {
            return false;
        }
        const auto isNote = [this](std::string_view original) {
            const std::string name(original);
            const auto found = _files.surveyNames(_folder, std::span(&name, 1));
            return found && found->front() && entryRole(*found->front()) == EntryRole::note;
        };
        // Only the whole folder tells of an original that is composed in another way.
        return conflictCopyOf(entry.name, isNote) ||
               (!base::isAscii(entry.name) && notesOfFolder().conflictCopy(entry.name));
    }

    const NotesByName& notesOfFolder() {
        if (!_notes) {
            _notes.emplace();
            const auto entries = _files.list(_folder);
            for (const auto& entry : entries ? *entries : std::vector<ports::FolderEntry>()) {
                if (entryRole(entry) == EntryRole::note) {
                    _notes->add(entry.name);
                }
            }
        }
        return *_notes;
    }

    void read() {
        if (_entries.empty()) {
            return;
        }
        const auto done = _files.readEach(_folder, _entries, [this](const ports::FileRead& file) {
            take(*_toRead[file.index], file);
        });
        if (!done) {
            for (FoundNote* found : _toRead) {
                found->what = whatFailed(done.failure());
            }
        }
    }

    static void take(FoundNote& found, const ports::FileRead& file) {
        if (file.failure != nullptr) {
            found.what = whatFailed(*file.failure);
            return;
        }
        const auto heldStamp = found.held.stamp();
        found.stamp = *file.stamp;
        if (heldStamp == found.stamp) {
            found.what = What::sameNote;
            return;
        }
        const std::string_view text = decodedText(file.bytes).value_or(std::string_view());
        found.what = What::note;
        found.content = heldStamp && found.held.content().view() == text
                            ? found.held.content()
                            : base::SharedText(std::string(text));
    }

    ports::FileSystem& _files;
    const HeldNoteOf& _heldNoteOf;
    std::string _folder;
    std::vector<FoundNote*> _toLookAt;
    std::optional<NotesByName> _notes;         // of the folder, once asked for
    std::vector<ports::FolderEntry> _entries;  // those to be read
    std::vector<FoundNote*> _toRead;           // beside `_entries`
};

/// Where the next job's names end.
std::size_t endOfJob(const std::vector<FoundNote>& found, std::size_t begin) {
    std::size_t end = begin + 1;
    while (end < found.size() && end - begin < namesPerJob &&
           inOneFolder(found[begin].name, found[end].name)) {
        ++end;
    }
    return end;
}

}  // namespace

std::optional<ports::FileStamp> HeldNote::stamp() const {
    if (general) {
        return isFolder() ? std::nullopt : std::optional(general->stamp);
    }
    if (day) {
        return day->stamp;
    }
    return stray != nullptr ? std::optional(stray->stamp) : std::nullopt;
}

base::SharedText HeldNote::content() const {
    return general            ? general->note.content
           : day              ? day->content
           : stray != nullptr ? stray->content
                              : base::SharedText();
}

std::vector<FoundNote> lookAtNotes(ports::FileSystem& files, base::Executor& executor,
                                   const std::string& root, std::vector<NamedNote> names,
                                   Expected expected, const HeldNoteOf& heldNoteOf) {
    std::vector<FoundNote> found(names.size());
    for (std::size_t index = 0; index < names.size(); ++index) {
        found[index].name = std::move(names[index]);
    }
    std::vector<std::span<FoundNote>> jobs;
    for (std::size_t begin = 0; begin < found.size();) {
        const std::size_t end = endOfJob(found, begin);
        jobs.push_back(std::span(found).subspan(begin, end - begin));
        begin = end;
    }
    const KindFolders kinds(files, root);
    base::parallelFor(executor, jobs.size(), [&](std::size_t index) {
        FolderLook(files, jobs[index], heldNoteOf).look(kinds, expected);
    });
    return found;
}

}  // namespace tessaly::store
