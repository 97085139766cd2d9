// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <optional>
#include <vector>

#include "app/commands.h"
#include "app/list_feed.h"
#include "app/place.h"
#include "desktop/result_list.h"
#include "search/filter_item.h"
#include "tasks/task_outcome.h"

class QLabel;
class QLineEdit;
class QStackedWidget;
class QToolButton;

namespace tessaly::desktop {

class ElidedLabel;
class EmptyListView;
class SearchOptions;

/// The list beside the note: its title and count, the options of a search, the rows, and what to
/// try where there are none.
class ListPane : public QWidget {
    Q_OBJECT
public:
    /// `services` outlives it.
    explicit ListPane(app::Services& services, QWidget* parent = nullptr);
    ~ListPane() override;

    /// What it shows is as the notes are, from now on.
    void show(const app::ListRequest& request);
    using QWidget::show;
    /// As last asked for.
    const app::ListRequest& request() const { return _request; }
    /// The day or a setting has changed.
    void again();
    /// Searches no more; to be called when the pane is hidden.
    void close();

    /// Takes the keyboard, onto the current row or the first.
    void enterList();
    bool hasListFocus() const;
    /// The commands of tasks for the selection, and `saveView`; false: none of these, or there is
    /// nothing to do it to.
    bool perform(app::CommandId command);
    std::vector<tasks::TaskReference> selectedTasks() const;
    /// Asks for a name and keeps the list as a view.
    void askViewName();

Q_SIGNALS:
    void opened(const app::Place& place, std::optional<std::size_t> line, OpenFocus focus);
    /// `completeTask`, `cancelTask`, `reopenTask`; `undoTask` and `showShortcuts` without tasks.
    void gesture(app::CommandId command, const std::vector<tasks::TaskReference>& tasks);
    void scheduled(const std::vector<tasks::TaskReference>& tasks, base::Day day);
    /// `anchor` is global.
    void scheduleAsked(const std::vector<tasks::TaskReference>& tasks, const QRect& anchor);
    void searchAsked();                ///< the search field is wanted
    void closed();                     ///< the user has closed it
    void left();                       ///< Escape: to the note
    void notice(const QString& text);  ///< something was done, and what

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void addHeader();
    void addNameRow();
    void addRows();
    void showView(const app::ListView& view);
    void showOptions();
    void saveView();
    void hideNameRow();
    void adoptTheme();

    app::Services& _services;
    app::ListRequest _request;
    search::Filter _filter;  ///< in effect
    ElidedLabel* _title = nullptr;
    ElidedLabel* _count = nullptr;
    QToolButton* _optionsButton = nullptr;
    QToolButton* _saveButton = nullptr;
    QToolButton* _closeButton = nullptr;
    QWidget* _nameRow = nullptr;
    QLineEdit* _name = nullptr;
    QLabel* _nameTrouble = nullptr;
    QStackedWidget* _stack = nullptr;
    ResultList* _list = nullptr;
    EmptyListView* _empty = nullptr;
    SearchOptions* _options = nullptr;
    app::ListFeed _feed;
};

}  // namespace tessaly::desktop
