// SPDX-License-Identifier: MIT
#include "platform/placeholder.h"

#include <fmt/format.h>
#include <sys/xattr.h>

#include "base/localisation.h"

namespace tessaly::platform {

namespace {

constexpr const char* mark = "user.nextcloud.hydrate_exec";

}  // namespace

bool hasPlaceholderMark(int fd) {
    return ::fgetxattr(fd, mark, nullptr, 0) >= 0;
}

bool hasPlaceholderMark(const std::string& path) {
    return ::lgetxattr(path.c_str(), mark, nullptr, 0) >= 0;
}

base::Failure placeholderFailure(const std::string& path) {
    return {base::Failure::Kind::unavailable,
            fmt::format("{}: {}", path, base::tr("the sync program has not downloaded it yet"))};
}

}  // namespace tessaly::platform
