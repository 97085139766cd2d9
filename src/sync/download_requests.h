// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "ports/cloud_downloads.h"

namespace tessaly::sync {

/// Asks the sync client for the files behind placeholders, each once while it waits; one that could
/// not be asked for, or that failed, is tried again at the next look. One thread at a time.
///
/// Logs "could not check if the file is already downloading " ERROR, "could not request download "
/// ERROR (there is no client to ask), "could not download: " PATH ", error: " ERROR (the client
/// takes no request for it) and "error downloading file: " ERROR (the client says that it failed).
/// The same line is not logged again for the same file.
class DownloadRequests {
public:
    /// So many files are asked for in one call, since the client may take its time for each.
    static constexpr std::size_t atATime = 64;

    /// `downloads` outlives this object.
    explicit DownloadRequests(ports::CloudDownloads& downloads) : _downloads(downloads) {}

    /// Placeholders that lie there; absolute paths. Those that were asked for before are only
    /// checked. True: some had no turn yet. When there is no client, nothing more is tried.
    bool ask(const std::vector<std::string>& placeholders);

    /// Forgets files that are no placeholders any more.
    void forget(const std::string& file);

    /// Those that could not be asked for, that failed, or that had no turn yet.
    std::vector<std::string> unanswered() const;
    /// Those that the client was asked for.
    std::vector<std::string> waiting() const;

private:
    enum class Step { untried, refused, asked };
    struct Request {
        Step step = Step::untried;
        std::set<std::string> logged;  ///< lines
    };
    enum class Client { answers, isMissing };

    std::vector<std::string> inStep(bool isAsked) const;
    Client check(const std::string& file, Request& request);
    Client request(const std::string& file, Request& request);
    static void logOnce(Request& request, const std::string& text, const std::string& error);

    ports::CloudDownloads& _downloads;
    std::map<std::string, Request> _requests;  ///< by file
};

}  // namespace tessaly::sync
