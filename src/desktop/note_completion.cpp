// SPDX-License-Identifier: MIT
#include "desktop/note_completion.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <QTextBlock>
#include <algorithm>
#include <utility>

#include "desktop/completion_view.h"
#include "desktop/document_edits.h"
#include "desktop/note_editor.h"
#include "desktop/qt_text.h"

namespace tessaly::desktop {

namespace {

using app::CompletionKind;
using app::CompletionPlace;

constexpr std::size_t mostSuggestions = 8;

}  // namespace

NoteCompletion::NoteCompletion(app::Services& services, NoteEditor& editor,
                               std::function<base::NoteType()> noteType, QObject* parent)
    : QObject(parent),
      _services(services),
      _editor(editor),
      _noteType(std::move(noteType)),
      _feed(services),
      _view(std::make_unique<CompletionView>(editor)) {
    _editor.installEventFilter(this);
    _editor.viewport()->installEventFilter(this);
    connect(&_editor, &NoteEditor::typed, this, &NoteCompletion::onTyped);
    connect(&_editor, &QTextEdit::cursorPositionChanged, this, &NoteCompletion::checkLater);
    connect(_editor.document(), &QTextDocument::contentsChanged, this, &NoteCompletion::checkLater);
    connect(_editor.verticalScrollBar(), &QScrollBar::valueChanged, this, &NoteCompletion::move);
    connect(_view.get(), &CompletionView::rowClicked, this,
            [this](int row) { take(_choices[static_cast<std::size_t>(row)]); });
    connect(_view.get(), &CompletionView::dayClicked, this, &NoteCompletion::takeDay);
    _feed.setOnReady([this](CompletionKind kind) { onReady(kind); });
}

NoteCompletion::~NoteCompletion() = default;

std::optional<CompletionPlace> NoteCompletion::placeAtCaret() const {
    const QTextCursor caret = _editor.textCursor();
    if (caret.hasSelection()) {
        return std::nullopt;
    }
    const QTextBlock line = caret.block();
    return app::completionPlace(
        utf8(line.text()), static_cast<std::size_t>(caret.positionInBlock()),
        {_editor.fenceBefore(line.blockNumber()), _services.markerSettings()});
}

NoteCompletion::WordStart NoteCompletion::startOf(const CompletionPlace& place) const {
    return {place.kind, _editor.textCursor().blockNumber(), place.range.location};
}

void NoteCompletion::suggest() {
    if (const auto place = placeAtCaret()) {
        const bool isSame = _dismissed && _dismissed->start == startOf(*place);
        Words words = isSame ? _dismissed->words : _feed.words(place->kind);
        end();
        _dismissed.reset();
        begin(*place, std::move(words));
    }
}

void NoteCompletion::onTyped(TypingRun::Kind kind) {
    const auto place = placeAtCaret();
    if (!place) {
        _dismissed.reset();
        end();
        return;
    }
    const WordStart start = startOf(*place);
    if (_session && _session->start != start) {
        end();
    }
    if (_dismissed && _dismissed->start != start) {
        _dismissed.reset();
    }
    if (_session) {
        // Newer words would hold this one itself, as far as it is saved.
        begin(*place, _session->words);
    } else if (!_dismissed && kind == TypingRun::Kind::typing) {
        begin(*place, _feed.words(place->kind));
    }
}

void NoteCompletion::begin(const CompletionPlace& place, Words words) {
    _session = Session{startOf(place), place, std::move(words), _editor.textCursor().position(),
                       _editor.document()->revision()};
    offer();
}

void NoteCompletion::onReady(CompletionKind kind) {
    endWhenStale();
    // Rows that the user goes through are not to change meanwhile.
    const bool isAwaited = _view->currentRow() == _firstChoice;
    if (_session && _session->place.kind == kind && isAwaited) {
        _session->words = _feed.words(kind);
        offer();
    }
}

void NoteCompletion::offer() {
    if (_session->place.kind == CompletionKind::day) {
        offerDays();
    } else {
        offerWords();
    }
}

void NoteCompletion::offerDays() {
    const ScheduleContext context{_services.today(), _services.globals().firstDayOfWeek(),
                                  _services.dateStrings().formats(), std::nullopt, QString()};
    _view->showDays(qt(_session->place.typed), context, wordPlace());
}

void NoteCompletion::offerWords() {
    const CompletionPlace& place = _session->place;
    const std::vector<app::NextMark> marks = marksAtCaret();
    const app::OfferedWords offered =
        _session->words->matching(place.typed, mostSuggestions - marks.size());
    Suggestions suggestions = suggestionsOf(place, offered, marks);
    _choices = std::move(suggestions.choices);
    _firstChoice = suggestions.rows.empty() ? -1 : suggestions.first;
    if (suggestions.rows.empty()) {
        _view->hide();
    } else {
        _view->showRows(suggestions.rows, _firstChoice, wordPlace());
    }
}

std::vector<app::NextMark> NoteCompletion::marksAtCaret() const {
    const tasks::RewriteSettings settings = _services.rewriteSettings();
    ports::Clock& clock = _services.ports().clock;
    return app::nextMarks(utf8(_editor.textCursor().block().text()), _session->place,
                          settings.markers,
                          {_noteType(), clock.local(clock.now()), settings.hourCycle});
}

/// From its beginning to the caret, in global coordinates; where it goes over lines, the caret.
QRect NoteCompletion::wordPlace() const {
    const QTextCursor caret = _editor.textCursor();
    QTextCursor start(caret.block());
    start.setPosition(caret.block().position() + static_cast<int>(_session->place.range.location));
    QRect place = _editor.cursorRect(caret);
    const QRect startPlace = _editor.cursorRect(start);
    if (startPlace.top() == place.top()) {
        place = place.united(startPlace);
    }
    return {_editor.viewport()->mapToGlobal(place.topLeft()), place.size()};
}

void NoteCompletion::move() {
    if (_session && _editor.viewport()->rect().intersects(_editor.cursorRect())) {
        _view->move(wordPlace());
    } else {
        end();
    }
}

/// The caret or the text is no longer what something was offered for.
void NoteCompletion::endWhenStale() {
    const bool isStale = _session && (_session->caret != _editor.textCursor().position() ||
                                      _session->revision != _editor.document()->revision() ||
                                      _editor.textCursor().hasSelection());
    if (isStale) {
        end();
    }
}

/// Not at once: it may be a key that is told as typed in a moment.
void NoteCompletion::checkLater() {
    if (_session && !std::exchange(_isCheckPosted, true)) {
        QMetaObject::invokeMethod(
            this,
            [this] {
                _isCheckPosted = false;
                endWhenStale();
                move();
            },
            Qt::QueuedConnection);
    }
}

void NoteCompletion::end() {
    _session.reset();
    _firstChoice = -1;
    _view->hide();
}

CompletionKey NoteCompletion::meaningOf(const QKeyEvent& event) const {
    const CompletionKey meaning = completionKeyOf(event, _view->shown());
    return meaning == CompletionKey::take && !canTake() ? CompletionKey::none : meaning;
}

bool NoteCompletion::canTake() const {
    return _view->shown() == CompletionView::Shown::rows ? _view->currentRow() >= 0
                                                         : _view->days().chosen().has_value();
}

bool NoteCompletion::press(const QKeyEvent& event) {
    endWhenStale();
    switch (meaningOf(event)) {
        case CompletionKey::none: return false;
        case CompletionKey::leave:
            _dismissed = std::exchange(_session, std::nullopt);
            end();
            return true;
        case CompletionKey::take: takeChosen(); return true;
        case CompletionKey::next: step(1); return true;
        case CompletionKey::previous: step(-1); return true;
        case CompletionKey::monthLater: _view->days().moveMonths(1); return true;
        case CompletionKey::monthEarlier: _view->days().moveMonths(-1); return true;
    }
    return false;
}

void NoteCompletion::step(int rows) {
    if (_view->shown() == CompletionView::Shown::rows) {
        _view->stepRow(rows);
    } else {
        _view->days().step(rows);
    }
}

void NoteCompletion::takeChosen() {
    if (_view->shown() == CompletionView::Shown::rows) {
        take(_choices[static_cast<std::size_t>(_view->currentRow())]);
    } else {
        takeDay(*_view->days().chosen());
    }
}

void NoteCompletion::take(const Suggestions::Choice& choice) {
    endWhenStale();
    if (!_session) {
        return;
    }
    const std::string line = utf8(_editor.textCursor().block().text());
    make(choice.mark ? app::markEdit(line, _session->place, *choice.mark)
                     : app::completionEdit(line, _session->place, choice.word));
}

void NoteCompletion::takeDay(base::Day day) {
    endWhenStale();
    if (!_session) {
        return;
    }
    make(app::completionEdit(utf8(_editor.textCursor().block().text()), _session->place,
                             base::tagText(day)));
}

void NoteCompletion::make(const editor::Edit& edit) {
    end();
    _editor.make(edit, _editor.textCursor().block().position());
}

bool NoteCompletion::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::ShortcutOverride:
            if (meaningOf(static_cast<QKeyEvent&>(*event)) == CompletionKey::none) {
                return false;
            }
            event->accept();
            return true;
        case QEvent::KeyPress: return press(static_cast<QKeyEvent&>(*event));
        case QEvent::InputMethod:
            if (!static_cast<QInputMethodEvent*>(event)->preeditString().isEmpty()) {
                end();
            }
            return false;
        case QEvent::MouseButtonPress:
        case QEvent::FocusOut: end(); return false;
        case QEvent::Resize: checkLater(); return false;
        default: return QObject::eventFilter(watched, event);
    }
}

}  // namespace tessaly::desktop
