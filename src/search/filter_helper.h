// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/failure.h"
#include "ports/trash.h"
#include "search/filter_item.h"
#include "store/data_store.h"
#include "store/safe_files.h"

namespace tessaly::search {

/// The saved filters: a file each in the data folder's "Filters", named like the filter. Any
/// thread; blocks for the disk. Nothing is logged; failures have words for the user.
class FilterHelper {
public:
    /// All outlive it.
    struct Tools {
        store::DataStore& store;
        store::SafeFiles& safeFiles;
        ports::Trash trash;
    };

    explicit FilterHelper(Tools tools) : _tools(tools) {}

    /// The names of the files whose names do not begin with ".", by name in lower case; none when
    /// the folder is missing.
    base::Result<std::vector<std::string>> list() const;

    /// Failures: `notFound`; `malformed`: it cannot be decoded, which leaves it as it is.
    base::Result<Filter> load(std::string_view name) const;

    /// Writes a filter, replacing an older one of that name; returns the name that it got, free of
    /// what file names cannot hold. Failures: `malformed`: no name is left, or what lies there is no
    /// filter that can be read, and it stays.
    base::Result<std::string> save(std::string_view name, const Filter& filter);

    /// Returns the new name. Failures: `notFound`; `exists`: the new name is taken.
    base::Result<std::string> rename(std::string_view from, std::string_view to);

    /// Moves the filter's file to the desktop's trash. Failure: it is where it was.
    base::Result<base::Done> remove(std::string_view name);

private:
    Tools _tools;
};

}  // namespace tessaly::search
