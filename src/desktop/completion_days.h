// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include "desktop/day_choice.h"

class QLineEdit;

namespace tessaly::desktop {

/// A field that shows what is typed elsewhere, and below it the day that this means. Main thread.
class CompletionDays : public QWidget {
    Q_OBJECT
public:
    explicit CompletionDays(const ScheduleContext& context, QWidget* parent = nullptr);

    void read(const QString& typed);
    DayChoice& choice() const { return *_choice; }

private:
    QLineEdit* const _field;
    DayChoice* const _choice;
};

}  // namespace tessaly::desktop
