// SPDX-License-Identifier: MIT
#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <string>

#include "app/services.h"

namespace tessaly::desktop {

/// Notices when settings have other values than before, also when another program has stored them.
class SettingsFollower : public QObject {
    Q_OBJECT
public:
    /// `services` outlive it.
    SettingsFollower(app::Services& services, QObject* parent);

Q_SIGNALS:
    void changed();

private:
    void watch();
    void look();
    std::string values() const;

    app::Services& _services;
    QFileSystemWatcher _watcher;
    std::string _values;
};

}  // namespace tessaly::desktop
