// SPDX-License-Identifier: MIT
#include <string>

#include <fmt/format.h>

#include "base/enum_names.h"
#include "base/localisation.h"
#include "base/note_type.h"
#include "cli/context.h"
#include "cli/read_input.h"
#include "cli/safe_text.h"
#include "cli/task_lines.h"
#include "cli/text_records.h"
#include "cli/verb_functions.h"
#include "grammar/todo_helper.h"
#include "host/program_host.h"
#include "store/note_document.h"

namespace tessaly::cli {

namespace {

/// The file as a note of a data folder: in a folder of a kind, that folder and its name.
std::string notePath(const std::string& argument) {
    if (argument == "-") {
        return {};
    }
    const std::string path = host::absolutePath(argument);
    const std::size_t slash = path.rfind('/');
    const std::size_t before = slash == 0 ? std::string::npos : path.rfind('/', slash - 1);
    if (before == std::string::npos) {
        return path.substr(slash + 1);
    }
    const auto folder = std::string_view{path}.substr(before + 1, slash - before - 1);
    const bool isKind = base::noteTypeOfFolder(folder) != base::NoteType::none;
    return path.substr((isKind ? before : slash) + 1);
}

Style styleOf(grammar::TodoType type) {
    using Type = grammar::TodoType;
    switch (type) {
        case Type::open: return Style::open;
        case Type::done: return Style::done;
        case Type::scheduled: return Style::scheduled;
        case Type::title: return Style::section;
        default: return Style::dim;
    }
}

void printLine(Context& context, const grammar::Todo& todo) {
    const std::string day = todo.date ? base::tagText(todo.date->day) : "-";
    Spans line{{Style::dim, fmt::format("{}  ", todo.lineIndex + 1)},
               {styleOf(todo.type), fmt::format("{:<9}", base::rawValue(todo.type))},
               {Style::dim, "  " + day}};
    if (!todo.content.empty()) {
        line.push_back({Style::plain, std::string(12 - day.size(), ' ')});
    }
    for (Span& span : contentOf(todo)) {
        line.push_back(std::move(span));
    }
    context.out.line(drawn(line, context.terminal));
}

void printRecords(Context& context, const grammar::NoteText& note) {
    if (context.invocation.json) {
        for (const JsonObject& record : textRecords(context.services, note)) {
            context.out.line(record.text());
        }
        return;
    }
    const grammar::MarkerSettings markers = context.services.markerSettings();
    for (const grammar::Todo& todo : grammar::TodoHelper::parseNoteContent(note, markers)) {
        printLine(context, todo);
    }
}

}  // namespace

Exit runParse(Context& context) {
    const std::string& file = context.invocation.arguments.front();
    const auto bytes = readInput(context.services.ports().files, file, context.cancelled);
    if (!bytes) {
        if (context.cancelled) {
            return Exit::couldNot;
        }
        complain(safeText(bytes.failure().description));
        return Exit::couldNot;
    }
    const auto text = store::decodedText(*bytes);
    if (!text) {
        complain(fmt::format(fmt::runtime(base::tr("{} is not UTF-8 text")), safeText(file)));
        return Exit::couldNot;
    }
    printRecords(context, {*text, notePath(file)});
    return Exit::done;
}

}  // namespace tessaly::cli
