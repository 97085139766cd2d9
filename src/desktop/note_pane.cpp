// SPDX-License-Identifier: MIT
#include "desktop/note_pane.h"

#include <QEvent>
#include <QLabel>
#include <QStackedWidget>
#include <QTextBlock>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/shown_text.h"
#include "base/localisation.h"
#include "desktop/conflict_bar.h"
#include "desktop/find_bar.h"
#include "desktop/note_editor.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"
#include "desktop/version_differences.h"
#include "grammar/line_scanner.h"
#include "grammar/note_title.h"
#include "store/note_document.h"
#include "store/three_way_merge.h"
#include "tasks/task_rewrites.h"

namespace tessaly::desktop {

namespace {

using app::CommandId;
using app::OpenNote;
using app::shownText;
using grammar::TodoType;

/// A version's bytes as the editor shows texts, or why it cannot be shown.
base::Result<std::string> shownBytes(const base::Result<std::string>& bytes) {
    if (!bytes) {
        return bytes.failure();
    }
    const auto text = store::decodedText(*bytes);
    if (!text) {
        return base::Failure{base::Failure::Kind::malformed,
                             base::tr("This version is not UTF-8 text, and cannot be shown.")};
    }
    return shownText(*text);
}

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

struct LineStep {
    CommandId command;
    TodoType alreadyThere;
    const char* already;
};
constexpr LineStep lineSteps[] = {
    {CommandId::completeTask, TodoType::done, base::N_("This is done already.")},
    {CommandId::cancelTask, TodoType::cancelled, base::N_("This is cancelled already.")},
    {CommandId::reopenTask, TodoType::open, base::N_("This is open already.")},
};

const LineStep* lineStepOf(CommandId command) {
    const auto found = std::find_if(std::begin(lineSteps), std::end(lineSteps),
                                    [&](const LineStep& step) { return step.command == command; });
    return found == std::end(lineSteps) ? nullptr : found;
}

std::string steppedLine(CommandId command, const std::string& line, const base::LocalTime& now,
                        const tasks::RewriteSettings& settings) {
    switch (command) {
        case CommandId::completeTask: {
            const std::string done = tasks::completed(line, now, settings);
            return tasks::withFinalRepeat(done, settings.markers).value_or(done);
        }
        case CommandId::cancelTask: return tasks::cancelled(line);
        default: return tasks::reopened(line, settings.markers);
    }
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

NotePane::~NotePane() = default;

void NotePane::build() {
    _bar = new ConflictBarView(this);
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
    _versionView = new NoteEditor(this);
    _versionView->setAccessibleName(trText("Another version of this note"));
    _versionView->setEditing(NoteEditor::Editing::never);
    _differences = new VersionDifferences(this);
    for (QWidget* page :
         std::initializer_list<QWidget*>{_empty, _editor, _versionView, _differences}) {
        _pages->addWidget(page);
    }
    _findBar = new FindBar(this);
    _findBar->setEditor(_editor);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(_bar);
    column->addWidget(_readOnly);
    column->addWidget(_pages, 1);
    column->addWidget(_findBar);
}

void NotePane::connectParts() {
    connect(_editor, &NoteEditor::edited, this, &NotePane::onEdited);
    connect(_editor, &NoteEditor::notice, this, &NotePane::notice);
    connect(_editor, &NoteEditor::escaped, _findBar, &FindBar::close);
    connect(_bar, &ConflictBarView::otherVersionAsked, this, [this] {
        if (_conflict != nullptr && saveNow()) {
            _conflict->showOther();
        }
    });
    connect(_bar, &ConflictBarView::thisVersionChosen, this,
            [this] { resolve(&app::OpenConflict::choose); });
    connect(_bar, &ConflictBarView::mergeAsked, this,
            [this] { resolve(&app::OpenConflict::merge); });
    connect(_bar, &ConflictBarView::differencesToggled, this, &NotePane::showDifferences);
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
    _conflict = std::make_unique<app::OpenConflict>(
        _services, address,
        app::OpenConflict::Handlers{
            [this](const app::ShownVersion& version) { showVersion(version); },
            [this] { hideVersions(); },
            [this](const std::string& text) {
                _note->reread();
                Q_EMIT notice(qt(text));
            },
            [this](const std::string& why) { Q_EMIT notice(qt(why)); }});
    showNote();
    _conflict->check();
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
    _noteText = _note->text();
    _editor->setText(shownText(_noteText));
    _noteRevision = _editor->document()->revision();
    if (_note->obstacle()) {
        showProblem(qt(_note->obstacle()->description));
    } else {
        showPage(Page::editor);
    }
    onSaveState();
    _title.clear();
    Q_EMIT titleChanged();
}

void NotePane::leave() {
    _conflict.reset();
    _note.reset();
    _version.reset();
    _bar->hide();
    _bar->setShowsDifferences(false);
    _noteText.clear();
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
    _conflict->check();
}

std::string NotePane::currentText() {
    const int revision = _editor->document()->revision();
    if (revision != _noteRevision) {
        _noteText = app::noteTextOf(_noteText, _editor->text());
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
    _editor->replaceText(shownText(text));
    _noteText = text;
    _noteRevision = _editor->document()->revision();
    if (_version == std::nullopt || _version->isCurrent) {
        showPage(Page::editor);
    }
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

void NotePane::showPage(Page page) {
    _pages->setCurrentIndex(static_cast<int>(page));
    NoteEditor* searched = page == Page::editor    ? _editor
                           : page == Page::version ? _versionView
                                                   : nullptr;
    _findBar->setEditor(searched);
    const bool isOther = page == Page::version || page == Page::differences;
    const bool isInPieces = page == Page::editor && _editor->isInPieces();
    _readOnly->setText(isInPieces ? trText("A line of this note is very long. The note is shown in "
                                           "pieces, and cannot be edited here.")
                                  : trText("Another version is shown. It cannot be edited."));
    _readOnly->setVisible(isOther || isInPieces);
}

void NotePane::showProblem(const QString& text) {
    _empty->setText(text);
    showPage(Page::empty);
}

void NotePane::showVersion(const app::ShownVersion& version) {
    _version = version;
    _bar->setWork(ConflictBarView::Work::none);
    _bar->show(version.bar, version.isCurrent ? ConflictBarView::Version::current
                                              : ConflictBarView::Version::other);
    if (!version.isCurrent) {
        const auto text = shownBytes(version.text);
        _versionView->setText(text ? *text : text.failure().description);
    }
    showDifferences(_bar->showsDifferences());
}

void NotePane::hideVersions() {
    _version.reset();
    _bar->hide();
    _bar->setShowsDifferences(false);
    _bar->setWork(ConflictBarView::Work::none);
    if (_note->obstacle()) {
        showProblem(qt(_note->obstacle()->description));
    } else {
        showPage(Page::editor);
    }
}

void NotePane::showDifferences(bool isShown) {
    if (_version == std::nullopt) {
        return;
    }
    if (_version->isCurrent) {
        showPage(Page::editor);
        return;
    }
    const auto text = shownBytes(_version->text);
    if (isShown && text) {
        _differences->show(shownText(currentText()), *text);
        showPage(Page::differences);
    } else {
        showPage(Page::version);
    }
}

bool NotePane::showsMainEditor() const {
    return _note != nullptr && _pages->currentIndex() == static_cast<int>(Page::editor);
}

void NotePane::resolve(void (app::OpenConflict::*how)()) {
    if (_conflict == nullptr || !saveNow()) {
        return;
    }
    _bar->setWork(ConflictBarView::Work::running);
    (_conflict.get()->*how)();
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
        default: return performOnTasks(command);
    }
}

bool NotePane::performOnTasks(CommandId command) {
    switch (command) {
        case CommandId::completeTask:
        case CommandId::cancelTask:
        case CommandId::reopenTask: return changeTasks(command);
        case CommandId::scheduleTask:
        case CommandId::scheduleToday:
        case CommandId::taskLater:
        case CommandId::taskEarlier:
        case CommandId::taskWeekLater:
        case CommandId::taskWeekEarlier: askWindow(command); return true;
        default: return false;
    }
}

bool NotePane::changeTasks(CommandId command) {
    const tasks::RewriteSettings settings = _services.rewriteSettings();
    const base::LocalTime now = _services.ports().clock.local(_services.ports().clock.now());
    const LineStep& step = *lineStepOf(command);
    const auto selected = selectedTasks();
    const auto typeOf = [&](const std::string& line) {
        return grammar::classifyLine(line, settings.markers).type;
    };
    // What was scheduled has a copy in another note.
    if (command == CommandId::reopenTask &&
        std::any_of(selected.begin(), selected.end(),
                    [&](const auto& task) { return typeOf(*task.text) == TodoType::scheduled; })) {
        askWindow(command);
        return true;
    }
    const int changed = _editor->rewriteLines([&](const std::string& line) {
        const bool isDue = tasks::isActionable(line) && typeOf(line) != step.alreadyThere;
        return isDue ? steppedLine(command, line, now, settings) : line;
    });
    if (changed == 0) {
        Q_EMIT notice(selected.empty() ? trText("There is no task in this line.")
                                       : trText(step.already));
    }
    return true;
}

std::vector<tasks::TaskReference> NotePane::selectedTasks() {
    std::vector<tasks::TaskReference> found;
    const std::string text = currentText();
    const auto [first, last] = _editor->selectedLines();
    for (int line = first; line <= last; ++line) {
        std::string content = _editor->lineText(line);
        if (tasks::isActionable(content)) {
            found.push_back({{_note->address().type, _note->address().filename},
                             app::noteLineOf(text, static_cast<std::size_t>(line)),
                             std::move(content)});
        }
    }
    return found;
}

void NotePane::askWindow(CommandId command) {
    const auto selected = selectedTasks();
    if (selected.empty()) {
        Q_EMIT notice(trText("There is no task in this line."));
        return;
    }
    if (!saveNow()) {
        return;  // the save state tells
    }
    if (command == CommandId::scheduleTask) {
        Q_EMIT scheduleAsked(selected, _editor->caretPlace());
    } else {
        Q_EMIT taskGesture(command, selected);
    }
}

void NotePane::restyle() {
    const settings::Globals& globals = _services.globals();
    const Theme& theme = Theme::instance();
    const NoteEditor::Look look{
        theme.editorFont(globals.fontFamily(), globals.fontSize() + globals.fontDelta()),
        static_cast<int>(globals.maxTextWidth())};
    for (NoteEditor* editor : {_editor, _versionView}) {
        editor->setLook(look);
        editor->setMarkSettings({_services.markerSettings(), globals.defaultTodoCharacter()});
    }
    QPalette quiet = palette();
    quiet.setColor(QPalette::WindowText, theme.colors().text2);
    _empty->setPalette(quiet);
    _empty->setFont(theme.uiFont(14));
    _readOnly->setPalette(quiet);
    _readOnly->setFont(theme.uiFont(12));
}

}  // namespace tessaly::desktop
