// SPDX-License-Identifier: MIT
#include "base/gate.h"

#include <utility>

namespace tessaly::base {

Gate::Gate(Executor& executor) : _executor(executor), _state(std::make_shared<State>()) {}

Gate::~Gate() {
    close();
}

void Gate::enter(Job work) {
    {
        const std::scoped_lock lock(_state->mutex);
        if (_state->isClosed) {
            return;
        }
        _state->waiting.push_back(std::move(work));
        if (std::exchange(_state->isHeld, true)) {
            return;
        }
    }
    _executor.post([state = _state, &executor = _executor] { runNext(state, executor); });
}

// Each piece of work takes a turn of its own at the executor, so that others get theirs.
void Gate::runNext(const std::shared_ptr<State>& state, Executor& executor) {
    Job work;
    {
        const std::scoped_lock lock(state->mutex);
        if (!state->waiting.empty()) {
            work = std::move(state->waiting.front());
            state->waiting.pop_front();
            state->isRunning = true;
        }
    }
    if (work) {
        runGuarded(std::move(work));
    }
    bool isMore = false;
    {
        const std::scoped_lock lock(state->mutex);
        state->isRunning = false;
        isMore = state->isHeld = !state->waiting.empty();
        state->changed.notify_all();
    }
    if (isMore) {
        executor.post([state, &executor] { runNext(state, executor); });
    }
}

void Gate::close() {
    std::deque<Job> dropped;
    std::unique_lock lock(_state->mutex);
    _state->isClosed = true;
    dropped.swap(_state->waiting);
    _state->changed.wait(lock, [this] { return !_state->isRunning; });
}

void Gate::waitUntilFree() {
    std::unique_lock lock(_state->mutex);
    _state->changed.wait(lock, [this] { return !_state->isHeld; });
}

}  // namespace tessaly::base
