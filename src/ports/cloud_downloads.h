// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/failure.h"

namespace tessaly::ports {

/// What a sync client says of a file that it has not brought to this machine.
struct DownloadState {
    enum class Kind { waiting, downloading, here, failed };
    Kind kind = Kind::waiting;
    std::string error;  ///< the client's words, of a failed one
};

/// Asks the sync client to bring files. Paths are absolute, of the placeholder. Any thread; waits
/// for the client's answer, at most a second or two. Logs nothing.
class CloudDownloads {
public:
    virtual ~CloudDownloads() = default;

    /// Failure `unavailable`: there is no client to ask.
    virtual base::Result<DownloadState> state(const std::string& file) = 0;

    /// Done: the client has taken the request, and will put the file in the placeholder's place
    /// some time. Failure `unavailable`: there is no client to ask; others: it does not take the
    /// request.
    virtual base::Result<base::Done> request(const std::string& file) = 0;
};

}  // namespace tessaly::ports
