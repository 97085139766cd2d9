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

namespace {

base::Result<std::string> bytesOfDocument(const NoteDocument& document) {
    DocumentError error;
    auto bytes = document.dataOfType(error);
    return bytes ? base::Result<std::string>(std::move(*bytes))
                 : base::Failure{base::Failure::Kind::malformed, error.message};
}

}  // namespace

base::Result<std::optional<std::string>> editedBytes(std::string_view bytes, const TextEdit& edit) {
    NoteDocument document;
    document.readFromData(bytes);
    if (!document.noteContent) {
        return bytesOfDocument(document).failure();
    }
    auto text = edit(*document.noteContent);
    if (!text || !*text) {
        return text;
    }
    document.noteContent = **std::move(text);
    auto edited = bytesOfDocument(document);
    return edited ? base::Result<std::optional<std::string>>(*std::move(edited)) : edited.failure();
}

base::Result<std::string> bytesOfText(std::string_view text) {
    NoteDocument document;
    document.noteContent = text;
    return bytesOfDocument(document);
}

}  // namespace tessaly::store
