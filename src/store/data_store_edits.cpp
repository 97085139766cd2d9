// SPDX-License-Identifier: MIT
#include <utility>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/log.h"
#include "base/utf8.h"
#include "store/data_store.h"
#include "store/new_files.h"
#include "store/note_document.h"
#include "store/note_names.h"
#include "store/paths.h"
#include "store/stray_notes.h"
#include "store/text_edits.h"

namespace tessaly::store {
namespace {

using base::Failure;
using NewText = base::Result<std::optional<std::string>>;

// How often a note may come or go between our look and our write.
constexpr int maxEditTries = 8;

constexpr std::string_view notMerged = "Could not merge disconnected calendar notes: ";

NotWritten restless(const std::string& path) {
    return {
        noteNotWritten,
        {Failure::Kind::unavailable, path + ": " + base::tr("another program keeps changing it")}};
}

base::Result<bool> editText(SafeFiles& files, const std::string& root, const std::string& path,
                            const TextEdit& edit, ChangeCause cause) {
    return files.edit(
        root, path, [&](std::string_view bytes) { return editedBytes(bytes, edit); }, cause);
}

// A refused text does not tell where it was; the disk's failures do.
Failure withPath(const Failure& failure, const std::string& path) {
    return failure.kind == Failure::Kind::malformed
               ? Failure{failure.kind, path + ": " + failure.description}
               : failure;
}

/// Whether adding text changed a note, or why it could not be added.
struct Added {
    bool changed = false;
    std::optional<NotWritten> notWritten;
};

/// Edits a note, or writes it new with `text` when it is not there. Logs no failure.
Added editOrCreate(const DataStore::Tools& tools, const std::string& root, const std::string& path,
                   std::string_view text, const TextEdit& edit, ChangeCause cause) {
    for (int tries = 0; tries < maxEditTries; ++tries) {
        const auto edited = editText(tools.safeFiles, root, path, edit, cause);
        if (edited) {
            return {*edited, std::nullopt};
        }
        if (edited.failure().kind != Failure::Kind::notFound) {
            return {false, NotWritten{noteNotWritten, withPath(edited.failure(), path)}};
        }
        if (text.empty()) {
            return {};
        }
        auto notWritten = writeNewFile(tools, root, path, text, cause);
        if (!notWritten) {
            return {true, std::nullopt};
        }
        if (notWritten->failure.kind != Failure::Kind::exists) {
            return {false, std::move(notWritten)};
        }
    }
    return {false, restless(path)};
}

Added addTo(const DataStore::Tools& tools, const std::string& root, const std::string& path,
            std::string_view text, base::WriteMode mode) {
    return editOrCreate(
        tools, root, path, text,
        [&](std::string_view content) -> NewText { return withTextAdded(content, text, mode); },
        ChangeCause::added);
}

Added mergeInto(const DataStore::Tools& tools, const std::string& root, const std::string& path,
                std::string_view text) {
    return editOrCreate(
        tools, root, path, text,
        [&](std::string_view content) -> NewText {
            return holdsLines(content, text)
                       ? std::nullopt
                       : withTextAdded(content, text, base::WriteMode::append);
        },
        ChangeCause::merged);
}

/// A merge that has been asked for: the calendar notes' root and the paths of both files.
struct Merge {
    const std::string& root;
    const std::string& stray;
    const std::string& proper;
};

/// Gives the stray the name of its day's note, unless that is there: then no, and it still is what
/// it was.
base::Result<bool> renameStray(const DataStore::Tools& tools, const Merge& merge) {
    const auto kind = tools.files.kindOf(merge.proper);
    if (kind) {
        return false;
    }
    if (kind.failure().kind != Failure::Kind::notFound) {
        return kind.failure();
    }
    if (hasPlaceholder(tools.files, merge.proper)) {
        return notDownloaded(merge.proper);
    }
    const auto moved = tools.safeFiles.move(merge.root, merge.stray, merge.proper);
    if (moved) {
        return true;
    }
    return moved.failure().kind == Failure::Kind::exists ? base::Result<bool>(false)
                                                         : moved.failure();
}

/// Adds the stray's text to its day's note, then removes it if it still holds that.
base::Result<base::Done> joinStray(const DataStore::Tools& tools, const Merge& merge) {
    base::log("seems its possible to merge it and it belongs to: ", merge.proper);
    const auto stray = tools.files.read(merge.stray);
    if (!stray) {
        return logged(notMerged, stray.failure());
    }
    const auto text = decodedText(stray->bytes);
    if (!text) {
        return logged(notMerged, {Failure::Kind::malformed, merge.stray + ": Content empty"});
    }
    const Added added = mergeInto(tools, merge.root, merge.proper, *text);
    if (added.notWritten) {
        return logged(notMerged, added.notWritten->failure);
    }
    const auto removed = tools.safeFiles.remove(merge.root, merge.stray, &stray->bytes);
    if (removed || removed.failure().kind == Failure::Kind::notFound) {
        return base::Done{};
    }
    return logged("could not delete the extra note: ", removed.failure());
}

}  // namespace

base::Result<bool> DataStore::addText(std::string_view text, base::NoteType type,
                                      std::string_view filename, base::WriteMode mode,
                                      const std::function<void()>& completion) {
    const std::string rootFolder = root();
    const auto added = _files.sync([&]() -> base::Result<bool> {
        const auto path = pathIn(rootFolder, type, filename);
        if (!path) {
            return logged(noteNotWritten, path.failure());
        }
        const Added result =
            addTo(_tools, rootFolder, *path, base::withoutByteOrderMark(text), mode);
        if (const auto& notWritten = result.notWritten) {
            return logged(notWritten->message, notWritten->failure);
        }
        return result.changed;
    });
    if (added && completion) {
        completion();
    }
    return added;
}

base::Result<base::Done> DataStore::deleteRange(base::NoteType type, std::string_view filename,
                                                base::TextRange range,
                                                const std::optional<std::string>& expected) {
    const auto edit = [&](std::string_view content) -> NewText {
        auto text = withoutRange(content, range, expected);
        if (!text) {
            return text.failure();
        }
        return *text == content ? std::nullopt : std::optional(*std::move(text));
    };
    const std::string rootFolder = root();
    return _files.sync([&]() -> base::Result<base::Done> {
        const auto path = pathIn(rootFolder, type, filename);
        const auto deleted =
            path ? editText(_tools.safeFiles, rootFolder, *path, edit, ChangeCause::deleted)
                 : base::Result<bool>(path.failure());
        if (deleted) {
            return base::Done{};
        }
        base::log(fmt::format("Failed to delete range: '{{{}, {}}}' in {}. Error = ",
                              range.location, range.length, filename),
                  deleted.failure().description);
        return deleted.failure();
    });
}

base::Result<base::Day> DataStore::mergeDisconnectedCalendarNote(std::string_view filename) {
    const auto day = dayOfStray(filename);
    if (!day) {
        return Failure{Failure::Kind::malformed,
                       std::string(filename) + ": " + base::tr("the name tells no day")};
    }
    const std::string rootFolder = root();
    return _files.sync([&]() -> base::Result<base::Day> {
        const auto stray = pathIn(rootFolder, base::NoteType::calendar, filename);
        const auto proper = pathIn(rootFolder, base::NoteType::calendar, calendarFilename(*day));
        if (!stray || !proper) {
            return logged(notMerged, stray ? proper.failure() : stray.failure());
        }
        const Merge merge{rootFolder, *stray, *proper};
        const auto renamed = renameStray(_tools, merge);
        if (!renamed) {
            return logged(notMerged, renamed.failure());
        }
        const auto joined =
            *renamed ? base::Result<base::Done>(base::Done{}) : joinStray(_tools, merge);
        return joined ? base::Result<base::Day>(*day) : joined.failure();
    });
}

}  // namespace tessaly::store
