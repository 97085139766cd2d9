// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/failure.h"
#include "ports/file_system.h"

namespace tessaly::store {

/// The text of a note file's bytes, without a byte-order mark; nothing when they are not UTF-8.
std::optional<std::string_view> decodedText(std::string_view bytes);

/// What a document raises when its content cannot be had as bytes.
struct DocumentError {
    enum class Case { runtimeError };
    Case kind = Case::runtimeError;
    std::string message;
};

/// One note file, read and to be written as UTF-8. Not for two threads at once.
class NoteDocument {
public:
    /// Reads the file at `path`. Success also when its bytes are not UTF-8: `noteContent` is then
    /// absent. Failure: the file could not be read.
    static base::Result<NoteDocument> open(ports::FileSystem& files, const std::string& path);

    /// Takes bytes as read. A byte-order mark is not part of the content, and is put back when the
    /// document becomes bytes again.
    void readFromData(std::string_view bytes);

    /// The bytes to write, or a `runtimeError` "Content empty" (absent content) or
    /// "Could not convert content to .utf8 data".
    std::optional<std::string> dataOfType(DocumentError& error) const;

    /// The text; absent until read, or when the bytes were not UTF-8.
    std::optional<std::string> noteContent;

private:
    bool _hasByteOrderMark = false;
};

/// A change of a note's text: the new one, nothing when it needs no change, or why it cannot be
/// made.
using TextEdit = std::function<base::Result<std::optional<std::string>>(std::string_view content)>;

/// The bytes of a note file after `edit` of its text; nothing when that changes nothing. Failures:
/// the edit's own, and what `NoteDocument` raises, as `malformed`: bytes that are not UTF-8 are not
/// edited ("Content empty").
base::Result<std::optional<std::string>> editedBytes(std::string_view bytes, const TextEdit& edit);

/// The bytes of a new note file; `malformed` as above.
base::Result<std::string> bytesOfText(std::string_view text);

}  // namespace tessaly::store
