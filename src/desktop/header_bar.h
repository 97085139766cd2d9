// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QWidget>
#include <vector>

#include "app/commands.h"
#include "desktop/icons.h"

class QAction;
class QHBoxLayout;
class QMenu;
class QPushButton;
class QToolButton;

namespace tessaly::desktop {

class CommandActions;
class ElidedLabel;

/// The row above the middle of the window: where one is, how to get on, and whether what was typed
/// is kept. Its buttons do what the commands do.
class HeaderBar : public QWidget {
    Q_OBJECT
public:
    explicit HeaderBar(QWidget* parent = nullptr);

    /// Makes the buttons; once, before all else is set. `actions` outlive the bar.
    void setActions(const CommandActions& actions);
    /// What the button "…" opens; the bar does not own it.
    void setMenu(QMenu* menu);

    void setTitle(const QString& title);
    /// "Week 10 · 5 open tasks"; empty: none.
    void setSubtitle(const QString& subtitle);
    /// Whether there is somewhere to go back and forward to: enables the commands themselves.
    void setCanGo(bool back, bool forward);
    /// Whether the arrows to the day before and after are of use here.
    void setDayArrows(bool areShown);
    /// Whether the button to today is of use here.
    void setTodayButton(bool isShown);
    /// Loud: what was typed is not on the disk. Empty: there is nothing to tell.
    void setSaveState(const QString& text, bool isLoud);

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct IconButton {
        QToolButton* button;
        IconName name;
        IconName mirrored;  ///< where one reads from right to left
    };

    QToolButton* addButton(QHBoxLayout* row, IconName name, IconName mirrored);
    QToolButton* addCommand(QHBoxLayout* row, QAction* action, IconName name, IconName mirrored);
    void addTodayButton(QAction* action);
    void fitTitle();
    void paintIcons();

    QHBoxLayout* _left;
    QHBoxLayout* _right;
    ElidedLabel* _title;
    ElidedLabel* _subtitle;
    ElidedLabel* _saveState;
    QAction* _goBack = nullptr;
    QAction* _goForward = nullptr;
    QToolButton* _back = nullptr;
    QToolButton* _forward = nullptr;
    QToolButton* _dayBefore = nullptr;
    QToolButton* _dayAfter = nullptr;
    QPushButton* _today = nullptr;
    QToolButton* _more = nullptr;
    std::vector<IconButton> _icons;
};

}  // namespace tessaly::desktop
