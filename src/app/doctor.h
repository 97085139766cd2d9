// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/services.h"
#include "store/note_reader.h"

namespace tessaly::app {

/// One thing that was looked at.
struct Finding {
    enum class Level { fine, note, warning };
    Level level = Level::fine;
    std::string what;  ///< a short stable word for programs: "dataFolder", "notUtf8", "stray"
    std::string text;  ///< for the user; it does not repeat the path
    /// What it is about, of a note relative to the data folder, a line of it behind ":"; may be
    /// empty.
    std::string path;
    std::vector<std::string> command = {};  ///< words of the command that acts on it; may be none
};

/// Where everything lies, what is missing, unreadable or doubtful: the data folder and how it was
/// chosen, who keeps it in step, folders that may become the cloud drive, settings that cannot be
/// read, numbers of notes, files that are not UTF-8, stray calendar files and others that name no
/// day, conflict copies, temporary files that were left behind, names that are not UTF-8, files and
/// links passed over and why, links back to days that lead nowhere, what keeps the watcher from
/// hearing of changes, the start-up index, the steps of start-up that have no meaning here. Of each
/// kind the first twenty and how many more there are. Reads; changes nothing.
std::vector<Finding> examine(Services& services, store::NoteReader::Options options = {});

}  // namespace tessaly::app
