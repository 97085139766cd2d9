// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "ports/file_system.h"
#include "store/cloud_note.h"

namespace tessaly::sync {

/// The state of every file and folder of the data folder as last delivered, by folder: what a look
/// at a folder is compared with. Holds notes, folders of notes, and, without reporting them,
/// placeholders and conflict copies. A copy is reported as a note only while no note that it is a
/// version of lies in its folder; that note has `hasConflicts`.
///
/// A note that a sync client has emptied (a placeholder of its own name) stays as it was held: its
/// text is somewhere else now, not gone. When it is filled again, it is compared with the state
/// that it had before.
///
/// Folders are relative to the root, their first component a kind's name. No lock of its own: who
/// holds it guards it.
class CurrentNotes {
public:
    /// What differs from what was held, and what must be looked at next. In no order.
    struct Differences {
        std::vector<store::CloudNote> notes;
        /// Folders whose contents are unknown: they have come, or been exchanged for another.
        std::vector<std::string> newFolders;
        /// Absolute paths of placeholders that have come, or changed.
        std::vector<std::string> placeholders;
        /// Of those that are gone, or filled.
        std::vector<std::string> placeholdersGone;
        /// Files of the same size and date, of which only their bytes tell whether they have
        /// changed: their inode or change time is another, or they were looked at within a clock's
        /// tick of their last change. They are not in `notes`.
        std::vector<store::CloudNote> doubtful;

        void add(Differences&& more);
    };

    /// `root`: absolute, resolved; all that was held is forgotten.
    void reset(std::string root);
    const std::string& root() const { return _root; }

    /// A whole folder as it was found, at `lookedAt` or just after. Entries of any kind may be
    /// given. Subfolders that were held and are not there any more go with all below them. Ignored
    /// when the folder above holds no such folder, which its own arrival will mend.
    Differences replaceFolder(std::string_view folder, std::vector<ports::SurveyedEntry> entries,
                              base::Instant lookedAt);

    /// Some names of a folder as they were found; nothing: there is none. Ignored when the folder
    /// is not held.
    struct Found {
        std::string name;
        std::optional<ports::SurveyedEntry> entry;
    };
    Differences replaceEntries(std::string_view folder, std::vector<Found> found,
                               base::Instant lookedAt);

    /// The folder is gone, with all below it; its own entry in the folder above is not touched.
    Differences removeFolder(std::string_view folder);

    std::size_t files() const;  ///< those reported as notes

private:
    enum class Role : std::uint8_t { note, folder, placeholder, copyOnly };

    struct Entry {
        std::string name;
        std::uint64_t inode;
        std::uint64_t size;
        base::Instant modified;
        base::Instant changed;
        Role role;
        bool mayBeCopy;
        bool isEmptied;  ///< by a sync client
        bool isFresh;    ///< may have been changed once more without another date
        bool isCopy = false;
        bool hasConflicts = false;
        bool isReported = false;

        bool isFolder() const { return role == Role::folder; }
        bool isPlaceholder() const;
        bool hasDateOf(const Entry& other) const;
        bool hasStampOf(const Entry& other) const;
    };
    using Entries = std::vector<Entry>;  // by name

    struct Folder {
        Entries entries;
        bool mayHoldCopies = false;
    };

    // A folder stands before all below it, and these before all else.
    struct ByPath {
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const;
    };

    /// One comparison of a folder.
    struct Comparison {
        std::string_view folder;
        Differences differences;
        std::vector<std::string> goneFolders;
    };

    static std::optional<Entry> entryOf(std::string_view folder, ports::SurveyedEntry&& found,
                                        base::Instant lookedAt);
    static Entries::iterator placeOf(Entries& entries, std::string_view name);
    static void setAside(Folder& folder);
    static void settle(Entry& entry);
    static void put(Entries& entries, const std::string& name, std::optional<Entry> entry);

    bool isReachable(std::string_view folder) const;
    Differences exchange(std::string_view name, Folder& folder, Entries&& next);
    void compareAll(Comparison& comparison, const Entries& before, Entries& after) const;
    void compare(Comparison& comparison, const Entry* before, Entry* after) const;
    void compareNotes(Comparison& comparison, const Entry* before, const Entry* after) const;
    void comparePlaceholders(Comparison& comparison, const Entry* before, const Entry* after) const;
    Differences finished(Comparison&& comparison);
    store::CloudNote noteOf(std::string_view folder, const Entry& entry,
                            store::UpdateType update) const;
    std::string urlOf(std::string_view folder, const Entry& entry) const;

    std::string _root;
    std::map<std::string, Folder, ByPath> _folders;
};

}  // namespace tessaly::sync
