// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QStringList>
#include <functional>

namespace tessaly::desktop {

/// The program's name on the session bus, and of its desktop file.
inline constexpr char programId[] = "org.tessaly.tessaly";

/// One window for a user: a second start asks the first one, over the session bus and by
/// `org.freedesktop.Application`, to come to the front. Without a bus every start is a program of
/// its own, which the locks of the data folder bear. Main thread.
class SingleInstance {
public:
    enum class Role {
        first,     ///< this process is the one, or there is no bus
        forwarded  ///< another one was told; this one has nothing to do
    };

    /// Before QApplication: whether another process runs already, which is then told to open
    /// `urls`, or to show itself where there are none.
    static Role forward(const QStringList& urls);

    struct Requests {
        /// The window is to come to the front. `token`: the desktop's leave to do so; empty: none.
        std::function<void(const QByteArray& token)> activate;
        /// URLs to open; comes before `activate` of the same start.
        std::function<void(const QStringList& urls)> open;
    };
    /// Takes the name. `forwarded`: another process was quicker, and was told to show itself.
    /// `requests` come as long as the application lives.
    static Role claim(Requests requests);
};

}  // namespace tessaly::desktop
