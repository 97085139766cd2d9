// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

namespace tessaly::desktop {

/// One line of text that ends in "…" where the room is short, and takes as little as is left. Its
/// whole text is its tooltip then.
class ElidedLabel : public QLabel {
    Q_OBJECT
public:
    enum class Tone {
        usual,
        muted,
        loud  ///< on the colour of a conflict: something is wrong
    };
    explicit ElidedLabel(QWidget* parent = nullptr);

    void setTone(Tone tone);
    /// Shows nothing where there is no room for all, instead of a part.
    void setWholeOnly(bool isWholeOnly) { _isWholeOnly = isWholeOnly; }
    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int margin() const;
    QString shown() const;

    Tone _tone = Tone::usual;
    bool _isWholeOnly = false;
};

}  // namespace tessaly::desktop
