// SPDX-License-Identifier: MIT
#include "desktop/side_bar_pane.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QInputDialog>
#include <QItemSelectionModel>
#include <QMenu>
#include <QPainter>
#include <QPointer>
#include <QVBoxLayout>
#include <utility>

#include "app/note_organiser.h"
#include "desktop/folder_chooser.h"
#include "desktop/qt_text.h"
#include "desktop/side_bar_menu.h"
#include "desktop/side_bar_model.h"
#include "desktop/side_bar_tree.h"
#include "desktop/theme.h"

namespace tessaly::desktop {
namespace {

using search::SideBarItem;
using Type = search::SideBarItemType;

constexpr char folderKind[] = "folder:";
constexpr char noteKind[] = "note:";

std::string folderPartOf(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    return slash == std::string::npos ? std::string() : name.substr(0, slash);
}

/// A row's key in two: its kind with the colon, and its name.
std::pair<std::string, std::string> partsOfKey(const std::string& key) {
    const std::size_t colon = key.find(':');
    return {key.substr(0, colon + 1), key.substr(colon + 1)};
}

app::ListRequest listOf(const SideBarItem& item) {
    const std::string name(item.text);
    const std::string title(item.displayText);
    switch (item.type) {
        case Type::view: return {{}, name, title};
        case Type::hashtag:
        case Type::attag: return {name, {}, name};
        case Type::inbox: return {"//inbox", {}, title};
        case Type::recent: return {"//recent", {}, title};
        default: return {"in:\"" + name + '"', {}, title};
    }
}

/// The key of the row that shows a list; the wording of its query counts.
std::string keyOfList(const app::ListRequest& list) {
    if (!list.filter.empty()) {
        return "view:" + list.filter;
    }
    const std::string& query = list.query;
    if (query == "//inbox" || query == "//recent") {
        return "section:" + query.substr(2);
    }
    if (query.starts_with('#')) {
        return "hashtag:" + query;
    }
    if (query.starts_with('@')) {
        return "attag:" + query;
    }
    if (query.starts_with("in:\"") && query.ends_with('"') && query.size() > 5) {
        const std::string folder = query.substr(4, query.size() - 5);
        return (folder == "Archive" ? "section:" : folderKind) + folder;
    }
    return {};
}

/// A head without rows, and what the window has nothing for.
bool isWithoutUse(const SideBarItem& item) {
    if (item.type == Type::preferences) {
        return true;
    }
    const bool canBeEmpty = item.type == Type::viewHeader || item.type == Type::hashtagHeader ||
                            item.type == Type::attagHeader;
    return canBeEmpty && item.subItems.empty();
}

void addFolders(const SideBarItem& item, QStringList& folders) {
    for (const auto& row : item.subItems) {
        if (row->type == Type::folder || row->type == Type::archive) {
            folders.push_back(qt(row->text));
            addFolders(*row, folders);
        } else if (row->type == Type::note) {
            // Folders stand before notes.
            break;
        }
    }
}

}  // namespace

struct SideBarPane::Parts {
    Parts(SideBarPane& pane, app::Services& all, app::SideBarFeed& tree)
        : self(pane), services(all), feed(tree), organiser(all) {}

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
            case Type::preferences: Q_EMIT self.preferencesChosen(); break;
            case Type::help:
                item->parent == nullptr ? Q_EMIT self.helpChosen()
                                        : Q_EMIT self.markdownHelpChosen();
                break;
            case Type::view:
            case Type::hashtag:
            case Type::attag:
            case Type::inbox:
            case Type::recent:
            case Type::archive: Q_EMIT self.listChosen(listOf(*item)); break;
            default: view->setExpanded(index, !view->isExpanded(index)); break;
        }
    }

    void showMenu(const QModelIndex& index, const QPoint& place) {
        const SideBarItem* item = SideBarModel::itemAt(index);
        if (item == nullptr) {
            return;
        }
        view->setCurrentIndex(index);
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
        menu->popup(place);
    }

    void perform(SideBarAction action, const std::string& key) {
        const QModelIndex index = model->indexOfKey(key);
        const SideBarItem* item = SideBarModel::itemAt(index);
        if (item == nullptr) {
            return;
        }
        const std::string name(item->text);
        const std::string folder = folderOf(*item);
        switch (action) {
            case SideBarAction::open: choose(index); break;
            case SideBarAction::showList: Q_EMIT self.listChosen(listOf(*item)); break;
            case SideBarAction::newNote: Q_EMIT self.newNoteAsked(qt(folder)); break;
            case SideBarAction::newFolder: askForFolder(folder); break;
            case SideBarAction::rename: view->edit(index); break;
            case SideBarAction::move: chooseFolder(key); break;
            case SideBarAction::trash: trash(key); break;
            case SideBarAction::copyLink: Q_EMIT self.copyNoteLinkAsked(qt(name)); break;
            case SideBarAction::copyTag: QGuiApplication::clipboard()->setText(qt(name)); break;
            case SideBarAction::openFolder:
                Q_EMIT self.openFolderAsked(item->type == Type::notes ? QString() : qt(name));
                break;
        }
    }

    /// That a row is, or lies in.
    static std::string folderOf(const SideBarItem& item) {
        const bool isFolder = item.type == Type::folder || item.type == Type::archive;
        return isFolder                  ? std::string(item.text)
               : item.type == Type::note ? folderPartOf(std::string(item.text))
                                         : std::string();
    }

    void askForFolder(const std::string& parent) {
        auto* dialog = new QInputDialog(&self);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setWindowTitle(trText("New Folder"));
        dialog->setLabelText(trText("Name"));
        connect(dialog, &QInputDialog::textValueSelected, &self,
                [this, parent](const QString& name) {
                    organiser.newFolder(parent, utf8(name), told(folderKind));
                });
        dialog->open();
    }

    void chooseFolder(const std::string& key) {
        QStringList folders;
        for (const auto& top : feed.sideBar().items()) {
            addFolders(*top, folders);
        }
        auto* chooser = new FolderChooser(trText("Move to Folder"), folders, &self);
        connect(chooser, &FolderChooser::folderChosen, &self,
                [this, key](const QString& folder) { move(key, utf8(folder)); });
        chooser->open();
    }

    bool mayChange() const { return !beforeChange || beforeChange(); }

    void rename(const std::string& key, const std::string& to) {
        const auto [kind, name] = partsOfKey(key);
        if (kind == "view:") {
            organiser.renameFilter(name, to, filterTold());
        } else if (mayChange()) {
            kind == noteKind ? organiser.renameNote(name, to, told(kind))
                             : organiser.renameFolder(name, to, told(kind));
        }
    }

    void move(const std::string& key, const std::string& folder) {
        const auto [kind, name] = partsOfKey(key);
        if (mayChange()) {
            kind == noteKind ? organiser.moveNote(name, folder, told(kind))
                             : organiser.moveFolder(name, folder, told(kind));
        }
    }

    void trash(const std::string& key) {
        const auto [kind, name] = partsOfKey(key);
        if (kind == "view:") {
            organiser.trashFilter(name, filterTold());
        } else if (kind == noteKind && mayChange()) {
            organiser.trashNote(name, told(kind));
        } else if (kind == folderKind && mayChange()) {
            organiser.trashFolder(name, told(kind));
        }
    }

    app::NoteOrganiser::Told told(const std::string& kind) {
        return [this, kind](const app::OrganisedNotes& what) {
            if (!what.isFailure) {
                if (!what.from.empty()) {
                    Q_EMIT self.renamed(qt(what.from), qt(what.to));
                }
                awaited = what.to.empty() ? std::string() : kind + what.to;
                follow();
            }
            tell(what);
        };
    }

    app::NoteOrganiser::Told filterTold() {
        return [this](const app::OrganisedNotes& what) {
            if (!what.isFailure) {
                feed.filtersChanged();
                Q_EMIT self.filterRenamed(qt(what.from), qt(what.to));
            }
            tell(what);
        };
    }

    /// What takes it back saves what is open first, too.
    void tell(const app::OrganisedNotes& what) {
        std::function<void()> undo;
        if (what.undo) {
            undo = [pane = QPointer<SideBarPane>(&self), this, takeBack = what.undo] {
                if (pane != nullptr && mayChange()) {
                    takeBack();
                }
            };
        }
        Q_EMIT self.notice(qt(what.text), what.isFailure, undo);
    }

    SideBarPane& self;
    app::Services& services;
    app::SideBarFeed& feed;
    std::function<bool()> beforeChange;
    std::string currentKey;  ///< of the row that was made current by us or the user
    std::string awaited;     ///< the key of a row that is to be selected once it is there
    QVBoxLayout* column = nullptr;
    SideBarModel* model = nullptr;
    SideBarTree* view = nullptr;
    app::NoteOrganiser organiser;
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
    connect(parts->view->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [parts](const QModelIndex& index) {
                if (!parts->model->isChanging()) {
                    const SideBarItem* item = SideBarModel::itemAt(index);
                    parts->currentKey =
                        item == nullptr ? std::string() : search::SideBar::keyOf(*item);
                }
            });
    connect(parts->view, &QTreeView::expanded, this, [parts](const QModelIndex& index) {
        parts->feed.setExpanded(*SideBarModel::itemAt(index), true);
    });
    connect(parts->view, &QTreeView::collapsed, this, [parts](const QModelIndex& index) {
        parts->feed.setExpanded(*SideBarModel::itemAt(index), false);
    });
    connect(parts->view, &SideBarTree::chosen, this,
            [parts](const QModelIndex& index) { parts->choose(index); });
    connect(
        parts->view, &SideBarTree::menuAsked, this,
        [parts](const QModelIndex& index, const QPoint& place) { parts->showMenu(index, place); });
    connect(parts->view, &SideBarTree::trashAsked, this, [parts](const QModelIndex& index) {
        parts->trash(search::SideBar::keyOf(*SideBarModel::itemAt(index)));
    });
    connect(
        parts->model, &SideBarModel::renameAsked, this,
        [parts](const QString& key, const QString& name) { parts->rename(utf8(key), utf8(name)); });
    connect(parts->model, &SideBarModel::moveAsked, this,
            [parts](const QString& key, const QString& folder) {
                parts->move(utf8(key), utf8(folder));
            });
    connect(parts->model, &SideBarModel::trashAsked, this,
            [parts](const QString& key) { parts->trash(utf8(key)); });
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
    const base::Day today = _parts->services.today();
    const bool isToday = place.kind == app::Place::Kind::day && place.day == today;
    _parts->select(place.kind == app::Place::Kind::note   ? noteKind + place.filename
                   : place.kind == app::Place::Kind::week ? std::string("section:week")
                   : isToday                              ? std::string("section:today")
                                                          : std::string());
}

void SideBarPane::setCurrent(const app::ListRequest& list) {
    _parts->select(keyOfList(list));
}

void SideBarPane::setBeforeChange(std::function<bool()> beforeChange) {
    _parts->beforeChange = std::move(beforeChange);
}

void SideBarPane::renameNote(const std::string& filename) {
    const QModelIndex index = _parts->reveal(noteKind + filename);
    if (index.isValid()) {
        _parts->view->setFocus();
        _parts->view->edit(index);
    }
}

void SideBarPane::moveNote(const std::string& filename) {
    _parts->chooseFolder(noteKind + filename);
}

void SideBarPane::trashNote(const std::string& filename) {
    _parts->trash(noteKind + filename);
}

void SideBarPane::newFolder() {
    _parts->askForFolder(currentFolder());
}

std::string SideBarPane::currentFolder() const {
    const SideBarItem* item = _parts->current();
    return item == nullptr ? std::string() : Parts::folderOf(*item);
}

void SideBarPane::focusTree() {
    _parts->view->setFocus();
}

}  // namespace tessaly::desktop
