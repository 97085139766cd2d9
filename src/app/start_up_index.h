// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "base/failure.h"
#include "store/note_index.h"

namespace tessaly::app {

class Services;

/// Where the start-up index of the data folder in use belongs, and whether there should be one.
struct IndexPlace {
    store::NoteIndex::Key key;
    std::string file;
    std::string whyNot;  ///< why none is wanted, in words for the user; empty: one is
};
/// Failure: the data folder cannot be reached. Any thread.
base::Result<IndexPlace> indexPlace(Services& services);

/// The start-up index of the data folder in use, opened when it is first asked for, and again when
/// another folder is in use or lines are read by other markers. Any thread.
class StartUpIndex {
public:
    /// `services` outlives this object; its settings are made already.
    explicit StartUpIndex(Services& services) : _services(services) {}

    /// Null: there is none, or none is wanted. One that is not wanted or cannot be used is removed,
    /// the latter with a log line: "start-up index thrown away: " and why.
    std::shared_ptr<const store::NoteIndex> get();

    /// Lets it go; the next one to ask opens what lies there then.
    void forget();

private:
    std::shared_ptr<const store::NoteIndex> open(const IndexPlace& place);

    Services& _services;
    std::mutex _mutex;  ///< guards what follows
    store::NoteIndex::Key _key;
    std::shared_ptr<const store::NoteIndex> _index;
};

}  // namespace tessaly::app
