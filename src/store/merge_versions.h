// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tessaly::store {

/// Joins versions of a text, the current one first; there is at least one. Where they differ, the
/// lines of an earlier version come first. Lines that differ in a "\r" at their end alone are
/// equal. The result has a byte-order mark if the current version has, and "\r\n" or "\n"
/// throughout, whichever the current version has more of (or the first that has any); but a
/// result with the lines of the current version is that version, byte for byte.

/// By `threeWayMerge` from `base` (`MergeBase::text`), one after the other.
std::string mergeVersions(std::string_view base, std::span<const std::string_view> versions);

/// Without a base: every line of every version, what two have in common once. (A deletion cannot
/// be told from an addition, so a deleted line comes back.) Ends in a line break unless the line
/// that is last has none in its version.
std::string mergeVersions(std::span<const std::string_view> versions);

}  // namespace tessaly::store
