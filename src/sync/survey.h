// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/executor.h"
#include "base/failure.h"
#include "base/note_type.h"
#include "ports/file_system.h"
#include "sync/current_notes.h"
#include "sync/looks.h"

namespace tessaly::sync {

/// Looks at folders and names of a data folder, without opening a file. Folders are relative to the
/// root, their first component a kind's name. A kind's folder may be a link that leads within the
/// root; below it no link is followed.
class Survey {
public:
    /// `root`: absolute, resolved. The others outlive the survey.
    Survey(ports::FileSystem& files, base::Executor& executor, const std::string& root);

    struct Found {
        struct Folder {
            std::string path;
            std::vector<ports::SurveyedEntry> entries;  ///< by name
        };
        struct Names {
            std::string folder;
            std::vector<CurrentNotes::Found> names;
        };
        struct Failed {
            std::string folder;
            base::Failure failure;
        };
        std::vector<Folder> folders;    ///< by path, so that none stands before the one above it
        std::vector<Names> names;       ///< by folder
        std::vector<std::string> gone;  ///< looked, and there is no such folder
        std::vector<Failed> failed;     ///< nobody knows

        void add(Found&& more);
    };

    Found look(const Looks& looks) const;
    /// Folders with all below them, on all threads of the executor and the calling one.
    Found trees(const std::vector<std::string>& folders) const;

    /// Kinds whose folders lie elsewhere than their names say.
    std::vector<std::string> linkedKinds() const;

private:
    base::Result<std::string> pathOf(std::string_view folder) const;
    void lookAtNames(const std::string& folder, const std::set<std::string>& names,
                     Found& found) const;
    static void cannotLook(const std::string& folder, const base::Failure& failure, Found& found);

    ports::FileSystem& _files;
    base::Executor& _executor;
    const std::string& _root;
    std::map<std::string, base::Result<std::string>, std::less<>> _kinds;  ///< resolved paths
};

}  // namespace tessaly::sync
