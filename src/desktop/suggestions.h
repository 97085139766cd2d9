// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/completion.h"
#include "app/completion_words.h"
#include "desktop/floating_list.h"

namespace tessaly::desktop {

/// Rows that are offered for a word, and what each of them would write.
struct Suggestions {
    struct Choice {
        std::string word;
        std::optional<app::NextMark> mark;  ///< that it is
    };
    std::vector<FloatingRow> rows;
    std::vector<Choice> choices;  ///< by row
    /// The row that Enter takes at once; -1: it breaks the line, as ever.
    int first = -1;
};

Suggestions suggestionsOf(const app::CompletionPlace& place, const app::OfferedWords& offered,
                          const std::vector<app::NextMark>& marks);

}  // namespace tessaly::desktop
