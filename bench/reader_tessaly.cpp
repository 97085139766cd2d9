// SPDX-License-Identifier: MIT
#include <string_view>

#include "grammar/line_scanner.h"
#include "readers.h"

namespace tessaly::bench {

namespace {

using grammar::MarkKind;
using grammar::TodoType;

void countLine(const grammar::ScannedLine& line, Counts& counts) {
    const TodoType type = line.line.type;
    counts.tasksAndLists += grammar::isTask(type) || type == TodoType::list;
    counts.headingsAndQuotes += type == TodoType::title || type == TodoType::quote;
    for (const grammar::Mark& mark : line.marks) {
        counts.hashtags += mark.kind == MarkKind::hashtag;
        counts.mentions += mark.kind == MarkKind::mention;
        counts.doneTags += mark.kind == MarkKind::doneTag;
        counts.dates += mark.kind == MarkKind::scheduleTag || mark.kind == MarkKind::backLink ||
                        mark.kind == MarkKind::plainDate;
    }
}

class TessalyReader : public Reader {
public:
    explicit TessalyReader(const Corpus& corpus) : _text(corpus.text) {}

    Counts read() override {
        Counts counts;
        _scanner.start(_text, {});
        while (const grammar::ScannedLine* line = _scanner.next()) {
            countLine(*line, counts);
        }
        return counts;
    }

private:
    std::string_view _text;
    grammar::NoteScanner _scanner;
};

}  // namespace

std::unique_ptr<Reader> makeTessalyReader(const Corpus& corpus) {
    return std::make_unique<TessalyReader>(corpus);
}

}  // namespace tessaly::bench
