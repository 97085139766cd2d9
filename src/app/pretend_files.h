// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/pretend_tree.h"
#include "ports/clock.h"
#include "ports/file_changes.h"
#include "ports/file_system.h"

namespace tessaly::app {

/// What would become of one file.
struct FileChange {
    std::string path;
    std::optional<std::string> before;     ///< its bytes now; nothing: there is none
    std::optional<std::string> after;      ///< its bytes then; nothing: there is none
    std::optional<std::string> movedFrom;  ///< its path now, where that is another
};

/// Changes that are kept in memory over real files, which are only read: whoever looks through this
/// sees them as made. Neither rights nor the room on the disk nor other programs stand in their
/// way. Any thread.
class PretendFiles : public ports::FileSystem, public ports::FileChanges {
public:
    /// Both outlive this object.
    PretendFiles(ports::FileSystem& real, ports::Clock& clock);

    base::Result<std::vector<ports::FolderEntry>> list(const std::string& folder) override;
    base::Result<std::vector<ports::SurveyedEntry>> survey(const std::string& folder) override;
    base::Result<std::vector<std::optional<ports::SurveyedEntry>>> surveyNames(
        const std::string& folder, std::span<const std::string> names) override;
    base::Result<ports::FileContents> read(const std::string& file) override;
    base::Result<base::Done> readEach(const std::string& folder,
                                      std::span<const ports::FolderEntry> files,
                                      const ports::FileSink& sink) override;
    base::Result<ports::FolderEntry::Kind> kindOf(const std::string& path) override;
    base::Result<std::string> resolve(const std::string& path) override;

    base::Result<base::Done> makeFolders(const std::string& folder) override;
    base::Result<base::Done> create(const std::string& file, std::string_view bytes,
                                    ports::Readers readers = ports::Readers::byMask,
                                    ports::Durability durability = ports::Durability::now) override;
    base::Result<base::Done> replace(const std::string& file, const ports::FileContents& read,
                                     std::string_view bytes) override;
    base::Result<base::Done> append(const std::string& file, std::string_view bytes,
                                    ports::Durability durability) override;
    base::Result<base::Done> sync(const std::string& file) override;
    base::Result<base::Done> remove(const std::string& file,
                                    const ports::FileContents* read = nullptr) override;
    /// Moves files and links, and refuses all else (`notAFile`). A link leads where it led before.
    base::Result<base::Done> move(const std::string& from, const std::string& to) override;
    base::Result<base::Done> removeFolder(const std::string& folder) override;

    /// The files that would be others than they are, by their resolved paths, in order. A file that
    /// went and whose path another one took comes twice. Folders and links are not told.
    std::vector<FileChange> changes();

private:
    base::Result<std::string> freePlace(const std::string& path);
    base::Result<base::Done> makeFoldersHere(const std::string& folder);
    base::Result<PretendThing> thingToMove(const std::string& place);
    void readOne(const std::string& folder, const ports::FolderEntry& entry, std::size_t index,
                 const ports::FileSink& sink);
    ports::FileStamp newStamp(std::size_t size);

    ports::FileSystem& _real;
    ports::Clock& _clock;
    std::mutex _mutex;
    PretendTree _tree;         ///< under the mutex
    std::uint64_t _lastInode;  ///< under the mutex
};

}  // namespace tessaly::app
