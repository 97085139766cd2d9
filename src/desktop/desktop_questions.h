// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QWidget>

#include "ports/questions.h"

namespace tessaly::desktop {

/// Puts questions to the user as sheets over the window. Main thread.
class DesktopQuestions {
public:
    /// Null: there is none; questions stand by themselves.
    void setWindow(QWidget* window) { _window = window; }
    /// Escape and the closing of the sheet are no answer.
    std::optional<std::size_t> ask(const ports::Question& question) const;
    /// As a port; this object outlives it.
    ports::Questions port();

private:
    QPointer<QWidget> _window;
};

}  // namespace tessaly::desktop
