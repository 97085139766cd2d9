// SPDX-License-Identifier: MIT
#include <array>

#include "base/localisation.h"
#include "base/note_type.h"
#include "base/utf8.h"
#include "base/write_mode.h"
#include "cli/json_records.h"
#include "cli/marked_text.h"
#include "cli/rpc_methods.h"
#include "store/note_document.h"
#include "store/note_model.h"
#include "store/note_names.h"
#include "store/text_edits.h"

namespace tessaly::cli {

namespace {

using base::NoteType;
using Param = std::string_view;

MarkPlace placeOf(RpcParams& params) {
    params.refuseTogether("selection", "lines");
    MarkPlace place;
    if (params.has("selection")) {
        place.selection = params.range("selection");
    } else if (params.has("lines")) {
        place.lines = lineNumbersFrom(params.text("lines"));
        if (!place.lines) {
            params.refuse("lines", base::tr("not lines counted from 1, as \"2-4\" or \"2\""));
        }
    }
    return place;
}

JsonObject mark(RpcParams& params, const RpcTools&) {
    const std::string_view text = params.text("text");
    const auto action = params.choice<editor::MarkAction>("action");
    const MarkPlace place = placeOf(params);
    const auto settings = params.settings().marking();
    if (params.failure()) {
        return {};
    }
    const auto marked = markedText(action, text, place, settings);
    if (!marked) {
        params.refuse(marked.failure());
        return {};
    }
    return resultOf(recordOf(*marked));
}

JsonObject addText(RpcParams& params, const RpcTools&) {
    const std::string_view content = params.text("content");
    const std::string_view text = base::withoutByteOrderMark(params.text("text"));
    const auto mode = params.choice<base::WriteMode>("mode");
    const auto edited = store::editedBytes(
        content, [&](std::string_view body) -> base::Result<std::optional<std::string>> {
            return store::withTextAdded(body, text, mode);
        });
    if (!edited) {
        params.refuse(edited.failure());
        return {};
    }
    return resultOf(edited->value_or(std::string{content}));
}

JsonObject deleteRange(RpcParams& params, const RpcTools&) {
    const std::string_view content = params.text("content");
    const base::TextRange range = params.range("range");
    const auto expected = params.textIfAny("expected");
    if (params.failure()) {
        return {};
    }
    const auto left = store::withoutRange(
        content, range, expected ? std::optional{std::string{*expected}} : std::nullopt);
    if (!left) {
        params.refuse(left.failure());
        return {};
    }
    return resultOf(*left);
}

struct NamedNote {
    NoteType type;
    std::string filename;  ///< relative to its kind's folder
};

/// By the folder that the name begins with, else by whether it is a day's.
NamedNote noteCalled(std::string_view filename) {
    const std::size_t slash = filename.find('/');
    const NoteType ofFolder =
        slash == filename.npos ? NoteType::none : base::noteTypeOfFolder(filename.substr(0, slash));
    if (ofFolder != NoteType::none) {
        return {ofFolder, std::string{filename.substr(slash + 1)}};
    }
    const bool isDay = store::dayOfCalendarFilename(filename).has_value();
    return {isDay ? NoteType::calendar : NoteType::note, std::string{filename}};
}

JsonObject noteModel(RpcParams& params, const RpcTools&) {
    const std::string_view filename = params.text("filename");
    const NamedNote note = params.has("type")
                               ? NamedNote{params.choice<NoteType>("type"), std::string{filename}}
                               : noteCalled(filename);
    const store::NoteModel model{note.filename, note.type,
                                 base::withoutByteOrderMark(params.text("content")),
                                 params.settings().counting()};
    JsonObject object;
    object.add("type", base::rawValue(model.type))
        .add("filename", model.filename)
        .add("date", model.date ? std::optional{base::tagText(*model.date)} : std::nullopt);
    addModel(object, model);
    return resultOf(std::move(object));
}

constexpr std::array markParams{Param{"text"}, Param{"action"}, Param{"selection"}, Param{"lines"},
                                Param{"settings"}};
constexpr std::array addTextParams{Param{"content"}, Param{"text"}, Param{"mode"}};
constexpr std::array deleteRangeParams{Param{"content"}, Param{"range"}, Param{"expected"}};
constexpr std::array noteModelParams{Param{"filename"}, Param{"type"}, Param{"content"},
                                     Param{"settings"}};

constexpr std::array textMethodRows{
    RpcMethod{"mark", markParams, mark},
    RpcMethod{"addText", addTextParams, addText},
    RpcMethod{"deleteRange", deleteRangeParams, deleteRange},
    RpcMethod{"noteModel", noteModelParams, noteModel},
};

}  // namespace

std::span<const RpcMethod> textMethods() {
    return textMethodRows;
}

}  // namespace tessaly::cli
