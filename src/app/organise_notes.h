// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "app/services.h"
#include "base/failure.h"

namespace tessaly::app {

/// What one does to general notes and their folders as files. All block for the disk; failures are
/// in words for the user and have changed nothing. File names and folders are relative to "Notes".
/// Names are made as those of new notes are, and collide where a file system that ignores case or
/// composition would not keep them apart. The cache is told at once.

/// Gives a note another title: its first line becomes that (a heading stays one; above a list, a
/// quotation or a tag it is put as a heading), and its file the name that goes with it, made
/// unique. The extension stays. Returns the new file name.
base::Result<std::string> renameNote(Services& services, const std::string& filename,
                                     std::string_view title);
/// Moves a note into a folder (empty: the topmost), which is made if need be, under its name, made
/// unique there. Returns the new file name; the old one when it is there already.
base::Result<std::string> moveNote(Services& services, const std::string& filename,
                                   std::string_view folder);
/// Makes a folder within another and returns it; `exists`: there is something of that name.
base::Result<std::string> newFolder(Services& services, std::string_view parent,
                                    std::string_view name);
/// `exists`, as above. Both return the new folder.
base::Result<std::string> renameFolder(Services& services, const std::string& folder,
                                       std::string_view name);
base::Result<std::string> moveFolder(Services& services, const std::string& folder,
                                     std::string_view parent);
/// Moves a folder with all that lies in it to the desktop's trash. How many notes went. Of so many
/// as `mostKeptOfFolder` the texts are in the history, too. Without a trash only an empty folder
/// goes; `unavailable`: a sync client has not downloaded something in it.
base::Result<std::size_t> trashFolder(Services& services, const std::string& folder);
inline constexpr std::size_t mostKeptOfFolder = 200;

/// A note's text with another title, as `renameNote` has it.
std::string withTitle(std::string_view text, std::string_view title);

}  // namespace tessaly::app
