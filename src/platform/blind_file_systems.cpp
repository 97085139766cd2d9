// SPDX-License-Identifier: MIT
#include "platform/blind_file_systems.h"

#include <array>

#include <sys/vfs.h>

#include "platform/file_descriptor.h"

namespace tessaly::platform {

namespace {

struct BlindRow {
    unsigned long type;
    std::string_view name;
};

constexpr std::array<BlindRow, 15> blindRows{{
    {0x65735546, "FUSE"},
    {0x6969, "NFS"},
    {0xff534d42, "SMB"},  // cifs
    {0xfe534d42, "SMB"},  // smb2
    {0x517b, "SMB"},      // smbfs
    {0x01021997, "9P"},
    {0x5346414f, "AFS"},
    {0x6b414653, "AFS"},  // kafs
    {0x73757245, "Coda"},
    {0x00c36400, "Ceph"},
    {0x0bd00bd0, "Lustre"},
    {0x01161970, "GFS2"},
    {0x7461636f, "OCFS2"},
    {0x786f4256, "vboxsf"},
    {0xbacbacbc, "vmhgfs"},
}};

}  // namespace

std::string_view blindFileSystem(unsigned long type) {
    for (const BlindRow& row : blindRows) {
        if (row.type == type) {
            return row.name;
        }
    }
    return {};
}

std::string_view blindFileSystemOf(int folder) {
    struct statfs status;
    if (uninterrupted([&] { return ::fstatfs(folder, &status); }) != 0) {
        return {};
    }
    // The field is signed on some machines and 32 bits wide on others.
    return blindFileSystem(static_cast<unsigned long>(status.f_type) & 0xffffffffUL);
}

}  // namespace tessaly::platform
