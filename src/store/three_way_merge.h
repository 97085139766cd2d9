// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tessaly::store {

/// Joins two texts that were made from one: by line, and inside a task line by field (state, text,
/// each tag), so that a completion on one side and a new date on the other both survive.
///
/// A line that one side deleted and the other left alone goes; one that the other changed stays as
/// changed. Where both changed a line in ways that do not go together, both lines stay, mine first.
/// What both added at one place stands there once. No line of either side that is not in the base
/// is lost, be it as fields of a task line. merge(x, x, y) = merge(x, y, x) = y, and
/// merge(x, y, y) = y.
std::string threeWayMerge(std::string_view base, std::string_view mine, std::string_view theirs);

}  // namespace tessaly::store
