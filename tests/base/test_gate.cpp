// SPDX-License-Identifier: MIT
#include <atomic>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <doctest/doctest.h>

#include "base/gate.h"
#include "base/inline_executor.h"
#include "base/manual_executor.h"
#include "base/thread_pool.h"
#include "support/log_capture.h"

using namespace tessaly;

TEST_CASE("a gate lets one piece of work in at a time, in the order in which they came") {
    for (unsigned seed = 0; seed < 50; ++seed) {
        base::ManualExecutor::Engine engine(seed);
        base::ManualExecutor executor;
        base::Gate gate(executor);
        std::string order;
        gate.enter([&] {
            order += 'a';
            gate.enter([&order] { order += 'd'; });
            order += 'a';
        });
        gate.enter([&] { order += 'b'; });
        executor.post([&] { gate.enter([&order] { order += order.empty() ? 'c' : '.'; }); });
        gate.enter([&] { order += 'c'; });
        CHECK(order.empty());
        executor.runAll(engine);
        std::erase(order, '.');
        CHECK(order == "aabcd");
    }
}

TEST_CASE("work that enters from within, on an executor that runs it at once, runs afterwards") {
    base::InlineExecutor executor;
    base::Gate gate(executor);
    std::string order;
    gate.enter([&] {
        gate.enter([&order] { order += '2'; });
        order += '1';
    });
    CHECK(order == "12");
}

TEST_CASE("an exception leaves the gate free for the next") {
    const tests::LogCapture log;
    base::InlineExecutor executor;
    base::Gate gate(executor);
    bool ran = false;
    gate.enter([] { throw std::runtime_error("out of luck"); });
    gate.enter([&ran] { ran = true; });
    CHECK(ran);
}

TEST_CASE("closing waits for what runs, and lets nothing in") {
    base::ThreadPool pool(2);
    std::atomic<int> entered = 0;
    std::atomic<bool> ended = false;
    std::atomic<int> others = 0;
    base::Gate gate(pool);
    gate.enter([&] {
        ++entered;
        for (int i = 0; i < 20'000; ++i) {
            std::this_thread::yield();
        }
        ended = true;
    });
    while (entered == 0) {
        std::this_thread::yield();
    }
    gate.close();
    CHECK(ended);
    gate.enter([&others] { ++others; });
    gate.waitUntilFree();
    CHECK(others == 0);
}

TEST_CASE("closing drops what waits, be its turn posted or not") {
    base::ManualExecutor manual;
    base::ManualExecutor::Engine engine(1);
    std::string ran;
    {
        base::Gate gate(manual);
        for (const char letter : {'1', '2', '3'}) {
            gate.enter([&ran, letter] { ran += letter; });
        }
        manual.step(engine);
    }
    manual.runAll(engine);
    CHECK(ran == "1");
}
