// SPDX-License-Identifier: MIT
#include "app/note_moves.h"

#include <algorithm>

#include "store/paths.h"

namespace tessaly::app {
namespace {

void takeOneAway(std::vector<std::string>& names, const std::string& name) {
    if (const auto found = std::find(names.begin(), names.end(), name); found != names.end()) {
        names.erase(found);
    }
}

bool isInOneOf(const std::vector<std::string>& items, const std::string& name) {
    return std::any_of(items.begin(), items.end(),
                       [&](const std::string& item) { return store::isInside(name, item); });
}

}  // namespace

std::size_t NoteMoves::count() const {
    const std::scoped_lock lock(_mutex);
    return _made.size();
}

std::string NoteMoves::nameNow(const std::string& filename, std::size_t since) const {
    const std::scoped_lock lock(_mutex);
    return nameNowLocked(filename, since);
}

std::string NoteMoves::nameNowLocked(const std::string& filename, std::size_t since) const {
    std::string name = filename;
    for (std::size_t move = since; move < _made.size(); ++move) {
        const auto& [from, to] = _made[move];
        if (store::isInside(name, from)) {
            name.replace(0, from.size(), to);
        }
    }
    return name;
}

NoteMoves::Stay::Stay(NoteMoves& moves, const std::string& filename, std::size_t since)
    : _moves(moves) {
    std::unique_lock lock(_moves._mutex);
    _moves._changed.wait(lock, [&] {
        _name = _moves.nameNowLocked(filename, since);
        return !isInOneOf(_moves._moving, _name);
    });
    _moves._staying.push_back(_name);
}

NoteMoves::Stay::~Stay() {
    {
        const std::scoped_lock lock(_moves._mutex);
        takeOneAway(_moves._staying, _name);
    }
    _moves._changed.notify_all();
}

NoteMoves::Move::Move(NoteMoves& moves, std::string from) : _moves(moves), _from(std::move(from)) {
    std::unique_lock lock(_moves._mutex);
    _moves._changed.wait(lock, [&] {
        return std::none_of(_moves._staying.begin(), _moves._staying.end(),
                            [&](const std::string& name) { return store::isInside(name, _from); });
    });
    _moves._moving.push_back(_from);
}

NoteMoves::Move::~Move() {
    {
        const std::scoped_lock lock(_moves._mutex);
        takeOneAway(_moves._moving, _from);
    }
    _moves._changed.notify_all();
}

void NoteMoves::Move::done(const std::string& to) {
    if (to != _from) {
        const std::scoped_lock lock(_moves._mutex);
        _moves._made.emplace_back(_from, to);
    }
}

void NoteMoves::beginRemoval(const std::string& name) {
    _going.push_back(name);
    if (_onRemoval) {
        _onRemoval();
    }
}

void NoteMoves::endRemoval(const std::string& name) {
    takeOneAway(_going, name);
    if (_onRemoval) {
        _onRemoval();
    }
}

bool NoteMoves::isGoing(const std::string& filename) const {
    return isInOneOf(_going, filename);
}

}  // namespace tessaly::app
