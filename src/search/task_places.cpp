// SPDX-License-Identifier: MIT
#include "search/task_places.h"

#include <algorithm>

namespace tessaly::search {

namespace {

/// Goes down a text line by line.
class Lines {
public:
    explicit Lines(std::string_view text) : _text(text) {}

    /// Where the line of this index begins, which is not before the one asked for last.
    std::size_t startOf(std::size_t index) {
        for (; _index < index; ++_index) {
            _start = endFrom(_start) + 1;
        }
        return _start;
    }
    std::size_t endFrom(std::size_t start) const {
        return std::min(_text.find('\n', start), _text.size());
    }

private:
    std::string_view _text;
    std::size_t _index = 0;
    std::size_t _start = 0;
};

}  // namespace

std::vector<TaskPlace> tasksOf(std::string_view text, std::string_view foldedText,
                               const grammar::MarkerSettings& markers,
                               grammar::NoteScanner& scanner) {
    const bool isSame = text.data() == foldedText.data();
    std::vector<TaskPlace> tasks;
    Lines foldedLines(foldedText);
    scanner.start(text, markers);
    while (const grammar::ScannedLine* line = scanner.next()) {
        if (!grammar::isTask(line->line.type)) {
            continue;
        }
        const std::size_t start = isSame ? line->start : foldedLines.startOf(line->index);
        const std::size_t length = isSame ? line->text.size() : foldedLines.endFrom(start) - start;
        TaskPlace& task = tasks.emplace_back();
        task.start = static_cast<std::uint32_t>(start);
        task.length = static_cast<std::uint32_t>(length);
        task.lineIndex = static_cast<std::uint32_t>(line->index) & 0x0FFFFFFFU;
        task.type = static_cast<std::uint32_t>(line->line.type) & 0xFU;
    }
    tasks.shrink_to_fit();
    return tasks;
}

}  // namespace tessaly::search
