// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QWidget>

namespace tessaly::desktop {

/// A panel over a window that never takes the keys: they stay where the user writes. Main thread.
class CompletionPanel : public QWidget {
    Q_OBJECT
public:
    /// `window` owns it, and it the content.
    CompletionPanel(QWidget* window, QWidget* content);

    /// Shows it as large as its content, by `anchor` in global coordinates, inside of the window.
    void popUp(const QRect& anchor);
    /// What is seen of it, in global coordinates.
    QRect panel() const;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace tessaly::desktop
