// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractScrollArea>
#include <QObject>

namespace tessaly::desktop {

/// Makes of the wheel that is turned with Ctrl over a view what its keys for the size of letters
/// do. A text field would change its own letters alone, and nobody would know.
class WheelZoom : public QObject {
    Q_OBJECT
public:
    /// Belongs to the view.
    explicit WheelZoom(QAbstractScrollArea& view);

Q_SIGNALS:
    /// Larger letters are wanted, or, below 0, smaller ones.
    void asked(int steps);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int _angle = 0;  ///< that made no step yet
};

}  // namespace tessaly::desktop
