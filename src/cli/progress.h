// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>

#include "base/locale_formats.h"

namespace tessaly::cli {

/// What the line says of the work in hand.
enum class Work { reading, moving };

/// "Reading notes… 12,345" on standard error, when that is a terminal and the work has taken a
/// while. Any thread may tell of progress; one call at a time draws, the others return at once.
class Progress {
public:
    explicit Progress(base::LocaleFormats formats);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void tell(std::size_t files, Work work = Work::reading);
    /// Takes the line away, once all work is done.
    void erase();

private:
    using Clock = std::chrono::steady_clock;

    const base::LocaleFormats _formats;
    const bool _isTerminal;
    std::atomic<Clock::time_point> _next;  // when to draw again
    std::atomic<bool> _isShown = false;
};

}  // namespace tessaly::cli
