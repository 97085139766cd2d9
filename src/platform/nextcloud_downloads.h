// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "ports/cloud_downloads.h"

namespace tessaly::platform {

/// Asks Nextcloud's or ownCloud's client through the socket that it keeps for file managers. Each
/// operation connects anew, to the first client that answers for the file.
class NextcloudDownloads : public ports::CloudDownloads {
public:
    /// The sockets to try. Each client has `patience` for an operation.
    explicit NextcloudDownloads(std::vector<std::string> sockets,
                                std::chrono::milliseconds patience = std::chrono::seconds(1));

    /// The sockets below the user's runtime folder; empty: there is no such folder, nor a client.
    static std::vector<std::string> socketsIn(const std::string& runtimeFolder);

    /// Failure `other`: there are clients, but the file is in no folder of theirs.
    base::Result<ports::DownloadState> state(const std::string& file) override;

    /// Done: the client knows the file, and has answered to what it was asked behind the request.
    base::Result<base::Done> request(const std::string& file) override;

private:
    base::Result<std::string> ask(std::string_view commands, const std::string& file) const;

    std::vector<std::string> _sockets;
    std::chrono::milliseconds _patience;
};

}  // namespace tessaly::platform
