// SPDX-License-Identifier: MIT
#include "desktop/result_model.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <numeric>
#include <utility>

#include "desktop/qt_text.h"
#include "desktop/row_matching.h"
#include "grammar/line_scanner.h"

namespace tessaly::desktop {
namespace {

using ResultKind = ResultModel::Kind;
using Texts = ResultModel::Texts;
using grammar::MarkKind;
using search::SearchResultItem;
using search::SearchResultType;
using Items = std::vector<SearchResultItem>;

constexpr int mostTexts = 500;

ResultKind kindOfRow(const SearchResultItem& row, const SearchResultItem* section) {
    switch (row.type) {
        case SearchResultType::section: return ResultKind::section;
        case SearchResultType::loading: return ResultKind::loading;
        case SearchResultType::event:
        case SearchResultType::reminder: return ResultKind::event;
        case SearchResultType::calendarTodo:
        case SearchResultType::noteTodo:
            return grammar::isTask(row.lineType) ? ResultKind::task : ResultKind::line;
        case SearchResultType::note: break;
    }
    const bool isInItsGroup = section != nullptr && section->filename == row.filename;
    return isInItsGroup ? ResultKind::line : ResultKind::listedNote;
}

std::vector<ResultKind> kindsOfRows(const Items& rows) {
    std::vector<ResultKind> kinds;
    kinds.reserve(rows.size());
    const SearchResultItem* section = nullptr;
    for (const SearchResultItem& row : rows) {
        if (row.type == SearchResultType::section) {
            section = &row;
        }
        kinds.push_back(kindOfRow(row, section));
    }
    return kinds;
}

/// One unit for each of the text's.
QString onOneLine(const std::string& content) {
    QString line = qt(content);
    for (QChar& sign : line) {
        if (sign.category() == QChar::Other_Control || sign == QChar::LineSeparator ||
            sign == QChar::ParagraphSeparator) {
            sign = QLatin1Char(' ');
        }
    }
    return line;
}

std::vector<Texts::Span> spansOf(const std::string& content) {
    std::vector<grammar::Mark> marks;
    grammar::findMarks(content, marks);
    std::vector<Texts::Span> spans;
    for (const grammar::Mark& mark : marks) {
        const bool isTag = mark.kind == MarkKind::hashtag || mark.kind == MarkKind::mention;
        const std::string_view text =
            std::string_view(content).substr(mark.start, mark.end - mark.start);
        const int blank = !text.empty() && text.front() == ' ' ? 1 : 0;
        spans.push_back({isTag ? Texts::SpanKind::tag : Texts::SpanKind::date,
                         unitsOf(std::string_view(content).substr(0, mark.start)) + blank,
                         unitsOf(text) - blank});
    }
    return spans;
}

QString folderOf(const SearchResultItem& section) {
    const std::size_t slash = section.filename.rfind('/');
    const bool isInFolder = section.noteType == base::NoteType::note && slash != std::string::npos;
    return isInFolder ? qt(std::string_view(section.filename).substr(0, slash)) : QString();
}

Texts textsOf(const SearchResultItem& row, ResultKind kind) {
    Texts texts;
    texts.title = onOneLine(row.title);
    if (kind == ResultKind::section && row.noteType == base::NoteType::calendar &&
        !texts.title.isEmpty()) {
        texts.title[0] = texts.title[0].toUpper();  // "Today"
    }
    // What is shown of a note that is found by its title alone may be nothing.
    const bool isTitleShown = kind == ResultKind::line && row.content.empty();
    const std::string& content = isTitleShown ? row.title : row.content;
    texts.content = kind == ResultKind::loading ? trText("Searching…") : onOneLine(content);
    if (kind == ResultKind::section) {
        texts.folder = folderOf(row);
        return texts;
    }
    texts.spans = spansOf(content);
    if (row.highlightRange.end() <= static_cast<std::size_t>(texts.content.size())) {
        texts.matchStart = static_cast<int>(row.highlightRange.location);
        texts.matchLength = static_cast<int>(row.highlightRange.length);
    }
    return texts;
}

QString spokenTask(const SearchResultItem& row, const QString& content) {
    switch (row.lineType) {
        case grammar::TodoType::done: return trText("done task, %1").arg(content);
        case grammar::TodoType::cancelled: return trText("cancelled task, %1").arg(content);
        case grammar::TodoType::scheduled: return trText("scheduled task, %1").arg(content);
        default: return trText("open task, %1").arg(content);
    }
}

QString spokenRow(const SearchResultItem& row, ResultKind kind, const Texts& texts) {
    switch (kind) {
        case ResultKind::section: return trText("group %1").arg(texts.title);
        case ResultKind::task: return spokenTask(row, texts.content);
        case ResultKind::listedNote:
            return texts.content.isEmpty() ? texts.title
                                           : texts.title + QStringLiteral(", ") + texts.content;
        case ResultKind::event: return texts.title;
        case ResultKind::line:
        case ResultKind::loading: break;
    }
    return texts.content;
}

bool looksTheSame(const SearchResultItem& a, const SearchResultItem& b) {
    return a.title == b.title && a.content == b.content && a.highlightRange == b.highlightRange &&
           a.position == b.position && a.lineType == b.lineType && a.type == b.type &&
           a.day == b.day && a.filename == b.filename;
}

/// The rows that stay, in their new order, then those that go.
std::vector<int> stayingFirst(const std::vector<int>& oldOfNew, const std::vector<int>& newOfOld) {
    std::vector<int> order;
    order.reserve(newOfOld.size());
    std::copy_if(oldOfNew.begin(), oldOfNew.end(), std::back_inserter(order),
                 [](int row) { return row >= 0; });
    for (std::size_t row = 0; row < newOfOld.size(); ++row) {
        if (newOfOld[row] < 0) {
            order.push_back(static_cast<int>(row));
        }
    }
    return order;
}

/// Where each row of the final order stands while those that stayed come first, in that order, and
/// those that are new behind them.
std::vector<int> newAmongStaying(const std::vector<int>& oldOfNew, std::size_t staying) {
    std::vector<int> order;
    order.reserve(oldOfNew.size());
    int nextStaying = 0;
    int nextNew = static_cast<int>(staying);
    for (const int oldRow : oldOfNew) {
        order.push_back(oldRow >= 0 ? nextStaying++ : nextNew++);
    }
    return order;
}

}  // namespace

ResultModel::ResultModel(QObject* parent) : QAbstractListModel(parent), _texts(mostTexts) {}

std::vector<int> ResultModel::show(Items rows) {
    const std::vector<int> oldOfNew = matchRows(_rows, rows);
    std::vector<int> newOfOld(_rows.size(), -1);
    Items added;
    for (std::size_t row = 0; row < oldOfNew.size(); ++row) {
        if (oldOfNew[row] >= 0) {
            newOfOld[static_cast<std::size_t>(oldOfNew[row])] = static_cast<int>(row);
        } else {
            added.push_back(rows[row]);
        }
    }
    const std::size_t staying = rows.size() - added.size();
    reorder(stayingFirst(oldOfNew, newOfOld));
    removeFrom(staying);
    append(std::move(added));
    reorder(newAmongStaying(oldOfNew, staying));
    exchange(std::move(rows));
    return newOfOld;
}

void ResultModel::reorder(const std::vector<int>& oldRows) {
    if (std::is_sorted(oldRows.begin(), oldRows.end())) {
        return;
    }
    Q_EMIT layoutAboutToBeChanged();
    std::vector<int> newRows(oldRows.size());
    Items rows;
    std::vector<ResultKind> kinds;
    rows.reserve(oldRows.size());
    kinds.reserve(oldRows.size());
    for (const int oldRow : oldRows) {
        const auto old = static_cast<std::size_t>(oldRow);
        newRows[old] = static_cast<int>(rows.size());
        rows.push_back(std::move(_rows[old]));
        kinds.push_back(_kinds[old]);
    }
    _rows = std::move(rows);
    _kinds = std::move(kinds);
    _texts.clear();
    const QModelIndexList from = persistentIndexList();
    QModelIndexList to;
    for (const QModelIndex& each : from) {
        to.append(index(newRows[static_cast<std::size_t>(each.row())]));
    }
    changePersistentIndexList(from, to);
    Q_EMIT layoutChanged();
}

void ResultModel::removeFrom(std::size_t first) {
    if (first == _rows.size()) {
        return;
    }
    beginRemoveRows({}, static_cast<int>(first), static_cast<int>(_rows.size()) - 1);
    _rows.resize(first);
    _kinds.resize(first);
    _texts.clear();
    endRemoveRows();
}

void ResultModel::append(Items rows) {
    if (rows.empty()) {
        return;
    }
    const auto first = static_cast<int>(_rows.size());
    beginInsertRows({}, first, first + static_cast<int>(rows.size()) - 1);
    for (SearchResultItem& row : rows) {
        _kinds.push_back(kindOfRow(row, nullptr));
        _rows.push_back(std::move(row));
    }
    endInsertRows();
}

void ResultModel::exchange(Items rows) {
    std::vector<ResultKind> kinds = kindsOfRows(rows);
    int first = -1;
    int last = -1;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (kinds[row] != _kinds[row] || !looksTheSame(_rows[row], rows[row])) {
            last = static_cast<int>(row);
            first = first < 0 ? last : first;
        }
    }
    _rows = std::move(rows);
    _kinds = std::move(kinds);
    _texts.clear();
    if (first >= 0) {
        Q_EMIT dataChanged(index(first), index(last));
    }
}

const Texts& ResultModel::texts(int row) const {
    if (const Texts* known = _texts.object(row)) {
        return *known;
    }
    auto made = std::make_unique<Texts>(textsOf(item(row), kind(row)));
    const Texts& texts = *made;
    _texts.insert(row, made.release());
    return texts;
}

bool ResultModel::isSelectable(int row) const {
    return kind(row) != ResultKind::section && kind(row) != ResultKind::loading;
}

tasks::TaskReference ResultModel::reference(int row) const {
    const SearchResultItem& task = item(row);
    return {{task.noteType, task.filename}, task.lineIndex.value_or(0), task.title};
}

int ResultModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(_rows.size());
}

QVariant ResultModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const int row = index.row();
    switch (role) {
        case Qt::DisplayRole: return spokenRow(item(row), kind(row), texts(row));
        case Qt::AccessibleTextRole: return spokenRow(item(row), kind(row), texts(row));
        case Qt::ToolTipRole:
            return item(row).title.size() > item(row).content.size() &&
                           kind(row) == ResultKind::task
                       ? texts(row).title
                       : QVariant();
        default: return {};
    }
}

Qt::ItemFlags ResultModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    const Qt::ItemFlags always = Qt::ItemNeverHasChildren | Qt::ItemIsEnabled;
    return isSelectable(index.row()) ? always | Qt::ItemIsSelectable : always;
}

}  // namespace tessaly::desktop
