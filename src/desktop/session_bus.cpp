// SPDX-License-Identifier: MIT
#include "desktop/session_bus.h"

#include <QByteArray>
#include <QFileInfo>
#include <QString>

namespace tessaly::desktop {

bool hasSessionBus() {
    if (!qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) {
        return true;
    }
    const QString runtimeFolder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !runtimeFolder.isEmpty() && QFileInfo::exists(runtimeFolder + QStringLiteral("/bus"));
}

}  // namespace tessaly::desktop
