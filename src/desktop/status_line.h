// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>
#include <chrono>
#include <memory>
#include <vector>

#include "app/long_work.h"

class QLabel;
class QPushButton;

namespace tessaly::desktop {

class ProgressLine;

/// The line at the bottom of a window that tells of long work: what, how far, how fast, with a
/// button that cancels it. It is there only while something runs that takes its time.
class StatusLine : public QWidget {
    Q_OBJECT
public:
    explicit StatusLine(QWidget* parent = nullptr);

    /// Shows this work until its `end`, or until another begins, behind which it waits unseen.
    void begin(std::shared_ptr<app::LongWork> work);
    /// Work that has not begun, or has ended, is ignored.
    void end(const app::LongWork* work);

    static constexpr int milliseconds = 100;  ///< between two looks at the work
    /// Work that ends sooner is not shown.
    static constexpr std::chrono::milliseconds patience{400};

Q_SIGNALS:
    /// The user has enough of it. The work is told, and shown until its `end`.
    void cancelled(const app::LongWork* work);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void look();
    void cancel();
    void dress();

    QLabel* _what;
    QLabel* _progress;
    QPushButton* _cancel;
    ProgressLine* _line;
    QTimer _timer;
    QElapsedTimer _clock;
    base::LocaleFormats _formats;
    std::vector<std::shared_ptr<app::LongWork>> _works;  ///< not ended; the shown one last
};

}  // namespace tessaly::desktop
