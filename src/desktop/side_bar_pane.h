// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <string>

#include "app/place.h"
#include "app/services.h"
#include "app/side_bar_feed.h"

namespace tessaly::desktop {

/// The left pane: a place for the search field, and below it the tree of the sidebar. What the user
/// does to notes and folders it carries out itself, in the background, and tells of.
class SideBarPane : public QWidget {
    Q_OBJECT
public:
    /// Both outlive it.
    SideBarPane(app::Services& services, app::SideBarFeed& feed, QWidget* parent = nullptr);
    /// Waits for the work in hand.
    ~SideBarPane() override;

    /// Takes the field over and shows it on top.
    void setSearchField(QWidget* field);
    /// Selects the row of what the window shows, without a signal; none when it has no row.
    void setCurrent(const app::Place& place);
    void setCurrent(const app::ListRequest& list);
    /// Called before files of notes get other names or go: saves what is open. False: it cannot be
    /// saved, and nothing is done.
    void setBeforeChange(std::function<bool()> beforeChange);

    // Commands, for a note of the window: in place where its row is to be seen.
    void renameNote(const std::string& filename);
    void moveNote(const std::string& filename);
    void trashNote(const std::string& filename);
    /// Makes a folder in that of the current row, after asking for its name.
    void newFolder();
    /// The folder of the current row, for a new note; empty: the topmost.
    std::string currentFolder() const;
    /// The keyboard goes to the tree.
    void focusTree();

Q_SIGNALS:
    void placeChosen(const app::Place& place);
    void listChosen(const app::ListRequest& list);
    void trashChosen();
    void helpChosen();
    void markdownHelpChosen();
    void newNoteAsked(const QString& folder);
    void copyNoteLinkAsked(const QString& filename);
    /// In the file manager; a note or folder, empty: that of all notes.
    void openFolderAsked(const QString& name);
    /// A note, or all notes in a folder (see `app::renamedFilename`), have another name; with an
    /// empty `to` they are gone.
    void renamed(const QString& from, const QString& to);
    /// What was done, or why not; `undo` takes it back and may be empty.
    void notice(const QString& text, bool isFailure, const std::function<void()>& undo);
    void filterRenamed(const QString& from, const QString& to);  ///< empty `to`: removed

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Parts;
    std::unique_ptr<Parts> _parts;
};

}  // namespace tessaly::desktop
