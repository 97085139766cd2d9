// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/change_notes.h"
#include "app/services.h"
#include "base/failure.h"
#include "store/history.h"
#include "store/note_reader.h"

namespace tessaly::app {

/// Digits of a hash that name a text to the user.
inline constexpr std::size_t historyIdDigits = 10;

/// A text that the history keeps, as a list shows it.
struct HistoryRow {
    store::HistoryEntry entry;
    std::string id;          ///< the hash's first digits
    std::string name;        ///< relative to the data folder in use, else the whole path
    bool isCurrent = false;  ///< the newest entry with the bytes that its file holds now
};

/// The file that `note` means to the history: what `findNote` takes, or a file that is no longer
/// there, by its name, with or without folders and extension, as the history knows it. Failure, in
/// words for the user; `cancelled`, without words.
base::Result<std::string> fileInHistory(Services& services, std::string_view note,
                                        store::NoteReader::Options options = {});

/// All texts that the history keeps, newest first, or those of one file.
base::Result<std::vector<HistoryRow>> listHistory(
    Services& services, const std::optional<std::string>& file = std::nullopt);

struct HistoryText {
    HistoryRow row;
    std::string bytes;
};

/// A text by the first digits of its hash. Failure, in words for the user.
base::Result<HistoryText> historyText(Services& services, std::string_view id);

/// Puts a text back into its file, or into the note `to` (as `findNote` takes it), making the file
/// when it is not there. What the file holds now is kept first. Failure, in words for the user:
/// `outside` for a text whose file is not in the data folder in use.
base::Result<ChangedNote> restoreText(Services& services, std::string_view id,
                                      std::optional<std::string_view> to,
                                      store::NoteReader::Options options = {});

}  // namespace tessaly::app
