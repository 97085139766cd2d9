// SPDX-License-Identifier: MIT
#include "store/finished_repeats.h"

#include <algorithm>

#include "store/note_tags.h"

namespace tessaly::store {
namespace {

constexpr std::string_view repeatSign = "@repeat(";

bool isFinishedRepeat(const grammar::ScannedLine& line) {
    const auto has = [&](std::string_view sign) {
        return std::any_of(line.marks.begin(), line.marks.end(), [&](const grammar::Mark& mark) {
            return mark.kind == grammar::MarkKind::mention &&
                   markText(line, mark).starts_with(sign);
        });
    };
    return line.line.type == grammar::TodoType::done && has("@done(") && has(repeatSign) &&
           !has("@final-repeat");
}

}  // namespace

void addFinishedRepeats(base::NoteType type, const std::string& filename, std::string_view content,
                        const grammar::MarkerSettings& settings, grammar::NoteScanner& scanner,
                        std::vector<FinishedRepeat>& found) {
    if (content.find(repeatSign) == content.npos) {
        return;
    }
    scanner.start(content, settings);
    while (const grammar::ScannedLine* line = scanner.nextWithSign()) {
        if (isFinishedRepeat(*line)) {
            found.push_back({type, filename, line->index, std::string(line->text)});
        }
    }
}

}  // namespace tessaly::store
