// SPDX-License-Identifier: MIT
#include "desktop/application_adaptor.h"

#include <utility>

namespace tessaly::desktop {

namespace {

QByteArray activationToken(const QVariantMap& data) {
    const QVariant token = data.value(QStringLiteral("activation-token"),
                                      data.value(QStringLiteral("desktop-startup-id")));
    return token.toString().toUtf8();
}

}  // namespace

ApplicationAdaptor::ApplicationAdaptor(QObject* object, SingleInstance::Requests requests)
    : QDBusAbstractAdaptor(object), _requests(std::move(requests)) {}

void ApplicationAdaptor::Activate(const QVariantMap& platformData) {
    _requests.activate(activationToken(platformData));
}

void ApplicationAdaptor::Open(const QStringList& uris, const QVariantMap& platformData) {
    _requests.open(uris);
    Activate(platformData);
}

void ApplicationAdaptor::ActivateAction(const QString&, const QVariantList&,
                                        const QVariantMap& platformData) {
    Activate(platformData);
}

}  // namespace tessaly::desktop
