// SPDX-License-Identifier: MIT
#include "desktop/side_bar_pane.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QItemSelectionModel>
#include <QMenu>
#include <QPainter>
#include <QVBoxLayout>
#include <memory>
#include <string>
#include <utility>

#include "desktop/qt_text.h"
#include "desktop/side_bar_changes.h"
#include "desktop/side_bar_menu.h"
#include "desktop/side_bar_model.h"
#include "desktop/side_bar_rows.h"
#include "desktop/side_bar_tree.h"
#include "desktop/theme.h"

namespace tessaly::desktop {
namespace {

using search::SideBarItem;
using Type = search::SideBarItemType;

constexpr char notesKey[] = "section:Notes";

}  // namespace

struct SideBarPane::Parts {
    Parts(SideBarPane& pane, app::Services& all, app::SideBarFeed& tree)
        : self(pane), services(all), feed(tree), changes(*new SideBarChanges(all, tree, &pane)) {}

    SideBarItem* current() const { return SideBarModel::itemAt(view->currentIndex()); }

    void follow() {
        model->flushChanges();
        model->setTodayCount(static_cast<int>(feed.openTasksToday()));
        for (int row = 0; row < model->rowCount(); ++row) {
            const QModelIndex index = model->index(row, 0);
            const bool isHidden = isWithoutUse(*SideBarModel::itemAt(index));
            if (view->isRowHidden(row, {}) != isHidden) {
                view->setRowHidden(row, {}, isHidden);
            }
        }
        showExpanded();
        if (!awaited.empty() && selectKey(awaited)) {
            awaited.clear();
        } else if (const SideBarItem* item = current();
                   !currentKey.empty() &&
                   (item == nullptr || search::SideBar::keyOf(*item) != currentKey)) {
            // Many rows of a folder change by going and coming again.
            selectKey(currentKey);
        }
    }

    void showExpanded() {
        for (const std::string& key : feed.sideBar().expanded()) {
            const QModelIndex index = model->indexOfKey(key);
            if (index.isValid() && !view->isExpanded(index)) {
                view->setExpanded(index, true);
            }
        }
    }

    bool selectKey(const std::string& key) {
        const QModelIndex index = key.empty() ? QModelIndex() : model->indexOfKey(key);
        if (!index.isValid()) {
            return false;
        }
        view->setCurrentIndex(index);
        return true;
    }

    void select(const std::string& key) {
        awaited.clear();
        const SideBarItem* item = key.empty() ? nullptr : feed.sideBar().find(key);
        if (item == nullptr || !item->isVisible()) {
            view->setCurrentIndex({});
            awaited = item == nullptr ? key : std::string();  // a note that was only just made
            return;
        }
        if (item != current()) {
            selectKey(key);
        }
    }

    /// The row that the user is to see; opens what it lies in.
    QModelIndex reveal(const std::string& key) {
        const QModelIndex index = model->indexOfKey(key);
        for (QModelIndex above = index.parent(); above.isValid(); above = above.parent()) {
            view->expand(above);
        }
        view->setCurrentIndex(index);
        view->scrollTo(index);
        return index;
    }

    void choose(const QModelIndex& index) {
        const SideBarItem* item = SideBarModel::itemAt(index);
        switch (item->type) {
            case Type::today: Q_EMIT self.placeChosen(app::Place::ofDay(services.today())); break;
            case Type::week: Q_EMIT self.placeChosen(app::Place::ofWeek(services.today())); break;
            case Type::note:
                Q_EMIT self.placeChosen(app::Place::ofNote(std::string(item->text)));
                break;
            case Type::trash: Q_EMIT self.trashChosen(); break;
            case Type::help:
                item->parent == nullptr ? Q_EMIT self.helpChosen()
                                        : Q_EMIT self.markdownHelpChosen();
                break;
            case Type::view:
            case Type::hashtag:
            case Type::attag:
            case Type::inbox:
            case Type::recent:
            case Type::archive: Q_EMIT self.listChosen(listOfRow(*item)); break;
            default: view->setExpanded(index, !view->isExpanded(index)); break;
        }
    }

    /// Beside the rows, what can be done with all notes.
    void showMenu(const QModelIndex& asked, const QPoint& place) {
        const QModelIndex index = asked.isValid() ? asked : model->indexOfKey(notesKey);
        const SideBarItem* item = SideBarModel::itemAt(index);
        if (item == nullptr) {
            return;
        }
        auto* menu = new QMenu(&self);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        // The tree may change while the menu is open.
        const std::string key = search::SideBar::keyOf(*item);
        fillSideBarMenu(*menu, item->type,
                        [this, key](SideBarAction action) { perform(action, key); });
        if (menu->isEmpty()) {
            delete menu;
            return;
        }
        showWhatMenuIsFor(*menu, asked);
        menu->popup(place);
    }

    /// The row is current as long as the menu is open; one that is left without a choice leaves
    /// all as it was.
    void showWhatMenuIsFor(const QMenu& menu, const QModelIndex& index) {
        const auto before = std::make_shared<std::string>(currentKey);
        view->setCurrentIndex(index);
        connect(&menu, &QMenu::triggered, &self, [before] { before->clear(); });
        connect(&menu, &QObject::destroyed, &self, [this, before] { selectKey(*before); });
    }

    void perform(SideBarAction action, const std::string& key) {
        const QModelIndex index = model->indexOfKey(key);
        const SideBarItem* item = SideBarModel::itemAt(index);
        if (item == nullptr) {
            return;
        }
        const std::string name(item->text);
        const std::string folder = folderOfRow(*item);
        switch (action) {
            case SideBarAction::open: choose(index); break;
            case SideBarAction::showList: Q_EMIT self.listChosen(listOfRow(*item)); break;
            case SideBarAction::newNote: Q_EMIT self.newNoteAsked(qt(folder)); break;
            case SideBarAction::newFolder: changes.makeFolder(folder); break;
            case SideBarAction::rename: view->edit(index); break;
            case SideBarAction::move: changes.move(key); break;
            case SideBarAction::trash: changes.trash(key); break;
            case SideBarAction::copyLink: Q_EMIT self.copyNoteLinkAsked(qt(name)); break;
            case SideBarAction::copyTag: QGuiApplication::clipboard()->setText(qt(name)); break;
            case SideBarAction::openFolder:
                Q_EMIT self.openFolderAsked(item->type == Type::notes ? QString() : qt(name));
                break;
        }
    }

    void connectTree() {
        connect(view->selectionModel(), &QItemSelectionModel::currentChanged, &self,
                [this](const QModelIndex& index) {
                    if (!model->isChanging()) {
                        const SideBarItem* item = SideBarModel::itemAt(index);
                        currentKey =
                            item == nullptr ? std::string() : search::SideBar::keyOf(*item);
                    }
                });
        connect(view, &QTreeView::expanded, &self, [this](const QModelIndex& index) {
            feed.setExpanded(*SideBarModel::itemAt(index), true);
        });
        connect(view, &QTreeView::collapsed, &self, [this](const QModelIndex& index) {
            feed.setExpanded(*SideBarModel::itemAt(index), false);
        });
        connect(view, &SideBarTree::chosen, &self,
                [this](const QModelIndex& index) { choose(index); });
        connect(view, &SideBarTree::menuAsked, &self,
                [this](const QModelIndex& index, const QPoint& place) { showMenu(index, place); });
        connect(view, &SideBarTree::trashAsked, &self, [this](const QModelIndex& index) {
            changes.trash(search::SideBar::keyOf(*SideBarModel::itemAt(index)));
        });
        connect(model, &SideBarModel::renameAsked, &self,
                [this](const QString& key, const QString& name) {
                    changes.rename(utf8(key), utf8(name));
                });
        connect(model, &SideBarModel::moveAsked, &self,
                [this](const QString& key, const QString& folder) {
                    changes.move(utf8(key), utf8(folder));
                });
        connect(model, &SideBarModel::trashAsked, &self,
                [this](const QString& key) { changes.trash(utf8(key)); });
    }

    void connectChanges() {
        connect(&changes, &SideBarChanges::renamed, &self, &SideBarPane::renamed);
        connect(&changes, &SideBarChanges::filterRenamed, &self, &SideBarPane::filterRenamed);
        connect(&changes, &SideBarChanges::notice, &self, &SideBarPane::notice);
        connect(&changes, &SideBarChanges::done, &self, [this](const QString& key) {
            awaited = utf8(key);
            follow();
        });
    }

    SideBarPane& self;
    app::Services& services;
    app::SideBarFeed& feed;
    SideBarChanges& changes;  ///< owned by the pane
    std::string currentKey;   ///< of the row that was made current by us or the user
    std::string awaited;      ///< the key of a row that is to be selected once it is there
    QVBoxLayout* column = nullptr;
    SideBarModel* model = nullptr;
    SideBarTree* view = nullptr;
};

SideBarPane::SideBarPane(app::Services& services, app::SideBarFeed& feed, QWidget* parent)
    : QWidget(parent), _parts(std::make_unique<Parts>(*this, services, feed)) {
    setAccessibleName(trText("Sidebar"));
    _parts->column = new QVBoxLayout(this);
    _parts->column->setContentsMargins(0, 0, 0, 0);
    _parts->column->setSpacing(0);
    _parts->model = new SideBarModel(feed.sideBar(), this);
    _parts->view = new SideBarTree(this);
    _parts->view->setModel(_parts->model);
    _parts->column->addWidget(_parts->view);
    setFocusProxy(_parts->view);

    Parts* parts = _parts.get();
    feed.setOnUpdated([parts] { parts->follow(); });
    feed.setOnReplaced([parts](search::SideBar& tree) { parts->model->show(tree); });
    parts->connectTree();
    parts->connectChanges();
    connect(&Theme::instance(), &Theme::changed, this, [this] { update(); });
    parts->follow();
}

SideBarPane::~SideBarPane() {
    _parts->feed.setOnUpdated({});
    _parts->feed.setOnReplaced({});
    // The model lets go of the tree before the parts go.
    delete _parts->view;
    delete _parts->model;
}

void SideBarPane::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Theme::instance().colors().sideBar);
}

void SideBarPane::setSearchField(QWidget* field) {
    auto* row = new QHBoxLayout;
    row->setContentsMargins(12, 12, 12, 10);
    row->addWidget(field);
    _parts->column->insertLayout(0, row);
    setTabOrder(field, _parts->view);
}

void SideBarPane::setCurrent(const app::Place& place) {
    _parts->select(keyOfPlace(place, _parts->services.today()));
}

void SideBarPane::setCurrent(const app::ListRequest& list) {
    _parts->select(keyOfList(list));
}

void SideBarPane::setBeforeChange(std::function<bool()> beforeChange) {
    _parts->changes.setBeforeChange(std::move(beforeChange));
}

void SideBarPane::renameNote(const std::string& filename) {
    const QModelIndex index = _parts->reveal(noteKind + filename);
    if (index.isValid()) {
        _parts->view->setFocus();
        _parts->view->edit(index);
    }
}

void SideBarPane::moveNote(const std::string& filename) {
    _parts->changes.move(noteKind + filename);
}

void SideBarPane::trashNote(const std::string& filename) {
    _parts->changes.trash(noteKind + filename);
}

void SideBarPane::newFolder() {
    _parts->changes.makeFolder(currentFolder());
}

std::string SideBarPane::currentFolder() const {
    const SideBarItem* item = _parts->current();
    return item == nullptr ? std::string() : folderOfRow(*item);
}

void SideBarPane::focusTree() {
    _parts->view->setFocus();
}

}  // namespace tessaly::desktop
