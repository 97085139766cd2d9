// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusAbstractAdaptor>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include "desktop/single_instance.h"

namespace tessaly::desktop {

/// Answers `org.freedesktop.Application` for its object. The names are the interface's own.
class ApplicationAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public:
    ApplicationAdaptor(QObject* object, SingleInstance::Requests requests);

public Q_SLOTS:
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& uris, const QVariantMap& platformData);
    /// Our desktop file names no actions: shows the window.
    void ActivateAction(const QString& name, const QVariantList& parameter,
                        const QVariantMap& platformData);

private:
    SingleInstance::Requests _requests;
};

}  // namespace tessaly::desktop
