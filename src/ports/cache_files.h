// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/failure.h"

namespace tessaly::ports {

/// A file as it lies in memory for reading. It keeps its bytes when its name goes or gets another
/// file. Any thread.
class MappedFile {
public:
    virtual ~MappedFile() = default;

    /// Valid as long as this object.
    virtual std::string_view bytes() const = 0;

    /// Tells that this part of `bytes` is not looked at again soon, so that it does not count as
    /// this process's memory. It may be looked at all the same. Does nothing where the system
    /// offers nothing of the kind.
    virtual void forget(std::string_view part) const = 0;
};

/// A file that is being written under a name of its own. It goes with this object unless it was
/// put in place. One thread at a time.
class NewCacheFile {
public:
    virtual ~NewCacheFile() = default;

    /// Adds bytes at the end. Failure: it can no longer be put in place.
    virtual base::Result<base::Done> write(std::string_view bytes) = 0;

    /// Gives the file its name, in one step, taking the place of what had it: whoever opens that
    /// name finds the old file or the whole new one. Nothing is waited for to reach the disk, so
    /// that a power cut may leave any bytes: who reads it has to check them.
    virtual base::Result<base::Done> putInPlace() = 0;
};

/// Files that may be deleted at any time and can be made again, readable by their owner alone.
/// Paths are absolute. Any thread; logs nothing.
class CacheFiles {
public:
    virtual ~CacheFiles() = default;

    /// Failure `notFound`: there is none; `malformed`: it is empty; `notAFile`.
    virtual base::Result<std::shared_ptr<const MappedFile>> map(const std::string& file) = 0;

    /// Begins a file that will be called `file`, making its folder. Failure `exists`: somebody is
    /// writing it at this moment.
    virtual base::Result<std::unique_ptr<NewCacheFile>> create(const std::string& file) = 0;

    /// Removes a file. Failure `notFound`: there is none.
    virtual base::Result<base::Done> remove(const std::string& file) = 0;
};

}  // namespace tessaly::ports
