// SPDX-License-Identifier: MIT
#include "platform/file_failures.h"

#include <cerrno>

#include <fmt/format.h>

#include "base/localisation.h"
#include "platform/errno_failure.h"

namespace tessaly::platform {

using base::Failure;

Failure changedFailure(const std::string& path) {
    return {Failure::Kind::changed,
            fmt::format("{}: {}", path, base::tr("another program has changed it"))};
}

Failure busyFailure(const std::string& path) {
    return {Failure::Kind::unavailable,
            fmt::format("{}: {}", path, base::tr("another program is writing it"))};
}

Failure notAFileFailure(const std::string& path) {
    return {Failure::Kind::notAFile, fmt::format("{}: {}", path, base::tr("not a regular file"))};
}

bool holdsNul(const std::string& path) {
    return path.find('\0') != std::string::npos;
}

Failure nulFailure(const std::string& path) {
    return errnoFailure(EINVAL, path.c_str(), Failure::Kind::malformed);
}

base::Result<base::Done> resultOf(int error, const std::string& path) {
    return error == 0 ? base::Result<base::Done>(base::Done{}) : errnoFailure(error, path);
}

}  // namespace tessaly::platform
