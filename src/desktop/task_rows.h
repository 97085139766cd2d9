// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractListModel>
#include <QRectF>
#include <QString>
#include <optional>
#include <utility>
#include <vector>

#include "app/day_pane.h"
#include "app/place.h"
#include "base/day.h"
#include "grammar/date_string_helper.h"
#include "grammar/todo.h"
#include "tasks/task_outcome.h"

class QPainter;

namespace tessaly::desktop {

/// A task's is a circle; an item's that is a task by its box alone is a square.
enum class BoxShape { circle, square };
/// The box of a task, in the look of its state: empty, ticked, crossed out, sent on. `box` is
/// 17 px square wherever there is room; a smaller one is drawn to scale.
void paintTaskBox(QPainter& painter, const QRectF& box, grammar::TodoType state, bool hovered,
                  BoxShape shape = BoxShape::circle);

/// One row of a list of days: a heading, a task, or a sentence where there are none.
struct TaskRow {
    enum class Kind {
        title,    ///< of the whole list; cannot be current
        day,      ///< heads a day's tasks, and leads to its note
        overdue,  ///< heads the overdue tasks, and folds them away
        task,
        hint,     ///< quiet: "No tasks", "and 20 more"; cannot be current
        teaching  ///< what an empty day can be used for; `detail` is the longer text
    } kind = Kind::task;
    QString text;           ///< as it is shown: a task's without its date tags
    QString detail;         ///< second line: the title of another note; behind a heading: "Today"
    QString spoken;         ///< by a screen reader: "open task, Call Bob, today"
    base::Day day{};        ///< below which it stands
    bool isToday = false;   ///< `day` is
    bool isFolded = false;  ///< of `overdue`

    // Of tasks alone.
    grammar::TodoType state = grammar::TodoType::open;
    bool isOverdue = false;
    bool isSetApart = false;  ///< the first one behind the overdue tasks
    int indents = 0;
    std::vector<std::pair<int, int>> tags;  ///< hashtags and mentions in `text`: start, length
    tasks::TaskReference task;
    app::Place place;  ///< the note that holds it
};

/// Whether the overdue tasks stand below their heading.
enum class OverdueFold { open, folded };

/// What rows are made with.
struct TaskRowContext {
    base::Day today{};
    OverdueFold fold = OverdueFold::folded;
    const grammar::DateStringHelper& days;
};
/// The rows of one day, without its heading.
std::vector<TaskRow> rowsOf(const app::DayPane& pane, const TaskRowContext& context);
/// The rows of a week: its title, and each day's with their heading.
std::vector<TaskRow> rowsOf(const app::WeekAgenda& agenda, const TaskRowContext& context);

/// Such rows, for a view. Main thread.
class TaskRowsModel : public QAbstractListModel {
    Q_OBJECT
public:
    using QAbstractListModel::QAbstractListModel;

    void setRows(std::vector<TaskRow> rows);
    const TaskRow& row(const QModelIndex& index) const;
    /// The row of the same task, else of the same heading; nothing: it has gone.
    std::optional<int> find(const TaskRow& row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    std::vector<TaskRow> _rows;
};

}  // namespace tessaly::desktop
