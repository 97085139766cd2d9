// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
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

/// An entry and the state of its file, which has not been opened. A link is not followed.
struct SurveyedEntry : FolderEntry {
    FileStamp stamp;  ///< of a file or folder; else all zero
    /// A sync client has put an empty shell in the file's place and will fill it when asked.
    bool isPlaceholder = false;
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

    /// `list`, with the state of each entry. What disappears meanwhile is left out.
    virtual base::Result<std::vector<SurveyedEntry>> survey(const std::string& folder) = 0;

    /// Looks at some names of a folder alone, at a cost that does not depend on its size. The
    /// answer has a place for each name, in their order; nothing: there is no such entry. Failure:
    /// the folder could not be opened, or one of the names could not be looked at.
    virtual base::Result<std::vector<std::optional<SurveyedEntry>>> surveyNames(
        const std::string& folder, std::span<const std::string> names) = 0;

    /// The whole of a regular file of at most `maxFileBytes`. A link is followed. Failure
    /// `unavailable`: a sync client's placeholder, whose bytes are not the file's.
    virtual base::Result<FileContents> read(const std::string& file) = 0;

    /// Reads several regular files of one folder, calling `sink` once for each in order, on the
    /// calling thread. The cost of a walk over many small files is per file, so the folder is
    /// opened once and one buffer serves all; where the bytes are not in memory yet, many files are
    /// asked for at a time. Links are not followed; placeholders are `unavailable`. Failure: the
    /// folder could not be opened, and `sink` was not called.
    virtual base::Result<base::Done> readEach(const std::string& folder,
                                              std::span<const FolderEntry> files,
                                              const FileSink& sink) = 0;

    /// What kind of thing is at `path`, links followed. Failure `notFound`: nothing is there.
    virtual base::Result<FolderEntry::Kind> kindOf(const std::string& path) = 0;

    /// `path` with every link and ".." resolved. Failure: some part of it is not there.
    virtual base::Result<std::string> resolve(const std::string& path) = 0;
};

}  // namespace tessaly::ports
