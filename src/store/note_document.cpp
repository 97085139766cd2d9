// SPDX-License-Identifier: MIT
#include "store/note_document.h"

#include "base/utf8.h"

namespace tessaly::store {

std::optional<std::string_view> decodedText(std::string_view bytes) {
    if (!base::isUtf8(bytes)) {
        return std::nullopt;
    }
    return base::withoutByteOrderMark(bytes);
}

base::Result<NoteDocument> NoteDocument::open(ports::FileSystem& files, const std::string& path) {
    const auto contents = files.read(path);
    if (!contents) {
        return contents.failure();
    }
    NoteDocument document;
    document.readFromData(contents->bytes);
    return document;
}

void NoteDocument::readFromData(std::string_view bytes) {
    noteContent = decodedText(bytes);
    _hasByteOrderMark = noteContent && noteContent->size() != bytes.size();
}

std::optional<std::string> NoteDocument::dataOfType(DocumentError& error) const {
    if (!noteContent) {
        error = {DocumentError::Case::runtimeError, "Content empty"};
        return std::nullopt;
    }
    if (!base::isUtf8(*noteContent)) {
        error = {DocumentError::Case::runtimeError, "Could not convert content to .utf8 data"};
        return std::nullopt;
    }
    return _hasByteOrderMark ? std::string(base::byteOrderMark) + *noteContent : *noteContent;
}

}  // namespace tessaly::store
