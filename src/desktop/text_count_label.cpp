// SPDX-License-Identifier: MIT
#include "desktop/text_count_label.h"

#include <QEvent>
#include <QHBoxLayout>
#include <utility>

#include "desktop/elided_label.h"
#include "desktop/note_editor.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

/// As texts of notes have line ends.
std::string countableText(QString text) {
    return utf8(text.replace(QChar::ParagraphSeparator, u'\n'));
}

}  // namespace

TextCountLabel::TextCountLabel(app::Services& services, NoteEditor& editor)
    : _services(services),
      _editor(editor),
      _label(new ElidedLabel(this)),
      _background(std::string(app::bundleIdentifier) + ".TextCounts", services.ports().executor,
                  services.ports().mainQueue) {
    setAttribute(Qt::WA_NoMousePropagation);
    _label->setTone(ElidedLabel::Tone::muted);
    _label->setWholeOnly(true);
    _label->setAlignment(Qt::AlignRight);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(16, 1, 16, 4);
    row->addWidget(_label);
    _timer.setSingleShot(true);
    _timer.setInterval(pause);
    connect(&_timer, &QTimer::timeout, this, &TextCountLabel::count);
    connect(_editor.document(), &QTextDocument::contentsChanged, &_timer,
            qOverload<>(&QTimer::start));
    connect(&_editor, &QTextEdit::selectionChanged, &_timer, qOverload<>(&QTimer::start));
    connect(&Theme::instance(), &Theme::changed, this, &TextCountLabel::dress);
    _editor.installEventFilter(this);
    setVisible(!_editor.isHidden());
    dress();
    _timer.start();
}

bool TextCountLabel::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShowToParent || event->type() == QEvent::HideToParent) {
        setVisible(event->type() == QEvent::ShowToParent);
    }
    return QWidget::eventFilter(watched, event);
}

void TextCountLabel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    _label->setVisible(width() >= leastWidth);
}

void TextCountLabel::count() {
    const int revision = _editor.document()->revision();
    std::optional<QString> all;
    if (revision != _countedRevision) {
        all = _editor.document()->toRawText();
    }
    const QString part = _editor.textCursor().selectedText();
    const grammar::MarkerSettings markers = _services.markerSettings();
    const int request = ++_request;
    _background.run([this, all, part, markers, revision, request,
                     known = _whole]() -> app::Background::Then {
        const app::TextCounts whole = all ? app::countText(countableText(*all), markers) : known;
        std::optional<app::TextCounts> selected;
        if (!part.isEmpty()) {
            selected = app::countText(countableText(part), markers);
        }
        return [this, revision, request, whole, selected] {
            if (request == _request) {
                _countedRevision = revision;
                _whole = whole;
                tell(whole, selected);
            }
        };
    });
}

void TextCountLabel::tell(const app::TextCounts& whole,
                          const std::optional<app::TextCounts>& selected) {
    const base::LocaleFormats& formats = _services.dateStrings().formats();
    const QString characters = qt(app::charactersInWords(selected.value_or(whole), formats));
    _label->setText(qt(app::countsInWords(whole, selected, formats)));
    _label->setAccessibleDescription(characters);
    setToolTip(characters);
}

void TextCountLabel::dress() {
    _label->setFont(Theme::instance().uiFont(12));
    update();
}

}  // namespace tessaly::desktop
