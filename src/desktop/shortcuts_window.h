// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;

namespace tessaly::desktop {

class CommandActions;
class ShortcutsPage;

/// All commands with their keys, and with the letters that do them in lists, by group, in columns;
/// a field leaves those that hold what is typed.
class ShortcutsWindow : public QDialog {
    Q_OBJECT
public:
    ShortcutsWindow(QWidget* parent, const CommandActions& actions);

    /// Shows the one of `parent`.
    static void popUp(QWidget* parent, const CommandActions& actions);

private:
    void dress();

    QLineEdit* _filter;
    QLabel* _legend;
    ShortcutsPage* _page;
};

}  // namespace tessaly::desktop
