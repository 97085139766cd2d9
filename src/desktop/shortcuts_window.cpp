// SPDX-License-Identifier: MIT
#include "desktop/shortcuts_window.h"

#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QVBoxLayout>

#include "desktop/clear_button.h"
#include "desktop/qt_text.h"
#include "desktop/shortcuts_page.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

ShortcutsWindow::ShortcutsWindow(QWidget* parent, const CommandActions& actions)
    : QDialog(parent),
      _filter(new QLineEdit),
      _legend(new QLabel),
      _page(new ShortcutsPage(actions)) {
    constexpr QSize usualSize{1120, 720};
    setWindowTitle(trText("Keyboard Shortcuts"));
    setAttribute(Qt::WA_DeleteOnClose);
    resize(usualSize.boundedTo(parent->window()->size() * 0.92));
    _filter->setPlaceholderText(trText("Find a command or key"));
    _filter->setAccessibleName(trText("Find a command or key"));
    addClearButton(*_filter);
    auto* scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setWidget(_page);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(28, 24, 20, 16);
    column->setSpacing(18);
    column->addWidget(_filter);
    column->addWidget(scroll, 1);
    column->addWidget(_legend);
    connect(_filter, &QLineEdit::textChanged, this, [this](const QString& typed) {
        _page->filter(typed);
        dress();
    });
    connect(&Theme::instance(), &Theme::changed, this, [this] {
        _page->dress();
        dress();
    });
    dress();
    _filter->setFocus();
}

void ShortcutsWindow::popUp(QWidget* parent, const CommandActions& actions) {
    auto* shown = parent->findChild<ShortcutsWindow*>(QString(), Qt::FindDirectChildrenOnly);
    if (shown == nullptr) {
        shown = new ShortcutsWindow(parent, actions);
    }
    shown->show();
    shown->raise();
    shown->activateWindow();
}

void ShortcutsWindow::dress() {
    _legend->setText(_page->isEmpty()
                         ? trText("No command has that in its name or keys.")
                         : trText("Letters in the accent's colour work in lists of tasks. A number "
                                  "typed before one repeats it."));
    _legend->setFont(Theme::instance().uiFont(12));
    QPalette muted = palette();
    muted.setColor(QPalette::WindowText, Theme::instance().colors().text2);
    _legend->setPalette(muted);
}

}  // namespace tessaly::desktop
