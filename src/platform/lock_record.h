// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/failure.h"

namespace tessaly::platform {

/// What a lock file holds: the identity of the machine's run and the paths of the folders in which
/// changes have begun, each ended by a NUL. Without a path, all have ended. A file that does not
/// begin with the present run is new, from before a restart, or was torn: then temporary files may
/// lie anywhere in the locked folder. So a new file is empty, and needs no name of its own before
/// that.
class LockRecord {
public:
    /// Reads an open lock file; `folder` is the locked one, resolved.
    static base::Result<LockRecord> read(int fd, std::string folder);

    /// Folders to be looked through.
    const std::vector<std::string>& unfinished() const { return _unfinished; }

    /// Adds a folder unless the file names it. Needs the file open for writing at its end.
    base::Result<base::Done> add(int fd, const std::string& folder);

    /// Leaves the present run alone in the file. Where that fails, all is looked through again.
    void clear(int fd);

    /// Whether changes have begun and not ended: not so for a file that is of an earlier run, and
    /// names none, since nobody has died in it.
    bool isUnfinished() const { return _isEmpty || _isTorn || !_named.empty(); }

private:
    LockRecord() = default;

    std::string _folder;
    std::vector<std::string> _unfinished;
    std::vector<std::string> _named;  ///< in the file
    bool _isEmpty = true;             ///< the file
    bool _isPresent = false;          ///< the file begins with the present run
    bool _isTorn = false;             ///< its last path may have no end
};

}  // namespace tessaly::platform
