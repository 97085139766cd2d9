// SPDX-License-Identifier: MIT
#pragma once

#include "ports/file_changes.h"

namespace tessaly::platform {

/// Changes of the kernel's files. Stateless. Where the file system cannot exchange two names
/// (renameat2 with RENAME_EXCHANGE), a file is compared with what was read and then renamed over,
/// which leaves another writer a moment to be overwritten in. Where it knows leases (fcntl with
/// F_SETLEASE), other programs that have the file open for writing are noticed.
class PosixFileChanges : public ports::FileChanges {
public:
    base::Result<base::Done> makeFolders(const std::string& folder) override;
    base::Result<base::Done> create(const std::string& file, std::string_view bytes,
                                    ports::Readers readers = ports::Readers::byMask,
                                    ports::Durability durability = ports::Durability::now) override;
    base::Result<base::Done> replace(const std::string& file, const ports::FileContents& read,
                                     std::string_view bytes) override;
    base::Result<base::Done> append(const std::string& file, std::string_view bytes,
                                    ports::Durability durability) override;
    base::Result<base::Done> sync(const std::string& file) override;
    base::Result<base::Done> remove(const std::string& file,
                                    const ports::FileContents* read = nullptr) override;
    base::Result<base::Done> move(const std::string& from, const std::string& to) override;
    base::Result<base::Done> removeFolder(const std::string& folder) override;
};

}  // namespace tessaly::platform
