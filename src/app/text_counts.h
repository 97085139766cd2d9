// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/locale_formats.h"
#include "grammar/todo.h"

namespace tessaly::app {

/// How much a text has.
struct TextCounts {
    std::size_t words = 0;       ///< without markers, boxes, dates and completion tags
    std::size_t characters = 0;  ///< as users see them, without line breaks
    std::size_t openTasks = 0;   ///< tasks in code are none
    std::size_t doneTasks = 0;

    bool operator==(const TextCounts&) const = default;
};

/// Linear; 1 MB of ASCII takes some milliseconds. Any thread.
TextCounts countText(std::string_view text, const grammar::MarkerSettings& markers);

/// "128 words · 3 of 7 tasks done"; while some of it is selected, "12 of 128 words selected".
std::string countsInWords(const TextCounts& whole, const std::optional<TextCounts>& selected,
                          const base::LocaleFormats& formats);
/// "812 characters", of what is selected or else of all.
std::string charactersInWords(const TextCounts& counts, const base::LocaleFormats& formats);

}  // namespace tessaly::app
