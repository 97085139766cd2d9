// SPDX-License-Identifier: MIT
#include "platform/file_stamp.h"

#include <chrono>
#include <fcntl.h>

#include <sys/stat.h>

namespace tessaly::platform {

namespace {

base::Instant instantOfField(const statx_timestamp& time) {
    return base::Instant{std::chrono::seconds{time.tv_sec} +
                         std::chrono::nanoseconds{time.tv_nsec}};
}

}  // namespace

const unsigned stampFields = STATX_BASIC_STATS | STATX_BTIME;

ports::FileStamp stampOf(const struct statx& status) {
    const bool hasBirth = (status.stx_mask & STATX_BTIME) != 0;
    return {status.stx_ino, status.stx_size, instantOfField(status.stx_mtime),
            instantOfField(status.stx_ctime),
            instantOfField(hasBirth ? status.stx_btime : status.stx_mtime)};
}

}  // namespace tessaly::platform
