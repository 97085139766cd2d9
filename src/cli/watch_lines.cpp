// SPDX-License-Identifier: MIT
#include "cli/watch_lines.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "base/graphemes.h"
#include "base/localisation.h"
#include "base/note_type.h"
#include "cli/json_times.h"
#include "cli/safe_text.h"
#include "store/paths.h"

namespace tessaly::cli {

namespace {

using base::N_;
using store::CloudNote;
using store::UpdateType;

struct UpdateRow {
    const char* name;  // in JSON
    const char* word;  // for the eye
    Style style;
};

/// By `UpdateType`.
constexpr std::array updates{
    UpdateRow{"deleted", N_("deleted"), Style::removed},
    UpdateRow{"added", N_("added"), Style::added},
    UpdateRow{"changed", N_("changed"), Style::scheduled},
    UpdateRow{"none", "", Style::plain},
};
constexpr UpdateRow conflict{"", N_("conflict"), Style::warning};

const UpdateRow& updateOf(const CloudNote& note) {
    return updates[static_cast<std::size_t>(note.update)];
}

const UpdateRow& shownUpdateOf(const CloudNote& note) {
    const bool isConflict = note.hasConflicts && note.update != UpdateType::deleted;
    return isConflict ? conflict : updateOf(note);
}

std::size_t columnOfWords() {
    std::size_t column = base::terminalWidth(base::tr(conflict.word));
    for (const UpdateRow& row : updates) {
        column = std::max(column, *row.word == '\0' ? 0 : base::terminalWidth(base::tr(row.word)));
    }
    return column;
}

std::string_view baseNameOf(base::NoteType type) {
    switch (type) {
        case base::NoteType::calendar: return "calendar";
        case base::NoteType::note: return "note";
        case base::NoteType::trash: return "trash";
        case base::NoteType::filters: return "filters";
        default: return "none";
    }
}

std::string pathOf(const CloudNote& note, std::string_view root) {
    return store::joined(base::folderName(note.base), store::filenameOf(note, root));
}

constexpr bool isPlainInUrl(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view{"-._~/"}.find(c) != std::string_view::npos;
}

}  // namespace

Spans watchLine(const CloudNote& note, std::string_view root) {
    const UpdateRow& row = shownUpdateOf(note);
    const std::string word = *row.word == '\0' ? std::string{} : base::tr(row.word);
    const std::string blanks(columnOfWords() - base::terminalWidth(word) + 1, ' ');
    return {{row.style, word},
            {Style::plain, blanks + safeText(pathOf(note, root)) + (note.isFolder ? "/" : "")}};
}

JsonObject recordOf(const CloudNote& note, std::string_view root, std::size_t batch) {
    JsonObject object;
    object.add("update", updateOf(note).name)
        .add("filename", note.filename)
        .add("base", baseNameOf(note.base))
        .add("path", pathOf(note, root))
        .add("contentChangedDate", rfc3339(note.contentChangedDate))
        .add("url", fileUrl(note.url))
        .add("hasConflicts", note.hasConflicts)
        .add("isFolder", note.isFolder)
        .add("batch", batch);
    return object;
}

std::string fileUrl(std::string_view path) {
    std::string url = "file://";
    for (const char c : path) {
        if (isPlainInUrl(c)) {
            url += c;
        } else {
            url += fmt::format("%{:02X}", static_cast<unsigned char>(c));
        }
    }
    return url;
}

}  // namespace tessaly::cli
