// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/failure.h"

namespace tessaly::ports {

/// The right to change a folder and all below it, held until this object goes. Of one thread at a
/// time.
class FolderLock {
public:
    virtual ~FolderLock() = default;

    /// Folders in which earlier holders died in the middle of a change, so that temporary files may
    /// lie there or below. For the first holder since the machine came up, the locked folder
    /// itself.
    virtual std::vector<std::string> unfinished() const = 0;

    /// Remembers, beyond the death of this process, that changes in `folder` have begun.
    virtual base::Result<base::Done> begin(const std::string& folder) = 0;

    /// Forgets all that was unfinished or begun: nothing of it is left over.
    virtual void finish() = 0;
};

/// Locks between all processes of this machine and all threads of each.
class FolderLocks {
public:
    virtual ~FolderLocks() = default;

    /// Waits up to ten seconds for the others. `folder` need not exist; two paths of one folder
    /// give one lock. Failure `unavailable`: it was not to be had in that time.
    virtual base::Result<std::unique_ptr<FolderLock>> take(const std::string& folder) = 0;

    /// Whether a holder died in the middle of a change and nobody has looked after it. Neither
    /// waits nor makes anything; no while another holds the lock.
    virtual bool isUnfinished(const std::string& folder) = 0;
};

}  // namespace tessaly::ports
