// SPDX-License-Identifier: MIT
#include "cli/watch_notices.h"

#include <algorithm>
#include <array>
#include <chrono>

#include <fmt/format.h>

#include "base/localisation.h"
#include "cli/safe_text.h"

namespace tessaly::cli {

namespace {

using base::N_;

/// By `WatchState::Cause`; {} is the platform's words.
constexpr std::array reasons{
    N_("all folders report their changes again"),
    N_("the file system does not report what other machines change ({})"),
    N_("not all folders can be watched: the kernel's limit, fs.inotify.max_user_watches, is used "
       "up"),
    N_("the data folder is not there, or cannot be listed ({})"),
    N_("the kernel reports no changes of files ({})"),
};

std::string pauseText(std::chrono::nanoseconds pause) {
    const auto seconds =
        std::max<long long>(1, std::chrono::round<std::chrono::seconds>(pause).count());
    return fmt::format(fmt::runtime(base::trPlural("looking for changes every second instead",
                                                   "looking for changes every {} seconds instead",
                                                   static_cast<unsigned long>(seconds))),
                       seconds);
}

}  // namespace

std::string watchNotice(const sync::CloudSync::Watching& watching) {
    const ports::WatchState& state = watching.state;
    const std::string reason = base::tr(reasons[static_cast<std::size_t>(state.cause)]);
    if (state.cause == ports::WatchState::Cause::none) {
        return reason;
    }
    return fmt::format(fmt::runtime(reason), safeText(state.description)) + "; " +
           pauseText(watching.pollInterval);
}

}  // namespace tessaly::cli
