// SPDX-License-Identifier: MIT
#include "store/change_session.h"

#include <algorithm>
#include <utility>

#include "store/paths.h"

namespace tessaly::store {

using base::Done;
using base::Result;

ChangeSession::ChangeSession(Leftovers::Tools tools, const std::string& root,
                             std::unique_ptr<ports::FolderLock> lock)
    : _files(tools.files), _leftovers(tools), _lock(std::move(lock)) {
    const std::vector<std::string> folders = _lock->unfinished();
    if (folders.empty()) {
        return;
    }
    const auto resolved = _files.resolve(root);
    for (const std::string& folder : folders) {
        settle(folder, root, resolved ? *resolved : root);
    }
}

void ChangeSession::settle(const std::string& folder, const std::string& root,
                           const std::string& resolved) {
    if (folder == root || folder == resolved) {
        add(_leftovers.settleRoot(root));
    } else if (isInside(folder, root) || isInside(folder, resolved)) {
        add(_leftovers.settleTree(folder));
    } else {
        // Where a link led to. What lies below it may be all that the user has.
        add(_leftovers.settleFolder(folder));
    }
}

void ChangeSession::add(const Result<Done>& settled) {
    if (_settled) {
        _settled = settled;
    }
}

Result<Done> ChangeSession::begin(const std::string& folder) {
    if (std::find(_begun.begin(), _begun.end(), folder) != _begun.end()) {
        return Done{};
    }
    auto begun = _lock->begin(folder);
    if (begun) {
        _begun.push_back(folder);
    }
    return begun;
}

Result<Done> ChangeSession::beginWrite(const std::string& file) {
    const std::string folder = parentOf(file);
    const auto target = _files.resolve(file);
    const auto resolved = _files.resolve(folder);
    if (target && resolved && parentOf(*target) != *resolved) {
        if (auto begun = begin(parentOf(*target)); !begun) {
            return begun;
        }
    }
    return begin(folder);
}

Result<Done> ChangeSession::noted(Result<Done> outcome) {
    _hasFailed = _hasFailed || !outcome;
    return outcome;
}

Result<Done> ChangeSession::end() {
    for (const std::string& folder : _begun) {
        if (_hasFailed) {
            add(_leftovers.settleFolder(folder));
        }
    }
    if (_settled) {
        _lock->finish();
    }
    return _settled;
}

}  // namespace tessaly::store
