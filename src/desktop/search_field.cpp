// SPDX-License-Identifier: MIT
#include "desktop/search_field.h"

#include <QAction>
#include <QCompleter>
#include <QKeyEvent>
#include <QPainter>
#include <QStringListModel>

#include "desktop/clear_button.h"
#include "desktop/icons.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

constexpr int searchSignSize = 16;
constexpr int searchSignMargin = 8;

}  // namespace

SearchField::SearchField(QWidget* parent) : QLineEdit(parent) {
    setPlaceholderText(trText("Search"));
    setAccessibleName(trText("Search"));
    addClearButton(*this);
    setTextMargins(searchSignSize + searchSignMargin, 0, 0, 0);
    // Not `textEdited`: the button that clears the field is no edit.
    connect(this, &QLineEdit::textChanged, this, [this](const QString& query) {
        if (!_isSetting) {
            Q_EMIT typed(query);
        }
    });
    auto* completer = new QCompleter(this);
    _recent = new QStringListModel(completer);
    completer->setModel(_recent);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    completer->setWidget(this);
    connect(completer, qOverload<const QString&>(&QCompleter::activated), this,
            [this](const QString& query) { setText(query); });
    _completer = completer;
    connect(&Theme::instance(), &Theme::changed, this, qOverload<>(&QWidget::update));
}

void SearchField::enter() {
    setFocus(Qt::ShortcutFocusReason);
    selectAll();
}

void SearchField::setQuery(const QString& query) {
    _isSetting = true;
    setText(query);
    _isSetting = false;
}

void SearchField::setRecentSearches(const QStringList& searches) {
    _recent->setStringList(searches);
}

void SearchField::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (!text().trimmed().isEmpty()) {
                Q_EMIT kept(text());
            }
            Q_EMIT listWanted();
            return;
        case Qt::Key_Down:
            if (text().isEmpty() && _recent->rowCount() > 0) {
                _completer->complete();
            } else {
                Q_EMIT listWanted();
            }
            return;
        case Qt::Key_Escape:
            if (text().isEmpty()) {
                Q_EMIT left();
            } else {
                clear();
            }
            return;
        default: QLineEdit::keyPressEvent(event);
    }
}

void SearchField::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect sign(searchSignMargin, (height() - searchSignSize) / 2, searchSignSize,
                     searchSignSize);
    paintIcon(painter, QRectF(QStyle::visualRect(layoutDirection(), rect(), sign)),
              IconName::search, Theme::instance().colors().text2);
}

}  // namespace tessaly::desktop
