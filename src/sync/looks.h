// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/note_type.h"
#include "ports/metadata_query.h"

namespace tessaly::sync {

/// The kinds whose folders are watched, in the order in which they are looked at.
inline constexpr std::array watchedKinds{base::NoteType::note, base::NoteType::calendar,
                                         base::NoteType::trash, base::NoteType::filters};

/// Whether a path relative to the root is one that a change can matter of: a kind's folder, or what
/// lies below it and is neither hidden nor a temporary or backup file.
bool isWatched(std::string_view path, bool isFolder);

/// What of a data folder is to be looked at; paths are relative to the root.
class Looks {
public:
    void addHint(const ports::PossibleChange& hint);
    /// A folder with all below it; empty: the whole data folder.
    void addTree(std::string folder);

    bool isEverything() const { return _isEverything; }
    bool isEmpty() const { return _names.empty() && _trees.empty(); }

    /// Folders to be looked at with all below them. None lies in another.
    std::vector<std::string> trees() const;
    /// Single names by their folders, of which none lies in a tree.
    std::map<std::string, std::set<std::string>> names() const;

private:
    bool isInTree(std::string_view folder) const;

    bool _isEverything = false;
    std::set<std::string> _trees;
    std::map<std::string, std::set<std::string>> _names;
};

}  // namespace tessaly::sync
