// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ports/metadata_query.h"

namespace tessaly::tests {

/// A query that notices what the test tells it, and nothing else. Any thread.
class ScriptedQuery final : public ports::MetadataQuery {
public:
    using Reach = ports::PossibleChange::Reach;

    /// What `start` answers and how it leaves things; to be set before it.
    bool isReadyAtOnce = true;
    std::optional<base::Failure> startFailure;

    base::Result<base::Done> start(Scope scope, std::function<void()> onUpdate) override {
        {
            const std::scoped_lock lock(_mutex);
            _noticed.clear();
            _roots.push_back(scope.root);
            if (startFailure) {
                return *startFailure;
            }
            _scope = std::move(scope);
            _onUpdate = std::move(onUpdate);
            _state.isReady = false;
        }
        if (isReadyAtOnce) {
            becomeReady();
        }
        return base::Done{};
    }

    std::vector<ports::PossibleChange> take() override {
        const std::scoped_lock lock(_mutex);
        std::sort(_noticed.begin(), _noticed.end());
        _noticed.erase(std::unique(_noticed.begin(), _noticed.end()), _noticed.end());
        return std::exchange(_noticed, {});
    }

    ports::WatchState state() override {
        const std::scoped_lock lock(_mutex);
        return _state;
    }

    void retry() override {
        const std::scoped_lock lock(_mutex);
        ++_retries;
    }

    void stop() override {
        const std::scoped_lock lock(_mutex);
        _onUpdate = nullptr;
    }

    /// The end of going through the folders: the root is told.
    void becomeReady() {
        {
            const std::scoped_lock lock(_mutex);
            _state.isReady = true;
        }
        notice("", Reach::tree);
    }

    /// Something happens at `path`. It is not told when the scope does not cover it.
    void notice(const std::string& path, Reach reach = Reach::entry) {
        std::function<void()> onUpdate;
        {
            const std::scoped_lock lock(_mutex);
            if (!_onUpdate || (!path.empty() && !_scope.covers(path, reach == Reach::tree))) {
                return;
            }
            _noticed.push_back({path, reach});
            onUpdate = _onUpdate;
        }
        onUpdate();
    }

    void setState(ports::WatchState state) {
        const std::scoped_lock lock(_mutex);
        _state = std::move(state);
    }

    bool isRunning() const {
        const std::scoped_lock lock(_mutex);
        return _onUpdate != nullptr;
    }
    /// The roots that it was started with.
    std::vector<std::string> roots() const {
        const std::scoped_lock lock(_mutex);
        return _roots;
    }
    int retries() const {
        const std::scoped_lock lock(_mutex);
        return _retries;
    }

private:
    mutable std::mutex _mutex;  ///< guards what follows
    Scope _scope;
    std::function<void()> _onUpdate;
    ports::WatchState _state;
    std::vector<ports::PossibleChange> _noticed;
    std::vector<std::string> _roots;
    int _retries = 0;
};

}  // namespace tessaly::tests
