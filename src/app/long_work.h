// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>
#include <string>

#include "base/locale_formats.h"

namespace tessaly::app {

/// Work that the user may wait for, as the status line shows it: the first load, a migration, an
/// index. Whoever works tells how far it is, which costs next to nothing; the view asks for it now
/// and then.
class LongWork {
public:
    using Time = std::chrono::nanoseconds;  ///< as of `ports::MainQueue`
    enum class Cancel { never, possible };

    struct View {
        std::string what;
        std::size_t done = 0;
        std::optional<std::size_t> total;  ///< nothing: not known
        std::optional<double> rate;  ///< a second, of the last seconds; nothing: not known yet
        bool isCancellable = false;  ///< and not cancelled yet
        bool isCancelled = false;    ///< and not ended yet
        bool operator==(const View&) const = default;
    };

    /// `what` in the user's words, "Reading notes".
    LongWork(std::string what, std::optional<std::size_t> total, Cancel cancel);

    /// How much is done. Any thread.
    void tell(std::size_t done) { _done = done; }
    /// Becomes true when the user has enough; for who works to look at. As long as this object.
    const std::atomic<bool>& cancelled() const { return _isCancelled; }

    // Main thread.
    void cancel();
    /// `now` never goes back.
    View view(Time now);

    /// That the rate is of.
    static constexpr std::chrono::seconds rateWindow{3};

private:
    struct Sample {
        Time time;
        std::size_t done;
    };

    std::string _what;
    std::optional<std::size_t> _total;
    Cancel _cancel;
    std::atomic<std::size_t> _done = 0;
    std::atomic<bool> _isCancelled = false;
    std::deque<Sample> _samples;  ///< oldest first
};

/// "12,345 of 100,000 · 15,200 a second"; without what is not known.
std::string progressText(const LongWork::View& view, const base::LocaleFormats& formats);

}  // namespace tessaly::app
