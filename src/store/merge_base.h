// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tessaly::store {

/// What several versions of a text can be joined from without losing a line.
struct MergeBase {
    std::size_t index;  ///< of the earlier text that it is taken from
    std::string text;   ///< some of its lines, in order, each ending in "\n"
};

/// What `versions` were made from, as far as `earlier` tells for certain: the texts that the note
/// is known to have held on this device, oldest first, may those be among them that came after the
/// versions parted. Nothing: there is no line of which it is certain.
///
/// A line that was written on one device after the versions had parted must not be in the base: it
/// would count as deleted by the others, and be lost. As any of the earlier texts may be the one
/// that all versions were made from, the base has only lines that all of them have; a line that
/// some of them lacks counts as new. Two kinds of texts are left out:
///
/// - the last ones, as long as they are versions themselves (a device that has changed nothing has
///   made no conflict);
/// - those older than a text that is sure to lie before the parting: one from which on the texts
///   gained three long lines that all versions have, which nobody writes twice by chance.
///
/// So whichever of the remaining texts the versions were made from: of a line that a version has n
/// times more often than that text, `mergeVersions` keeps n at least.
std::optional<MergeBase> mergeBase(std::span<const std::string_view> earlier,
                                   std::span<const std::string_view> versions);

}  // namespace tessaly::store
