// SPDX-License-Identifier: MIT
#include "desktop/single_instance.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QVariantMap>
#include <utility>

#include "desktop/application_adaptor.h"
#include "desktop/session_bus.h"

namespace tessaly::desktop {

namespace {

constexpr int forwardMilliseconds = 5000;

QString busName() {
    return QString::fromLatin1(programId);
}
QString busPath() {
    return QStringLiteral("/org/tessaly/tessaly");
}

/// The desktop's leave to come to the front, which was given to this process.
QVariantMap platformData() {
    QVariantMap data;
    for (const auto& [key, variable] :
         {std::pair{QStringLiteral("activation-token"), "XDG_ACTIVATION_TOKEN"},
          std::pair{QStringLiteral("desktop-startup-id"), "DESKTOP_STARTUP_ID"}}) {
        if (!qEnvironmentVariableIsEmpty(variable)) {
            data.insert(key, qEnvironmentVariable(variable));
        }
    }
    return data;
}

SingleInstance::Role forwardOver(QDBusConnection bus, const QStringList& urls) {
    auto call = QDBusMessage::createMethodCall(
        busName(), busPath(), QStringLiteral("org.freedesktop.Application"),
        urls.isEmpty() ? QStringLiteral("Activate") : QStringLiteral("Open"));
    if (!urls.isEmpty()) {
        call << urls;
    }
    call << platformData();
    call.setAutoStartService(false);
    const QString error = bus.call(call, QDBus::Block, forwardMilliseconds).errorName();
    // One that is there and does not answer is the first all the same.
    const bool isNobodyThere =
        error == QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown") ||
        error == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner");
    return isNobodyThere ? SingleInstance::Role::first : SingleInstance::Role::forwarded;
}

}  // namespace

SingleInstance::Role SingleInstance::forward(const QStringList& urls) {
    if (!hasSessionBus()) {
        return Role::first;
    }
    // Not the session's usual connection, which wants an application behind it.
    const QString name = QStringLiteral("tessaly-forward");
    Role role = Role::first;
    {
        const QDBusConnection bus =
            QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
        if (bus.isConnected()) {
            role = forwardOver(bus, urls);
        }
    }
    QDBusConnection::disconnectFromBus(name);
    return role;
}

SingleInstance::Role SingleInstance::claim(Requests requests) {
    if (!hasSessionBus()) {
        return Role::first;
    }
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return Role::first;
    }
    // The object first: who sees the name may call at once.
    auto* object = new QObject(QCoreApplication::instance());
    new ApplicationAdaptor(object, std::move(requests));
    bus.registerObject(busPath(), object, QDBusConnection::ExportAdaptors);
    const auto taken =
        bus.interface()->registerService(busName(), QDBusConnectionInterface::DontQueueService,
                                         QDBusConnectionInterface::DontAllowReplacement);
    if (taken.value() == QDBusConnectionInterface::ServiceRegistered) {
        return Role::first;
    }
    bus.unregisterObject(busPath());
    delete object;
    return forwardOver(bus, {});
}

}  // namespace tessaly::desktop
