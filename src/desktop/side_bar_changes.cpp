// SPDX-License-Identifier: MIT
#include "desktop/side_bar_changes.h"

#include <QInputDialog>
#include <QPointer>
#include <utility>

#include "desktop/folder_chooser.h"
#include "desktop/qt_text.h"
#include "desktop/side_bar_rows.h"

namespace tessaly::desktop {

namespace {

/// A row's key in two: its kind with the colon, and its name.
std::pair<std::string, std::string> partsOfKey(const std::string& key) {
    const std::size_t colon = key.find(':');
    return {key.substr(0, colon + 1), key.substr(colon + 1)};
}

}  // namespace

SideBarChanges::SideBarChanges(app::Services& services, app::SideBarFeed& feed, QWidget* pane)
    : QObject(pane), _feed(feed), _pane(pane), _organiser(services) {}

void SideBarChanges::setBeforeChange(std::function<bool()> beforeChange) {
    _beforeChange = std::move(beforeChange);
}

void SideBarChanges::makeFolder(const std::string& parent) {
    auto* dialog = new QInputDialog(_pane);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(trText("New Folder"));
    dialog->setLabelText(trText("Name"));
    connect(dialog, &QInputDialog::textValueSelected, this, [this, parent](const QString& name) {
        _organiser.newFolder(parent, utf8(name), told(folderKind));
    });
    dialog->open();
}

void SideBarChanges::move(const std::string& key) {
    auto* chooser = new FolderChooser(trText("Move to Folder"), foldersOf(_feed.sideBar()), _pane);
    connect(chooser, &FolderChooser::folderChosen, this,
            [this, key](const QString& folder) { move(key, utf8(folder)); });
    chooser->open();
}

void SideBarChanges::rename(const std::string& key, const std::string& to) {
    const auto [kind, name] = partsOfKey(key);
    if (kind == viewKind) {
        _organiser.renameFilter(name, to, filterTold());
    } else if (mayChange()) {
        kind == noteKind ? _organiser.renameNote(name, to, told(kind))
                         : _organiser.renameFolder(name, to, told(kind));
    }
}

void SideBarChanges::move(const std::string& key, const std::string& folder) {
    const auto [kind, name] = partsOfKey(key);
    if (mayChange()) {
        kind == noteKind ? _organiser.moveNote(name, folder, told(kind))
                         : _organiser.moveFolder(name, folder, told(kind));
    }
}

void SideBarChanges::trash(const std::string& key) {
    const auto [kind, name] = partsOfKey(key);
    if (kind == viewKind) {
        _organiser.trashFilter(name, filterTold());
    } else if (kind == noteKind && mayChange()) {
        _organiser.trashNote(name, told(kind));
    } else if (kind == folderKind && mayChange()) {
        _organiser.trashFolder(name, told(kind));
    }
}

app::NoteOrganiser::Told SideBarChanges::told(const std::string& kind) {
    return [this, kind](const app::OrganisedNotes& what) {
        if (!what.isFailure) {
            if (!what.from.empty()) {
                Q_EMIT renamed(qt(what.from), qt(what.to));
            }
            Q_EMIT done(what.to.empty() ? QString() : qt(kind + what.to));
        }
        tell(what);
    };
}

app::NoteOrganiser::Told SideBarChanges::filterTold() {
    return [this](const app::OrganisedNotes& what) {
        if (!what.isFailure) {
            _feed.filtersChanged();
            Q_EMIT filterRenamed(qt(what.from), qt(what.to));
        }
        tell(what);
    };
}

/// What takes it back saves what is open first, too.
void SideBarChanges::tell(const app::OrganisedNotes& what) {
    std::function<void()> undo;
    if (what.undo) {
        undo = [self = QPointer<SideBarChanges>(this), takeBack = what.undo] {
            if (self != nullptr && self->mayChange()) {
                takeBack();
            }
        };
    }
    Q_EMIT notice(qt(what.text), what.isFailure, undo);
}

}  // namespace tessaly::desktop
