// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ports/folder_locks.h"
#include "ports/user_defaults.h"

namespace tessaly::app {

/// Locks of nothing, at once, with nothing unfinished: for changes that are not made.
class PretendLocks : public ports::FolderLocks {
public:
    base::Result<std::unique_ptr<ports::FolderLock>> take(const std::string& folder) override;
    bool isUnfinished(const std::string& folder) override;
};

/// A store whose values are read from a real one and whose changes stay in memory. Any thread.
class PretendDefaults : public ports::UserDefaults {
public:
    /// `real` outlives this object.
    explicit PretendDefaults(ports::UserDefaults& real) : _real(real) {}

    std::optional<ports::DefaultsValue> valueForKey(std::string_view key) override;
    base::Result<base::Done> setValue(std::string_view key,
                                      const ports::DefaultsValue& value) override;
    base::Result<base::Done> removeValue(std::string_view key) override;
    std::vector<std::string> keys() override;
    std::optional<base::Failure> problem() override { return _real.problem(); }

private:
    base::Result<base::Done> change(std::string_view key,
                                    std::optional<ports::DefaultsValue> value);

    ports::UserDefaults& _real;
    std::mutex _mutex;
    /// Under the mutex; nothing: taken away.
    std::map<std::string, std::optional<ports::DefaultsValue>, std::less<>> _changes;
};

}  // namespace tessaly::app
