// SPDX-License-Identifier: MIT
#include "base/executor.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <utility>

#include "base/log.h"

namespace tessaly::base {

namespace {

constexpr char internalError[] = "internal error in a background job: ";

using Body = std::function<void(std::size_t index)>;

/// A loop outlives its caller's wait: a helper that starts late finds no index left, and must not
/// touch the body, which is gone by then.
class Loop {
public:
    Loop(std::size_t count, const Body& body) : _count(count), _body(body) {}

    void work() {
        std::size_t called = 0;
        for (auto index = _next.fetch_add(1); index < _count; index = _next.fetch_add(1)) {
            call(index);
            ++called;
        }
        const std::scoped_lock lock(_mutex);
        _called += called;
        if (_called == _count) {
            _allCalled.notify_all();
        }
    }

    /// The first exception, which is the caller's alone: helpers may let go of the loop later.
    std::exception_ptr wait() {
        std::unique_lock lock(_mutex);
        _allCalled.wait(lock, [this] { return _called == _count; });
        return std::exchange(_exception, nullptr);
    }

private:
    void call(std::size_t index) noexcept {
        try {
            _body(index);
        } catch (...) {
            const std::scoped_lock lock(_mutex);
            if (!_exception) {
                _exception = std::current_exception();
            }
        }
    }

    const std::size_t _count;
    const Body& _body;
    std::atomic<std::size_t> _next = 0;

    std::mutex _mutex;  ///< guards what follows
    std::condition_variable _allCalled;
    std::size_t _called = 0;
    std::exception_ptr _exception;
};

}  // namespace

void runGuarded(Job job) noexcept {
    try {
        job();
        job = nullptr;
    } catch (const std::exception& error) {
        log(internalError, error.what());
    } catch (...) {
        log(internalError, "unknown");
    }
}

void parallelFor(Executor& executor, std::size_t count, const Body& body) {
    if (count == 0) {
        return;
    }
    const auto loop = std::make_shared<Loop>(count, body);
    const std::size_t helpers = std::min(executor.width(), count - 1);
    for (std::size_t i = 0; i < helpers; ++i) {
        executor.post([loop] { loop->work(); });
    }
    loop->work();
    if (const auto exception = loop->wait()) {
        std::rethrow_exception(exception);
    }
}

}  // namespace tessaly::base
