// SPDX-License-Identifier: MIT
#include "desktop/desktop_questions.h"

#include <QMessageBox>
#include <QPushButton>
#include <algorithm>

#include "desktop/qt_text.h"

namespace tessaly::desktop {

std::optional<std::size_t> DesktopQuestions::ask(const ports::Question& question) const {
    QMessageBox box{_window};
    box.setWindowModality(Qt::WindowModal);
    box.setIcon(question.buttons.empty() ? QMessageBox::Information : QMessageBox::Question);
    box.setText(qt(question.title));
    box.setInformativeText(qt(question.text));
    box.setTextFormat(Qt::PlainText);
    std::vector<QAbstractButton*> buttons;
    for (const std::string& text : question.buttons) {
        buttons.push_back(box.addButton(
            qt(text), buttons.empty() ? QMessageBox::AcceptRole : QMessageBox::ActionRole));
    }
    if (!buttons.empty()) {
        // Qt gives Escape to none of several buttons: this one is not seen, and has it.
        QPushButton* none = box.addButton(QString(), QMessageBox::RejectRole);
        none->hide();
        box.setEscapeButton(none);
    }
    box.exec();
    const auto found = std::find(buttons.begin(), buttons.end(), box.clickedButton());
    if (found == buttons.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - buttons.begin());
}

ports::Questions DesktopQuestions::port() {
    return [this](const ports::Question& question) { return ask(question); };
}

}  // namespace tessaly::desktop
