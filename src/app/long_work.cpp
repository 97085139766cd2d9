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

LongWork::LongWork(std::string what, std::optional<std::size_t> total, Cancel cancel)
    : _what(std::move(what)), _total(total), _cancel(cancel) {}

void LongWork::cancel() {
    _isCancelled = _cancel == Cancel::possible;
}

LongWork::View LongWork::view(Time now) {
    const std::size_t done = _done;
    _samples.push_back({now, done});
    while (_samples.size() > 2 && now - _samples[1].time >= rateWindow) {
        _samples.pop_front();
    }
    View view{_what, done, _total, std::nullopt, false, _isCancelled};
    view.isCancellable = _cancel == Cancel::possible && !view.isCancelled;
    const Sample& first = _samples.front();
    if (now - first.time >= leastRateTime && done >= first.done) {
        const std::chrono::duration<double> seconds = now - first.time;
        view.rate = static_cast<double>(done - first.done) / seconds.count();
    }
    return view;
}

std::string progressText(const LongWork::View& view, const base::LocaleFormats& formats) {
    const auto number = [&formats](std::size_t count) {
        return formats.number(static_cast<long long>(count));
    };
    std::string text = number(view.done);
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
