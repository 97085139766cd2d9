// SPDX-License-Identifier: MIT
#include "store/history_texts.h"

#include <optional>

#include "base/localisation.h"
#include "base/sha256.h"
#include "base/temporary_name.h"
#include "store/paths.h"

namespace tessaly::store {

using base::Done;
using base::Failure;
using base::Result;
using Kind = ports::FolderEntry::Kind;

std::string HistoryTexts::fileOf(const std::string& hash) const {
    return joined(joined(_folder, hash.substr(0, 2)), hash);
}

Result<std::string> HistoryTexts::read(const std::string& hash) const {
    auto contents = _files.read(fileOf(hash));
    if (!contents) {
        return contents.failure();
    }
    if (base::sha256(contents->bytes) != hash) {
        return Failure{Failure::Kind::malformed,
                       fileOf(hash) + ": " + base::tr("is no longer what was kept")};
    }
    return (*std::move(contents)).bytes;
}

bool HistoryTexts::holds(const std::string& hash, std::string_view bytes) const {
    const auto contents = _files.read(fileOf(hash));
    return contents && contents->bytes == bytes;
}

Result<HistoryTexts::Put> HistoryTexts::put(const std::string& hash, std::string_view bytes,
                                            ports::Durability durability) {
    const std::string file = fileOf(hash);
    if (auto made = _changes.makeFolders(parentOf(file)); !made) {
        return made.failure();
    }
    auto created = _changes.create(file, bytes, ports::Readers::ownerOnly, durability);
    if (created) {
        return Put::isNew;
    }
    if (created.failure().kind != Failure::Kind::exists) {
        return created.failure();
    }
    auto renewed = renew(file, bytes, durability);
    return renewed ? Result<Put>(Put::wasThere) : renewed.failure();
}

Result<Done> HistoryTexts::renew(const std::string& file, std::string_view bytes,
                                 ports::Durability durability) {
    const auto there = _files.read(file);
    if (!there) {
        return there.failure();
    }
    // One that was left to the kernel may have lost its bytes, but not its name, in a power cut.
    if (there->bytes != bytes) {
        return _changes.replace(file, *there, bytes);
    }
    return durability == ports::Durability::now ? _changes.sync(file) : Result<Done>(Done{});
}

Result<Done> HistoryTexts::remove(const std::string& hash) {
    return _changes.remove(fileOf(hash));
}

Result<Done> HistoryTexts::sync(const std::string& hash) const {
    return _changes.sync(fileOf(hash));
}

Result<Done> HistoryTexts::keepOnly(const std::unordered_set<std::string>& hashes) {
    const auto folders = _files.list(_folder);
    if (!folders) {
        return folders.failure().kind == Failure::Kind::notFound ? Result<Done>(Done{})
                                                                 : folders.failure();
    }
    std::optional<Failure> failure;
    const auto note = [&](const auto& result) {
        if (!result && !failure && result.failure().kind != Failure::Kind::notFound) {
            failure = result.failure();
        }
    };
    for (const ports::FolderEntry& folder : *folders) {
        if (folder.kind != Kind::folder || folder.name.size() != 2) {
            continue;
        }
        const std::string path = joined(_folder, folder.name);
        const auto texts = _files.list(path);
        note(texts);
        if (!texts) {
            continue;
        }
        for (const ports::FolderEntry& text : *texts) {
            const bool isOurs = text.name.size() == 64 || base::nameOfTemporary(text.name);
            if (text.kind == Kind::file && isOurs && !hashes.contains(text.name)) {
                note(_changes.remove(joined(path, text.name)));
            }
        }
    }
    return failure ? Result<Done>(*failure) : Done{};
}

}  // namespace tessaly::store
