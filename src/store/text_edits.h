// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/failure.h"
#include "base/text_range.h"
#include "base/write_mode.h"

namespace tessaly::store {

/// The line break that a text uses, that of its first line: "\n" or "\r\n"; "\n" when it has none.
std::string_view lineBreakOf(std::string_view text);

/// `text` with each of its line breaks, of either kind, written as `lineBreak`.
std::string withLineBreaks(std::string_view text, std::string_view lineBreak);

/// `content` with `text` added. Text without a byte-order mark on either side. Added lines end as
/// those of the content do; where that is a single line or empty, as they are. Nothing when that
/// changes nothing.
///
/// - append: behind the content. A line break is put between them unless the content ends in one or
///   the text begins with one; a content whose last line is ended stays so. An empty content
///   becomes the text alone.
/// - prepend: before everything. A line break is put between them unless the text ends in one or
///   the content begins with one; an empty content gets one behind the text, too.
/// - overwrite: the text as it is.
std::optional<std::string> withTextAdded(std::string_view content, std::string_view text,
                                         base::WriteMode mode);

/// Whether the lines of `text` stand in `content`, as whole lines and one after the other, whatever
/// line breaks either has. The break behind the last line does not count.
bool holdsLines(std::string_view content, std::string_view text);

/// `content` without `range`. Refused (`malformed`, in words that name what was wrong) when the
/// range goes past the end, splits a surrogate pair, or does not hold `expected`.
base::Result<std::string> withoutRange(std::string_view content, base::TextRange range,
                                       const std::optional<std::string>& expected = std::nullopt);

}  // namespace tessaly::store
