// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tasks/operation.h"

namespace tessaly::tasks {

/// The edits of a made step that may be taken back from `text`, which others have changed since: of
/// lines that read alike, as many stay as had stood there before.
std::vector<LineEdit> ownEdits(std::span<const LineEdit> made, std::string_view text);

/// What the lines that a made step replaced had read, as far as `back`, edits that lead back, does
/// not restore them.
std::vector<std::string> notRestored(std::span<const LineEdit> made,
                                     std::span<const LineEdit> back);

/// The steps without those edits that write or remove a copy of one of these lines. A task's line
/// and its copies go back together: otherwise a copy would go while its task stays marked as
/// scheduled, and nothing would show that task any more. A step that lost edits has no hashes.
std::vector<NoteStep> withoutCopiesOf(std::span<const std::string> lines,
                                      std::vector<NoteStep> steps);

}  // namespace tessaly::tasks
