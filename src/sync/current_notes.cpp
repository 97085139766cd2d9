// SPDX-License-Identifier: MIT
#include "sync/current_notes.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

#include "store/entry_role.h"
#include "store/notes_by_name.h"
#include "store/paths.h"
#include "sync/append.h"

namespace tessaly::sync {
namespace {

using store::EntryRole;
using store::UpdateType;
using namespace std::chrono_literals;

// Dates of files are those of the last tick, which may be 10 ms ago; a look at many takes a while.
constexpr auto tick = 20ms;
constexpr auto longLook = 2s;

// The folder that is called like a kind, of which the rest of a path is below.
std::string_view kindOf(std::string_view folder) {
    return folder.substr(0, folder.find('/'));
}

}  // namespace

void CurrentNotes::Differences::add(Differences&& more) {
    append(notes, std::move(more.notes));
    append(newFolders, std::move(more.newFolders));
    append(placeholders, std::move(more.placeholders));
    append(placeholdersGone, std::move(more.placeholdersGone));
    append(doubtful, std::move(more.doubtful));
}

bool CurrentNotes::ByPath::operator()(std::string_view a, std::string_view b) const {
    const auto rank = [](char c) { return c == '/' ? '\0' : c; };
    return std::lexicographical_compare(
        a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) {
            return static_cast<unsigned char>(rank(x)) < static_cast<unsigned char>(rank(y));
        });
}

void CurrentNotes::reset(std::string root) {
    _root = std::move(root);
    _folders.clear();
}

CurrentNotes::Differences CurrentNotes::replaceFolder(std::string_view folder,
                                                      std::vector<ports::SurveyedEntry> entries,
                                                      base::Instant lookedAt) {
    if (!isReachable(folder)) {
        return {};
    }
    Entries next;
    next.reserve(entries.size());
    for (ports::SurveyedEntry& found : entries) {
        if (auto entry = entryOf(folder, std::move(found), lookedAt)) {
            next.push_back(*std::move(entry));
        }
    }
    const auto byName = [](const Entry& a, const Entry& b) { return a.name < b.name; };
    if (!std::is_sorted(next.begin(), next.end(), byName)) {
        std::sort(next.begin(), next.end(), byName);
    }
    return exchange(folder, _folders[std::string(folder)], std::move(next));
}

CurrentNotes::Differences CurrentNotes::replaceEntries(std::string_view folder,
                                                       std::vector<Found> found,
                                                       base::Instant lookedAt) {
    const auto held = _folders.find(folder);
    if (held == _folders.end()) {
        return {};
    }
    Entries& entries = held->second.entries;
    std::vector<std::optional<Entry>> next;
    bool mayHoldCopies = held->second.mayHoldCopies;
    for (Found& one : found) {
        next.push_back(one.entry ? entryOf(folder, *std::move(one.entry), lookedAt) : std::nullopt);
        mayHoldCopies |= next.back() && next.back()->mayBeCopy;
    }
    if (mayHoldCopies) {
        // One name may make notes of others, or copies: the whole folder is settled anew.
        Entries all = entries;
        for (std::size_t i = 0; i < found.size(); ++i) {
            put(all, found[i].name, std::move(next[i]));
        }
        return exchange(folder, held->second, std::move(all));
    }
    Comparison comparison{folder, {}, {}};
    for (std::size_t i = 0; i < found.size(); ++i) {
        const auto place = placeOf(entries, found[i].name);
        const bool isHeld = place != entries.end() && place->name == found[i].name;
        if (next[i]) {
            settle(*next[i]);
        }
        compare(comparison, isHeld ? &*place : nullptr, next[i] ? &*next[i] : nullptr);
        put(entries, found[i].name, std::move(next[i]));
    }
    return finished(std::move(comparison));
}

CurrentNotes::Differences CurrentNotes::removeFolder(std::string_view folder) {
    Differences differences;
    const auto first = _folders.lower_bound(folder);
    auto last = first;
    for (; last != _folders.end() && store::isInside(last->first, folder); ++last) {
        for (const Entry& entry : last->second.entries) {
            if (entry.isReported) {
                differences.notes.push_back(noteOf(last->first, entry, UpdateType::deleted));
            }
            if (entry.isPlaceholder()) {
                differences.placeholdersGone.push_back(urlOf(last->first, entry));
            }
        }
    }
    _folders.erase(first, last);
    return differences;
}

std::size_t CurrentNotes::files() const {
    std::size_t count = 0;
    for (const auto& [name, folder] : _folders) {
        count += static_cast<std::size_t>(std::count_if(
            folder.entries.begin(), folder.entries.end(),
            [](const Entry& entry) { return entry.isReported && !entry.isFolder(); }));
    }
    return count;
}

std::optional<CurrentNotes::Entry> CurrentNotes::entryOf(std::string_view folder,
                                                         ports::SurveyedEntry&& found,
                                                         base::Instant lookedAt) {
    const EntryRole known = store::entryRoleIn(folder, found);
    const bool mayBeCopy = store::mayBeConflictCopy(found);
    Role role = Role::copyOnly;
    if (known == EntryRole::note) {
        role = Role::note;
    } else if (known == EntryRole::folder) {
        role = Role::folder;
    } else if (known == EntryRole::placeholder) {
        role = Role::placeholder;
    } else if (!mayBeCopy) {
        return std::nullopt;
    }
    const ports::FileStamp& stamp = found.stamp;
    const bool isFresh = stamp.changed > lookedAt - tick && stamp.changed < lookedAt + longLook;
    return Entry{std::move(found.name),
                 stamp.inode,
                 stamp.size,
                 stamp.modified,
                 stamp.changed,
                 role,
                 mayBeCopy,
                 found.isPlaceholder,
                 isFresh};
}

CurrentNotes::Entries::iterator CurrentNotes::placeOf(Entries& entries, std::string_view name) {
    return std::lower_bound(entries.begin(), entries.end(), name,
                            [](const Entry& entry, std::string_view n) { return entry.name < n; });
}

// Finds out which entries are conflict copies, and of which notes.
void CurrentNotes::setAside(Folder& folder) {
    const auto mayBeCopy = [](const Entry& entry) { return entry.mayBeCopy; };
    Entries& entries = folder.entries;
    for (Entry& entry : entries) {
        entry.isCopy = entry.hasConflicts = false;
    }
    folder.mayHoldCopies = std::any_of(entries.begin(), entries.end(), mayBeCopy);
    if (folder.mayHoldCopies) {
        store::NotesByName notes;
        for (const Entry& entry : entries) {
            if (entry.role == Role::note) {
                notes.add(entry.name);
            }
        }
        for (Entry& entry : entries) {
            const auto copy = entry.mayBeCopy ? notes.conflictCopy(entry.name) : std::nullopt;
            if (copy) {
                entry.isCopy = true;
                placeOf(entries, copy->original)->hasConflicts = true;
            }
        }
    }
    std::for_each(entries.begin(), entries.end(), settle);
}

void CurrentNotes::settle(Entry& entry) {
    entry.isReported =
        entry.isFolder() || (entry.role == Role::note && !entry.isCopy && !entry.isEmptied);
}

void CurrentNotes::put(Entries& entries, const std::string& name, std::optional<Entry> entry) {
    const auto place = placeOf(entries, name);
    const bool isHeld = place != entries.end() && place->name == name;
    if (isHeld && entry) {
        *place = *std::move(entry);
    } else if (isHeld) {
        entries.erase(place);
    } else if (entry) {
        entries.insert(place, *std::move(entry));
    }
}

bool CurrentNotes::isReachable(std::string_view folder) const {
    if (kindOf(folder) == folder) {
        return true;
    }
    const auto above = _folders.find(store::parentOf(folder));
    if (above == _folders.end()) {
        return false;
    }
    const Entries& entries = above->second.entries;
    const std::string_view name = store::lastComponent(folder);
    const auto place =
        std::lower_bound(entries.begin(), entries.end(), name,
                         [](const Entry& entry, std::string_view n) { return entry.name < n; });
    return place != entries.end() && place->name == name && place->isFolder();
}

CurrentNotes::Differences CurrentNotes::exchange(std::string_view name, Folder& folder,
                                                 Entries&& next) {
    const Entries before = std::exchange(folder.entries, std::move(next));
    setAside(folder);
    Comparison comparison{name, {}, {}};
    compareAll(comparison, before, folder.entries);
    return finished(std::move(comparison));
}

}  // namespace tessaly::sync
