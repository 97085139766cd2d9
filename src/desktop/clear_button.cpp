// SPDX-License-Identifier: MIT
#include "desktop/clear_button.h"

#include <QAction>
#include <QLineEdit>

#include "desktop/icons.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

// The toolkit's own has no name, and looks through the desktop's icons for its picture, which takes
// longer than painting the whole window.
void addClearButton(QLineEdit& field) {
    QAction* const clear = field.addAction(icon(IconName::close, Theme::instance().colors().text3),
                                           QLineEdit::TrailingPosition);
    clear->setText(trText("Clear"));
    clear->setVisible(!field.text().isEmpty());
    QObject::connect(clear, &QAction::triggered, &field, [&field] {
        field.selectAll();
        field.del();  // unlike `clear`, it can be undone
    });
    QObject::connect(&field, &QLineEdit::textChanged, clear,
                     [clear](const QString& text) { clear->setVisible(!text.isEmpty()); });
    QObject::connect(&Theme::instance(), &Theme::changed, clear, [clear] {
        clear->setIcon(icon(IconName::close, Theme::instance().colors().text3));
    });
}

}  // namespace tessaly::desktop
