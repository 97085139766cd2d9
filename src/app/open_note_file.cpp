// SPDX-License-Identifier: MIT
#include "app/open_note_file.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "app/change_notes.h"
#include "base/localisation.h"
#include "store/new_files.h"
#include "store/note_document.h"
#include "store/paths.h"
#include "store/three_way_merge.h"

namespace tessaly::app {
namespace {

using base::Failure;
using base::tr;
using store::ChangeCause;

// How often the file may come or go between our look and our write.
constexpr int mostTries = 8;
constexpr int mostCopies = 1000;
constexpr std::size_t longestName = 200;  // bytes, in the name of a copy

bool isOf(const Failure& failure, Failure::Kind kind) {
    return failure.kind == kind;
}

Failure notText(const NoteAddress& note) {
    return {Failure::Kind::malformed,
            fmt::format(fmt::runtime(tr("{} is not UTF-8 text")), pathInDataFolder(note))};
}

/// What the editor's text becomes in a file that holds `theirs`.
std::string joinedText(std::string_view base, const std::string& mine, std::string_view theirs) {
    if (theirs == base) {
        return mine;
    }
    return mine == theirs ? mine : store::threeWayMerge(base, mine, theirs);
}

/// Of another data folder we know nothing: then no line of either text is taken for deleted.
std::string_view baseIn(const std::string& root, const FileText& known) {
    return root == known.root ? std::string_view(known.text) : std::string_view();
}

/// The last whole characters of a name, in at most `most` bytes.
std::string_view endOf(std::string_view name, std::size_t most) {
    std::size_t start = name.size() - std::min(name.size(), most);
    while (start < name.size() && (static_cast<unsigned char>(name[start]) & 0xC0) == 0x80) {
        ++start;
    }
    return name.substr(start);
}

}  // namespace

OpenNoteFile::OpenNoteFile(Services& services, NoteAddress address)
    : _services(services), _address(std::move(address)), _since(services.noteMoves().count()) {
    // What other threads ask for must be there before.
    services.dataStore();
    services.noteCache();
}

NoteMoves::Stay OpenNoteFile::stay() const {
    return {_services.noteMoves(), canMove() ? _address.filename : std::string(), _since};
}

base::Result<FileText> OpenNoteFile::read() const {
    const NoteMoves::Stay stays = stay();
    const std::string root = _services.dataStore().root();
    const auto path = _services.dataStore().pathOf(_address.type, nameOf(stays));
    if (!path) {
        return path.failure();
    }
    ports::FileSystem& files = _services.ports().files;
    const auto contents = files.read(*path);
    if (contents) {
        const auto text = store::decodedText(contents->bytes);
        return text ? base::Result(FileText{std::string(*text), true, root}) : notText(_address);
    }
    if (!isOf(contents.failure(), Failure::Kind::notFound)) {
        return contents.failure();
    }
    return store::hasPlaceholder(files, *path) ? base::Result<FileText>(store::notDownloaded(*path))
                                               : FileText{{}, false, root};
}

base::Result<FileText> OpenNoteFile::edit(const Place& place, const FileText& known,
                                          const std::string& mine) const {
    const std::string_view base = baseIn(place.root, known);
    FileText written{{}, true, place.root};
    const auto join = [&](std::string_view theirs) -> base::Result<std::optional<std::string>> {
        written.text = joinedText(base, mine, theirs);
        return written.text == theirs ? std::nullopt : std::optional(written.text);
    };
    const auto editBytes = [&](std::string_view bytes) {
        return store::decodedText(bytes)
                   ? store::editedBytes(bytes, join)
                   : base::Result<std::optional<std::string>>(notText(_address));
    };
    const auto edited =
        _services.safeFiles().edit(place.root, place.path, editBytes, ChangeCause::typed);
    return edited ? base::Result(std::move(written)) : edited.failure();
}

base::Result<FileText> OpenNoteFile::write(const FileText& known, const std::string& mine) const {
    store::DataStore& dataStore = _services.dataStore();
    const Ports& ports = _services.ports();
    const store::DataStore::Tools tools{ports.files, ports.changes, _services.safeFiles(),
                                        ports.trash, ports.clock,   ports.executor};
    const NoteMoves::Stay stays = stay();
    const std::string root = dataStore.root();
    const auto path = dataStore.pathOf(_address.type, nameOf(stays));
    if (!path) {
        return path.failure();
    }
    for (int tries = 0; tries < mostTries; ++tries) {
        auto edited = edit({root, *path}, known, mine);
        if (edited || !isOf(edited.failure(), Failure::Kind::notFound)) {
            return edited;
        }
        if (mine.empty()) {
            return FileText{{}, false, root};
        }
        const auto notWritten = store::writeNewFile(tools, root, *path, mine);
        if (!notWritten) {
            return FileText{mine, true, root};
        }
        if (!isOf(notWritten->failure, Failure::Kind::exists)) {
            return notWritten->failure;
        }
    }
    return Failure{Failure::Kind::unavailable,
                   *path + ": " + tr("another program keeps changing it")};
}

void OpenNoteFile::tellCache() const {
    _services.noteCache().reread(
        _address.type,
        canMove() ? _services.noteMoves().nameNow(_address.filename, _since) : _address.filename);
}

base::Result<std::string> OpenNoteFile::keepCopy(const std::string& text) const {
    const Ports& ports = _services.ports();
    const std::string day = base::tagText(ports.clock.today());
    const std::string_view name = endOf(store::lastComponent(_address.filename), longestName);
    Failure failure;
    // Where the one cannot be written, the other may lie on another disk.
    for (const std::string& state : std::array{ports.folders.state, ports.folders.cache}) {
        const std::string folder = state + "/unsaved";
        if (auto made = ports.changes.makeFolders(folder); !made) {
            failure = made.failure();
            continue;
        }
        for (int number = 1; number <= mostCopies; ++number) {
            std::string path = fmt::format("{}/{} {} {}", folder, day, number, name);
            const auto kept = ports.changes.create(path, text, ports::Readers::ownerOnly);
            if (kept) {
                return path;
            }
            failure = kept.failure();
            if (!isOf(failure, Failure::Kind::exists)) {
                break;
            }
        }
    }
    return failure;
}

}  // namespace tessaly::app
