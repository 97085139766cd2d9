// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QVariant>
#include <optional>

#include "desktop/theme.h"

namespace tessaly::desktop {

/// The user's taste as the desktop's portal tells it: light or dark, accent and contrast, now and
/// whenever they change. What the portal does not tell, the palette decides that the platform gave
/// the application. Main thread; made after QApplication, before the theme is applied.
class Appearance : public QObject {
    Q_OBJECT
public:
    explicit Appearance(QObject* parent = nullptr);

    /// Gives the theme what is known, and follows the desktop from now on. The portal's first
    /// answer is waited for, shortly, so that the window is not painted twice.
    void follow();

private Q_SLOTS:
    void takeChange(const QDBusMessage& change);

private:
    void takeAll(const QDBusMessage& answer);
    void askLater(const QDBusMessage& question);
    void take(const QString& key, const QVariant& value);
    void applyLook();

    const Theme::Scheme _schemeOfPalette;
    std::optional<Theme::Scheme> _scheme;
    bool _isContrastHigh = false;
    bool _isHighContrastDesktop = false;  ///< by the older setting of its own
    QColor _accent;                       ///< invalid: none was chosen
};

}  // namespace tessaly::desktop
