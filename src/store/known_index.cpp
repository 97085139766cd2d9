// SPDX-License-Identifier: MIT
#include "store/known_index.h"

#include "store/history_index.h"
#include "store/history_thinning.h"
#include "store/paths.h"

namespace tessaly::store {

using base::Done;
using base::Failure;
using base::Result;

std::optional<ports::FileStamp> KnownIndex::stampOfFile() const {
    const auto found = _files.surveyNames(_folder, {&_name, 1});
    return found && found->front() ? std::optional(found->front()->stamp) : std::nullopt;
}

void KnownIndex::forget() {
    _bytes.clear();
    _stamp.reset();
    _ofDay.reset();
    _brought.clear();
    _thinned.clear();
}

void KnownIndex::pruned() {
    forget();
    _thinnedLines = 0;
}

Result<Done> KnownIndex::refresh() {
    if (_stamp && _stamp == stampOfFile()) {
        return Done{};
    }
    forget();
    auto read = _files.read(joined(_folder, _name));
    if (read) {
        _bytes = std::move(read->bytes);
        _stamp = read->stamp;
        return Done{};
    }
    return read.failure().kind == Failure::Kind::notFound ? Result<Done>(Done{}) : read.failure();
}

EntriesOfDay& KnownIndex::entriesOfDay(base::Instant time) {
    const auto day = std::chrono::floor<std::chrono::days>(time);
    if (!_ofDay || _ofDay->first != day) {
        _ofDay = {day, store::entriesOfDay(_bytes, time)};
    }
    return _ofDay->second;
}

bool KnownIndex::isPruningDue(const HistoryEntry& entry, const HistoryLimits& limits) {
    return _thinnedLines >= limits.thinnedLines ||
           store::isPruningDue(_bytes.size(), entriesOfDay(entry.time), entry, limits);
}

// A new entry decides on the last but one before it alone, and for good.
void KnownIndex::noteThinnedBy(const HistoryEntry& entry) {
    const auto newest = newestOf(_bytes, entry.path, 2);
    if (newest.size() < 2) {
        return;
    }
    ThinningOut thinningOut;
    thinningOut.spares(entry);
    thinningOut.spares(newest[0]);
    auto brought = _brought.extract(newest[1].hash);
    if (thinningOut.spares(newest[1])) {
        return;
    }
    ++_thinnedLines;
    if (brought) {
        _thinned.emplace_back(std::move(brought.key()), brought.mapped());
    }
}

Result<Done> KnownIndex::append(const HistoryEntry& entry, HistoryTexts::Put put,
                                ports::Durability durability) {
    const std::string line = std::string(endOfTornLine(_bytes)) + lineOf(entry);
    if (auto appended = _changes.append(joined(_folder, _name), line, durability); !appended) {
        forget();
        return appended;
    }
    EntriesOfDay& ofDay = entriesOfDay(entry.time);
    ofDay = {.hasEarlierDay = false, .bytes = ofDay.bytes + entry.bytes};
    if (entry.cause == ChangeCause::typed) {
        noteThinnedBy(entry);
    }
    _bytes += line;
    if (entry.cause == ChangeCause::typed && put == HistoryTexts::Put::isNew) {
        _brought.insert_or_assign(entry.hash, _bytes.size());
    }
    _stamp = stampOfFile();
    if (!_stamp || _stamp->size != _bytes.size()) {
        forget();
    }
    return Done{};
}

std::vector<std::string> KnownIndex::takeThinned() {
    std::vector<std::string> hashes;
    for (auto& [hash, end] : std::exchange(_thinned, {})) {
        if (_bytes.find(hash, end) == _bytes.npos) {
            hashes.push_back(std::move(hash));
        }
    }
    return hashes;
}

}  // namespace tessaly::store
