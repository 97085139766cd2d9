// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "base/regex.h"
#include "store/foreign_names.h"

namespace tessaly::store {

/// How one sync client marks the name of a conflict copy. A name is a stem, the mark and, mostly,
/// an extension behind it.
struct ConflictPattern {
    enum class Place { beforeExtension, atEnd };

    std::string_view client;
    std::string_view hint;  ///< stands in every name that the pattern matches
    std::string_view mark;  ///< a regular expression in which DEVICE and DAY are words for parts
    Place place = Place::beforeExtension;
    DeviceOf deviceOf = DeviceOf::copy;
    /// What divides the stem from a device that may contain it too, so that the last one need not
    /// be where the device begins; 0 where that cannot be.
    char divider = '\0';
};

/// All known patterns. Of several that find the same mark the first is right.
std::span<const ConflictPattern> conflictPatterns();

/// A cheap question before any pattern: whether `name` may be a conflict copy's at all.
bool mayBeConflictName(std::string_view name);

/// The pattern of a whole name, by its place in `conflictPatterns()`. Its groups are the stem, the
/// device unless the client's names tell none, and the extension unless the mark is at the end.
const base::Regex& compiledConflictPattern(std::size_t index);

}  // namespace tessaly::store
