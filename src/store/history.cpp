// SPDX-License-Identifier: MIT
#include "store/history.h"

#include <algorithm>
#include <chrono>

#include "base/localisation.h"
#include "base/sha256.h"
#include "base/temporary_name.h"
#include "store/history_index.h"
#include "store/history_pruning.h"
#include "store/paths.h"

namespace tessaly::store {

using base::Done;
using base::Failure;
using base::Result;
using ports::Durability;
using ports::FileContents;

namespace {

// After this time the kernel has written what was left to it.
constexpr std::chrono::seconds kernelDelay{60};
constexpr std::size_t shortestPrefix = 4;

bool hasBytesOf(const HistoryEntry& entry, const HistoryEntry& other) {
    return entry.hash == other.hash && entry.bytes == other.bytes;
}

std::vector<HistoryEntry> newestFirst(std::string_view index) {
    std::vector<HistoryEntry> entries;
    for (IndexLine& line : standingLines(index)) {
        if (line.entry) {
            entries.push_back(*std::move(line.entry));
        }
    }
    std::reverse(entries.begin(), entries.end());
    return entries;
}

// Prefixes are copied from lists, and by some in capitals.
std::optional<std::string> prefixOfHash(std::string_view text) {
    std::string prefix(text);
    for (char& c : prefix) {
        c = c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    const bool isHex = prefix.find_first_not_of("0123456789abcdef") == prefix.npos;
    return isHex && prefix.size() >= shortestPrefix ? std::optional(std::move(prefix))
                                                    : std::nullopt;
}

}  // namespace

Result<FileContents> History::readIndex() const {
    auto index = _tools.files.read(indexFile());
    if (!index && index.failure().kind == Failure::Kind::notFound) {
        return FileContents{};
    }
    return index;
}

HistoryEntry History::entryOf(const std::string& file, std::string_view bytes,
                              ChangeCause cause) const {
    return {_tools.clock.now(), cause, base::sha256(bytes), bytes.size(), file};
}

Result<Done> History::keepOld(const std::string& file, std::string_view bytes, ChangeCause cause) {
    const auto lock = _tools.locks.take(_folder);
    if (!lock) {
        return lock.failure();
    }
    const std::scoped_lock ours(_mutex);
    if (auto known = _index.refresh(); !known) {
        return known;
    }
    const HistoryEntry entry = entryOf(file, bytes, cause);
    const auto newest = newestOf(_index.bytes(), file, 1);
    const bool isKept =
        cause != ChangeCause::trashed && !newest.empty() && hasBytesOf(newest.front(), entry) &&
        // An entry near its end would go soon after the text that it is to save.
        entry.time - newest.front().time < _limits.age / 2 && _texts.holds(entry.hash, bytes);
    if (isKept && entry.time - newest.front().time >= kernelDelay) {
        return Done{};
    }
    auto kept = isKept ? sync(entry) : add(entry, bytes, Durability::now);
    if (kept) {
        removeThinned();
    }
    return kept;
}

Result<Done> History::sync(const HistoryEntry& entry) {
    auto synced = _texts.sync(entry.hash);
    return synced ? _tools.changes.sync(indexFile()) : synced;
}

// Not before the index is on the disk: a power cut that took the last line would bring back what
// that line has thinned out.
void History::removeThinned() {
    for (const std::string& hash : _index.takeThinned()) {
        // What cannot be removed now is found by the next pruning.
        [[maybe_unused]] const auto ignored = _texts.remove(hash);
    }
}

Result<Done> History::keepNew(const std::string& file, std::string_view bytes, ChangeCause cause) {
    const auto lock = _tools.locks.take(_folder);
    if (!lock) {
        return lock.failure();
    }
    const std::scoped_lock ours(_mutex);
    auto known = _index.refresh();
    return known ? add(entryOf(file, bytes, cause), bytes, Durability::later) : known;
}

Result<Done> History::keepHeld(const std::string& file, std::string_view bytes,
                               base::Instant until) {
    const auto lock = _tools.locks.take(_folder);
    if (!lock) {
        return lock.failure();
    }
    const std::scoped_lock ours(_mutex);
    if (auto known = _index.refresh(); !known) {
        return known;
    }
    HistoryEntry entry = entryOf(file, bytes, ChangeCause::held);
    entry.time = std::min(entry.time, until);
    const auto entries = newestOf(_index.bytes(), file, _index.bytes().size());
    const bool isKept = std::any_of(entries.begin(), entries.end(), [&](const HistoryEntry& kept) {
        return hasBytesOf(kept, entry);
    });
    return isKept && _texts.holds(entry.hash, bytes) ? Done{}
                                                     : add(entry, bytes, Durability::later);
}

// The text comes first, so that no entry is without one.
Result<Done> History::add(const HistoryEntry& entry, std::string_view bytes,
                          Durability durability) {
    const auto put = _texts.put(entry.hash, bytes, durability);
    if (!put) {
        return put.failure();
    }
    const bool isDue = _index.isPruningDue(entry, _limits);
    auto appended = _index.append(entry, *put, durability);
    if (appended && isDue) {
        prune(entry);
    }
    return appended;
}

void History::prune(const HistoryEntry& newest) {
    const auto index = readIndex();
    if (!index) {
        return;
    }
    // The clock may be ahead, be it by mistake or for a trial: the disk's dates are another
    // witness.
    const base::Instant now = std::min(newest.time, index->stamp.modified);
    const std::string left = pruned(index->bytes, _limits, now, newest.path);
    if (left == index->bytes || _tools.changes.replace(indexFile(), *index, left)) {
        _index.pruned();
        // What cannot be removed now is found again by the next pruning.
        [[maybe_unused]] const auto ignored = removeUnnamed(left);
    }
}

Result<Done> History::removeUnnamed(std::string_view index) {
    if (auto kept = _texts.keepOnly(hashesIn(index)); !kept) {
        return kept;
    }
    const auto names = _tools.files.list(_folder);
    if (!names) {
        return names.failure().kind == Failure::Kind::notFound ? Result<Done>(Done{})
                                                               : names.failure();
    }
    for (const ports::FolderEntry& entry : *names) {
        if (!base::nameOfTemporary(entry.name)) {
            continue;
        }
        if (auto removed = _tools.changes.remove(joined(_folder, entry.name)); !removed) {
            return removed;
        }
    }
    return Done{};
}

Result<std::vector<HistoryEntry>> History::entries(const std::optional<std::string>& file) const {
    const auto index = readIndex();
    if (!index) {
        return index.failure();
    }
    return file ? newestOf(index->bytes, *file, index->bytes.size()) : newestFirst(index->bytes);
}

Result<HistoryEntry> History::find(std::string_view prefix) const {
    const auto wanted = prefixOfHash(prefix);
    if (!wanted) {
        return Failure{Failure::Kind::malformed,
                       std::string(prefix) + ": " +
                           base::tr("is not the beginning of a text's hash (four digits or more)")};
    }
    const auto all = entries();
    if (!all) {
        return all.failure();
    }
    const HistoryEntry* found = nullptr;
    for (const HistoryEntry& entry : *all) {
        if (!entry.hash.starts_with(*wanted)) {
            continue;
        }
        if (found != nullptr && found->hash != entry.hash) {
            return Failure{
                Failure::Kind::malformed,
                std::string(prefix) + ": " + base::tr("several texts begin so; give more digits")};
        }
        found = found == nullptr ? &entry : found;
    }
    if (found == nullptr) {
        return Failure{Failure::Kind::notFound,
                       std::string(prefix) + ": " + base::tr("there is no such text")};
    }
    return *found;
}

Result<std::string> History::text(const HistoryEntry& entry) const {
    return _texts.read(entry.hash);
}

Result<std::size_t> History::clear(const std::optional<std::string>& file) {
    const auto lock = _tools.locks.take(_folder);
    if (!lock) {
        return lock.failure();
    }
    const std::scoped_lock ours(_mutex);
    const auto index = readIndex();
    if (!index) {
        return index.failure();
    }
    std::string left;
    std::size_t gone = 0;
    for (const IndexLine& line : standingLines(index->bytes)) {
        const bool goes = !file || (line.entry && line.entry->path == *file);
        gone += line.entry && goes ? 1 : 0;
        left += goes ? "" : line.text;
    }
    if (left != index->bytes) {
        _index.pruned();
        if (const auto done = _tools.changes.replace(indexFile(), *index, left); !done) {
            return done.failure();
        }
    }
    if (const auto removed = removeUnnamed(left); !removed) {
        return removed.failure();
    }
    return gone;
}

}  // namespace tessaly::store
