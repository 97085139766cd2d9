// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>
#include <vector>

#include "desktop/day_choice.h"
#include "desktop/floating_list.h"

namespace tessaly::desktop {

class CompletionDays;
class CompletionPanel;

/// What is offered, in sight over the window of the widget that has the keys: rows, or days. Main
/// thread.
class CompletionView : public QObject {
    Q_OBJECT
public:
    /// `writer` outlives it.
    explicit CompletionView(QWidget& writer);
    ~CompletionView() override;

    enum class Shown { nothing, rows, days };
    Shown shown() const { return _shown; }

    /// `current` is the row that Enter takes; -1: none. `anchor` is where the word stands, in
    /// global coordinates.
    void showRows(const std::vector<FloatingRow>& rows, int current, const QRect& anchor);
    /// What is typed already chooses a day. `context` counts until `hide`.
    void showDays(const QString& typed, const ScheduleContext& context, const QRect& anchor);
    void move(const QRect& anchor);
    void hide();

    int currentRow() const;
    /// The row after or before the current one, all around.
    void stepRow(int rows);
    /// Of the days that are shown.
    DayChoice& days() const;

Q_SIGNALS:
    void rowClicked(int row);
    void dayClicked(tessaly::base::Day day);

private:
    void show(Shown shown, const QRect& anchor);
    void makeList();
    void makeDays(const ScheduleContext& context);
    void tellDay();

    QWidget& _writer;
    QString _toldBefore;  ///< of the writer, to screen readers
    Shown _shown = Shown::nothing;
    // The window's, which may go before.
    QPointer<CompletionPanel> _listPanel;
    QPointer<FloatingList> _list;
    QPointer<CompletionPanel> _dayPanel;
    QPointer<CompletionDays> _days;
};

}  // namespace tessaly::desktop
