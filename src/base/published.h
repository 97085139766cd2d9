// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <mutex>
#include <utility>

namespace tessaly::base {

/// The newest value of something that many threads read. A reader gets a snapshot that nobody
/// changes and never waits for a writer's work: the lock covers the exchange of a pointer alone.
template <class T>
class Published {
public:
    explicit Published(std::shared_ptr<const T> value = std::make_shared<const T>())
        : _value(std::move(value)) {}

    /// Never null.
    std::shared_ptr<const T> get() const {
        const std::scoped_lock lock(_mutex);
        return _value;
    }

    /// The old value is let go of outside the lock, since its end may take long.
    void set(std::shared_ptr<const T> value) {
        const std::scoped_lock lock(_mutex);
        _value.swap(value);
    }

private:
    mutable std::mutex _mutex;
    std::shared_ptr<const T> _value;
};

}  // namespace tessaly::base
