// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <mutex>
#include <string>

#include "store/cloud_note.h"

namespace tessaly::tests {

/// What somebody knows of the data folder who has only heard the batches.
class ToldNotes {
public:
    void hear(const store::CloudBatch& batch) {
        const std::scoped_lock lock(_mutex);
        if (batch.notes.empty() && batch.kind != store::CloudBatch::Kind::all) {
            _contradictions += "\nan empty batch";
        }
        for (const store::CloudNote& note : batch.notes) {
            hear(note, batch.kind != store::CloudBatch::Kind::later);
        }
    }

    void forget() {
        const std::scoped_lock lock(_mutex);
        _notes.clear();
    }

    bool knows(const std::string& url) const {
        const std::scoped_lock lock(_mutex);
        return _notes.contains(url);
    }

    /// What was told against what had been told before.
    std::string contradictions() const {
        const std::scoped_lock lock(_mutex);
        return _contradictions;
    }

    /// Paths of the general notes, and folders of them, that there are; folders end in "/".
    std::map<std::string, std::string> generalNotes() const {
        const std::scoped_lock lock(_mutex);
        std::map<std::string, std::string> paths;
        for (const auto& [url, note] : _notes) {
            if (note.base == base::NoteType::note) {
                paths[url + (note.isFolder ? "/" : "")];
            }
        }
        return paths;
    }

private:
    // The first batches tell some notes twice.
    void hear(const store::CloudNote& note, bool isFirst) {
        const bool isKnown = _notes.contains(note.url);
        const bool isAdded = note.update == store::UpdateType::added;
        if (isAdded == isKnown && !isFirst) {
            _contradictions += "\n" + note.url + (isKnown ? " added again" : " not known");
        }
        if (note.update == store::UpdateType::deleted) {
            _notes.erase(note.url);
        } else {
            _notes[note.url] = note;
        }
    }

    mutable std::mutex _mutex;  ///< guards what follows
    std::map<std::string, store::CloudNote> _notes;
    std::string _contradictions;
};

}  // namespace tessaly::tests
