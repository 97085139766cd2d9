// SPDX-License-Identifier: MIT
#include "platform/nextcloud_downloads.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include <fmt/format.h>
#include <sys/stat.h>

#include "base/localisation.h"
#include "platform/errno_failure.h"
#include "platform/line_socket.h"
#include "platform/placeholder.h"

namespace tessaly::platform {

using base::Done;
using base::Failure;
using ports::DownloadState;

namespace {

using StateKind = DownloadState::Kind;

constexpr std::string_view stateVerb = "RETRIEVE_FILE_STATUS:";
constexpr std::string_view requestVerb = "MAKE_AVAILABLE_LOCALLY:";
constexpr std::string_view answerVerb = "STATUS:";
/// Ends a command, and separates the files of one.
constexpr std::string_view separators("\n\r\x1e\0", 4);

struct StatusRow {
    std::string_view status;
    StateKind kind;
};

/// Whether somebody shares a file is told behind these, as "+SWM".
constexpr std::array<StatusRow, 4> statusRows{{
    {"OK", StateKind::here},
    {"SYNC", StateKind::downloading},
    {"IGNORE", StateKind::failed},
    {"ERROR", StateKind::failed},
}};
constexpr std::string_view unknownStatus = "NOP";

Failure failureOf(int error, const std::string& file) {
    return errnoFailure(error, file, Failure::Kind::unavailable);
}

std::optional<std::string> statusFor(std::string_view line, const std::string& file) {
    if (!line.starts_with(answerVerb)) {
        return std::nullopt;
    }
    line.remove_prefix(answerVerb.size());
    const std::size_t end = line.find(':');
    if (end == line.npos || line.substr(end + 1) != file) {
        return std::nullopt;
    }
    return std::string(line.substr(0, std::min(end, line.find('+'))));
}

/// What the client says of a file; the lines of folders and of other files that come before and in
/// between are passed over.
base::Result<std::string> statusOf(LineSocket& socket, const std::string& file) {
    while (const auto line = socket.receive()) {
        auto status = statusFor(*line, file);
        if (status && *status == unknownStatus) {
            return Failure{Failure::Kind::other,
                           file + ": " + base::tr("the sync program does not know it")};
        }
        if (status) {
            return *std::move(status);
        }
    }
    return failureOf(socket.error(), file);
}

/// In all forms it has one byte.
bool isPlaceholderThere(const std::string& file) {
    struct stat status;
    return ::lstat(file.c_str(), &status) == 0 && status.st_size <= placeholderSize;
}

DownloadState stateOf(const std::string& status, const std::string& file) {
    for (const StatusRow& row : statusRows) {
        // A placeholder that nobody has asked for is as it should be for the client.
        if (row.status == status && (row.kind != StateKind::here || !isPlaceholderThere(file))) {
            return {row.kind, row.kind == StateKind::failed ? status : std::string()};
        }
    }
    return {StateKind::waiting, {}};
}

bool canBeAskedFor(const std::string& file) {
    return file.starts_with('/') && file.find_first_of(separators) == file.npos;
}

}  // namespace

NextcloudDownloads::NextcloudDownloads(std::vector<std::string> sockets,
                                       std::chrono::milliseconds patience)
    : _sockets(std::move(sockets)), _patience(patience) {}

std::vector<std::string> NextcloudDownloads::socketsIn(const std::string& runtimeFolder) {
    if (runtimeFolder.empty()) {
        return {};
    }
    return {runtimeFolder + "/Nextcloud/socket", runtimeFolder + "/ownCloud/socket"};
}

/// The client that was asked last tells why.
base::Result<std::string> NextcloudDownloads::ask(std::string_view commands,
                                                  const std::string& file) const {
    if (!canBeAskedFor(file)) {
        return Failure{Failure::Kind::malformed,
                       file + ": " + base::tr("the sync program cannot be asked for such a name")};
    }
    Failure failure{Failure::Kind::unavailable,
                    file + ": " + base::tr("no sync program is there to be asked")};
    for (const std::string& path : _sockets) {
        LineSocket socket(path, std::chrono::steady_clock::now() + _patience);
        if (socket.error() != 0) {
            continue;
        }
        socket.send(commands);
        auto status = statusOf(socket, file);
        if (status) {
            return status;
        }
        failure = status.failure();
    }
    return failure;
}

base::Result<DownloadState> NextcloudDownloads::state(const std::string& file) {
    const auto status = ask(fmt::format("{}{}\n", stateVerb, file), file);
    return status ? base::Result<DownloadState>(stateOf(*status, file)) : status.failure();
}

base::Result<Done> NextcloudDownloads::request(const std::string& file) {
    // Commands are taken in their order: an answer to the second means that the first was taken.
    const auto status = ask(fmt::format("{}{}\n{}{}\n", requestVerb, file, stateVerb, file), file);
    return status ? base::Result<Done>(Done{}) : status.failure();
}

}  // namespace tessaly::platform
