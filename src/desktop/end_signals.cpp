// SPDX-License-Identifier: MIT
#include "desktop/end_signals.h"

#include <QSocketNotifier>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <unistd.h>

#include <sys/eventfd.h>

namespace tessaly::desktop {

namespace {

int endEvent = -1;

extern "C" void onEndSignal(int) {
    const int error = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(endEvent, &one, sizeof one);
    errno = error;
}

}  // namespace

EndSignals::EndSignals(std::function<void()> onEnd) {
    endEvent = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    auto* notifier = new QSocketNotifier(endEvent, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [notifier, run = std::move(onEnd)] {
        notifier->setEnabled(false);
        run();
    });
    struct sigaction action {};
    action.sa_handler = onEndSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        sigaction(signal, &action, nullptr);
    }
}

}  // namespace tessaly::desktop
