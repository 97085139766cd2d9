// SPDX-License-Identifier: MIT
#include "app/long_work.h"

#include <cmath>
#include <utility>

#include <fmt/format.h>

#include "base/localisation.h"

namespace tessaly::app {

namespace {

/// Less than that tells nothing of a rate.
constexpr std::chrono::milliseconds leastRateTime{500};

}  // namespace

LongWork::LongWork(std::string what, Cancel cancel, Count count)
    : _what(std::move(what)), _cancel(cancel), _count(count) {}

void LongWork::cancel() {
    _isCancelled = _cancel == Cancel::possible;
}

LongWork::View LongWork::view(Time now) {
    View view{_what, std::nullopt, std::nullopt, std::nullopt, false, _isCancelled};
    view.isCancellable = _cancel == Cancel::possible && !view.isCancelled;
    if (_count == Count::files) {
        measure(now, view);
    }
    return view;
}

void LongWork::measure(Time now, View& view) {
    const std::size_t done = _done;
    view.done = done;
    if (const std::size_t total = _total; total != unknown) {
        view.total = total;
    }
    _samples.push_back({now, done});
    while (_samples.size() > 2 && now - _samples[1].time >= rateWindow) {
        _samples.pop_front();
    }
    const Sample& first = _samples.front();
    if (now - first.time >= leastRateTime && done >= first.done) {
        const std::chrono::duration<double> seconds = now - first.time;
        view.rate = static_cast<double>(done - first.done) / seconds.count();
    }
}

std::string progressText(const LongWork::View& view, const base::LocaleFormats& formats) {
    const auto number = [&formats](std::size_t count) {
        return formats.number(static_cast<long long>(count));
    };
    if (!view.done) {
        return {};
    }
    std::string text = number(*view.done);
    if (view.total) {
        text = fmt::format(fmt::runtime(base::tr("{0} of {1}")), text, number(*view.total));
    }
    if (view.rate && std::llround(*view.rate) > 0) {
        text += " · " + fmt::format(fmt::runtime(base::tr("{0} a second")),
                                    number(static_cast<std::size_t>(std::llround(*view.rate))));
    }
    return text;
}

}  // namespace tessaly::app
