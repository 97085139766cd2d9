// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/failure.h"
#include "ports/trash.h"
#include "search/filter_item.h"
#include "store/data_store.h"
#include "store/safe_files.h"

namespace tessaly::search {

/// The saved filters: a file each in the data folder's "Filters", named like the filter, without an
/// extension. Nothing is held: each operation looks at the disk. Any thread; blocks for the disk.
/// Nothing is logged, but for a folder that cannot be made; failures have words for the user.
///
/// A name means the filter that is called exactly so; else the one whose name collides with it on a
/// file system that ignores case ("work" is "Work"); else, but for `save`, the one whose name it
/// would get when it was saved ("v1.2" is "v12"). Two filters whose names collide are only ever
/// made by others. A conflict copy is found by its own name.
class FilterHelper {
public:
    /// All outlive it.
    struct Tools {
        store::DataStore& store;
        store::SafeFiles& safeFiles;
        ports::Trash trash;
    };

    /// What became of a filter that was to be saved.
    struct Saved {
        enum class How { anew, replacing };
        std::string name;
        How how = How::anew;
    };

    explicit FilterHelper(Tools tools) : _tools(std::move(tools)) {}

    /// The names of all filters, by name in lower case; none when the folder is missing. Those that
    /// a sync client has not downloaded are among them; folders, links, hidden and temporary files
    /// and conflict copies are not.
    base::Result<std::vector<std::string>> list() const;

    /// Failures: `notFound`; `malformed`: it cannot be decoded, which leaves it as it is;
    /// `unavailable`: a sync client has not downloaded it.
    base::Result<Filter> load(std::string_view name) const;

    /// Writes a filter, replacing an older one of that name; what that held stays in the history.
    /// The name that it has then: the older one's, else the given one free of what titles of notes
    /// lose on the way to a file name. Failures: `exists`: so freed, the name is another filter's;
    /// `malformed`: no name is left or files of this name are passed over, the filter holds what is
    /// no text, or what lies there is no filter that can be read, and it stays; `unavailable`.
    base::Result<Saved> save(std::string_view name, const Filter& filter);

    /// Returns the new name, as `save` gives it. Failures: `notFound`; `exists`: the new name is
    /// another filter's; `malformed`, as for `save`; `unavailable`.
    base::Result<std::string> rename(std::string_view from, std::string_view to);

    /// Moves the filter's file to the desktop's trash and returns the name that it had. Failure: it
    /// is where it was.
    base::Result<std::string> remove(std::string_view name);

private:
    /// A filter in the data folder that was in use when it was looked up.
    struct Place {
        std::string root;
        std::string name;
        std::string path;
    };
    base::Result<Place> placeOf(std::string_view wanted) const;
    base::Result<Place> newPlace(std::string_view wanted) const;
    base::Result<Place> placeToSave(std::string_view wanted) const;
    base::Result<Saved::How> write(const Place& place, const std::string& bytes);

    Tools _tools;
};

}  // namespace tessaly::search
