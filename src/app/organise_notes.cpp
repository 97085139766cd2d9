// SPDX-License-Identifier: MIT
#include "app/organise_notes.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "app/moved_files.h"
#include "base/localisation.h"
#include "base/utf8.h"
#include "store/note_document.h"
#include "store/note_names.h"
#include "store/text_edits.h"

namespace tessaly::app {
namespace {

using base::Failure;
using Kind = ports::FolderEntry::Kind;

constexpr std::string_view digits = "0123456789";
constexpr std::string_view blanks = " \t";

/// How many signs "#" a heading begins with; 0: it is none.
std::size_t headingSigns(std::string_view line) {
    const std::size_t signs = std::min(line.find_first_not_of('#'), line.size());
    return signs == line.size() || blanks.find(line[signs]) != blanks.npos ? signs : 0;
}

bool isMarkedBy(std::string_view line, std::size_t sign) {
    return sign < line.size() &&
           (sign + 1 == line.size() || blanks.find(line[sign + 1]) != blanks.npos);
}

/// Whether a line says more than its words: an item of a list, a quotation, a box, or a line that
/// begins with a tag.
bool isMoreThanTitle(std::string_view line) {
    constexpr std::string_view signs = "*-+>";
    constexpr std::string_view others = "#@[>";
    if (line.empty()) {
        return false;
    }
    const std::size_t number = std::min(line.find_first_not_of(digits), line.size());
    const bool isNumbered = number > 0 && number < line.size() &&
                            (line[number] == '.' || line[number] == ')') &&
                            isMarkedBy(line, number);
    const bool isItem = signs.find(line.front()) != signs.npos && isMarkedBy(line, 0);
    return isNumbered || isItem ||
           (others.find(line.front()) != others.npos && headingSigns(line) == 0);
}

/// The title without the signs of a heading.
std::string_view wordsOf(std::string_view title) {
    return base::trimmed(title.substr(headingSigns(title)));
}

/// Changes the title in the file; what the file held before and after, for who takes it back.
/// Nothing: it has that title.
struct Retitled {
    std::string before;
    std::string after;
};
base::Result<std::optional<Retitled>> retitle(Services& services, const FiledItem& note,
                                              std::string_view title) {
    std::optional<Retitled> texts;
    const auto edited = services.safeFiles().edit(
        note.root, note.path,
        [&](std::string_view bytes) {
            auto next = store::editedBytes(
                bytes, [&](std::string_view text) -> base::Result<std::optional<std::string>> {
                    return std::optional(withTitle(text, title));
                });
            if (next && *next) {
                texts = Retitled{std::string(bytes), **next};
            }
            return next;
        },
        store::ChangeCause::renamed);
    if (!edited) {
        return edited.failure();
    }
    return *edited ? texts : std::nullopt;
}

void takeBack(Services& services, const FiledItem& note, const Retitled& texts) {
    [[maybe_unused]] const auto undone = services.safeFiles().edit(
        note.root, note.path,
        [&](std::string_view bytes) -> base::Result<std::optional<std::string>> {
            return bytes == texts.after ? std::optional(texts.before) : std::nullopt;
        },
        store::ChangeCause::undone);
}

base::Result<FiledItem> folderOf(Services& services, const FiledItem& note) {
    return targetFolder(services, note.folder());
}

}  // namespace

std::string withTitle(std::string_view text, std::string_view title) {
    const std::string_view words = wordsOf(title);
    const std::string_view body = base::trimmedStart(text);
    const std::size_t start = text.size() - body.size();
    const std::string_view line = base::trimmedEnd(body.substr(0, body.find('\n')));
    const std::string above = "# " + std::string(words);
    if (line.empty() || isMoreThanTitle(line)) {
        return above + std::string(store::lineBreakOf(text)) + std::string(text);
    }
    const std::size_t signs = headingSigns(line);
    std::string next(text.substr(0, start));
    if (signs > 0) {
        const std::size_t gap = line.find_first_not_of(blanks, signs);
        next += gap == line.npos ? std::string(line.substr(0, signs)) + " "
                                 : std::string(line.substr(0, gap));
        next += words;
    } else {
        next += isMoreThanTitle(words) ? above : std::string(words);
    }
    return next.append(body.substr(line.size()));
}

base::Result<std::string> renameNote(Services& services, const std::string& filename,
                                     std::string_view title) {
    const auto line = acceptedLine(title);
    if (!line) {
        return line.failure();
    }
    const auto name = nameForTitle(wordsOf(*line));
    if (!name) {
        return name.failure();
    }
    const auto note = filedItem(services, filename, Kind::file);
    if (!note) {
        return note.failure();
    }
    const auto folder = folderOf(services, *note);
    if (!folder) {
        return folder.failure();
    }
    const auto texts = retitle(services, *note, *line);
    if (!texts) {
        return texts.failure();
    }
    auto moved = moveToFreeName(services, *note, *folder, *name);
    if (!moved && *texts) {
        takeBack(services, *note, **texts);
    }
    tellCacheOfMove(services, filename, moved ? *moved : filename);
    return moved;
}

base::Result<std::string> moveNote(Services& services, const std::string& filename,
                                   std::string_view folder) {
    const auto note = filedItem(services, filename, Kind::file);
    if (!note) {
        return note.failure();
    }
    if (note->folder() == folder) {
        return filename;
    }
    const auto target = targetFolder(services, folder);
    if (!target) {
        return target.failure();
    }
    auto moved = moveToFreeName(services, *note, *target, store::baseName(filename));
    if (moved) {
        tellCacheOfMove(services, filename, *moved);
    }
    return moved;
}

}  // namespace tessaly::app
