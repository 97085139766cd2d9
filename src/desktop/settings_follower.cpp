// SPDX-License-Identifier: MIT
#include "desktop/settings_follower.h"

#include <QDir>
#include <QGuiApplication>
#include <QStringList>
#include <utility>

#include "desktop/qt_text.h"
#include "settings/setting_rows.h"

namespace tessaly::desktop {

namespace {

/// The folder, or what there is of the way to it: the first setting makes the rest.
QString existingFolder(const std::string& folder) {
    QString path = qt(folder);
    while (path.size() > 1 && !QDir(path).exists()) {
        path = QDir::cleanPath(path + QStringLiteral("/.."));
    }
    return path;
}

}  // namespace

SettingsFollower::SettingsFollower(app::Services& services, QObject* parent)
    : QObject(parent), _services(services), _values(values()) {
    connect(&_watcher, &QFileSystemWatcher::directoryChanged, this, &SettingsFollower::look);
    // Where folders cannot be watched, as on some network file systems, it is noticed at the latest
    // when the user comes back from the other program.
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, &SettingsFollower::look);
    watch();
}

void SettingsFollower::watch() {
    const QString folder = existingFolder(_services.ports().folders.config);
    if (const QStringList before = _watcher.directories(); before != QStringList{folder}) {
        if (!before.isEmpty()) {
            _watcher.removePaths(before);
        }
        _watcher.addPath(folder);
    }
}

void SettingsFollower::look() {
    watch();
    std::string now = values();
    if (now != _values) {
        _values = std::move(now);
        Q_EMIT changed();
    }
}

std::string SettingsFollower::values() const {
    std::string all;
    for (const settings::SettingRow& row : settings::settingRows()) {
        if (const auto text = _services.globals().text(row.key)) {
            all += *text + '\n';
        }
    }
    return all;
}

}  // namespace tessaly::desktop
