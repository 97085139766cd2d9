// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "base/failure.h"
#include "ports/file_system.h"

namespace tessaly::app {

/// What has been put somewhere.
struct PretendThing {
    ports::FolderEntry::Kind kind = ports::FolderEntry::Kind::file;
    std::string bytes;  ///< of a file; of a link the resolved path that it leads to, empty: nowhere
    ports::FileStamp stamp{};
    std::string origin;  ///< where the file really lies that was moved here; empty: none was
};

/// The real folders as they would be if some things in them were others. A *place* is a path whose
/// folder is resolved and whose last part is the entry itself, though it may be a link. What is
/// asked of the real folders is asked each time, but for where links are. Not for two threads at
/// once.
class PretendTree {
public:
    /// What was changed; nothing: there no longer is anything.
    using Things = std::map<std::string, std::optional<PretendThing>>;
    using Kind = ports::FolderEntry::Kind;

    explicit PretendTree(ports::FileSystem& real) : _real(real) {}

    /// The place that `path` leads to, all links followed. Failure `notFound`: nothing is there.
    base::Result<std::string> follow(const std::string& path) const;
    /// The place of the entry that `path` names. Failure: its folder is not there.
    base::Result<std::string> place(const std::string& path) const;

    /// Kind of an entry, a link not followed. Failure `notFound`: there is none.
    base::Result<Kind> entryAt(const std::string& place);

    /// Of places without links, as `follow` gives them.
    base::Result<Kind> kindOf(const std::string& place) const;
    base::Result<ports::FileContents> read(const std::string& place) const;
    base::Result<std::vector<ports::FolderEntry>> list(const std::string& place) const;
    base::Result<std::vector<ports::SurveyedEntry>> survey(const std::string& place) const;
    base::Result<std::vector<std::optional<ports::SurveyedEntry>>> surveyNames(
        const std::string& place, std::span<const std::string> names) const;

    /// Null: nothing was changed there. Empty: what was there is gone.
    const std::optional<PretendThing>* changeAt(const std::string& place) const;
    bool isChangedIn(const std::string& folder) const;

    void put(const std::string& place, PretendThing thing) { _things[place] = std::move(thing); }
    void remove(const std::string& place) { _things[place] = std::nullopt; }

    /// The file at a place, put there as it is if it was not yet.
    base::Result<PretendThing*> fileToChange(const std::string& place);

    const Things& things() const { return _things; }
    /// The real file at a place; nothing for anything else, as a link and what is below one.
    std::optional<std::string> realFile(const std::string& place) const;

private:
    template <class Entry, class FromReal>
    base::Result<std::vector<Entry>> entriesOf(const std::string& place,
                                               const FromReal& fromReal) const;
    base::Result<std::string> leadsTo(const std::string& place) const;
    base::Result<std::string> endOfLink(std::string target) const;
    base::Result<Kind> realEntryAt(const std::string& place);
    const std::set<std::string>& realLinksIn(const std::string& folder);

    ports::FileSystem& _real;
    Things _things;
    std::map<std::string, std::set<std::string>> _realLinks;  ///< names by folder
};

/// "PATH: the system's words", as the platform says it.
base::Failure pretendFailure(std::errc error, const std::string& path, base::Failure::Kind kind);
base::Failure pretendNotFound(const std::string& path);
base::Failure pretendNotAFile(const std::string& path);

}  // namespace tessaly::app
