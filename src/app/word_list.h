// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "base/failure.h"
#include "ports/file_changes.h"
#include "ports/file_system.h"

namespace tessaly::app {

/// A user's own words in a file of plain UTF-8, one a line, for people to edit too. Any thread;
/// blocks for the disk.
class WordList {
public:
    /// `file`: an absolute path, which need not exist.
    WordList(ports::FileSystem& files, ports::FileChanges& changes, std::string file);

    /// As they stand; empty also where the file cannot be read.
    std::vector<std::string> words() const;
    /// Adds a word at the end, unless it is there, leaving all else as it is.
    base::Result<base::Done> add(const std::string& word) const;

private:
    base::Result<base::Done> tryToAdd(const std::string& word) const;

    ports::FileSystem& _files;
    ports::FileChanges& _changes;
    const std::string _file;
};

}  // namespace tessaly::app
