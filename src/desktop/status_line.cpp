// SPDX-License-Identifier: MIT
#include "desktop/status_line.h"

#include <QBasicTimer>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QTimerEvent>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

/// A bar of two pixels; where nobody knows how much there is, a piece that wanders.
class ProgressLine : public QProgressBar {
public:
    ProgressLine() {
        setFixedHeight(2);
        setTextVisible(false);
        setAccessibleName(trText("Progress"));
    }

    void showPart(std::size_t done, std::optional<std::size_t> total) {
        constexpr int steps = 1000;
        const bool isKnown = total.value_or(0) > 0;
        setRange(0, isKnown ? steps : 0);
        if (isKnown) {
            const double part = static_cast<double>(done) / static_cast<double>(*total);
            setValue(static_cast<int>(std::min(part, 1.0) * steps));
        } else if (!_timer.isActive()) {
            constexpr int frameMilliseconds = 40;
            _timer.start(frameMilliseconds, this);
        }
    }

protected:
    void paintEvent(QPaintEvent*) override {
        const Colors& colors = Theme::instance().colors();
        QPainter painter(this);
        painter.fillRect(rect(), colors.line);
        painter.fillRect(QStyle::visualRect(layoutDirection(), rect(), filled()), colors.accent);
    }

    void timerEvent(QTimerEvent* event) override {
        if (event->timerId() != _timer.timerId()) {
            return QProgressBar::timerEvent(event);
        }
        if (maximum() > 0 || !isVisible()) {
            _timer.stop();
        }
        ++_frame;
        update();
    }

private:
    QRect filled() const {
        if (maximum() > 0) {
            return {0, 0, width() * value() / maximum(), height()};
        }
        constexpr int pixelsPerFrame = 8;
        const int piece = std::max(width() / 5, 1);
        return {_frame * pixelsPerFrame % (width() + piece) - piece, 0, piece, height()};
    }

    QBasicTimer _timer;
    int _frame = 0;
};

StatusLine::StatusLine(QWidget* parent)
    : QWidget(parent), _formats(utf8(QLocale::system().name())) {
    _what = new QLabel;
    _what->setTextFormat(Qt::PlainText);
    _progress = new QLabel;
    _cancel = new QPushButton(trText("Cancel"));
    _line = new ProgressLine;
    auto* row = new QHBoxLayout;
    row->setContentsMargins(14, 3, 8, 3);
    row->setSpacing(10);
    row->addWidget(_what);
    row->addWidget(_progress);
    row->addStretch(1);
    row->addWidget(_cancel);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(_line);
    column->addLayout(row);
    setAccessibleName(trText("Work in hand"));
    _timer.setInterval(milliseconds);
    connect(&_timer, &QTimer::timeout, this, &StatusLine::look);
    connect(_cancel, &QPushButton::clicked, this, &StatusLine::cancel);
    connect(&Theme::instance(), &Theme::changed, this, &StatusLine::dress);
    dress();
    hide();
}

void StatusLine::begin(std::shared_ptr<app::LongWork> work) {
    if (_works.empty()) {
        _clock.start();
    }
    _works.push_back(std::move(work));
    _timer.start();
    look();
}

void StatusLine::end(const app::LongWork* work) {
    const std::size_t before = _works.size();
    std::erase_if(_works, [&](const auto& each) { return each.get() == work; });
    if (_works.empty()) {
        _timer.stop();
        hide();
    } else if (_works.size() != before) {
        look();
    }
}

void StatusLine::look() {
    const std::chrono::nanoseconds time(_clock.nsecsElapsed());
    const app::LongWork::View view = _works.back()->view(time);
    _what->setText(view.isCancelled ? trText("Cancelling…") : qt(view.what));
    _progress->setText(qt(app::progressText(view, _formats)));
    _cancel->setVisible(view.isCancellable);
    _line->showPart(view.done.value_or(0), view.total);
    setVisible(time >= patience);
}

void StatusLine::cancel() {
    const auto work = _works.back();
    work->cancel();
    look();
    Q_EMIT cancelled(work.get());
}

void StatusLine::dress() {
    const Theme& theme = Theme::instance();
    QPalette muted = palette();
    muted.setColor(QPalette::WindowText, theme.colors().text2);
    for (QLabel* label : {_what, _progress}) {
        label->setFont(theme.uiFont(12));
        label->setPalette(muted);
    }
    _cancel->setFont(theme.uiFont(12));
    _cancel->setStyleSheet(QStringLiteral("QPushButton { padding: 1px 10px; }"));
    update();
}

void StatusLine::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Theme::instance().colors().sideBar);
}

}  // namespace tessaly::desktop
