// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <optional>
#include <string>

namespace tessaly::desktop {

/// The words that the program was started with.
struct StartOptions {
    std::optional<std::string> root;  ///< the data folder
    std::optional<std::string> now;   ///< a time that stands still, for tests and pictures
    bool isService = false;  ///< started by the session bus: no window until it is asked for
    bool help = false;
    bool version = false;
    QStringList urls;
    std::string misuse;  ///< what was wrong with them, in words for the user; empty: nothing

    /// Whoever names a data folder or a time does not mean the window that is open already.
    bool standsAlone() const { return root.has_value() || now.has_value(); }
};

StartOptions readStartOptions(const QStringList& arguments);
QString startHelp();

}  // namespace tessaly::desktop
