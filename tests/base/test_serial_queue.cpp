// SPDX-License-Identifier: MIT
#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include <doctest/doctest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include "base/inline_executor.h"
#include "base/manual_executor.h"
#include "base/serial_queue.h"
#include "base/thread_pool.h"
#include "support/on_threads.h"

using namespace tessaly;
using base::SerialQueue;

namespace {

/// What a queue guards: without the queue, two threads in `add` are a data race.
class Diary {
public:
    explicit Diary(base::Executor& executor) : _queue("test", executor) {}

    void addLater(std::size_t producer, int number) {
        _queue.async([this, producer, number] { add(producer, number); });
    }
    void addNow(std::size_t producer, int number) {
        _queue.sync([&] { add(producer, number); });
    }
    std::vector<std::vector<int>> entries() {
        return _queue.sync([this] {
            _queue.assertCurrent();
            return _entries;
        });
    }

    bool overlapped() const { return _overlapped; }

private:
    void add(std::size_t producer, int number) {
        _queue.assertCurrent();
        _overlapped = _overlapped || _inside.exchange(true);
        std::this_thread::yield();
        _entries[producer].push_back(number);
        _inside = false;
    }

    SerialQueue _queue;
    std::vector<std::vector<int>> _entries TESSALY_GUARDED_BY(_queue) =
        std::vector<std::vector<int>>(4);
    std::atomic<bool> _inside = false;
    std::atomic<bool> _overlapped = false;
};

bool inOrder(const std::vector<std::vector<int>>& entries, std::size_t each) {
    return std::all_of(entries.begin(), entries.end(), [each](const auto& numbers) {
        return numbers.size() == each && std::is_sorted(numbers.begin(), numbers.end());
    });
}

}  // namespace

TEST_CASE("jobs and blocks of four producers keep each producer's order and never overlap") {
    constexpr int each = 2000;
    base::ThreadPool pool(3);
    Diary diary(pool);
    tests::onThreads(4, [&diary](std::size_t producer) {
        for (int i = 0; i < each; ++i) {
            i % 7 == 0 ? diary.addNow(producer, i) : diary.addLater(producer, i);
        }
    });
    CHECK(inOrder(diary.entries(), each));
    CHECK_FALSE(diary.overlapped());
}

TEST_CASE("a block runs behind the jobs given before it, and before those given after it") {
    base::ManualExecutor executor;
    base::ManualExecutor::Engine engine(1);
    SerialQueue queue("test", executor);
    std::string ran;
    queue.async([&] {
        ran += "1";
        queue.async([&] { ran += "4"; });
    });
    queue.async([&] { ran += "2"; });
    const std::string value = queue.sync([&] {
        queue.async([&] { ran += "5"; });
        return std::exchange(ran, ran + "3");
    });
    CHECK(value == "12");
    CHECK(ran == "123");
    executor.runAll(engine);
    CHECK(ran == "12345");
}

TEST_CASE("with an inline executor a job given by a job or a block runs behind it") {
    base::InlineExecutor executor;
    SerialQueue queue("test", executor);
    SerialQueue other("other", executor);
    std::string ran;
    queue.async([&] {
        ran += "(";
        queue.async([&] { ran += "later "; });
        other.async([&] {
            ran += queue.isCurrent() ? "inside " : "outside ";
            queue.async([&] { ran += "last "; });
        });
        ran += ") ";
    });
    queue.sync([&] {
        queue.async([&] { ran += "afterBlock"; });
        ran += "block ";
    });
    CHECK(ran == "(inside ) later last block afterBlock");
    CHECK_FALSE(queue.isCurrent());
}

TEST_CASE("with an inline executor a long chain of jobs needs no deep stack") {
    base::InlineExecutor executor;
    SerialQueue queue("test", executor);
    int left = 300'000;
    std::function<void()> next = [&] {
        if (--left > 0) {
            queue.async(next);
        }
    };
    queue.async(next);
    CHECK(left == 0);
}

TEST_CASE("a block passes on what it returns and throws, and leaves the queue usable") {
    base::InlineExecutor executor;
    SerialQueue queue("test", executor);
    CHECK_THROWS_WITH(queue.sync([]() -> int { throw std::runtime_error("no"); }), "no");
    int number = 0;
    queue.sync([&]() -> int& { return number; }) = 3;
    CHECK(number == 3);
}

TEST_CASE("blocks taken inside the pool's jobs wait for no job to start") {
    constexpr int jobs = 50;
    int sum = 0;
    {
        base::ThreadPool pool(1);
        SerialQueue queue("test", pool);
        for (int i = 0; i < jobs; ++i) {
            pool.post([&] {
                queue.async([&] { ++sum; });
                queue.sync([&] { ++sum; });
            });
        }
        while (queue.sync([&] { return sum; }) < 2 * jobs) {
            std::this_thread::yield();
        }
    }
    CHECK(sum == 2 * jobs);
}

TEST_CASE("a queue that never runs dry starves neither the pool nor a block") {
    std::atomic<bool> enough = false;
    base::ThreadPool pool(1);
    SerialQueue busy("busy", pool);
    std::function<void()> again = [&] {
        if (!enough) {
            busy.async(again);
        }
    };
    busy.async(again);
    std::promise<void> passed;
    pool.post([&] { passed.set_value(); });
    passed.get_future().wait();
    CHECK(busy.sync([] { return true; }));
    enough = true;
    busy.sync([] {});
}

TEST_CASE("the jobs of a destroyed queue still run") {
    base::ManualExecutor executor;
    base::ManualExecutor::Engine engine(1);
    std::string ran;
    auto queue = std::make_unique<SerialQueue>("test", executor);
    queue->async([&] {
        queue.reset();
        ran += "1";
    });
    queue->async([&] { ran += "2"; });
    executor.runAll(engine);
    CHECK(ran == "12");
}

#ifndef NDEBUG
TEST_CASE("a block inside its own queue is a programmer's error, through other queues too") {
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGABRT, SIG_DFL);
        std::freopen("/dev/null", "w", stderr);
        const rlimit noCore{0, 0};
        setrlimit(RLIMIT_CORE, &noCore);
        alarm(30);
        base::InlineExecutor executor;
        SerialQueue outer("outer", executor);
        SerialQueue inner("inner", executor);
        outer.async([&] { inner.sync([&] { outer.sync([] {}); }); });
        _exit(0);
    }
    int status = 0;
    REQUIRE(waitpid(child, &status, 0) == child);
    REQUIRE(WIFSIGNALED(status));
    CHECK(WTERMSIG(status) == SIGABRT);
}
#endif
