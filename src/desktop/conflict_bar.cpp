// SPDX-License-Identifier: MIT
#include "desktop/conflict_bar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

QPushButton* addBarButton(QHBoxLayout* row, const QString& text, const QString& name) {
    auto* button = new QPushButton(text);
    button->setAccessibleName(name);
    button->setToolTip(name);
    button->setAutoDefault(false);
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    row->addWidget(button);
    return button;
}

}  // namespace

ConflictBarView::ConflictBarView(QWidget* parent)
    : QWidget(parent), _date(new QLabel(this)), _device(new QLabel(this)) {
    setAccessibleName(trText("Versions of this note"));
    setAttribute(Qt::WA_StyledBackground);
    setObjectName(QStringLiteral("conflictBar"));
    // Words above, buttons below: a narrow pane has room for both.
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 8, 16, 8);
    rows->setSpacing(6);
    auto* words = new QHBoxLayout;
    words->setSpacing(6);
    words->addWidget(_date);
    words->addWidget(_device, 1);
    rows->addLayout(words);
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    rows->addLayout(row);
    _showOther = addBarButton(row, {}, trText("Show the other version"));
    _differences = addBarButton(row, trText("Differences"),
                                trText("Show what differs from the current version"));
    _chooseThis =
        addBarButton(row, trText("Choose This"), trText("Keep the version that is shown"));
    _merge = addBarButton(row, trText("Merge"), trText("Join all versions, line by line"));
    row->addStretch(1);
    _differences->setCheckable(true);
    connect(_showOther, &QPushButton::clicked, this, &ConflictBarView::otherVersionAsked);
    connect(_differences, &QPushButton::toggled, this, &ConflictBarView::differencesToggled);
    connect(_chooseThis, &QPushButton::clicked, this, &ConflictBarView::thisVersionChosen);
    connect(_merge, &QPushButton::clicked, this, &ConflictBarView::mergeAsked);
    connect(&Theme::instance(), &Theme::changed, this, &ConflictBarView::paintTheme);
    paintTheme();
    hide();
}

void ConflictBarView::show(const sync::ConflictBar& bar, Version version) {
    _showOther->setText(qt(bar.showOtherVersionTitle));
    _date->setText(qt(bar.modificationDate));
    _device->setText(bar.deviceName.empty() ? trText("an unknown device") : qt(bar.deviceName));
    _differences->setEnabled(version == Version::other);
    if (version == Version::current) {
        setShowsDifferences(false);
    }
    QWidget::show();
}

bool ConflictBarView::showsDifferences() const {
    return _differences->isChecked();
}

void ConflictBarView::setShowsDifferences(bool isShown) {
    _differences->setChecked(isShown);
}

void ConflictBarView::setWork(Work work) {
    for (QPushButton* button : {_showOther, _chooseThis, _merge}) {
        button->setEnabled(work == Work::none);
    }
}

void ConflictBarView::paintTheme() {
    const Theme& theme = Theme::instance();
    const QString back = theme.colors().conflict.name();
    setStyleSheet(
        QStringLiteral(
            "#conflictBar { background: %1; }"
            "#conflictBar QLabel { color: white; background: transparent; }"
            "#conflictBar QPushButton { color: white; background: transparent;"
            " border: 1px solid white; border-radius: 6px; padding: 4px 10px; }"
            "#conflictBar QPushButton:focus { border: 2px solid white; padding: 3px 9px; }"
            "#conflictBar QPushButton:hover, #conflictBar QPushButton:checked"
            " { background: white; color: %1; }"
            "#conflictBar QPushButton:disabled { border-style: dotted; }")
            .arg(back));
    _date->setFont(theme.uiFont(13));
    _device->setFont(theme.uiFont(13, QFont::DemiBold));
}

}  // namespace tessaly::desktop
