// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>
#include <QWidget>
#include <functional>

class QLabel;
class QPushButton;

namespace tessaly::desktop {

/// What has just happened, at the bottom of a window, for some seconds or as long as the pointer or
/// the focus is on it. A newer notice takes the place of an older one. Screen readers say it.
class Toast : public QWidget {
    Q_OBJECT
public:
    explicit Toast(QWidget* window);

    /// Whether the key that takes back the newest change of tasks does what the button does.
    enum class UndoKey { tasks, none };
    /// With `undo`, which may be empty, there is a button that does it, with its key on it.
    void show(const QString& text, bool isFailure = false, std::function<void()> undo = {},
              UndoKey key = UndoKey::tasks);
    /// With a button that does something else than to take it back.
    void offer(const QString& text, const QString& button, std::function<void()> run);
    static constexpr int shownMilliseconds = 6000;

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void dress();
    void present(const QString& text);
    void place();
    void undo();
    bool isHeld() const;

    QLabel* _sign;  // of a failure
    QLabel* _text;
    QPushButton* _undoButton;
    QTimer _timer;
    std::function<void()> _undo;
};

}  // namespace tessaly::desktop
