// SPDX-License-Identifier: MIT
#pragma once

#include "ports/cache_files.h"

namespace tessaly::platform {

/// Files below the user's cache folder, on any file system.
class PosixCacheFiles final : public ports::CacheFiles {
public:
    base::Result<std::shared_ptr<const ports::MappedFile>> map(const std::string& file) override;
    base::Result<std::unique_ptr<ports::NewCacheFile>> create(const std::string& file) override;
    base::Result<base::Done> remove(const std::string& file) override;
};

}  // namespace tessaly::platform
