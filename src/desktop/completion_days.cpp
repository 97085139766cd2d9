// SPDX-License-Identifier: MIT
#include "desktop/completion_days.h"

#include <QLineEdit>
#include <QVBoxLayout>

#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

CompletionDays::CompletionDays(const ScheduleContext& context, QWidget* parent)
    : QWidget(parent),
      _field{new QLineEdit(this)},
      _choice{new DayChoice(context, DayChoice::Shape::wide, this)} {
    _field->setReadOnly(true);
    _field->setAttribute(Qt::WA_TransparentForMouseEvents);
    _field->setPlaceholderText(trText("fri, +3d, w12, 14"));
    _field->setAccessibleName(trText("Day"));
    _field->setFont(Theme::instance().uiFont(13));
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(6, 6, 6, 6);
    column->setSpacing(6);
    column->addWidget(_field);
    column->addWidget(_choice);
}

void CompletionDays::read(const QString& typed) {
    _field->setText(typed);
    _choice->read(typed);
}

}  // namespace tessaly::desktop
