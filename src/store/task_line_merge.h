// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessaly::store {

/// Joins two versions of one task line by field: indent with marker, state, text, and each of its
/// tags. What a side left alone stays byte for byte as the side has it that changed the text, or
/// else `mine`; tags that the other added come behind.
///
/// Nothing when one of the three is no task line (a marker of any kind makes one, with or without a
/// box), when both sides changed the same field in different ways, or when one put a text in the
/// task's place that has little in common with it.
std::optional<std::string> mergeTaskLine(std::string_view base, std::string_view mine,
                                         std::string_view theirs);

/// A task line's text without marker, box and tags; lines of one base that have it in common are
/// versions of one task. Nothing for other lines, and for a task without any text.
std::optional<std::string> taskText(std::string_view line);

}  // namespace tessaly::store
