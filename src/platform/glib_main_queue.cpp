// SPDX-License-Identifier: MIT
#include "platform/glib_main_queue.h"

#include <chrono>
#include <glib-unix.h>
#include <glib.h>

namespace tessaly::platform {

namespace {

using Time = ports::MainQueue::Time;
using Microseconds = std::chrono::duration<gint64, std::micro>;

constexpr gint64 never = -1;
constexpr gint64 atOnce = 0;

struct QueueSource {
    GSource source;
    void (*run)(void* queue);
    void* queue;
};

gboolean dispatchQueue(GSource* source, GSourceFunc, gpointer) {
    auto* self = reinterpret_cast<QueueSource*>(source);
    self->run(self->queue);
    return G_SOURCE_CONTINUE;
}

gboolean dispatchStop(gint, GIOCondition, gpointer queue) {
    static_cast<GlibMainQueue*>(queue)->stop();
    return G_SOURCE_CONTINUE;
}

GSourceFuncs queueFunctions{nullptr, nullptr, dispatchQueue, nullptr, nullptr, nullptr};

using Source = std::unique_ptr<GSource, void (*)(GSource*)>;

Source owned(GSource* source) {
    return {source, [](GSource* ended) {
                g_source_destroy(ended);
                g_source_unref(ended);
            }};
}

}  // namespace

struct GlibMainQueue::Loop {
    explicit Loop(GlibMainQueue& queue)
        : jobs(owned(g_source_new(&queueFunctions, sizeof(QueueSource)))) {
        auto* source = reinterpret_cast<QueueSource*>(jobs.get());
        source->run = [](void* self) { static_cast<GlibMainQueue*>(self)->runReady(); };
        source->queue = &queue;
        g_source_attach(jobs.get(), context);
    }

    /// While this lives, the queue's descriptor stops it.
    Source stopSource(GlibMainQueue& queue) const {
        if (queue._stopDescriptor == noDescriptor) {
            return owned(nullptr);
        }
        Source source = owned(g_unix_fd_source_new(queue._stopDescriptor, G_IO_IN));
        g_source_set_callback(source.get(), G_SOURCE_FUNC(dispatchStop), &queue, nullptr);
        g_source_attach(source.get(), context);
        return source;
    }

    GMainContext* const context = g_main_context_default();
    const Source jobs;
};

GlibMainQueue::GlibMainQueue(int stopDescriptor) : _stopDescriptor(stopDescriptor) {}

GlibMainQueue::~GlibMainQueue() = default;

Time GlibMainQueue::now() {
    return Microseconds(g_get_monotonic_time());
}

void GlibMainQueue::post(Job job) {
    const std::scoped_lock lock(_mutex);
    _posted.push_back(std::move(job));
    wake();
}

ports::MainQueue::Timer GlibMainQueue::after(Time delay, Job job) {
    return add(delay, Time::zero(), std::move(job));
}

ports::MainQueue::Timer GlibMainQueue::every(Time interval, Job job) {
    return add(interval, interval, std::move(job));
}

ports::MainQueue::Timer GlibMainQueue::add(Time delay, Time interval, Job job) {
    const Time start = now();
    const Time due = delay < Time::max() - start ? start + delay : Time::max();
    const std::scoped_lock lock(_mutex);
    const Timer timer = ++_lastTimer;
    _timers.emplace(std::pair(due, timer), TimedJob{interval, std::move(job)});
    wake();
    return timer;
}

void GlibMainQueue::cancel(Timer timer) {
    const std::scoped_lock lock(_mutex);
    std::erase_if(_timers, [&](const auto& entry) { return entry.first.second == timer; });
    if (_firing == timer) {
        _firing = 0;
    }
}

void GlibMainQueue::run() {
    GMainContext* context = nullptr;
    Source stopSource = owned(nullptr);
    {
        const std::scoped_lock lock(_mutex);
        wake();
        context = _loop->context;
        stopSource = _loop->stopSource(*this);
    }
    while (!_isStopped.exchange(false)) {
        g_main_context_iteration(context, TRUE);
    }
}

void GlibMainQueue::stop() {
    _isStopped = true;
    g_main_context_wakeup(g_main_context_default());
}

/// Once around: what is posted meanwhile comes in the next turn, lest it keep all else waiting.
void GlibMainQueue::runReady() {
    std::size_t posted = 0;
    {
        const std::scoped_lock lock(_mutex);
        posted = _posted.size();
    }
    for (; posted > 0; --posted) {
        if (const auto job = takePosted()) {
            (*job)();
        }
    }
    const Time until = now();
    while (auto due = takeDue(until)) {
        due->timed.job();
        putBack(*std::move(due));
    }
    const std::scoped_lock lock(_mutex);
    wake();
}

std::optional<ports::MainQueue::Job> GlibMainQueue::takePosted() {
    const std::scoped_lock lock(_mutex);
    if (_isStopped || _posted.empty()) {
        return std::nullopt;
    }
    Job job = std::move(_posted.front());
    _posted.pop_front();
    return job;
}

std::optional<GlibMainQueue::Due> GlibMainQueue::takeDue(Time until) {
    const std::scoped_lock lock(_mutex);
    if (_isStopped || _timers.empty() || _timers.begin()->first.first > until) {
        return std::nullopt;
    }
    auto node = _timers.extract(_timers.begin());
    _firing = node.key().second;
    return Due{_firing, std::move(node.mapped())};
}

void GlibMainQueue::putBack(Due due) {
    const Time next = now() + due.timed.interval;
    const std::scoped_lock lock(_mutex);
    const bool isCancelled = std::exchange(_firing, 0) != due.timer;
    if (!isCancelled && due.timed.interval > Time::zero()) {
        _timers.emplace(std::pair(next, due.timer), std::move(due.timed));
    }
}

/// Tells GLib when there is something to do next. With the mutex held, so that of two the later one
/// counts.
void GlibMainQueue::wake() {
    if (!_loop) {
        _loop = std::make_unique<Loop>(*this);
    }
    gint64 next = _timers.empty()
                      ? never
                      : std::chrono::ceil<Microseconds>(_timers.begin()->first.first).count();
    if (!_posted.empty()) {
        next = atOnce;
    }
    g_source_set_ready_time(_loop->jobs.get(), next);
}

}  // namespace tessaly::platform
