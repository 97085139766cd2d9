// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <thread>
#include <vector>

namespace tessaly::tests {

/// Calls `work` with 0, 1, … below `count`, on a thread each at the same time, and waits for all.
template <class Work>
void onThreads(std::size_t count, const Work& work) {
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < count; ++i) {
        threads.emplace_back([&work, i] { work(i); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace tessaly::tests
