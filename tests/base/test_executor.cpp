// SPDX-License-Identifier: MIT
#include <algorithm>
#include <atomic>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "base/executor.h"
#include "base/inline_executor.h"
#include "base/manual_executor.h"
#include "base/published.h"
#include "base/thread_pool.h"
#include "support/log_capture.h"

using namespace tessaly;

namespace {

/// Runs a loop and tells whether each index was called once, and how many calls ran at once.
struct Tally {
    explicit Tally(std::size_t count) : calls(count) {}

    void call(std::size_t index) {
        const int now = ++running;
        for (int seen = most; now > seen && !most.compare_exchange_weak(seen, now);) {
        }
        ++calls[index];
        std::this_thread::yield();
        --running;
    }

    bool eachOnce() const {
        return std::all_of(calls.begin(), calls.end(), [](const auto& c) { return c == 1; });
    }

    std::vector<std::atomic<int>> calls;
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
};

}  // namespace

TEST_CASE("a parallel loop calls each index once, on no more threads than it may") {
    base::InlineExecutor inlined;
    base::ThreadPool one(1);
    base::ThreadPool three(3);
    for (base::Executor* executor :
         std::initializer_list<base::Executor*>{&inlined, &one, &three}) {
        for (const std::size_t count : {0U, 1U, 2U, 3U, 500U}) {
            Tally tally(count);
            base::parallelFor(*executor, count, [&](std::size_t index) { tally.call(index); });
            CHECK(tally.eachOnce());
            CHECK(static_cast<std::size_t>(tally.most) <= executor->width() + 1);
        }
    }
}

TEST_CASE("a parallel loop waits for the calls that its helpers have begun") {
    base::ThreadPool pool(1);
    const auto caller = std::this_thread::get_id();
    std::atomic<int> begun = 0;
    std::atomic<int> ended = 0;
    base::parallelFor(pool, 2, [&](std::size_t) {
        ++begun;
        while (begun < 2 && std::this_thread::get_id() == caller) {
            std::this_thread::yield();
        }
        for (int i = 0; i < 20'000 && std::this_thread::get_id() != caller; ++i) {
            std::this_thread::yield();
        }
        ++ended;
    });
    CHECK(ended == 2);
}

TEST_CASE("parallel loops inside jobs end, even when jobs fill the pool") {
    for (const std::size_t threads : {1U, 2U}) {
        std::vector<std::unique_ptr<Tally>> tallies;
        {
            base::ThreadPool pool(threads);
            for (int i = 0; i < 8; ++i) {
                auto& tally = *tallies.emplace_back(std::make_unique<Tally>(50));
                pool.post([&pool, &tally] {
                    base::parallelFor(pool, 5, [&](std::size_t outer) {
                        base::parallelFor(
                            pool, 10, [&](std::size_t inner) { tally.call(outer * 10 + inner); });
                    });
                });
            }
        }
        CHECK(std::all_of(tallies.begin(), tallies.end(),
                          [](const auto& tally) { return tally->eachOnce(); }));
    }
}

TEST_CASE("a loop's helpers that start after its end do nothing") {
    base::ManualExecutor executor(4);
    auto calls = std::make_unique<int>(0);
    base::parallelFor(executor, 10, [&calls](std::size_t) { ++*calls; });
    CHECK(*calls == 10);
    CHECK(executor.waiting() == 4);
    calls.reset();
    base::ManualExecutor::Engine engine(1);
    executor.runAll(engine);
}

TEST_CASE("a loop calls all indices though one throws, and throws on") {
    base::ThreadPool pool(2);
    Tally tally(100);
    const auto body = [&](std::size_t index) {
        tally.call(index);
        if (index == 30) {
            throw std::runtime_error("thirty");
        }
    };
    CHECK_THROWS_WITH(base::parallelFor(pool, 100, body), "thirty");
    CHECK(tally.eachOnce());
}

TEST_CASE("a job's exception is logged, and the jobs behind it run") {
    const auto throwError = [] { throw std::runtime_error("lost"); };
    const auto throwNumber = [] { throw 5; };
    const std::vector<std::string> expected{"internal error in a background job: lost",
                                            "internal error in a background job: unknown"};
    const auto run = [&](base::Executor& executor, bool& ran) {
        executor.post(throwError);
        executor.post(throwNumber);
        executor.post([&ran] { ran = true; });
    };
    bool ran = false;
    SUBCASE("in a pool") {
        const tests::LogCapture log;
        {
            base::ThreadPool pool(1);
            run(pool, ran);
        }
        CHECK(log.lines() == expected);
    }
    SUBCASE("inline") {
        const tests::LogCapture log;
        base::InlineExecutor executor;
        run(executor, ran);
        CHECK(log.lines() == expected);
    }
    CHECK(ran);
}

TEST_CASE("readers of a published value see whole values, never older than one seen before") {
    using Value = std::pair<int, int>;
    base::Published<Value> published;
    std::atomic<bool> broken = false;
    std::vector<std::thread> readers;
    for (int i = 0; i < 3; ++i) {
        readers.emplace_back([&] {
            for (int last = 0; last < 2000;) {
                const auto value = published.get();
                broken = broken || value->first != value->second || value->first < last;
                last = value->first;
            }
        });
    }
    for (int i = 1; i <= 2000; ++i) {
        published.set(std::make_shared<const Value>(i, i));
    }
    for (auto& reader : readers) {
        reader.join();
    }
    CHECK_FALSE(broken);
}
