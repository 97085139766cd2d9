// SPDX-License-Identifier: MIT
#pragma once

class QLineEdit;

namespace tessaly::desktop {

/// Gives a text field a button that clears it, which says so to screen readers.
void addClearButton(QLineEdit& field);

}  // namespace tessaly::desktop
