// SPDX-License-Identifier: MIT
#include "desktop/clear_button.h"

#include <QLineEdit>
#include <QToolButton>

#include "desktop/qt_text.h"

namespace tessaly::desktop {

void addClearButton(QLineEdit& field) {
    field.setClearButtonEnabled(true);
    // The toolkit gives it neither a text nor a name.
    if (auto* button = field.findChild<QToolButton*>()) {
        button->setAccessibleName(trText("Clear"));
    }
}

}  // namespace tessaly::desktop
