// SPDX-License-Identifier: MIT
#include "desktop/main_window.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QCloseEvent>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <utility>

#include "base/localisation.h"
#include "desktop/command_actions.h"
#include "desktop/command_bar.h"
#include "desktop/day_pane_view.h"
#include "desktop/header_bar.h"
#include "desktop/list_pane.h"
#include "desktop/menus.h"
#include "desktop/note_editor.h"
#include "desktop/note_pane.h"
#include "desktop/qt_text.h"
#include "desktop/search_field.h"
#include "desktop/settings_follower.h"
#include "desktop/side_bar_pane.h"
#include "desktop/status_line.h"
#include "desktop/theme.h"
#include "desktop/toast.h"
#include "desktop/week_agenda_view.h"
#include "desktop/wheel_zoom.h"
#include "desktop/window_links.h"
#include "desktop/window_tasks.h"
#include "store/note_names.h"

namespace tessaly::desktop {

namespace {

using Pane = WindowPanes::Pane;

/// The place that the window comes back to.
app::Place startPlace(const app::WindowState& state, base::Day today) {
    return state.wasAtDay ? app::Place::ofDay(today) : state.place;
}

constexpr std::size_t mostRecentSearches = 20;

/// A screen reader looks for windows by this role, which a plain widget does not have.
QAccessibleInterface* makeAccessibleWindow(const QString& className, QObject* object) {
    if (className != QLatin1String(MainWindow::staticMetaObject.className())) {
        return nullptr;
    }
    return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::Window);
}

}  // namespace

MainWindow::MainWindow(app::Services& services, ports::UserDefaults& stateStore)
    : _services(services),
      _stateStore(stateStore),
      _state(app::readWindowState(stateStore)),
      _places(startPlace(_state, services.today())),
      _sideBarFeed(services),
      _dayViews(services),
      _quickOpen(services),
      _organiser(services),
      _today(services.today()),
      _selectedDay(_today) {
    [[maybe_unused]] static const bool isInstalled =
        (QAccessible::installFactory(makeAccessibleWindow), true);
    setObjectName(QStringLiteral("mainWindow"));
    _actions = new CommandActions(this);
    makePanes();
    _tasks = new WindowTasks(services, this);
    connectSideBar();
    connectList();
    connectMiddle();
    connectRightPane();
    connectLinks();
    bindCommands();
    connect(&Theme::instance(), &Theme::changed, this, [this] {
        _note->restyle();
        update();
    });
    restoreState();
    services.noteCache().addListener(*this);
    services.noteMoves().setOnRemoval([this] { updateEditing(); });
    connect(qApp, &QApplication::focusChanged, this, &MainWindow::updateCommands);
    constexpr std::chrono::seconds dayInterval{20};
    _dayTimer = services.ports().mainQueue.every(dayInterval, [this] { noticeNewDay(); });
}

MainWindow::~MainWindow() {
    _live.reset();
    _alive.reset();
    // Panes that go take the focus away, which is not to be followed any more.
    disconnect(qApp, nullptr, this, nullptr);
    _services.ports().mainQueue.cancel(_dayTimer);
    _services.noteCache().removeListener(*this);
    _services.noteMoves().setOnRemoval({});
    // These work with what is a member, and would outlive it as children.
    delete _sideBar;
    delete _commandBar;
}

void MainWindow::makePanes() {
    _searchField = new SearchField;
    _sideBar = new SideBarPane(_services, _sideBarFeed);
    _sideBar->setSearchField(_searchField);
    _list = new ListPane(_services);
    _header = new HeaderBar;
    _header->setActions(*_actions);
    _middle = new QStackedWidget;
    _note = new NotePane(_services);
    _week = new WeekAgendaView(_services.dateStrings());
    _middle->addWidget(_note);
    _middle->addWidget(_week);
    _dayPane = new DayPaneView(_services.dateStrings());

    auto* middle = new QWidget;
    auto* column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(_header);
    column->addWidget(_middle, 1);

    _panes = new WindowPanes({_sideBar, _list, middle, _dayPane}, this);
    _statusLine = new StatusLine(this);
    connect(_statusLine, &StatusLine::cancelled, this, [this](const app::LongWork* work) {
        if (work == _loading.get()) {
            _statusLine->end(work);
            tell(trText("Not all notes were read. Lists and search lack the rest until the next "
                        "start."),
                 true);
        }
    });
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(0, 0, 0, 0);
    all->setSpacing(0);
    all->addWidget(_panes, 1);
    all->addWidget(_statusLine);

    _toast = new Toast(this);
    _commandBar = new CommandBar(this, *_actions, _quickOpen);
    _header->setMenu(makeMainMenu(*_actions, this));
}

void MainWindow::connectSideBar() {
    connect(_sideBar, &SideBarPane::placeChosen, this,
            [this](const app::Place& place) { go(place); });
    connect(_sideBar, &SideBarPane::listChosen, this, &MainWindow::showList);
    connect(_sideBar, &SideBarPane::trashChosen, this, [this] { openTrash(); });
    for (const auto help : {&SideBarPane::helpChosen, &SideBarPane::markdownHelpChosen}) {
        connect(_sideBar, help, this, [this] { perform(app::CommandId::showShortcuts); });
    }
    connect(_sideBar, &SideBarPane::newNoteAsked, this,
            [this](const QString& folder) { newNote(utf8(folder)); });
    connect(_sideBar, &SideBarPane::copyNoteLinkAsked, this,
            [this](const QString& filename) { copyNoteLink(utf8(filename)); });
    connect(_sideBar, &SideBarPane::openFolderAsked, this, [this](const QString& filename) {
        openFolderOf(base::NoteType::note, utf8(filename));
    });
    connect(_sideBar, &SideBarPane::renamed, this,
            [this](const QString& from, const QString& to) { noteRenamed(utf8(from), utf8(to)); });
    connect(_sideBar, &SideBarPane::notice, this,
            [this](const QString& text, bool isFailure, const std::function<void()>& undo) {
                _toast->show(text, isFailure, undo, Toast::UndoKey::none);
            });
    connect(_sideBar, &SideBarPane::filterRenamed, this,
            [this](const QString& from, const QString& to) {
                app::ListRequest list = _list->request();
                if (list.filter == utf8(from)) {
                    list.filter = utf8(to);
                    list.title = list.filter;
                    list.filter.empty() ? _panes->setShown(Pane::list, false) : _list->show(list);
                }
            });
    _sideBar->setBeforeChange([this] { return _note->saveNow().ok(); });

    connect(_searchField, &SearchField::typed, this, [this](const QString& query) {
        showList({utf8(query), {}, {}});
    });
    connect(_searchField, &SearchField::kept, this, [this](const QString& query) {
        auto& recent = _state.recentSearches;
        std::erase(recent, utf8(query));
        recent.insert(recent.begin(), utf8(query));
        recent.resize(std::min(recent.size(), mostRecentSearches));
        QStringList shown;
        for (const std::string& search : recent) {
            shown.append(qt(search));
        }
        _searchField->setRecentSearches(shown);
    });
    connect(_searchField, &SearchField::listWanted, this, [this] { _list->enterList(); });
    connect(_searchField, &SearchField::left, this, [this] { focusPane(Pane::middle); });
}

void MainWindow::connectList() {
    connect(_list, &ListPane::opened, this,
            [this](const app::Place& place, std::optional<std::size_t> line, OpenFocus focus) {
                QWidget* const before = focusWidget();
                go(place, line);
                if (focus == OpenFocus::stays && before != nullptr) {
                    before->setFocus();
                } else {
                    focusPane(Pane::middle);
                }
            });
    connect(_list, &ListPane::gesture, this,
            [this](app::CommandId command, const WindowTasks::Tasks& tasks) {
                if (tasks.empty()) {
                    perform(command);
                } else {
                    _tasks->perform(command, tasks, {});
                }
            });
    connect(_list, &ListPane::scheduled, _tasks, &WindowTasks::schedule);
    connect(_list, &ListPane::scheduleAsked, _tasks, &WindowTasks::askDay);
    connect(_list, &ListPane::searchAsked, this, [this] { perform(app::CommandId::search); });
    connect(_list, &ListPane::closed, this, [this] {
        _panes->setShown(Pane::list, false);
        focusPane(Pane::middle);
    });
    connect(_list, &ListPane::left, this, [this] { focusPane(Pane::middle); });
    connect(_list, &ListPane::notice, this, [this](const QString& text) {
        tell(text);
        _sideBarFeed.filtersChanged();
    });
}

void MainWindow::connectMiddle() {
    connect(_note, &NotePane::saveStateChanged, _header, &HeaderBar::setSaveState);
    connect(_note, &NotePane::titleChanged, this, &MainWindow::showHeader);
    connect(_note, &NotePane::notice, this, [this](const QString& text) { tell(text); });
    connect(_note, &NotePane::gone, this, &MainWindow::showHeader);
    connect(_note, &NotePane::taskGesture, this,
            [this](app::CommandId command, const WindowTasks::Tasks& tasks) {
                _tasks->perform(command, tasks, {});
            });
    connect(_note, &NotePane::scheduleAsked, _tasks, &WindowTasks::askDay);
    connect(new WheelZoom(_note->editor()), &WheelZoom::asked, this, &MainWindow::changeTextSize);
    connect(new SettingsFollower(_services, this), &SettingsFollower::changed, _note,
            &NotePane::restyle);
    connectRows(_week->rows());

    connect(_commandBar, &CommandBar::opened, this, [this](const app::Place& place) { go(place); });
    connect(_commandBar, &CommandBar::newNoteAsked, this,
            [this](const QString& title) { newNote(_sideBar->currentFolder(), utf8(title)); });

    _tasks->setBeforeChange([this] { return _note->saveNow().ok(); });
    connect(_tasks, &WindowTasks::told, this, &MainWindow::tell);
    connect(_tasks, &WindowTasks::changed, this, [this](const auto& notes) {
        for (const tasks::NoteName& note : notes) {
            _services.noteCache().reread(note.type, note.filename);
        }
        _note->reread();
    });
}

void MainWindow::connectRightPane() {
    connectRows(_dayPane->rows());
    connect(_dayPane, &DayPaneView::dayChosen, this,
            [this](base::Day day) { go(app::Place::ofDay(day)); });
}

void MainWindow::connectLinks() {
    _links = new WindowLinks(_services, this);
    connect(_note, &NotePane::linkOpened, _links, &WindowLinks::open);
    connect(_links, &WindowLinks::placeChosen, this, [this](const app::Place& place) {
        go(place);
        focusPane(Pane::middle);
    });
    connect(_links, &WindowLinks::listChosen, this, &MainWindow::showList);
    connect(_links, &WindowLinks::refused, this, [this](const QString& text) { tell(text, true); });
    connect(_links, &WindowLinks::noteMissing, this,
            [this](const QString& text, const QString& title) {
                _toast->offer(text, trText("Create"),
                              [this, title] { newNote(_sideBar->currentFolder(), utf8(title)); });
            });
}

void MainWindow::connectRows(const TaskRowsView& rows) {
    connect(&rows, &TaskRowsView::ticked, _tasks, &WindowTasks::tick);
    connect(&rows, &TaskRowsView::scheduleAsked, _tasks, &WindowTasks::askDay);
    connect(&rows, &TaskRowsView::scheduled, _tasks, &WindowTasks::schedule);
    connect(&rows, &TaskRowsView::undoAsked, _tasks, &WindowTasks::undoLast);
    connect(&rows, &TaskRowsView::jumped, this, &MainWindow::go);
    connect(&rows, &TaskRowsView::dayChosen, this,
            [this](base::Day day) { go(app::Place::ofDay(day)); });
}

void MainWindow::restoreState() {
    constexpr QSize usualSize{1280, 800};
    resize(usualSize);
    if (!_state.geometry.empty()) {
        restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(_state.geometry)));
    }
    _panes->restore(_state);
    if (_state.isListShown) {
        _list->show(_state.list);
    }
    showCurrentPlace();
    focusPane(Pane::middle);
}

void MainWindow::keepState() {
    _state.geometry = saveGeometry().toBase64().toStdString();
    _panes->keep(_state);
    const app::Place& place = _places.current();
    _state.wasAtDay = place.kind == app::Place::Kind::day && place.day == _today;
    _state.place = place;
    _state.list = _list->request();
    // When it cannot be kept, the next start looks as the last one that could.
    (void)app::keepWindowState(_stateStore, _state);
}

void MainWindow::start() {
    app::LiveNotes::Handlers handlers;
    handlers.onReady = [this] {
        _statusLine->end(_loading.get());
        _note->reread();
        refreshDays();
        Q_EMIT ready();
    };
    handlers.onBatch = [this](const store::CloudBatch& batch) { receiveBatch(batch); };
    handlers.onMigration = [this](const app::OfferResult& result) {
        if (const auto words = app::wordsOfMigration(_services, result); !words.empty()) {
            tell(qt(words), true);
        }
    };
    handlers.onWork = [this](const auto& work) { _statusLine->begin(work); };
    handlers.onWorkEnded = [this](const auto& work) { _statusLine->end(work.get()); };
    _loading =
        std::make_shared<app::LongWork>(base::tr("Reading notes"), app::LongWork::Cancel::possible);
    _statusLine->begin(_loading);
    _live = std::make_unique<app::LiveNotes>(_services, std::move(handlers));
    store::NoteCache::LoadOptions options;
    options.progress = [work = _loading](std::size_t files) { work->tell(files); };
    options.cancelled = &_loading->cancelled();
    _live->start(std::move(options));
}

bool MainWindow::makeReadyToEnd() {
    const auto saved = _note->saveNow();
    if (saved) {
        return true;
    }
    const auto answer =
        _services.ports().questions({base::tr("The note could not be saved."),
                                     saved.failure().description,
                                     {base::tr("Stay here"), base::tr("Keep a copy and go on")}});
    if (answer != std::size_t{1}) {
        return false;
    }
    const auto copy = _note->keepCopy();
    if (!copy) {
        _services.ports().questions(
            {base::tr("No copy could be kept either."), copy.failure().description, {}});
        return false;
    }
    tell(trText("Kept in %1").arg(qt(*copy)));
    return true;
}

void MainWindow::saveForEnd() {
    if (!_note->saveNow()) {
        (void)_note->keepCopy();  // its failure is logged, and there is nobody left to tell
    }
    keepState();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!makeReadyToEnd()) {
        event->ignore();
        return;
    }
    keepState();
    event->accept();
    Q_EMIT closed();
}

void MainWindow::showList(const app::ListRequest& request) {
    _panes->setShown(Pane::list, true);
    _list->show(request);
    if (!_searchField->hasFocus()) {
        _searchField->setQuery(request.title.empty() ? qt(request.query) : QString());
        _sideBar->setCurrent(request);
    }
}

void MainWindow::tell(const QString& text, bool isFailure, std::function<void()> undo) {
    _toast->show(text, isFailure, std::move(undo));
}

/// On the thread that did the work; many changes in a row are one for the views.
void MainWindow::cacheChanged(const store::CacheChanges&) {
    if (_isRefreshPosted.exchange(true)) {
        return;
    }
    _services.ports().mainQueue.post([this, alive = std::weak_ptr(_alive)] {
        if (!alive.expired()) {
            _isRefreshPosted = false;
            refreshDays();
        }
    });
}

void MainWindow::receiveBatch(const store::CloudBatch& batch) {
    const auto open = _note->current();
    for (const store::CloudNote& note : batch.notes) {
        if (open && note.base == open->type &&
            store::filenameOf(note, batch.root) == open->filename) {
            _note->reread();
        }
    }
}

std::optional<std::string> MainWindow::generalNote() const {
    const app::Place& place = _places.current();
    if (place.kind != app::Place::Kind::note) {
        return std::nullopt;
    }
    return place.filename;
}

}  // namespace tessaly::desktop
