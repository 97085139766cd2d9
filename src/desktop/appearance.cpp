// SPDX-License-Identifier: MIT
#include "desktop/appearance.h"

#include <QApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QMap>
#include <QPalette>

#include "desktop/session_bus.h"

namespace tessaly::desktop {

namespace {

using SettingsBySpace = QMap<QString, QVariantMap>;

constexpr int firstAnswerMilliseconds = 150;

QString portalName() {
    return QStringLiteral("org.freedesktop.portal.Desktop");
}
QString portalPath() {
    return QStringLiteral("/org/freedesktop/portal/desktop");
}
QString portalSettings() {
    return QStringLiteral("org.freedesktop.portal.Settings");
}
/// The spaces of settings that tell the user's taste. The second is for portals that do not know of
/// contrast yet.
QStringList settingSpaces() {
    return {QStringLiteral("org.freedesktop.appearance"),
            QStringLiteral("org.gnome.desktop.a11y.interface")};
}

Theme::Scheme schemeOfPalette() {
    const QPalette palette = QApplication::palette();
    const bool isDark = palette.color(QPalette::Window).lightness() <
                        palette.color(QPalette::WindowText).lightness();
    return isDark ? Theme::Scheme::dark : Theme::Scheme::light;
}

/// Three parts from 0 to 1; others mean that the user has chosen none.
QColor accentOf(const QVariant& value) {
    if (!value.canConvert<QDBusArgument>()) {
        return {};
    }
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("(ddd)")) {
        return {};
    }
    double parts[3] = {};
    argument.beginStructure();
    argument >> parts[0] >> parts[1] >> parts[2];
    argument.endStructure();
    for (const double part : parts) {
        if (!(part >= 0 && part <= 1)) {
            return {};
        }
    }
    return QColor::fromRgbF(static_cast<float>(parts[0]), static_cast<float>(parts[1]),
                            static_cast<float>(parts[2]));
}

std::optional<Theme::Scheme> schemeOf(const QVariant& value) {
    switch (value.toUInt()) {
        case 1: return Theme::Scheme::dark;
        case 2: return Theme::Scheme::light;
        default: return std::nullopt;
    }
}

}  // namespace

Appearance::Appearance(QObject* parent) : QObject(parent), _schemeOfPalette(schemeOfPalette()) {}

void Appearance::follow() {
    if (!hasSessionBus()) {
        return applyLook();
    }
    qDBusRegisterMetaType<SettingsBySpace>();
    QDBusConnection bus = QDBusConnection::sessionBus();
    // Before the question, so that no change is missed.
    bus.connect(portalName(), portalPath(), portalSettings(), QStringLiteral("SettingChanged"),
                this, SLOT(takeChange(QDBusMessage)));
    auto question = QDBusMessage::createMethodCall(portalName(), portalPath(), portalSettings(),
                                                   QStringLiteral("ReadAll"));
    question << settingSpaces();
    const QDBusMessage answer = bus.call(question, QDBus::Block, firstAnswerMilliseconds);
    takeAll(answer);
    applyLook();
    if (answer.errorName() == QLatin1String("org.freedesktop.DBus.Error.NoReply")) {
        askLater(question);
    }
}

void Appearance::askLater(const QDBusMessage& question) {
    auto* watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        takeAll(watcher->reply());
        applyLook();
        watcher->deleteLater();
    });
}

void Appearance::takeAll(const QDBusMessage& answer) {
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) {
        return;
    }
    const auto spaces = qdbus_cast<SettingsBySpace>(answer.arguments().constFirst());
    for (const QString& space : settingSpaces()) {
        const QVariantMap settings = spaces.value(space);
        for (auto each = settings.cbegin(); each != settings.cend(); ++each) {
            take(each.key(), each.value());
        }
    }
}

void Appearance::takeChange(const QDBusMessage& change) {
    const QVariantList parts = change.arguments();  // space, key, value
    if (parts.size() == 3 && settingSpaces().contains(parts[0].toString())) {
        take(parts[1].toString(), parts[2].value<QDBusVariant>().variant());
        applyLook();
    }
}

void Appearance::take(const QString& key, const QVariant& value) {
    if (key == QLatin1String("color-scheme")) {
        _scheme = schemeOf(value);
    } else if (key == QLatin1String("accent-color")) {
        _accent = accentOf(value);
    } else if (key == QLatin1String("contrast")) {
        _isContrastHigh = value.toUInt() == 1;
    } else if (key == QLatin1String("high-contrast")) {
        _isHighContrastDesktop = value.toBool();
    }
}

void Appearance::applyLook() {
    using Contrast = Theme::Contrast;
    Theme::instance().apply(
        {_scheme.value_or(_schemeOfPalette),
         _isContrastHigh || _isHighContrastDesktop ? Contrast::high : Contrast::usual, _accent});
}

}  // namespace tessaly::desktop
