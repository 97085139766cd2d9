// SPDX-License-Identifier: MIT
#include "platform/folder_survey.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <utility>

#include <sys/stat.h>

#include "platform/errno_failure.h"
#include "platform/file_descriptor.h"
#include "platform/file_failures.h"
#include "platform/file_stamp.h"
#include "platform/folder_stream.h"
#include "platform/placeholder.h"

namespace tessaly::platform {

using ports::FolderEntry;
using ports::SurveyedEntry;
using EntryKind = FolderEntry::Kind;

namespace {

SurveyedEntry surveyed(const std::string& folder, std::string name, const struct statx& status) {
    const EntryKind kind = kindOfMode(status.stx_mode);
    SurveyedEntry entry{{std::move(name), kind}, {}, false};
    if (kind == EntryKind::file || kind == EntryKind::folder) {
        entry.stamp = stampOf(status);
    }
    entry.isPlaceholder = kind == EntryKind::file && status.stx_size == placeholderSize &&
                          hasPlaceholderMark(folder + "/" + entry.name);
    return entry;
}

/// Looks at entries of a folder that is open.
class Look {
public:
    Look(const std::string& folder, int fd) : _folder(folder), _fd(fd) {}

    /// Nothing: there is no such entry.
    base::Result<std::optional<SurveyedEntry>> at(std::string name) const {
        constexpr int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT;
        struct statx status;
        if (::statx(_fd, name.c_str(), flags, stampFields, &status) == 0) {
            return std::optional{surveyed(_folder, std::move(name), status)};
        }
        if (errno == ENOENT || errno == ENAMETOOLONG) {
            return std::optional<SurveyedEntry>{};
        }
        return errnoFailure(errno, _folder + "/" + name);
    }

private:
    const std::string& _folder;
    int _fd;
};

/// Others would lead somewhere else, and no entry can have them.
bool isNameOfEntry(const std::string& name) {
    return !name.empty() && !isDots(name) && !holdsNul(name) && name.find('/') == std::string::npos;
}

}  // namespace

EntryKind kindOfMode(unsigned mode) {
    return S_ISREG(mode)   ? EntryKind::file
           : S_ISDIR(mode) ? EntryKind::folder
           : S_ISLNK(mode) ? EntryKind::link
                           : EntryKind::other;
}

base::Result<std::vector<SurveyedEntry>> surveyFolder(const std::string& folder) {
    FolderStream stream(folder);
    const Look look(folder, stream.fd());
    std::vector<SurveyedEntry> entries;
    while (const dirent* found = stream.next()) {
        auto entry = look.at(found->d_name);
        if (!entry) {
            return entry.failure();
        }
        if (*entry) {
            entries.push_back(*std::move(entry).value());
        }
    }
    if (stream.error() != 0) {
        return errnoFailure(stream.error(), folder);
    }
    return entries;
}

base::Result<std::vector<std::optional<SurveyedEntry>>> surveyFolder(
    const std::string& folder, std::span<const std::string> names) {
    const FileDescriptor fd(
        uninterrupted([&] { return ::open(folder.c_str(), O_PATH | O_CLOEXEC | O_DIRECTORY); }));
    if (!fd) {
        return errnoFailure(errno, folder);
    }
    const Look look(folder, fd.get());
    std::vector<std::optional<SurveyedEntry>> entries(names.size());
    for (std::size_t index = 0; index < names.size(); ++index) {
        if (!isNameOfEntry(names[index])) {
            continue;
        }
        auto entry = look.at(names[index]);
        if (!entry) {
            return entry.failure();
        }
        entries[index] = std::move(entry).value();
    }
    return entries;
}

}  // namespace tessaly::platform
