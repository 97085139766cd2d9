// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessaly::platform {

/// The files of other programs, which may hold anything. Nothing is told of why one cannot be read.

/// The whole of a regular file of at most 4 MB; nothing for anything else. Never waits for a pipe.
std::optional<std::string> clientFile(const std::string& path);

/// Whether a regular file is there, a link followed.
bool isRegularFile(const std::string& path);

/// The names in a folder that begin or end so, in order; none when it cannot be listed.
std::vector<std::string> namesIn(const std::string& folder, std::string_view beginning,
                                 std::string_view end);

/// The texts in the first column of what `query` finds in an SQLite database, which is only read:
/// no file appears beside it, so what a client has not merged into it yet (its "-wal") is not seen.
/// None when it is no such database, or the query does not suit it.
std::vector<std::string> textsInDatabase(const std::string& path, const std::string& query);

/// A path as a client writes it, with "~" for `home`: absolute, without slashes at the end.
/// Nothing when it is no absolute path of a folder below "/".
std::optional<std::string> clientPath(std::string_view written, const std::string& home);

}  // namespace tessaly::platform
