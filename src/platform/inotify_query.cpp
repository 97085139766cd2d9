// SPDX-License-Identifier: MIT
#include "platform/inotify_query.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <poll.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include <sys/eventfd.h>

#include "platform/errno_failure.h"

namespace tessaly::platform {

using base::Done;
using base::Failure;
using base::Result;
using ports::PossibleChange;

namespace {

/// Threads that are started meanwhile take no signals: those are for the threads that expect them.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &_before);
    }
    ~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &_before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t _before;
};

}  // namespace

InotifyQuery::InotifyQuery(WatchOptions options) : _options(std::move(options)) {}

InotifyQuery::~InotifyQuery() {
    stop();
}

Result<Done> InotifyQuery::start(Scope scope, std::function<void()> onUpdate) {
    stop();
    if (const auto prepared = prepare(); !prepared) {
        return prepared;
    }
    const SignalsBlocked blocked;
    try {
        _thread = std::thread([this, scope = std::move(scope), onUpdate = std::move(onUpdate)] {
            run(scope, onUpdate);
        });
    } catch (const std::system_error& error) {
        return Failure{Failure::Kind::unavailable, error.what()};
    }
    return Done{};
}

Result<Done> InotifyQuery::prepare() {
    const std::scoped_lock lock(_mutex);
    if (!_wake) {
        _wake = FileDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    }
    if (!_wake) {
        return errnoFailure(errno, "eventfd");
    }
    _isStopping = false;
    _isRetryWanted = false;
    _changes = {};
    _state = {};
    return Done{};
}

std::vector<PossibleChange> InotifyQuery::take() {
    const std::scoped_lock lock(_mutex);
    return _changes.take();
}

ports::WatchState InotifyQuery::state() {
    const std::scoped_lock lock(_mutex);
    return _state;
}

void InotifyQuery::retry() {
    const std::scoped_lock lock(_mutex);
    _isRetryWanted = true;
    wakeUp();
}

void InotifyQuery::stop() {
    if (!_thread.joinable()) {
        return;
    }
    _isStopping = true;
    {
        const std::scoped_lock lock(_mutex);
        wakeUp();
    }
    _thread.join();
}

void InotifyQuery::wakeUp() {
    const std::uint64_t one = 1;
    if (_wake) {
        // Fails only when it is awake as often as can be counted.
        [[maybe_unused]] const auto written = ::write(_wake.get(), &one, sizeof one);
    }
}

void InotifyQuery::run(Scope scope, const std::function<void()>& onUpdate) {
    FolderWatch watch(std::move(scope), _options, [this] { return _isStopping.load(); });
    watch.begin();
    while (!_isStopping) {
        if (publish(watch)) {
            onUpdate();
        }
        awaitEvents(watch);
        if (takeRetry()) {
            watch.retry();
        }
        if (watch.fd() >= 0) {
            watch.handleEvents();
        }
    }
}

void InotifyQuery::awaitEvents(const FolderWatch& watch) const {
    std::array<pollfd, 2> files{{{_wake.get(), POLLIN, 0}, {watch.fd(), POLLIN, 0}}};
    uninterrupted([&] { return ::poll(files.data(), files.size(), -1); });
    std::uint64_t count = 0;
    [[maybe_unused]] const auto drained = ::read(_wake.get(), &count, sizeof count);
}

bool InotifyQuery::takeRetry() {
    const std::scoped_lock lock(_mutex);
    return std::exchange(_isRetryWanted, false);
}

bool InotifyQuery::publish(FolderWatch& watch) {
    auto found = watch.takeFound();
    auto state = watch.state();
    const bool hasFound = !found.empty();
    const std::scoped_lock lock(_mutex);
    for (PossibleChange& change : found) {
        _changes.add(std::move(change));
    }
    _state = std::move(state);
    return hasFound;
}

}  // namespace tessaly::platform
