// SPDX-License-Identifier: MIT
#include "cli/progress.h"

#include <cstdio>
#include <string>
#include <unistd.h>

#include <fmt/format.h>

#include "base/localisation.h"

namespace tessaly::cli {

namespace {
using namespace std::chrono_literals;

constexpr auto patience = 300ms;  // work that ends sooner needs no line
constexpr auto betweenLines = 100ms;
}  // namespace

Progress::Progress(base::LocaleFormats formats)
    : _formats(std::move(formats)),
      _isTerminal(isatty(STDERR_FILENO) == 1),
      _next(Clock::now() + patience) {}

Progress::~Progress() {
    erase();
}

void Progress::tell(std::size_t files, Work work) {
    if (!_isTerminal) {
        return;
    }
    const Clock::time_point now = Clock::now();
    Clock::time_point next = _next.load();
    if (now < next || !_next.compare_exchange_strong(next, now + betweenLines)) {
        return;
    }
    _isShown = true;
    const std::string number = _formats.number(static_cast<long long>(files));
    const std::string what =
        work == Work::reading ? base::tr("Reading notes…") : base::tr("Moving notes…");
    std::fputs(fmt::format("\r{} {}\x1b[K", what, number).c_str(), stderr);
}

void Progress::erase() {
    if (_isShown.exchange(false)) {
        std::fputs("\r\x1b[K", stderr);
    }
}

}  // namespace tessaly::cli
