// SPDX-License-Identifier: MIT
#include "sync/looks.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "store/entry_role.h"
#include "store/foreign_names.h"
#include "store/paths.h"

namespace tessaly::sync {
namespace {

using store::NameKind;

bool isKind(std::string_view folder) {
    const auto type = base::noteTypeOfFolder(folder);
    return std::find(watchedKinds.begin(), watchedKinds.end(), type) != watchedKinds.end();
}

}  // namespace

bool isWatched(std::string_view path, bool isFolder) {
    const std::size_t slash = path.find('/');
    if (!isKind(path.substr(0, slash))) {
        return false;
    }
    if (slash == path.npos) {
        return true;
    }
    const std::string_view below = path.substr(slash + 1);
    if (!store::isCoveredPath(below)) {
        return false;
    }
    const NameKind kind = store::nameKind(store::lastComponent(below));
    return isFolder || kind == NameKind::ordinary || kind == NameKind::placeholder;
}

void Looks::addHint(const ports::PossibleChange& hint) {
    if (hint.path.empty()) {
        addTree({});
        return;
    }
    // The query may tell what lies beside the kinds, too; nothing there is ours.
    if (!isWatched(hint.path, hint.reach == ports::PossibleChange::Reach::tree)) {
        return;
    }
    if (hint.path.find('/') == hint.path.npos) {
        addTree(hint.path);
        return;
    }
    _names[store::parentOf(hint.path)].emplace(store::lastComponent(hint.path));
    if (hint.reach == ports::PossibleChange::Reach::tree) {
        addTree(hint.path);
    }
}

void Looks::addTree(std::string folder) {
    if (!folder.empty()) {
        _trees.insert(std::move(folder));
        return;
    }
    _isEverything = true;
    for (const base::NoteType kind : watchedKinds) {
        _trees.emplace(base::folderName(kind));
    }
}

std::vector<std::string> Looks::trees() const {
    std::vector<std::string> outermost;
    std::copy_if(_trees.begin(), _trees.end(), std::back_inserter(outermost),
                 [this](const std::string& tree) {
                     return tree.find('/') == tree.npos || !isInTree(store::parentOf(tree));
                 });
    return outermost;
}

std::map<std::string, std::set<std::string>> Looks::names() const {
    auto names = _names;
    std::erase_if(names, [this](const auto& folder) { return isInTree(folder.first); });
    return names;
}

bool Looks::isInTree(std::string_view folder) const {
    for (std::size_t end = folder.size(); end != folder.npos; end = folder.rfind('/', end - 1)) {
        if (_trees.contains(std::string(folder.substr(0, end)))) {
            return true;
        }
    }
    return false;
}

}  // namespace tessaly::sync
