// SPDX-License-Identifier: MIT
#include "platform/errno_failure.h"

#include <array>
#include <cerrno>
#include <system_error>

#include <fmt/format.h>

namespace tessaly::platform {

using Kind = base::Failure::Kind;

namespace {

struct Row {
    int error;
    Kind kind;
};

constexpr std::array<Row, 14> rows{{
    {ENOENT, Kind::notFound},
    {ENOTDIR, Kind::notAFile},
    {EEXIST, Kind::exists},
    {EACCES, Kind::denied},
    {EPERM, Kind::denied},
    {EROFS, Kind::denied},
    {EISDIR, Kind::notAFile},
    {ENXIO, Kind::notAFile},
    {ELOOP, Kind::notAFile},
    {EFBIG, Kind::tooLarge},
    {ENOSPC, Kind::noSpace},
    {EDQUOT, Kind::noSpace},
    {EAGAIN, Kind::unavailable},
    {ETIMEDOUT, Kind::unavailable},
}};

Kind kindOf(int error) {
    for (const Row& row : rows) {
        if (row.error == error) {
            return row.kind;
        }
    }
    return Kind::other;
}

}  // namespace

base::Failure errnoFailure(int error, std::string_view path) {
    return errnoFailure(error, path, kindOf(error));
}

base::Failure errnoFailure(int error, std::string_view path, Kind kind) {
    return {kind, fmt::format("{}: {}", path, std::generic_category().message(error))};
}

}  // namespace tessaly::platform
