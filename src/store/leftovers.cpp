// SPDX-License-Identifier: MIT
#include "store/leftovers.h"

#include <optional>

#include "base/note_type.h"
#include "base/sha256.h"
#include "base/temporary_name.h"
#include "store/paths.h"

namespace tessaly::store {

using base::Done;
using base::Failure;
using base::Result;
using Kind = ports::FolderEntry::Kind;

namespace {

/// The first failure of several steps, none of which stops the others. What is no longer there
/// needs none.
class FirstFailure {
public:
    template <class T>
    void add(const Result<T>& result) {
        if (!result && !_failure && result.failure().kind != Failure::Kind::notFound) {
            _failure = result.failure();
        }
    }
    Result<Done> result() const { return _failure ? Result<Done>(*_failure) : Done{}; }

private:
    std::optional<Failure> _failure;
};

}  // namespace

Result<Done> Leftovers::settleFolder(const std::string& folder) {
    return settle(folder, Depth::folder);
}

Result<Done> Leftovers::settleTree(const std::string& folder) {
    return settle(folder, Depth::tree);
}

Result<Done> Leftovers::settleRoot(const std::string& root) {
    FirstFailure failure;
    failure.add(settleFolder(root));
    for (const auto& kind : base::EnumNames<base::NoteType>::rows) {
        if (kind.value != base::NoteType::none) {
            failure.add(settleTree(joined(root, kind.text)));
        }
    }
    return failure.result();
}

Result<Done> Leftovers::settle(const std::string& folder, Depth depth) {
    const auto entries = _tools.files.list(folder);
    FirstFailure failure;
    failure.add(entries);
    if (!entries) {
        return failure.result();
    }
    for (const ports::FolderEntry& entry : *entries) {
        const std::string path = joined(folder, entry.name);
        if (entry.kind == Kind::folder && depth == Depth::tree && !entry.name.starts_with('.')) {
            failure.add(settle(path, depth));
        } else if (const auto target = base::nameOfTemporary(entry.name)) {
            failure.add(settleEntry(entry.kind, path, joined(folder, *target)));
        }
    }
    return failure.result();
}

Result<Done> Leftovers::settleEntry(Kind kind, const std::string& path, const std::string& target) {
    if (kind == Kind::link) {
        // Of a removal of a link, which holds no text of its own.
        return _tools.changes.remove(path);
    }
    return kind == Kind::file ? settleFile(path, target) : Done{};
}

Result<Done> Leftovers::settleFile(const std::string& file, const std::string& target) {
    const auto read = _tools.files.read(file);
    if (!read) {
        return read.failure();
    }
    if (!read->bytes.empty() && !isKnown(target, read->bytes)) {
        auto kept = _tools.history.keepOld(target, read->bytes, ChangeCause::unfinished);
        if (!kept) {
            return kept;
        }
    }
    return _tools.changes.remove(file, &*read);
}

// A write of ours has just put the old and the new text there; one that was cut off begins as the
// new one does.
bool Leftovers::isKnown(const std::string& target, std::string_view bytes) const {
    const auto entries = _tools.history.entries(target);
    if (!entries) {
        return false;
    }
    const std::string hash = base::sha256(bytes);
    for (std::size_t i = 0; i < entries->size(); ++i) {
        const HistoryEntry& entry = (*entries)[i];
        if (i >= 2 && entry.hash != hash) {
            continue;
        }
        const auto text = _tools.history.text(entry);
        if (text && text->starts_with(bytes)) {
            return true;
        }
    }
    return false;
}

}  // namespace tessaly::store
