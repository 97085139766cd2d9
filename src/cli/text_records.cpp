// SPDX-License-Identifier: MIT
#include "cli/text_records.h"

#include <algorithm>
#include <array>

#include "cli/json_records.h"
#include "grammar/date_tags.h"
#include "grammar/tags.h"

namespace tessaly::cli {

namespace {

std::string_view kindName(grammar::MarkKind kind) {
    using Kind = grammar::MarkKind;
    switch (kind) {
        case Kind::scheduleTag: return "scheduleTag";
        case Kind::backLink: return "backLink";
        default: return "plainDate";
    }
}

}  // namespace

std::vector<JsonObject> dateTagRecords(std::string_view line) {
    std::vector<JsonObject> records;
    for (const grammar::DateTag& tag : grammar::DateTags::findDateTags(line)) {
        JsonObject record;
        record.add("kind", kindName(tag.kind))
            .add("range", recordOf(tag.range))
            .add("dateText", tag.dateText)
            .add("day", tag.day ? std::optional{base::tagText(*tag.day)} : std::nullopt);
        records.push_back(std::move(record));
    }
    return records;
}

std::vector<JsonObject> textRecords(app::Services& services, const grammar::NoteText& note) {
    std::vector<JsonObject> records;
    for (const grammar::Todo& todo :
         grammar::TodoHelper::parseNoteContent(note, services.markerSettings())) {
        JsonObject record = recordOf(todo, services.ports().clock);
        record.add("hashtags", grammar::hashtagsOf(todo.base))
            .add("mentions", grammar::mentionsOf(todo.base))
            .add("dateTags", dateTagRecords(todo.base));
        records.push_back(std::move(record));
    }
    return records;
}

}  // namespace tessaly::cli
