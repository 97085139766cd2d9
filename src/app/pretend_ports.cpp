// SPDX-License-Identifier: MIT
#include "app/pretend_ports.h"

#include <set>
#include <utility>

namespace tessaly::app {

using base::Done;
using base::Result;

namespace {

class PretendLock : public ports::FolderLock {
public:
    std::vector<std::string> unfinished() const override { return {}; }
    Result<Done> begin(const std::string&) override { return Done{}; }
    void finish() override {}
};

}  // namespace

Result<std::unique_ptr<ports::FolderLock>> PretendLocks::take(const std::string&) {
    return std::unique_ptr<ports::FolderLock>(std::make_unique<PretendLock>());
}

bool PretendLocks::isUnfinished(const std::string&) {
    return false;
}

std::optional<ports::DefaultsValue> PretendDefaults::valueForKey(std::string_view key) {
    const std::scoped_lock lock(_mutex);
    const auto found = _changes.find(key);
    return found == _changes.end() ? _real.valueForKey(key) : found->second;
}

Result<Done> PretendDefaults::setValue(std::string_view key, const ports::DefaultsValue& value) {
    return change(key, value);
}

Result<Done> PretendDefaults::removeValue(std::string_view key) {
    return change(key, std::nullopt);
}

Result<Done> PretendDefaults::change(std::string_view key,
                                     std::optional<ports::DefaultsValue> value) {
    // A store that does not read well takes no value.
    if (auto wrong = _real.problem()) {
        return *std::move(wrong);
    }
    const std::scoped_lock lock(_mutex);
    _changes.insert_or_assign(std::string(key), std::move(value));
    return Done{};
}

std::vector<std::string> PretendDefaults::keys() {
    const auto real = _real.keys();
    std::set<std::string> keys(real.begin(), real.end());
    const std::scoped_lock lock(_mutex);
    for (const auto& [key, value] : _changes) {
        if (value) {
            keys.insert(key);
        } else {
            keys.erase(key);
        }
    }
    return {keys.begin(), keys.end()};
}

}  // namespace tessaly::app
