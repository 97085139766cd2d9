// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/commands.h"
#include "app/day_pane.h"
#include "app/live_notes.h"
#include "app/long_work.h"
#include "app/note_address.h"
#include "app/note_organiser.h"
#include "app/place.h"
#include "app/quick_open.h"
#include "app/services.h"
#include "app/side_bar_feed.h"
#include "app/window_state.h"
#include "desktop/window_panes.h"
#include "store/note_cache.h"

class QStackedWidget;

namespace tessaly::desktop {

class CommandActions;
class CommandBar;
class DayPaneView;
class HeaderBar;
class ListPane;
class NotePane;
class SearchField;
class SideBarPane;
class StatusLine;
class TaskRowsView;
class Toast;
class WeekAgendaView;
class WindowLinks;
class WindowTasks;

/// The window of the planner: lays the panes out, and leads what the user wants in one of them to
/// the others. It is shown on the day before any note but that day's is read; `start` reads the
/// rest. Main thread.
class MainWindow : public QWidget, private store::CacheListener {
    Q_OBJECT
public:
    /// Both outlive it. `stateStore` keeps how the window was left.
    MainWindow(app::Services& services, ports::UserDefaults& stateStore);
    ~MainWindow() override;

    /// Starts to load all notes and to watch them; once, after the first paint.
    void start();
    /// Saves what is open. False: it could not be saved, and the user wants to stay.
    bool makeReadyToEnd();
    /// The same when there is nobody to ask: what cannot be saved is kept as a copy.
    void saveForEnd();

    // What the user can do by more than one way.
    void go(const app::Place& place, std::optional<std::size_t> line = std::nullopt);
    void showList(const app::ListRequest& request);
    void perform(app::CommandId command);

    CommandActions& actions() { return *_actions; }

Q_SIGNALS:
    /// The window is closed, and what was open is saved.
    void closed();
    /// All notes are read, and what others change from now on is noticed.
    void ready();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // main_window.cpp: what there is, and how it hangs together.
    void makePanes();
    void connectSideBar();
    void connectList();
    void connectMiddle();
    void connectRightPane();
    void connectLinks();
    void connectRows(const TaskRowsView& rows);
    void restoreState();
    void keepState();

    // window_places.cpp: where one is.
    bool showPlace(const app::Place& place, std::optional<std::size_t> line);
    void showCurrentPlace();
    void goDays(int days);
    void pickDate();
    void selectDay(base::Day day);
    void showHeader();
    QString weekInWords(base::Day day) const;
    QString daySubtitle(base::Day day) const;
    void refreshDays();
    void noticeNewDay();
    /// While the open note is on its way to the trash, nobody types into it.
    void updateEditing();
    /// A note, or all notes in a folder; gone where `to` is empty.
    void noteRenamed(const std::string& from, const std::string& to);
    /// Without a title, that is what is typed next.
    void newNote(const std::string& folder, const std::string& title = {});
    enum class Title { given, asked };
    void showNewNote(const app::OrganisedNotes& made, Title title);

    // window_commands.cpp: what the commands do.
    void bindCommands();
    void runGo(app::CommandId command);
    void runGoToPlace(app::CommandId command);
    void runOnNote(app::CommandId command);
    void runOnTasks(app::CommandId command);
    void runView(app::CommandId command);
    void updateCommands();
    void changeTextSize(int step);
    void toggleSpelling();
    void focusPane(WindowPanes::Pane pane);
    void stepPane(int step);
    void openFolderOf(base::NoteType type, const std::string& filename);
    void openTrash();
    void copyNoteLink(const std::string& filename);

    void tell(const QString& text, bool isFailure = false, std::function<void()> undo = {});
    void cacheChanged(const store::CacheChanges& changes) override;
    void receiveBatch(const store::CloudBatch& batch);
    std::optional<std::string> generalNote() const;

    app::Services& _services;
    ports::UserDefaults& _stateStore;
    app::WindowState _state;
    app::Navigation _places;
    app::SideBarFeed _sideBarFeed;
    app::DayViewsFeed _dayViews;
    app::QuickOpen _quickOpen;
    app::NoteOrganiser _organiser;
    base::Day _today;
    base::Day _selectedDay;  ///< of the right pane

    CommandActions* _actions = nullptr;
    SearchField* _searchField = nullptr;
    SideBarPane* _sideBar = nullptr;
    ListPane* _list = nullptr;
    HeaderBar* _header = nullptr;
    QStackedWidget* _middle = nullptr;
    NotePane* _note = nullptr;
    WeekAgendaView* _week = nullptr;
    DayPaneView* _dayPane = nullptr;
    WindowPanes* _panes = nullptr;
    StatusLine* _statusLine = nullptr;
    Toast* _toast = nullptr;
    CommandBar* _commandBar = nullptr;
    WindowTasks* _tasks = nullptr;
    WindowLinks* _links = nullptr;

    ports::MainQueue::Timer _dayTimer = 0;
    std::atomic<bool> _isRefreshPosted = false;  ///< any thread
    std::shared_ptr<const bool> _alive = std::make_shared<bool>(true);
    std::shared_ptr<app::LongWork> _loading;
    std::unique_ptr<app::LiveNotes> _live;  ///< the last member: ends before what it tells
};

}  // namespace tessaly::desktop
