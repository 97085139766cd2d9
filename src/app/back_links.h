// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "app/doctor.h"
#include "base/day.h"
#include "grammar/line_scanner.h"
#include "store/note_reader.h"

namespace tessaly::app {

/// Gathers the links by which copies of scheduled tasks point back to the day that they come from,
/// and tells those that certainly lead nowhere: that day has no note, or its note holds no task.
/// Nothing else is certain, since copy and original may have been edited, completed or scheduled
/// further since. One thread; those of several threads are joined.
class BackLinks {
public:
    /// A note whose text cannot be read (`isKnown` false) may hold any task.
    void add(const store::NoteFile& file, bool isKnown, const grammar::MarkerSettings& markers);
    void join(BackLinks&& other);

    /// A note that was not read, and so may be there and hold any task; relative to the data
    /// folder.
    void addUnread(std::string_view path);

    std::vector<Finding> broken() const;

private:
    struct Link {
        std::chrono::sys_days to;
        std::string path;  ///< of the line
    };

    grammar::NoteScanner _scanner;
    std::vector<Link> _links;
    std::map<std::chrono::sys_days, bool> _days;  ///< those with notes: whether they hold tasks
};

}  // namespace tessaly::app
