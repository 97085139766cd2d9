// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <functional>

namespace tessaly::desktop {

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the main thread, so that the program ends as
/// when its window is closed: what was typed is saved. A second one ends it at once. One a process.
class EndSignals : public QObject {
    Q_OBJECT
public:
    explicit EndSignals(std::function<void()> onEnd);
};

}  // namespace tessaly::desktop
