// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "ports/main_queue.h"
#include "support/on_threads.h"

namespace tessaly::tests {

/// A queue under test and its way of letting time pass, during which it runs jobs.
struct QueueUnderTest {
    std::unique_ptr<ports::MainQueue> queue;
    std::function<void(ports::MainQueue::Time)> letPass;
};

using namespace std::chrono_literals;
using Order = std::vector<int>;

inline void checkPosts(ports::MainQueue& queue) {
    Order order;
    const auto note = [&](int number) { return [&order, number] { order.push_back(number); }; };
    queue.post(note(1));
    queue.post([&] {
        order.push_back(2);
        queue.post(note(4));
        queue.post([&] { queue.stop(); });
        queue.post(note(5));
    });
    queue.post(note(3));
    CHECK(order.empty());
    queue.run();
    CHECK(order == Order{1, 2, 3, 4});
    queue.post([&] { queue.stop(); });
    queue.run();
    CHECK(order == Order{1, 2, 3, 4, 5});
}

/// Each of several threads posts while the queue waits; its jobs come in its order.
inline void checkPostsOfThreads(ports::MainQueue& queue) {
    constexpr int threads = 3;
    constexpr int jobs = 300;
    std::vector<Order> orders(threads);
    int ended = 0;
    std::thread posting([&] {
        onThreads(threads, [&](std::size_t thread) {
            for (int job = 0; job < jobs; ++job) {
                queue.post([&orders, thread, job] { orders[thread].push_back(job); });
            }
            queue.post([&] {
                if (++ended == threads) {
                    queue.stop();
                }
            });
        });
    });
    queue.run();
    posting.join();
    for (const Order& order : orders) {
        CHECK(order.size() == jobs);
        CHECK(std::is_sorted(order.begin(), order.end()));
    }
}

inline void checkStops(ports::MainQueue& queue) {
    bool ran = false;
    queue.stop();
    queue.run();
    queue.post([&] { ran = true; });
    queue.stop();
    queue.run();
    CHECK(!ran);

    std::atomic<bool> isIn = false;
    std::thread stopping([&] {
        while (!isIn) {
            std::this_thread::yield();
        }
        queue.stop();
    });
    queue.post([&] { isIn = true; });
    queue.run();
    stopping.join();
    CHECK(ran);
}

inline void checkTimers(const QueueUnderTest& test) {
    ports::MainQueue& queue = *test.queue;
    Order order;
    std::vector<ports::MainQueue::Timer> timers;
    auto start = queue.now();
    const auto add = [&](int number, ports::MainQueue::Time delay) {
        timers.push_back(queue.after(delay, [&order, &queue, start, number, delay] {
            order.push_back(number);
            CHECK(queue.now() >= start + delay);
        }));
    };
    // The first is the last to be due only if adding the others takes less than their distance.
    do {
        for (const ports::MainQueue::Timer timer : std::exchange(timers, {})) {
            queue.cancel(timer);
        }
        start = queue.now();
        add(3, 9ms);
        add(1, 3ms);
        add(2, 6ms);
        add(0, 0ms);
    } while (queue.now() - start >= 3ms);
    queue.after(ports::MainQueue::Time::max(), [&] { order.push_back(-1); });
    test.letPass(40ms);
    CHECK(order == Order{0, 1, 2, 3});
}

inline void checkRepeating(const QueueUnderTest& test) {
    ports::MainQueue& queue = *test.queue;
    std::vector<ports::MainQueue::Time> turns;
    ports::MainQueue::Timer timer = 0;
    timer = queue.every(4ms, [&] {
        turns.push_back(queue.now());
        if (turns.size() == 2) {
            std::this_thread::sleep_for(10ms);
        }
        if (turns.size() == 4) {
            queue.cancel(timer);
        }
    });
    for (int i = 0; i < 100 && turns.size() < 4; ++i) {
        test.letPass(4ms);
    }
    test.letPass(20ms);
    REQUIRE(turns.size() == 4);
    for (std::size_t turn = 1; turn < turns.size(); ++turn) {
        CHECK(turns[turn] - turns[turn - 1] >= 4ms);
    }
}

inline void checkCancelling(const QueueUnderTest& test) {
    ports::MainQueue& queue = *test.queue;
    Order order;
    ports::MainQueue::Timer later = 0;
    ports::MainQueue::Timer repeating = 0;
    const auto before = queue.after(1ms, [&] { order.push_back(-1); });
    queue.after(2ms, [&] {
        order.push_back(1);
        queue.cancel(later);
        queue.cancel(repeating);
    });
    later = queue.after(2ms, [&] { order.push_back(-2); });
    repeating = queue.every(2ms, [&] { order.push_back(-3); });
    queue.after(3ms, [&] { order.push_back(2); });
    queue.cancel(before);
    queue.cancel(0);
    queue.cancel(12345);
    // So that all are due at once.
    std::this_thread::sleep_for(5ms);
    test.letPass(20ms);
    CHECK(order == Order{1, 2});
    queue.cancel(later);
}

/// What every main queue must do. Call it in a test case of its own.
inline void checkMainQueue(const std::function<QueueUnderTest()>& make) {
    const QueueUnderTest test = make();
    SUBCASE("posted jobs run in their order, from the first `run` to `stop`") {
        checkPosts(*test.queue);
    }
    SUBCASE("posts of other threads wake it") {
        checkPostsOfThreads(*test.queue);
    }
    SUBCASE("stop counts before run and from another thread") {
        checkStops(*test.queue);
    }
    SUBCASE("timers fire in the order in which they are due, never too early") {
        checkTimers(test);
    }
    SUBCASE("a repeating timer does not make up for turns and may cancel itself") {
        checkRepeating(test);
    }
    SUBCASE("a timer that is cancelled does not fire, though it is due") {
        checkCancelling(test);
    }
}

}  // namespace tessaly::tests
