// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
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
    enum class Count { files, none };  ///< none: nobody can tell how far it is

    struct View {
        std::string what;
        std::optional<std::size_t> done;   ///< nothing: not counted
        std::optional<std::size_t> total;  ///< nothing: not known
        std::optional<double> rate;  ///< a second, of the last seconds; nothing: not known yet
        bool isCancellable = false;  ///< and not cancelled yet
        bool isCancelled = false;    ///< and not ended yet
        bool operator==(const View&) const = default;
    };

    /// `what` in the user's words, "Reading notes".
    LongWork(std::string what, Cancel cancel, Count count = Count::files);

    /// How much is done. Any thread.
    void tell(std::size_t done) { _done = done; }
    /// How much there is in all, once that is known. Any thread; once.
    void tellTotal(std::size_t total) { _total = total; }
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

    void measure(Time now, View& view);

    static constexpr std::size_t unknown = SIZE_MAX;

    std::string _what;
    Cancel _cancel;
    Count _count;
    std::atomic<std::size_t> _total = unknown;
    std::atomic<std::size_t> _done = 0;
    std::atomic<bool> _isCancelled = false;
    std::deque<Sample> _samples;  ///< oldest first
};

/// "12,345 of 100,000 · 15,200 a second"; without what is not known, which may be all of it.
std::string progressText(const LongWork::View& view, const base::LocaleFormats& formats);

}  // namespace tessaly::app
