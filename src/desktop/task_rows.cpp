// SPDX-License-Identifier: MIT
#include "desktop/task_rows.h"

#include <QStringList>
#include <algorithm>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "base/localisation.h"
#include "desktop/qt_text.h"
#include "grammar/date_tags.h"
#include "grammar/line_scanner.h"

namespace tessaly::desktop {
namespace {

using grammar::TodoType;
using Kind = TaskRow::Kind;

// More than any row shows; the rest would only be laid out in vain.
constexpr qsizetype mostShown = 600;

QString withCapital(const QString& text) {
    return text.isEmpty() ? text : text.left(1).toUpper() + text.mid(1);
}

QString shownTask(const grammar::Todo& todo) {
    const std::string bare =
        grammar::DateTags::findAndRemoveDoneTag(grammar::DateTags::removeDateTags(todo.content));
    return qt(bare).simplified().left(mostShown);
}

std::vector<std::pair<int, int>> tagsIn(const QString& shown) {
    const std::string text = utf8(shown);
    std::vector<grammar::Mark> marks;
    grammar::findMarks(text, marks);
    std::vector<std::pair<int, int>> tags;
    for (const grammar::Mark& mark : marks) {
        if (mark.kind == grammar::MarkKind::hashtag || mark.kind == grammar::MarkKind::mention) {
            const std::string_view all{text};
            const auto start = qt(all.substr(0, mark.start)).size();
            const auto length = qt(all.substr(mark.start, mark.end - mark.start)).size();
            tags.emplace_back(static_cast<int>(start), static_cast<int>(length));
        }
    }
    return tags;
}

QString stateInWords(const TaskRow& row) {
    if (row.isOverdue) {
        return trText("overdue task");
    }
    switch (row.state) {
        case TodoType::done: return trText("done task");
        case TodoType::cancelled: return trText("cancelled task");
        case TodoType::scheduled: return trText("scheduled task");
        default: return trText("open task");
    }
}

QString noteInWords(const store::NoteTask& task, const TaskRowContext& context) {
    return task.noteDay ? withCapital(qt(context.days.relativeDay(*task.noteDay, context.today)))
                        : qt(task.todo.title).simplified();
}

app::Place placeOfTask(const store::NoteTask& task) {
    return task.noteDay ? app::Place::ofDay(*task.noteDay) : app::Place::ofNote(task.filename);
}

QString dayInSpeech(const app::DayPane& pane) {
    return qt(pane.relative.empty() ? pane.heading : pane.relative);
}

// What is not said of an empty part is left out, with its comma.
QString joinedSpeech(QStringList parts) {
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
}

/// Makes the rows of one day.
class DayRows {
public:
    DayRows(const app::DayPane& pane, const TaskRowContext& context)
        : _pane{pane}, _context{context} {}

    void addHeading(std::vector<TaskRow>& rows) const {
        TaskRow row = rowOfKind(Kind::day, qt(_pane.heading));
        row.detail = withCapital(qt(_pane.relative));
        row.spoken = joinedSpeech(
            {row.text, qt(_pane.relative), hasTasks() ? QString() : trText("no tasks")});
        rows.push_back(std::move(row));
    }

    void addOverdue(std::vector<TaskRow>& rows) const {
        if (_pane.overdue.empty()) {
            return;
        }
        TaskRow heading = rowOfKind(Kind::overdue, trText("Overdue"));
        heading.detail = qt(_context.days.formats().number(static_cast<long long>(total())));
        heading.isFolded = _context.fold == OverdueFold::folded;
        heading.spoken = joinedSpeech(
            {overdueInWords(), heading.isFolded ? trText("folded") : trText("unfolded")});
        rows.push_back(heading);
        if (heading.isFolded) {
            return;
        }
        for (const store::NoteTask& task : _pane.overdue) {
            rows.push_back(overdueRow(task));
        }
        if (const std::size_t hidden = total() - _pane.overdue.size(); hidden > 0) {
            rows.push_back(rowOfKind(
                Kind::hint,
                qt(fmt::format(fmt::runtime(base::trPlural("and {} more", "and {} more", hidden)),
                               hidden))));
        }
    }

    void addTasks(std::vector<TaskRow>& rows) const {
        const std::size_t first = rows.size();
        for (const store::NoteTask& task : _pane.tasks) {
            rows.push_back(taskRow(task, {}));
        }
        for (const store::NoteTask& task : _pane.scheduled) {
            rows.push_back(taskRow(task, noteInWords(task, _context)));
        }
        if (first > 0 && first < rows.size() && rows[first - 1].kind != Kind::day) {
            rows[first].isSetApart = _context.fold == OverdueFold::open;
        }
    }

    bool hasTasks() const { return !_pane.tasks.empty() || !_pane.scheduled.empty(); }

    TaskRow rowOfKind(Kind kind, const QString& shown) const {
        TaskRow row;
        row.kind = kind;
        row.text = shown;
        row.spoken = shown;
        row.day = _pane.day;
        row.isToday = _pane.day == _context.today;
        return row;
    }

private:
    std::size_t total() const { return std::max(_pane.overdueTotal, _pane.overdue.size()); }

    QString overdueInWords() const {
        return qt(fmt::format(
            fmt::runtime(base::trPlural("{} overdue task", "{} overdue tasks", total())), total()));
    }

    TaskRow taskRow(const store::NoteTask& task, const QString& detail) const {
        TaskRow row = rowOfKind(Kind::task, shownTask(task.todo));
        row.detail = detail;
        row.state = task.todo.type;
        row.indents = static_cast<int>(std::min<std::size_t>(task.todo.indents, 6));
        row.tags = tagsIn(row.text);
        row.task = {{task.type, task.filename}, task.todo.lineIndex, task.todo.base};
        row.place = placeOfTask(task);
        row.spoken = joinedSpeech({stateInWords(row), row.text, dayInSpeech(_pane), detail});
        return row;
    }

    TaskRow overdueRow(const store::NoteTask& task) const {
        QStringList parts{noteInWords(task, _context)};
        if (task.day && task.day != task.noteDay) {
            parts << qt(_context.days.relativeDay(*task.day, _context.today));
        }
        TaskRow row = taskRow(task, parts.join(QStringLiteral(" · ")));
        row.isOverdue = true;
        row.indents = 0;
        row.spoken = joinedSpeech(QStringList{stateInWords(row), row.text} + parts);
        return row;
    }

    const app::DayPane& _pane;
    const TaskRowContext& _context;
};

TaskRow teachingRow(const DayRows& day) {
    TaskRow row = day.rowOfKind(Kind::teaching, trText("No tasks for this day"));
    row.detail = trText(
        "Write \"* Call Bob\" into the day's note, or send a task of another note here with "
        "Ctrl+D.");
    row.spoken = row.text + QStringLiteral(". ") + row.detail;
    return row;
}

}  // namespace

std::vector<TaskRow> rowsOf(const app::DayPane& pane, const TaskRowContext& context) {
    const DayRows day{pane, context};
    std::vector<TaskRow> rows;
    day.addOverdue(rows);
    day.addTasks(rows);
    if (!day.hasTasks()) {
        rows.push_back(teachingRow(day));
    }
    return rows;
}

std::vector<TaskRow> rowsOf(const app::WeekAgenda& agenda, const TaskRowContext& context) {
    std::vector<TaskRow> rows;
    TaskRow title;
    title.kind = Kind::title;
    title.text = qt(agenda.heading);
    title.spoken = title.text;
    title.day = agenda.days.empty() ? base::Day{} : agenda.days.front().day;
    rows.push_back(std::move(title));
    for (const app::DayPane& pane : agenda.days) {
        const DayRows day{pane, context};
        day.addHeading(rows);
        day.addOverdue(rows);
        day.addTasks(rows);
        if (!day.hasTasks()) {
            rows.push_back(day.rowOfKind(Kind::hint, trText("No tasks")));
        }
    }
    return rows;
}

void TaskRowsModel::setRows(std::vector<TaskRow> rows) {
    beginResetModel();
    _rows = std::move(rows);
    endResetModel();
}

const TaskRow& TaskRowsModel::row(const QModelIndex& index) const {
    return _rows.at(static_cast<std::size_t>(index.row()));
}

std::optional<int> TaskRowsModel::find(const TaskRow& wanted) const {
    const auto isSame = [&](const TaskRow& row) {
        return row.kind == wanted.kind && row.day == wanted.day &&
               row.isOverdue == wanted.isOverdue && row.task.note == wanted.task.note &&
               row.task.lineIndex == wanted.task.lineIndex && row.text == wanted.text;
    };
    const auto found = std::find_if(_rows.begin(), _rows.end(), isSame);
    return found == _rows.end() ? std::nullopt
                                : std::optional{static_cast<int>(found - _rows.begin())};
}

int TaskRowsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(_rows.size());
}

QVariant TaskRowsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    switch (role) {
        case Qt::DisplayRole: return row(index).text;
        case Qt::AccessibleTextRole: return row(index).spoken;
        default: return {};
    }
}

Qt::ItemFlags TaskRowsModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    const Kind kind = row(index).kind;
    const bool canBeCurrent = kind == Kind::day || kind == Kind::overdue || kind == Kind::task;
    return canBeCurrent ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren
                        : Qt::ItemNeverHasChildren;
}

}  // namespace tessaly::desktop
