// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <ctime>

namespace tessaly::bench {

/// What has passed between two moments, in milliseconds.
struct Taken {
    double passed = 0;
    double cpu = 0;  ///< of all threads of this process
};

/// The time on the wall, and that of the processor which this process has had.
struct Moment {
    std::chrono::steady_clock::time_point wall;
    timespec cpu{};

    static Moment now() {
        Moment moment{std::chrono::steady_clock::now()};
        ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &moment.cpu);
        return moment;
    }
};

inline Taken operator-(const Moment& end, const Moment& begin) {
    using Milliseconds = std::chrono::duration<double, std::milli>;
    return {Milliseconds(end.wall - begin.wall).count(),
            static_cast<double>(end.cpu.tv_sec - begin.cpu.tv_sec) * 1e3 +
                static_cast<double>(end.cpu.tv_nsec - begin.cpu.tv_nsec) / 1e6};
}

}  // namespace tessaly::bench
