// SPDX-License-Identifier: MIT
#include "desktop/version_differences.h"

#include <QTextBlock>
#include <string>

#include "desktop/document_edits.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"
#include "store/unified_diff.h"

namespace tessaly::desktop {

namespace {

constexpr int signStrength = 40;  // of 255

/// Without the lines that name files.
std::string_view hunksOf(std::string_view diff) {
    const std::size_t start = diff.find("\n@@");
    return start == std::string_view::npos ? std::string_view() : diff.substr(start + 1);
}

QColor backOfLine(const QString& line) {
    const Colors& colors = Theme::instance().colors();
    const QChar sign = line.isEmpty() ? QChar(u' ') : line.front();
    QColor color = sign == u'+' ? colors.green : sign == u'-' ? colors.red : QColor();
    if (color.isValid()) {
        color.setAlpha(signStrength);
    }
    return color;
}

}  // namespace

VersionDifferences::VersionDifferences(QWidget* parent) : QPlainTextEdit(parent) {
    setAccessibleName(trText("Differences to the current version"));
    setFrameShape(QFrame::NoFrame);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setUndoRedoEnabled(false);
    document()->setDocumentMargin(24);
    connect(&Theme::instance(), &Theme::changed, this, &VersionDifferences::paintTheme);
}

void VersionDifferences::show(std::string_view current, std::string_view version) {
    const std::string diff = store::unifiedDiff("current", current, "version", version);
    setPlainText(diff.empty() ? trText("This version is the same as the current one.")
                              : documentText(hunksOf(diff)));
    paintTheme();
}

void VersionDifferences::paintTheme() {
    setFont(Theme::instance().codeFont(13));
    QPalette painted = palette();
    painted.setColor(QPalette::Base, Theme::instance().colors().window);
    painted.setColor(QPalette::Text, Theme::instance().colors().text);
    setPalette(painted);
    QList<QTextEdit::ExtraSelection> lines;
    for (QTextBlock line = document()->begin(); line.isValid(); line = line.next()) {
        const QColor back = backOfLine(line.text());
        if (back.isValid()) {
            QTextEdit::ExtraSelection selection;
            selection.cursor = QTextCursor(line);
            selection.format.setBackground(back);
            selection.format.setProperty(QTextFormat::FullWidthSelection, true);
            lines.push_back(selection);
        }
    }
    setExtraSelections(lines);
}

}  // namespace tessaly::desktop
