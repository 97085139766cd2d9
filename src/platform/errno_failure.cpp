// SPDX-License-Identifier: MIT
#include "platform/errno_failure.h"

#include <array>
#include <cerrno>
#include <system_error>

#include <fmt/format.h>

namespace tessaly::platform {

using FailureKind = base::Failure::Kind;

namespace {

struct ErrnoRow {
    int error;
    FailureKind kind;
};

constexpr std::array<ErrnoRow, 14> errnoRows{{
    {ENOENT, FailureKind::notFound},
    {ENOTDIR, FailureKind::notAFile},
    {EEXIST, FailureKind::exists},
    {EACCES, FailureKind::denied},
    {EPERM, FailureKind::denied},
    {EROFS, FailureKind::denied},
    {EISDIR, FailureKind::notAFile},
    {ENXIO, FailureKind::notAFile},
    {ELOOP, FailureKind::notAFile},
    {EFBIG, FailureKind::tooLarge},
    {ENOSPC, FailureKind::noSpace},
    {EDQUOT, FailureKind::noSpace},
    {EAGAIN, FailureKind::unavailable},
    {ETIMEDOUT, FailureKind::unavailable},
}};

FailureKind kindOf(int error) {
    for (const ErrnoRow& row : errnoRows) {
        if (row.error == error) {
            return row.kind;
        }
    }
    return FailureKind::other;
}

}  // namespace

base::Failure errnoFailure(int error, std::string_view path) {
    return errnoFailure(error, path, kindOf(error));
}

base::Failure errnoFailure(int error, std::string_view path, FailureKind kind) {
    return {kind, fmt::format("{}: {}", path, std::generic_category().message(error))};
}

}  // namespace tessaly::platform
