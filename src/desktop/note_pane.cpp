// SPDX-License-Identifier: MIT
#include "desktop/note_pane.h"

#include <QEvent>
#include <QLabel>
#include <QStackedWidget>
#include <QTextBlock>
#include <QVBoxLayout>
#include <utility>

#include "app/shown_text.h"
#include "desktop/caret_tasks.h"
#include "desktop/conflict_bar.h"
#include "desktop/editor_tools.h"
#include "desktop/find_bar.h"
#include "desktop/note_editor.h"
#include "desktop/note_versions.h"
#include "desktop/qt_text.h"
#include "desktop/text_count_label.h"
#include "desktop/theme.h"
#include "grammar/note_title.h"
#include "store/three_way_merge.h"

namespace tessaly::desktop {

namespace {

using app::CommandId;
using app::OpenNote;
using app::shownText;

std::string baseNameOf(const std::string& filename) {
    const std::size_t slash = filename.rfind('/');
    const std::string name = slash == std::string::npos ? filename : filename.substr(slash + 1);
    return name.substr(0, name.rfind('.'));
}

/// The lines that a title can be in: up to the first that is not blank.
std::string firstLines(const QTextDocument& document) {
    QString lines;
    for (QTextBlock line = document.begin(); line.isValid(); line = line.next()) {
        lines += line.text() + u'\n';
        if (!line.text().trimmed().isEmpty()) {
            break;
        }
    }
    return utf8(lines);
}

QLabel* makeMessage(QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setMargin(48);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return label;
}

}  // namespace

NotePane::NotePane(app::Services& services, QWidget* parent)
    : QWidget(parent), _services(services) {
    build();
    connectParts();
    restyle();
    showProblem(trText("Choose a day or a note."));
}

NotePane::~NotePane() {
    _versions->close();
}

void NotePane::build() {
    _readOnly = new QLabel(this);
    _readOnly->setMargin(8);
    _readOnly->setAlignment(Qt::AlignCenter);
    _readOnly->setWordWrap(true);
    _readOnly->hide();
    _pages = new QStackedWidget(this);
    _empty = makeMessage(this);
    _editor = new NoteEditor(this);
    _editor->setPlaceholderText(
        trText("Write here. A line that begins with \"* \" is a task, \"- \" makes a list and "
               "\"# \" a heading."));
    _versions =
        new NoteVersions(_services,
                         {[this] { return saveNow().ok(); },
                          [this] { return shownText(currentText()); }, [this] { _note->reread(); }},
                         this);
    _tasks = new CaretTasks(_services, *_editor,
                            {[this] { return _note->address(); }, [this] { return currentText(); },
                             [this] { return saveNow().ok(); }},
                            this);
    _tools = new EditorTools(
        _services, {*_editor, *_versions->textView()}, [this] { return _note->address().type; },
        this);
    for (QWidget* page : std::initializer_list<QWidget*>{_empty, _editor, _versions}) {
        _pages->addWidget(page);
    }
    _findBar = new FindBar(this);
    _findBar->setEditor(_editor);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(_versions->bar());
    column->addWidget(_readOnly);
    column->addWidget(_pages, 1);
    column->addWidget(_findBar);
    column->addWidget(new TextCountLabel(_services, *_editor));
}

void NotePane::connectParts() {
    connect(_editor, &NoteEditor::edited, this, &NotePane::onEdited);
    connect(_editor, &NoteEditor::notice, this, &NotePane::notice);
    connect(_editor, &NoteEditor::boxClicked, _tasks, &CaretTasks::toggle);
    connect(_editor, &NoteEditor::escaped, _findBar, &FindBar::close);
    connect(_versions, &NoteVersions::shownChanged, this, &NotePane::showOpenPage);
    connect(_versions, &NoteVersions::notice, this, &NotePane::notice);
    connect(_tools, &EditorTools::notice, this, &NotePane::notice);
    connect(_tools, &EditorTools::linkOpened, this, &NotePane::linkOpened);
    connect(_tasks, &CaretTasks::taskGesture, this, &NotePane::taskGesture);
    connect(_tasks, &CaretTasks::scheduleAsked, this, &NotePane::scheduleAsked);
    connect(_tasks, &CaretTasks::notice, this, &NotePane::notice);
    connect(&Theme::instance(), &Theme::changed, this, &NotePane::restyle);
}

bool NotePane::show(const app::NoteAddress& address, std::optional<std::size_t> line) {
    const bool isOpen = _note != nullptr && _note->address().type == address.type &&
                        _note->address().filename == address.filename;
    if (!isOpen || _note->obstacle()) {
        if (!saveNow()) {
            return false;
        }
        open(address);
    }
    if (line) {
        _editor->goToLine(static_cast<int>(app::shownLineOf(currentText(), *line)));
    }
    return true;
}

void NotePane::open(const app::NoteAddress& address) {
    leave();
    _note = std::make_unique<OpenNote>(
        _services, address,
        OpenNote::Handlers{
            [this] { return currentText(); }, [this](const std::string& text) { onMerged(text); },
            [this](OpenNote::SaveState) { onSaveState(); }, [this] { Q_EMIT gone(); }});
    _versions->open(address);
    showNote();
    _folds.bringBack(address, *_editor);
    _versions->check();
}

void NotePane::follow(const app::NoteAddress& address) {
    const std::string typed = currentText();
    const QTextCursor caret = _editor->textCursor();
    const int line = caret.blockNumber();
    const int column = caret.positionInBlock();
    open(address);
    const std::string joined = store::threeWayMerge(_savedText, typed, _note->text());
    if (!_note->obstacle() && joined != _note->text()) {
        _editor->replaceText(shownText(joined));
        onEdited();
    }
    _editor->goToLine(line, column);
}

void NotePane::showNote() {
    setGivenText(_note->text());
    _editor->setText(_givenShown);
    _noteRevision = _editor->document()->revision();
    showOpenPage();
    onSaveState();
    _title.clear();
    Q_EMIT titleChanged();
}

void NotePane::setGivenText(const std::string& text) {
    _noteText = text;
    _givenText = text;
    _givenShown = shownText(text);
}

void NotePane::leave() {
    _versions->close();
    _tools->startOver();
    if (_note != nullptr) {
        _folds.keep(_note->address(), *_editor);
    }
    _note.reset();
    setGivenText({});
    _editor->setText({});
    _noteRevision = _editor->document()->revision();
    showProblem(trText("Choose a day or a note."));
}

std::optional<app::NoteAddress> NotePane::current() const {
    return _note == nullptr ? std::nullopt : std::optional(_note->address());
}

QString NotePane::title() const {
    if (_note == nullptr) {
        return {};
    }
    const app::NoteAddress& address = _note->address();
    if (address.day) {
        return qt(_services.dateStrings().formats().day(*address.day, "EEEEdMMMM"));
    }
    return qt(grammar::noteTitle(firstLines(*_editor->document()), baseNameOf(address.filename)));
}

base::Result<base::Done> NotePane::saveNow() {
    if (_note == nullptr) {
        return base::Done{};
    }
    auto saved = _note->saveNow();
    _savedText = currentText();
    return saved;
}

base::Result<std::string> NotePane::keepCopy() {
    if (_note == nullptr) {
        return base::Failure{base::Failure::Kind::notFound, base::tr("No note is open.")};
    }
    return _note->keepCopy();
}

void NotePane::reread() {
    if (_note == nullptr) {
        return;
    }
    if (_note->obstacle()) {
        open(app::NoteAddress(_note->address()));
        return;
    }
    _note->reread();
    _versions->check();
}

std::string NotePane::currentText() {
    const int revision = _editor->document()->revision();
    if (revision != _noteRevision) {
        const std::string shown = _editor->text();
        // A line that was saved without its end, and has come back, would have got another one.
        _noteText = shown == _givenShown ? _givenText : app::noteTextOf(_noteText, shown);
        _noteRevision = revision;
    }
    return _noteText;
}

void NotePane::onEdited() {
    if (_note == nullptr) {
        return;
    }
    _note->edited();
    if (QString now = title(); now != _title) {
        _title = std::move(now);
        Q_EMIT titleChanged();
    }
}

void NotePane::onMerged(const std::string& text) {
    setGivenText(text);
    // A word that was being composed is joined in, and then this is not the text as it was given.
    _editor->replaceText(_givenShown);
    _noteText = app::noteTextOf(text, _editor->text());
    _noteRevision = _editor->document()->revision();
    showOpenPage();
    Q_EMIT titleChanged();
}

void NotePane::onSaveState() {
    switch (_note->saveState()) {
        case OpenNote::SaveState::saved: Q_EMIT saveStateChanged(trText("Saved"), false); break;
        case OpenNote::SaveState::unsaved: Q_EMIT saveStateChanged(trText("Saving…"), false); break;
        case OpenNote::SaveState::failed:
            Q_EMIT saveStateChanged(
                trText("Not saved: %1").arg(qt(_note->saveFailure()->description)), true);
    }
}

void NotePane::showOpenPage() {
    if (_versions->shown() != NoteVersions::Shown::note) {
        showPage(Page::versions);
    } else if (_note->obstacle()) {
        showProblem(qt(_note->obstacle()->description));
    } else {
        showPage(Page::editor);
    }
}

void NotePane::showPage(Page page) {
    _pages->setCurrentIndex(static_cast<int>(page));
    const bool isVersion =
        page == Page::versions && _versions->shown() == NoteVersions::Shown::text;
    _findBar->setEditor(page == Page::editor ? _editor
                        : isVersion          ? _versions->textView()
                                             : nullptr);
    const bool isInPieces = page == Page::editor && _editor->isInPieces();
    _readOnly->setText(isInPieces ? trText("A line of this note is very long. The note is shown in "
                                           "pieces, and cannot be edited here.")
                                  : trText("Another version is shown. It cannot be edited."));
    _readOnly->setVisible(page == Page::versions || isInPieces);
}

void NotePane::showProblem(const QString& text) {
    _empty->setText(text);
    showPage(Page::empty);
}

bool NotePane::showsMainEditor() const {
    return _note != nullptr && _pages->currentIndex() == static_cast<int>(Page::editor);
}

bool NotePane::perform(CommandId command) {
    if (_note == nullptr || _pages->currentIndex() == static_cast<int>(Page::empty)) {
        return false;
    }
    switch (command) {
        case CommandId::find: _findBar->open(FindBar::Fields::find); return true;
        case CommandId::replace: _findBar->open(FindBar::Fields::findAndReplace); return true;
        case CommandId::findNext: _findBar->findNext(); return true;
        case CommandId::findPrevious: _findBar->findPrevious(); return true;
        case CommandId::openLink:
            _tools->openLink(showsMainEditor() ? *_editor : *_versions->textView());
            return true;
        default: break;
    }
    if (!showsMainEditor() || !_editor->canEdit()) {
        return false;
    }
    if (const auto mark = app::commandRow(command).mark) {
        _editor->mark(*mark);
        return true;
    }
    switch (command) {
        case CommandId::undo: _editor->undo(); return true;
        case CommandId::redo: _editor->redo(); return true;
        default: return _tools->perform(command) || _tasks->perform(command);
    }
}

void NotePane::restyle() {
    _tools->follow();
    const Theme& theme = Theme::instance();
    QPalette quiet = palette();
    quiet.setColor(QPalette::WindowText, theme.colors().text2);
    _empty->setPalette(quiet);
    _empty->setFont(theme.uiFont(14));
    _readOnly->setPalette(quiet);
    _readOnly->setFont(theme.uiFont(12));
}

}  // namespace tessaly::desktop
