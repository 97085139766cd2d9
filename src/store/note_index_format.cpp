// SPDX-License-Identifier: MIT
#include "store/note_index_format.h"

#include <array>
#include <optional>
#include <xxhash.h>

#include "base/localisation.h"

namespace tessaly::store {

using base::Failure;

namespace {

constexpr std::uint64_t magic = 0x5844494C53455400;  // with a byte that is in no text
constexpr std::uint32_t byteOrder = 0x01020304;
constexpr std::size_t markSize = 16;  // of what all versions end with

static_assert(sizeof(IndexTrailer) == offsetof(IndexTrailer, magic) + markSize);

Failure malformed(std::string why) {
    return {Failure::Kind::malformed, std::move(why)};
}

Failure damaged() {
    return malformed(base::tr("the index is damaged"));
}

std::uint64_t trailerHash(const IndexTrailer& trailer) {
    return textHash(bytesOf(trailer).substr(sizeof(trailer.trailerHash)));
}

std::optional<Failure> whyForeign(std::string_view file) {
    if (file.size() < markSize) {
        return damaged();
    }
    IndexTrailer end{};
    std::memcpy(&end.magic, file.data() + file.size() - markSize, markSize);
    if (end.magic != magic) {
        return damaged();
    }
    if (end.byteOrder != byteOrder) {
        return malformed(base::tr("the index is another kind of machine's"));
    }
    if (end.version != indexVersion) {
        return malformed(end.version > indexVersion
                             ? base::tr("the index is of a newer version of the program")
                             : base::tr("the index is of an older version of the program"));
    }
    return std::nullopt;
}

/// Cuts one part after the other off the front.
class Cutter {
public:
    explicit Cutter(std::string_view rest) : _rest(rest) {}

    std::string_view cut(std::uint64_t count, std::size_t rowSize = 1) {
        _fits = _fits && count <= _rest.size() / rowSize;
        const std::string_view part = _rest.substr(0, _fits ? count * rowSize : 0);
        _rest.remove_prefix(part.size());
        return part;
    }
    std::string_view rest() const { return _rest; }
    bool isCutUp() const { return _fits && _rest.empty(); }

private:
    std::string_view _rest;
    bool _fits = true;
};

}  // namespace

base::Result<IndexSections> readIndexSections(std::string_view file) {
    if (auto failure = whyForeign(file)) {
        return *std::move(failure);
    }
    if (file.size() < sizeof(IndexTrailer)) {
        return damaged();
    }
    IndexTrailer trailer{};
    std::memcpy(&trailer, file.data() + file.size() - sizeof(trailer), sizeof(trailer));
    if (trailer.trailerHash != trailerHash(trailer)) {
        return damaged();
    }
    Cutter cutter(file.substr(0, file.size() - sizeof(trailer)));
    IndexSections found;
    found.texts = cutter.cut(trailer.texts);
    const std::string_view tables = cutter.rest();
    found.inodes = cutter.cut(trailer.notes, sizeof(std::uint64_t));
    found.notes = cutter.cut(trailer.notes, sizeof(IndexNote));
    found.folders = cutter.cut(trailer.folders, sizeof(IndexFolder));
    found.names = cutter.cut(trailer.names);
    found.records = cutter.cut(trailer.records);
    found.root = cutter.cut(trailer.root);
    found.markers = trailer.markers;
    if (!cutter.isCutUp() || textHash(tables) != trailer.tablesHash) {
        return damaged();
    }
    return found;
}

IndexTrailer sealed(IndexTrailer trailer) {
    trailer.magic = magic;
    trailer.byteOrder = byteOrder;
    trailer.version = indexVersion;
    trailer.trailerHash = trailerHash(trailer);
    return trailer;
}

std::uint64_t textHash(std::string_view text) {
    return XXH3_64bits(text.data(), text.size());
}

std::uint64_t bitsOf(const grammar::MarkerSettings& markers) {
    return (markers.isAsteriskTodo ? 1U : 0U) | (markers.isDashTodo ? 2U : 0U) |
           (markers.isNumbersTodo ? 4U : 0U);
}

FolderAndName splitFilename(std::string_view filename) {
    const auto slash = filename.rfind('/');
    return slash == std::string_view::npos
               ? FolderAndName{{}, filename}
               : FolderAndName{filename.substr(0, slash), filename.substr(slash + 1)};
}

}  // namespace tessaly::store
