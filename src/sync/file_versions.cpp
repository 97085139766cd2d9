// SPDX-License-Identifier: MIT
#include "sync/file_versions.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include "base/localisation.h"
#include "base/normalise.h"
#include "base/utf8.h"
#include "store/entry_role.h"
#include "store/foreign_names.h"
#include "store/new_files.h"
#include "store/note_names.h"
#include "store/notes_by_name.h"
#include "store/paths.h"

namespace tessaly::sync {

using base::Done;
using base::Failure;
using base::Result;
using base::tr;
using ports::FileVersion;
using ports::FolderEntry;
using store::DeviceOf;

namespace {

Failure changed(const std::string& file) {
    return {Failure::Kind::changed, file + ": " + tr("is no longer what it was")};
}

bool isSameName(std::string_view one, std::string_view other) {
    return one == other || base::nfc(one) == base::nfc(other);
}

/// A copy of the item, and what its name tells.
struct Copy {
    FileVersion version;
    std::string deviceOfOriginal;
};

/// A look at the folder of one item.
class Look {
public:
    Look(ports::FileSystem& files, const std::string& url)
        : _files(files),
          _url(url),
          _folder(store::parentOf(url)),
          _item(store::lastComponent(url)) {}

    Result<ItemVersions> versions() {
        auto entries = _files.list(_folder);
        if (!entries) {
            return entries.failure();
        }
        auto copies = copiesIn(*entries);
        if (!copies) {
            return copies.failure();
        }
        ItemVersions versions{current(*entries), {}};
        if (versions.current) {
            versions.current = withDevice(*std::move(versions.current), *copies);
        }
        for (Copy& copy : *std::move(copies)) {
            versions.unresolved.push_back(std::move(copy.version));
        }
        return versions;
    }

private:
    /// The latest first.
    Result<std::vector<Copy>> copiesIn(const std::vector<FolderEntry>& entries) const {
        std::vector<std::string> names;
        std::vector<store::ConflictName> marks;
        std::optional<store::NotesByName> notes;  // of thousands of entries hardly any is a copy
        for (const FolderEntry& entry : entries) {
            if (!store::mayBeConflictCopy(entry) || entry.name == _item) {
                continue;
            }
            if (!notes) {
                notes = notesAmong(entries);
            }
            auto mark = notes->conflictCopy(entry.name);
            if (mark && mark->original == _item) {
                names.push_back(entry.name);
                marks.push_back(*std::move(mark));
            }
        }
        return copiesOf(names, marks);
    }

    store::NotesByName notesAmong(const std::vector<FolderEntry>& entries) const {
        store::NotesByName notes;
        notes.add(_item);  // the first, so that its spelling is the one that is found
        for (const FolderEntry& entry : entries) {
            if (entry.kind == FolderEntry::Kind::file && store::isNoteFilename(entry.name)) {
                notes.add(entry.name);
            }
        }
        return notes;
    }

    Result<std::vector<Copy>> copiesOf(std::span<const std::string> names,
                                       std::span<const store::ConflictName> marks) const {
        if (names.empty()) {
            return std::vector<Copy>();
        }
        const auto found = _files.surveyNames(_folder, names);
        if (!found) {
            return found.failure();
        }
        std::vector<Copy> copies;
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (const auto& entry = (*found)[i]; entry && entry->kind == FolderEntry::Kind::file) {
                copies.push_back(copyOf(*entry, marks[i]));
            }
        }
        std::sort(copies.begin(), copies.end(), [](const Copy& one, const Copy& other) {
            return one.version.modificationDate != other.version.modificationDate
                       ? one.version.modificationDate > other.version.modificationDate
                       : one.version.url < other.version.url;
        });
        return copies;
    }

    Copy copyOf(const ports::SurveyedEntry& entry, const store::ConflictName& mark) const {
        Copy copy;
        copy.version = {.url = store::joined(_folder, entry.name),
                        .modificationDate = entry.stamp.modified,
                        .localizedNameOfSavingComputer = {},
                        .isConflict = true,
                        .isResolved = false,
                        .client = std::string(mark.client)};
        (mark.deviceOf == DeviceOf::copy ? copy.version.localizedNameOfSavingComputer
                                         : copy.deviceOfOriginal) = mark.device;
        return copy;
    }

    /// The name on the disk, which may be spelt in another way.
    std::string nameIn(const std::vector<FolderEntry>& entries) const {
        std::string name = _item;
        for (const FolderEntry& entry : entries) {
            if (entry.name == _item) {
                return _item;
            }
            if (!base::isAscii(_item) && isSameName(entry.name, _item)) {
                name = entry.name;
            }
        }
        return name;
    }

    Result<FileVersion> current(const std::vector<FolderEntry>& entries) const {
        const std::string name = nameIn(entries);
        const std::string file = store::joined(_folder, name);
        const auto found = _files.surveyNames(_folder, {&name, 1});
        if (!found) {
            return found.failure();
        }
        const auto& entry = found->front();
        if (!entry) {
            return whyGone(entries);
        }
        if (entry->kind != FolderEntry::Kind::file) {
            return Failure{Failure::Kind::notAFile, file + ": " + tr("not a regular file")};
        }
        FileVersion version;
        version.url = file;
        version.modificationDate = entry->stamp.modified;
        return version;
    }

    Failure whyGone(const std::vector<FolderEntry>& entries) const {
        const bool hasPlaceholder =
            std::any_of(entries.begin(), entries.end(), [&](const FolderEntry& entry) {
                const auto original = store::nameOfPlaceholder(entry.name);
                return original && isSameName(*original, _item);
            });
        return hasPlaceholder
                   ? store::notDownloaded(_url)
                   : Failure{Failure::Kind::notFound, _url + ": " + tr("the note is not there")};
    }

    static FileVersion withDevice(FileVersion current, const std::vector<Copy>& copies) {
        const auto telling = std::find_if(copies.begin(), copies.end(), [](const Copy& copy) {
            return !copy.deviceOfOriginal.empty();
        });
        if (telling != copies.end()) {
            current.localizedNameOfSavingComputer = telling->deviceOfOriginal;
        }
        return current;
    }

    ports::FileSystem& _files;
    const std::string& _url;
    const std::string _folder;
    const std::string _item;
};

}  // namespace

FileVersions::FileVersions(Tools tools) : _tools(std::move(tools)) {}

Result<ItemVersions> FileVersions::versionsOfItem(const std::string& url) const {
    return Look(_tools.files, url).versions();
}

Result<FileVersion> FileVersions::currentVersionOfItem(const std::string& url) const {
    auto versions = versionsOfItem(url);
    return versions ? (*std::move(versions)).current : versions.failure();
}

Result<std::vector<FileVersion>> FileVersions::unresolvedConflictVersionsOfItem(
    const std::string& url) const {
    auto versions = versionsOfItem(url);
    if (!versions) {
        return versions.failure();
    }
    return (*std::move(versions)).unresolved;
}

Result<std::string> FileVersions::contents(const FileVersion& version) const {
    auto read = _tools.files.read(version.url);
    if (!read) {
        return read.failure();
    }
    return (*std::move(read)).bytes;
}

Result<Done> FileVersions::replaceItem(const std::string& url, std::string_view text,
                                       const std::string* expected) {
    if (expected == nullptr) {
        auto made = _tools.safeFiles.create(_tools.root, url, text, store::ChangeCause::resolved);
        const bool isThere = !made && made.failure().kind == Failure::Kind::exists;
        return isThere ? changed(url) : std::move(made);
    }
    using Next = Result<std::optional<std::string>>;
    const auto edited = _tools.safeFiles.edit(
        _tools.root, url,
        [&](std::string_view bytes) -> Next {
            return bytes == *expected || bytes == text ? Next(std::string(text)) : changed(url);
        },
        store::ChangeCause::resolved);
    if (edited) {
        return Done{};
    }
    return edited.failure().kind == Failure::Kind::notFound ? changed(url) : edited.failure();
}

Result<Done> FileVersions::removeVersion(const FileVersion& version, const std::string& expected) {
    auto removed = _tools.safeFiles.remove(_tools.root, version.url, &expected);
    const bool isGone = !removed && removed.failure().kind == Failure::Kind::notFound;
    return isGone ? Result<Done>(Done{}) : std::move(removed);
}

}  // namespace tessaly::sync
