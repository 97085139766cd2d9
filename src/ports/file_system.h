// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "base/failure.h"

namespace tessaly::ports {

/// The largest file that is read, in bytes. A note of this size would be some 30,000 pages.
inline constexpr std::uint64_t maxFileBytes = 64ULL << 20;

/// What tells one state of a file from another.
struct FileStamp {
    std::uint64_t inode = 0;
    std::uint64_t size = 0;  ///< bytes
    base::Instant modified{};
    base::Instant changed{};  ///< last change of the inode
    base::Instant created{};  ///< birth; where the file system keeps none, `modified`

    auto operator<=>(const FileStamp&) const = default;
};

struct FileContents {
    std::string bytes;
    FileStamp stamp;
};

/// An entry of a folder as the folder itself tells it: a link is not followed.
struct FolderEntry {
    enum class Kind { file, folder, link, other };
    std::string name;  ///< bytes as they stand; need not be UTF-8
    Kind kind = Kind::other;
};

/// One file of a batch: its place in the batch and its bytes, valid during the call only, or why it
/// could not be read.
struct FileRead {
    std::size_t index;
    std::string_view bytes;
    const FileStamp* stamp;        ///< null when it failed
    const base::Failure* failure;  ///< null when it was read
};
using FileSink = std::function<void(const FileRead&)>;

/// Files and folders, to be looked at. Paths are absolute. Every operation may be called from any
/// thread, logs nothing, and blocks for as long as the disk does; a pipe, socket or device is
/// refused, never opened for reading.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    /// The entries of a folder, "." and ".." left out, in no order.
    virtual base::Result<std::vector<FolderEntry>> list(const std::string& folder) = 0;

    /// The whole of a regular file of at most `maxFileBytes`. A link is followed.
    virtual base::Result<FileContents> read(const std::string& file) = 0;

    /// Reads several regular files of one folder, calling `sink` once for each in order, on the
    /// calling thread. The cost of a walk over many small files is per file, so the folder is
    /// opened once and one buffer serves all. Links are not followed. Failure: the folder could
    /// not be opened, and `sink` was not called.
    virtual base::Result<base::Done> readEach(const std::string& folder,
                                              std::span<const FolderEntry> files,
                                              const FileSink& sink) = 0;

    /// What kind of thing is at `path`, links followed. Failure `notFound`: nothing is there.
    virtual base::Result<FolderEntry::Kind> kindOf(const std::string& path) = 0;

    /// `path` with every link and ".." resolved. Failure: some part of it is not there.
    virtual base::Result<std::string> resolve(const std::string& path) = 0;
};

}  // namespace tessaly::ports
