// SPDX-License-Identifier: MIT
#include "platform/telling_stamps.h"

#include <array>
#include <cerrno>

#include <sys/vfs.h>

#include "platform/blind_file_systems.h"
#include "platform/errno_failure.h"
#include "platform/file_descriptor.h"

namespace tessaly::platform {

using base::Failure;

namespace {

struct StampRow {
    unsigned long type;
    std::string_view name;
};

// Those of other systems have no inodes, coarse dates, or none of the last change of an inode. What
// eCryptfs encrypts lies in plain text nowhere else.
constexpr std::array<StampRow, 5> stampRows{{
    {0x4d44, "FAT"},
    {0x2011bab0, "exFAT"},
    {0x5346544e, "NTFS"},  // the old driver
    {0x7366746e, "NTFS"},  // ntfs3
    {0xf15f, "eCryptfs"},
}};

}  // namespace

std::string_view fileSystemWithoutStamps(unsigned long type) {
    for (const StampRow& row : stampRows) {
        if (row.type == type) {
            return row.name;
        }
    }
    return blindFileSystem(type);
}

base::Result<base::Done> tellingStamps(const std::string& folder) {
    struct statfs status;
    if (uninterrupted([&] { return ::statfs(folder.c_str(), &status); }) != 0) {
        return errnoFailure(errno, folder);
    }
    // The field is signed on some machines and 32 bits wide on others.
    const auto type = static_cast<unsigned long>(status.f_type) & 0xffffffffUL;
    const std::string_view name = fileSystemWithoutStamps(type);
    if (!name.empty()) {
        return Failure{Failure::Kind::unavailable, std::string{name}};
    }
    return base::Done{};
}

}  // namespace tessaly::platform
