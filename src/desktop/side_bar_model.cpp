// SPDX-License-Identifier: MIT
#include "desktop/side_bar_model.h"

#include <QMimeData>
#include <algorithm>
#include <utility>

#include "base/localisation.h"
#include "desktop/qt_text.h"

namespace tessaly::desktop {
namespace {

using search::SideBarItem;
using search::SideBarItemType;

constexpr char notesMimeType[] = "application/x-tessaly-notes";

QString draggedKey(const QMimeData& data) {
    return QString::fromUtf8(data.data(QLatin1String(notesMimeType)));
}

/// "Work/Plans.txt" of "note:Work/Plans.txt".
QString nameOfKey(const QString& key) {
    return key.mid(key.indexOf(QLatin1Char(':')) + 1);
}

QString folderOfName(const QString& name) {
    return name.left(std::max(name.lastIndexOf(QLatin1Char('/')), qsizetype{0}));
}

bool isWithin(const QString& folder, const QString& name) {
    return folder == name || folder.startsWith(name + QLatin1Char('/'));
}

bool isOneOf(SideBarItemType type, std::initializer_list<SideBarItemType> types) {
    return std::find(types.begin(), types.end(), type) != types.end();
}

bool isTag(SideBarItemType type) {
    return isOneOf(type, {SideBarItemType::hashtag, SideBarItemType::attag});
}

// The icon beside it is the sign already.
QString shownText(const SideBarItem& item) {
    const bool hasSign = isTag(item.type) && item.displayText.size() > 1 &&
                         (item.displayText.front() == '#' || item.displayText.front() == '@');
    return qt(item.displayText.substr(hasSign ? 1 : 0));
}

int levelOf(const SideBarItem& item) {
    return std::max(item.subItemLevel - 1, 0);
}

}  // namespace

SideBarModel::SideBarModel(search::SideBar& sideBar, QObject* parent)
    : QAbstractItemModel(parent), _sideBar(&sideBar) {
    _sideBar->setObserver(this);
}

SideBarModel::~SideBarModel() {
    _sideBar->setObserver(nullptr);
}

void SideBarModel::show(search::SideBar& sideBar) {
    _isChanging = true;
    beginResetModel();
    _sideBar->setObserver(nullptr);
    _sideBar = &sideBar;
    _sideBar->setObserver(this);
    _changed.clear();
    endResetModel();
}

SideBarItem* SideBarModel::itemAt(const QModelIndex& index) {
    return static_cast<SideBarItem*>(index.internalPointer());
}

QModelIndex SideBarModel::indexOfItem(const SideBarItem& item) const {
    return createIndex(static_cast<int>(_sideBar->indexOf(item)), 0, &item);
}

QModelIndex SideBarModel::indexOfKey(std::string_view key) const {
    const SideBarItem* item = _sideBar->find(key);
    return item == nullptr ? QModelIndex() : indexOfItem(*item);
}

bool SideBarModel::folderAt(const QModelIndex& index, std::string& folder) {
    const SideBarItem* item = itemAt(index);
    if (item == nullptr || !isOneOf(item->type, {SideBarItemType::folder, SideBarItemType::archive,
                                                 SideBarItemType::notes})) {
        return false;
    }
    folder = item->type == SideBarItemType::notes ? std::string() : std::string(item->text);
    return true;
}

QModelIndex SideBarModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent)) {
        return {};
    }
    const SideBarItem* above = itemAt(parent);
    const auto& rows = above == nullptr ? _sideBar->items() : above->subItems;
    return createIndex(row, column, rows[static_cast<std::size_t>(row)].get());
}

QModelIndex SideBarModel::parent(const QModelIndex& index) const {
    const SideBarItem* item = itemAt(index);
    return item == nullptr || item->parent == nullptr ? QModelIndex() : indexOfItem(*item->parent);
}

int SideBarModel::rowCount(const QModelIndex& parent) const {
    const SideBarItem* above = itemAt(parent);
    return static_cast<int>(above == nullptr ? _sideBar->items().size() : above->subItems.size());
}

int SideBarModel::columnCount(const QModelIndex&) const {
    return 1;
}

bool SideBarModel::hasChildren(const QModelIndex& parent) const {
    return rowCount(parent) > 0;
}

int SideBarModel::countOf(const SideBarItem& item) const {
    return item.type == SideBarItemType::today ? _todayCount : static_cast<int>(item.count);
}

QString SideBarModel::accessibleText(const SideBarItem& item) const {
    const auto count = static_cast<unsigned long>(countOf(item));
    if (count == 0) {
        return shownText(item);
    }
    const std::string words = item.type == SideBarItemType::today
                                  ? base::trPlural("{} open task", "{} open tasks", count)
                                  : base::trPlural("{} note", "{} notes", count);
    return shownText(item) + QStringLiteral(", ") +
           qt(words).replace(QStringLiteral("{}"), QString::number(count));
}

QVariant SideBarModel::data(const QModelIndex& index, int role) const {
    const SideBarItem* item = itemAt(index);
    if (item == nullptr) {
        return {};
    }
    switch (role) {
        case Qt::DisplayRole: return shownText(*item);
        case Qt::EditRole: return qt(item->displayText);
        case Qt::AccessibleTextRole: return accessibleText(*item);
        case Qt::ToolTipRole: return qt(item->displayText);
        case countRole: return countOf(*item);
        case typeRole: return static_cast<int>(item->type);
        case levelRole: return levelOf(*item);
        default: return {};
    }
}

QVariant SideBarModel::headerData(int, Qt::Orientation orientation, int role) const {
    return orientation == Qt::Horizontal && role == Qt::DisplayRole ? trText("Sidebar")
                                                                    : QVariant();
}

bool SideBarModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    const SideBarItem* item = itemAt(index);
    const QString name = value.toString().trimmed();
    if (item != nullptr && role == Qt::EditRole && !name.isEmpty() &&
        name != qt(item->displayText)) {
        Q_EMIT renameAsked(qt(search::SideBar::keyOf(*item)), name);
    }
    return false;
}

Qt::ItemFlags SideBarModel::flags(const QModelIndex& index) const {
    const SideBarItem* item = itemAt(index);
    if (item == nullptr) {
        return Qt::NoItemFlags;
    }
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    const bool isFiled = isOneOf(item->type, {SideBarItemType::note, SideBarItemType::folder});
    flags.setFlag(Qt::ItemIsDragEnabled, isFiled);
    flags.setFlag(Qt::ItemIsEditable, isFiled || item->type == SideBarItemType::view);
    flags.setFlag(Qt::ItemIsDropEnabled,
                  isOneOf(item->type, {SideBarItemType::folder, SideBarItemType::archive,
                                       SideBarItemType::notes, SideBarItemType::trash}));
    flags.setFlag(Qt::ItemNeverHasChildren, item->type == SideBarItemType::note);
    return flags;
}

QStringList SideBarModel::mimeTypes() const {
    return {QLatin1String(notesMimeType)};
}

QMimeData* SideBarModel::mimeData(const QModelIndexList& indexes) const {
    const SideBarItem* item = indexes.isEmpty() ? nullptr : itemAt(indexes.front());
    if (item == nullptr) {
        return nullptr;
    }
    auto* data = new QMimeData;
    data->setData(QLatin1String(notesMimeType),
                  QByteArray::fromStdString(search::SideBar::keyOf(*item)));
    data->setText(qt(item->displayText));
    return data;
}

Qt::DropActions SideBarModel::supportedDropActions() const {
    return Qt::MoveAction;
}

bool SideBarModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int,
                                   const QModelIndex& parent) const {
    const SideBarItem* target = itemAt(parent);
    if (target == nullptr || data == nullptr || !data->hasFormat(QLatin1String(notesMimeType))) {
        return false;
    }
    std::string folder;
    if (!folderAt(parent, folder)) {
        return target->type == SideBarItemType::trash;
    }
    const QString name = nameOfKey(draggedKey(*data));
    return folderOfName(name) != qt(folder) && !isWithin(qt(folder), name);
}

bool SideBarModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                const QModelIndex& parent) {
    if (!canDropMimeData(data, action, row, column, parent)) {
        return false;
    }
    std::string folder;
    if (folderAt(parent, folder)) {
        Q_EMIT moveAsked(draggedKey(*data), qt(folder));
    } else {
        Q_EMIT trashAsked(draggedKey(*data));
    }
    // The rows go when the tree is told; the view must not remove what was dragged.
    return false;
}

void SideBarModel::setTodayCount(int count) {
    if (count == _todayCount) {
        return;
    }
    _todayCount = count;
    const QModelIndex today = indexOfKey("section:today");
    Q_EMIT dataChanged(today, today);
}

void SideBarModel::willInsert(const SideBarItem& parent, std::size_t first, std::size_t count) {
    _isChanging = true;
    beginInsertRows(indexOfItem(parent), static_cast<int>(first),
                    static_cast<int>(first + count) - 1);
}

void SideBarModel::didInsert(const SideBarItem&) {
    endInsertRows();
}

void SideBarModel::willRemove(const SideBarItem& parent, std::size_t first, std::size_t count) {
    _isChanging = true;
    beginRemoveRows(indexOfItem(parent), static_cast<int>(first),
                    static_cast<int>(first + count) - 1);
}

void SideBarModel::didRemove(const SideBarItem&) {
    endRemoveRows();
}

void SideBarModel::willMove(const SideBarItem& parent, std::size_t from, std::size_t to) {
    _isChanging = true;
    const QModelIndex above = indexOfItem(parent);
    // Qt names the row that it is put before, as counted while it is still there.
    beginMoveRows(above, static_cast<int>(from), static_cast<int>(from), above,
                  static_cast<int>(to > from ? to + 1 : to));
}

void SideBarModel::didMove(const SideBarItem&) {
    endMoveRows();
}

void SideBarModel::willReorder(const SideBarItem& parent) {
    Q_EMIT layoutAboutToBeChanged({indexOfItem(parent)}, VerticalSortHint);
    _reordered.clear();
    for (const QModelIndex& index : persistentIndexList()) {
        const SideBarItem* item = itemAt(index);
        if (item->parent == &parent) {
            _reordered.emplace_back(index, item);
        }
    }
}

void SideBarModel::didReorder(const SideBarItem& parent) {
    for (const auto& [index, item] : _reordered) {
        changePersistentIndex(index, indexOfItem(*item));
    }
    _reordered.clear();
    Q_EMIT layoutChanged({indexOfItem(parent)}, VerticalSortHint);
}

void SideBarModel::changed(const SideBarItem& item) {
    const int row = static_cast<int>(_sideBar->indexOf(item));
    const auto [span, isFirst] = _changed.try_emplace(item.parent, Span{row, row});
    if (!isFirst) {
        span->second = {std::min(span->second.first, row), std::max(span->second.last, row)};
    }
}

void SideBarModel::flushChanges() {
    _isChanging = false;
    const auto changes = std::exchange(_changed, {});
    for (const auto& [above, span] : changes) {
        const QModelIndex parent = above == nullptr ? QModelIndex() : indexOfItem(*above);
        Q_EMIT dataChanged(index(span.first, 0, parent), index(span.last, 0, parent));
    }
}

}  // namespace tessaly::desktop
