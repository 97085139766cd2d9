// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractItemModel>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "search/side_bar.h"

namespace tessaly::desktop {

/// The sidebar's tree for a view. Its rows are those of the tree: it holds none itself. Notes and
/// folders can be dragged onto folders; what a drop or an edited name asks for it tells, and the
/// row follows when the tree does. Main thread.
class SideBarModel : public QAbstractItemModel, private search::SideBarObserver {
    Q_OBJECT
public:
    enum Role {
        countRole = Qt::UserRole + 1,  ///< int; 0: none is shown
        typeRole,                      ///< int: a `search::SideBarItemType`
        levelRole                      ///< int: steps of indentation
    };

    /// `sideBar` outlives it, and has no other observer.
    explicit SideBarModel(search::SideBar& sideBar, QObject* parent = nullptr);
    ~SideBarModel() override;

    /// Shows another tree from now on; the one before is there until this returns.
    void show(search::SideBar& sideBar);
    /// Passes on what has changed in rows. To be called when the tree has been updated.
    void flushChanges();
    /// Rows have come, gone or moved since `flushChanges`: what a view makes current now, nobody
    /// has chosen.
    bool isChanging() const { return _isChanging; }
    /// What is shown beside the row of today, which the tree does not count.
    void setTodayCount(int count);

    /// Null for the root.
    static search::SideBarItem* itemAt(const QModelIndex& index);
    /// Invalid: there is no such row.
    QModelIndex indexOfKey(std::string_view key) const;
    QModelIndex indexOfItem(const search::SideBarItem& item) const;
    /// The folder that something dropped onto the row goes to, empty for the topmost; false: none.
    static bool folderAt(const QModelIndex& index, std::string& folder);

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    Qt::DropActions supportedDropActions() const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

Q_SIGNALS:
    /// The user has given the row of this key another name.
    void renameAsked(const QString& key, const QString& name);
    /// The user has dropped the note or folder of this key onto a folder, or onto the trash.
    void moveAsked(const QString& key, const QString& folder);
    void trashAsked(const QString& key);

private:
    void willInsert(const search::SideBarItem& parent, std::size_t first,
                    std::size_t count) override;
    void didInsert(const search::SideBarItem& parent) override;
    void willRemove(const search::SideBarItem& parent, std::size_t first,
                    std::size_t count) override;
    void didRemove(const search::SideBarItem& parent) override;
    void willMove(const search::SideBarItem& parent, std::size_t from, std::size_t to) override;
    void didMove(const search::SideBarItem& parent) override;
    void willReorder(const search::SideBarItem& parent) override;
    void didReorder(const search::SideBarItem& parent) override;
    void changed(const search::SideBarItem& item) override;

    QString accessibleText(const search::SideBarItem& item) const;
    int countOf(const search::SideBarItem& item) const;

    search::SideBar* _sideBar;
    int _todayCount = 0;
    bool _isChanging = false;
    /// Persistent indexes of the rows that are being put in order, and their items.
    std::vector<std::pair<QModelIndex, const search::SideBarItem*>> _reordered;
    struct Span {
        int first;
        int last;
    };
    std::map<const search::SideBarItem*, Span> _changed;  ///< by parent; null: the top level
};

}  // namespace tessaly::desktop
