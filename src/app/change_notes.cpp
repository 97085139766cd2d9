// SPDX-License-Identifier: MIT
#include "app/change_notes.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/utf8.h"
#include "store/note_document.h"

namespace tessaly::app {
namespace {

using base::Failure;
using base::tr;

std::string inOneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    return std::string{base::trimmed(text)};
}

/// The folder relative to that of general notes, without slashes around it.
std::string_view relativeFolder(std::string_view folder) {
    constexpr std::string_view notes = "Notes";
    while (folder.ends_with('/')) {
        folder.remove_suffix(1);
    }
    if (folder == notes) {
        return {};
    }
    if (folder.starts_with(notes) && folder[notes.size()] == '/') {
        folder.remove_prefix(notes.size() + 1);
    }
    return folder;
}

/// Whether notes below the folder would never be shown.
bool isPassedOver(std::string_view folder) {
    while (!folder.empty()) {
        const std::string_view name = folder.substr(0, folder.find('/'));
        if (name.empty() || name.starts_with('.') || name == "_attachments") {
            return true;
        }
        folder.remove_prefix(std::min(name.size() + 1, folder.size()));
    }
    return false;
}

/// A folder of such a name could hardly be named again.
bool isUntypable(std::string_view folder) {
    return !base::isUtf8(folder) ||
           std::any_of(folder.begin(), folder.end(), [](char c) { return c >= 0 && c < ' '; });
}

std::string contentOf(const std::string& title, std::string text) {
    if (!text.empty() && text.back() != '\n') {
        text += '\n';
    }
    if (title.empty()) {
        return text;
    }
    return (title.starts_with('#') ? "" : "# ") + title + "\n" + text;
}

/// The text of a title, for the file's name: "Plans" of "## Plans".
std::string nameIn(std::string_view title) {
    const auto first = title.find_first_not_of('#');
    return std::string{first == std::string_view::npos ? std::string_view{} : title.substr(first)};
}

bool isThere(Services& services, const std::string& path) {
    const auto kind = services.ports().files.kindOf(path);
    return kind || kind.failure().kind != Failure::Kind::notFound;
}

Failure notTextToChange(const NoteAddress& note) {
    return {Failure::Kind::malformed,
            fmt::format(fmt::runtime(tr("{} is not UTF-8 text")), pathInDataFolder(note))};
}

NoteChange changeBy(base::WriteMode mode, bool wasThere) {
    if (!wasThere) {
        return NoteChange::created;
    }
    return mode == base::WriteMode::overwrite ? NoteChange::overwritten : NoteChange::added;
}

}  // namespace

std::string pathInDataFolder(const NoteAddress& note) {
    return fmt::format("{}/{}", base::folderName(note.type), note.filename);
}

Failure noNoteThere(const NoteAddress& note) {
    const std::string words =
        note.day ? fmt::format(fmt::runtime(tr("there is no note of {}")), base::tagText(*note.day))
                 : fmt::format(fmt::runtime(tr("there is no file {}")), pathInDataFolder(note));
    return {Failure::Kind::notFound, words};
}

base::Result<std::string> acceptedText(std::string_view text) {
    const auto decoded = store::decodedText(text);
    if (!decoded) {
        return Failure{Failure::Kind::malformed, tr("the text is not UTF-8")};
    }
    if (decoded->find('\0') != std::string_view::npos) {
        return Failure{Failure::Kind::malformed, tr("the text holds a NUL character")};
    }
    return std::string{*decoded};
}

base::Result<ChangedNote> newNote(Services& services, const NoteRequest& request) {
    const auto title = acceptedText(request.title);
    const auto text = acceptedText(request.text);
    if (!title || !text) {
        return title ? text.failure() : title.failure();
    }
    const std::string_view folder = relativeFolder(request.folder);
    if (isPassedOver(folder)) {
        return Failure{
            Failure::Kind::outside,
            fmt::format(fmt::runtime(tr("notes in the folder “{}” would not be shown")), folder)};
    }
    if (isUntypable(folder)) {
        return Failure{
            Failure::Kind::malformed,
            fmt::format(
                fmt::runtime(tr("the folder “{}” holds control characters or is not UTF-8")),
                folder)};
    }
    const std::string line = inOneLine(*title);
    store::DataStore& dataStore = services.dataStore();
    const auto filename = dataStore.writeNewNote({.type = base::NoteType::note,
                                                  .text = contentOf(line, *text),
                                                  .day = {},
                                                  .folder = std::string{folder},
                                                  .title = nameIn(line)});
    if (!filename) {
        return filename.failure();
    }
    const auto path = dataStore.pathOf(base::NoteType::note, *filename);
    return ChangedNote{NoteChange::created,
                       {base::NoteType::note, *filename, std::nullopt},
                       path ? *path : std::string{},
                       {}};
}

base::Result<ChangedNote> addText(Services& services, const AddRequest& request,
                                  store::NoteReader::Options options) {
    const auto text = acceptedText(request.text);
    if (!text) {
        return text.failure();
    }
    const auto note = findNote(services, request.note, std::move(options));
    if (!note) {
        return note.failure();
    }
    store::DataStore& dataStore = services.dataStore();
    const auto path = dataStore.pathOf(note->type, note->filename);
    if (!path) {
        return path.failure();
    }
    const bool wasThere = isThere(services, *path);
    const auto changed = dataStore.addText(*text, note->type, note->filename, request.mode);
    if (!changed) {
        return changed.failure().kind == Failure::Kind::malformed ? notTextToChange(*note)
                                                                  : changed.failure();
    }
    return ChangedNote{
        *changed ? changeBy(request.mode, wasThere) : NoteChange::unchanged, *note, *path, {}};
}

base::Result<ChangedNote> trashNote(Services& services, std::string_view note,
                                    store::NoteReader::Options options) {
    const auto found = findNote(services, note, std::move(options));
    if (!found) {
        return found.failure();
    }
    store::DataStore& dataStore = services.dataStore();
    const auto path = dataStore.pathOf(found->type, found->filename);
    if (!path) {
        return path.failure();
    }
    const auto trashed = dataStore.trashNote(found->type, found->filename);
    if (!trashed) {
        return trashed.failure().kind == Failure::Kind::notFound ? noNoteThere(*found)
                                                                 : trashed.failure();
    }
    if (*trashed == store::Trashed::toSystemTrash) {
        return ChangedNote{NoteChange::trashed, *found, *path, {}};
    }
    const auto entries = services.history().entries(*path);
    return ChangedNote{NoteChange::removed, *found, *path,
                       entries && !entries->empty() ? entries->front().hash : std::string{}};
}

}  // namespace tessaly::app
