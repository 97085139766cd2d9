// SPDX-License-Identifier: MIT
#include "desktop/find_bar.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "base/localisation.h"
#include "desktop/document_edits.h"
#include "desktop/icons.h"
#include "desktop/note_editor.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

constexpr int lookDelay = 80;  // milliseconds, while the text is being changed
constexpr int fieldWidth = 240;

bool isWordCharacter(const QString& text, qsizetype at) {
    return at >= 0 && at < text.size() && (text[at].isLetterOrNumber() || text[at] == u'_');
}

bool isWholeWord(const QString& text, qsizetype start, qsizetype end) {
    return !(isWordCharacter(text, start - 1) && isWordCharacter(text, start)) &&
           !(isWordCharacter(text, end - 1) && isWordCharacter(text, end));
}

QToolButton* makeToggle(QWidget* parent, const QString& sign, const QString& name) {
    auto* button = new QToolButton(parent);
    button->setCheckable(true);
    button->setText(sign);
    button->setAccessibleName(name);
    button->setToolTip(name);
    return button;
}

}  // namespace

std::vector<base::TextRange> occurrences(const QString& text, const TextSearch& search) {
    std::vector<base::TextRange> found;
    const qsizetype size = search.text.size();
    const auto sensitivity = search.isCaseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive;
    qsizetype from = 0;
    while (size > 0) {
        const qsizetype at = text.indexOf(search.text, from, sensitivity);
        if (at < 0) {
            break;
        }
        const bool isFound = !search.isWholeWords || isWholeWord(text, at, at + size);
        if (isFound) {
            found.push_back({static_cast<std::size_t>(at), static_cast<std::size_t>(size)});
        }
        from = at + (isFound ? size : 1);
    }
    return found;
}

FindBar::FindBar(QWidget* parent) : QWidget(parent) {
    setAccessibleName(trText("Find in note"));
    build();
    _lookLater.setSingleShot(true);
    _lookLater.setInterval(lookDelay);
    connect(&_lookLater, &QTimer::timeout, this, &FindBar::look);
    connect(_findField, &QLineEdit::textChanged, this, [this] {
        look();
        if (!_matches.empty() && !selectedMatch()) {
            step(Direction::forward);
        }
    });
    connect(_caseButton, &QToolButton::toggled, this, &FindBar::look);
    connect(_wordsButton, &QToolButton::toggled, this, &FindBar::look);
    connect(_replaceField, &QLineEdit::returnPressed, this, &FindBar::replaceOne);
    connect(&Theme::instance(), &Theme::changed, this, &FindBar::paintTheme);
    paintTheme();
    hide();
}

void FindBar::build() {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 8, 16, 8);
    column->setSpacing(6);
    const auto makeField = [this](const QString& name) {
        auto* field = new QLineEdit(this);
        field->setPlaceholderText(name);
        field->setAccessibleName(name);
        field->setMaximumWidth(fieldWidth * 2);
        field->setMinimumWidth(fieldWidth / 2);
        return field;
    };
    const auto addButton = [this](QHBoxLayout* row, const QString& text, void (FindBar::*run)()) {
        auto* button = new QPushButton(text, this);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, run);
        row->addWidget(button);
    };

    auto* findRow = new QHBoxLayout;
    findRow->setSpacing(6);
    _findField = makeField(trText("Find"));
    _caseButton = makeToggle(this, QStringLiteral("Aa"), trText("Match case"));
    _wordsButton = makeToggle(this, QStringLiteral("\u201Cw\u201D"), trText("Whole words"));
    _count = new QLabel(this);
    auto* close = new QToolButton(this);
    close->setAccessibleName(trText("Close"));
    close->setToolTip(trText("Close (Esc)"));
    close->setObjectName(QStringLiteral("close"));
    connect(close, &QToolButton::clicked, this, &FindBar::close);
    findRow->addWidget(_findField, 1);
    findRow->addWidget(_caseButton);
    findRow->addWidget(_wordsButton);
    addButton(findRow, trText("Previous"), &FindBar::findPrevious);
    addButton(findRow, trText("Next"), &FindBar::findNext);
    findRow->addWidget(_count);
    findRow->addStretch(1);
    findRow->addWidget(close);
    column->addLayout(findRow);

    _replaceRow = new QWidget(this);
    auto* replaceRow = new QHBoxLayout(_replaceRow);
    replaceRow->setContentsMargins(0, 0, 0, 0);
    replaceRow->setSpacing(6);
    _replaceField = makeField(trText("Replace with"));
    replaceRow->addWidget(_replaceField, 1);
    addButton(replaceRow, trText("Replace"), &FindBar::replaceOne);
    addButton(replaceRow, trText("Replace All"), &FindBar::replaceAll);
    replaceRow->addStretch(1);
    column->addWidget(_replaceRow);
}

void FindBar::setEditor(NoteEditor* editor) {
    if (_editor == editor) {
        return;
    }
    disconnect(_editorChanges);
    if (_editor != nullptr) {
        _editor->setMatches({}, std::nullopt);
    }
    _editor = editor;
    if (editor != nullptr) {
        _editorChanges = connect(editor->document(), &QTextDocument::contentsChanged, this, [this] {
            if (isVisible()) {
                _lookLater.start();
            }
        });
    }
    if (isVisible()) {
        look();
    }
}

void FindBar::open(Fields fields) {
    const QString selected = _editor == nullptr ? QString() : selectedTextOf(_editor->textCursor());
    _replaceRow->setVisible(fields == Fields::findAndReplace && _editor != nullptr &&
                            _editor->canEdit());
    show();
    if (!selected.isEmpty() && !selected.contains(u'\n')) {
        _findField->setText(selected);
    }
    look();
    _findField->selectAll();
    _findField->setFocus(Qt::ShortcutFocusReason);
}

void FindBar::close() {
    hide();
    if (_editor != nullptr) {
        _editor->setMatches({}, std::nullopt);
        _editor->setFocus(Qt::OtherFocusReason);
    }
    Q_EMIT closed();
}

TextSearch FindBar::search() const {
    return {_findField->text(), _caseButton->isChecked(), _wordsButton->isChecked()};
}

void FindBar::look() {
    _lookLater.stop();
    if (_editor == nullptr) {
        _matches.clear();
        return;
    }
    QString text = _editor->document()->toRawText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    _matches = occurrences(text, search());
    tellCount();
}

std::optional<std::size_t> FindBar::selectedMatch() const {
    const base::TextRange selection = selectionOf(_editor->textCursor());
    const auto found = std::lower_bound(_matches.begin(), _matches.end(), selection);
    if (found == _matches.end() || *found != selection) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - _matches.begin());
}

void FindBar::tellCount() {
    const auto current = selectedMatch();
    _editor->setMatches(_matches, current);
    if (_findField->text().isEmpty()) {
        _count->clear();
    } else if (_matches.empty()) {
        _count->setText(trText("Not found"));
    } else {
        _count->setText(QStringLiteral("%1/%2")
                            .arg(current ? QString::number(*current + 1) : QStringLiteral("\u2013"))
                            .arg(_matches.size()));
    }
}

void FindBar::goTo(std::size_t match) {
    _editor->setTextCursor(cursorAt(*_editor->document(), _matches[match]));
    _editor->ensureCursorVisible();
    tellCount();
}

void FindBar::step(Direction direction) {
    if (_editor == nullptr) {
        return;
    }
    look();
    if (_matches.empty()) {
        return;
    }
    const base::TextRange selection = selectionOf(_editor->textCursor());
    if (direction == Direction::forward) {
        const bool isAtMatch = selectedMatch().has_value();
        const std::size_t from = isAtMatch ? selection.end() : selection.location;
        const auto next =
            std::find_if(_matches.begin(), _matches.end(),
                         [&](const base::TextRange& match) { return match.location >= from; });
        goTo(next == _matches.end() ? 0 : static_cast<std::size_t>(next - _matches.begin()));
        return;
    }
    const auto next = std::find_if(_matches.rbegin(), _matches.rend(), [&](const auto& match) {
        return match.end() <= selection.location;
    });
    goTo(static_cast<std::size_t>(_matches.rend() -
                                  (next == _matches.rend() ? _matches.rbegin() : next)) -
         1);
}

void FindBar::findNext() {
    step(Direction::forward);
}

void FindBar::findPrevious() {
    step(Direction::backward);
}

void FindBar::replaceOne() {
    if (_editor == nullptr || !_editor->canEdit()) {
        return;
    }
    look();
    if (const auto match = selectedMatch()) {
        QTextCursor caret = _editor->textCursor();
        caret.insertText(_replaceField->text());
        _editor->setTextCursor(caret);
    }
    step(Direction::forward);
}

void FindBar::replaceAll() {
    if (_editor == nullptr || !_editor->canEdit()) {
        return;
    }
    look();
    const QString text = _replaceField->text();
    DocumentChanges changes;
    for (const base::TextRange& match : _matches) {
        changes.push_back({static_cast<int>(match.location), static_cast<int>(match.length), text});
    }
    const auto count = static_cast<unsigned long>(changes.size());
    const bool isMade = _editor->changeText(changes);
    look();
    if (!isMade) {
        return;  // the editor has told why
    }
    _count->setText(qt(base::trPlural("%1 replaced", "%1 replaced", count)).arg(qulonglong{count}));
}

void FindBar::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape) {
        close();
    } else if (isReturn && _findField->hasFocus()) {
        step(event->modifiers().testFlag(Qt::ShiftModifier) ? Direction::backward
                                                            : Direction::forward);
    } else {
        QWidget::keyPressEvent(event);
    }
}

void FindBar::paintTheme() {
    const Colors& colors = Theme::instance().colors();
    QPalette painted = palette();
    painted.setColor(QPalette::Window, colors.rightPane);
    setPalette(painted);
    setAutoFillBackground(true);
    _count->setFont(Theme::instance().uiFont(12));
    findChild<QToolButton*>(QStringLiteral("close"))->setIcon(icon(IconName::close, colors.text2));
}

}  // namespace tessaly::desktop
