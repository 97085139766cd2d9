// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <functional>
#include <string>

#include "app/note_organiser.h"
#include "app/services.h"
#include "app/side_bar_feed.h"

namespace tessaly::desktop {

/// Carries out, in the background, what the user wants with notes, folders and saved filters of the
/// sidebar, and asks for what is missing. Rows are named by their keys.
class SideBarChanges : public QObject {
    Q_OBJECT
public:
    /// `services` and `feed` outlive it; questions lie over `pane`, which owns it.
    SideBarChanges(app::Services& services, app::SideBarFeed& feed, QWidget* pane);

    /// As `SideBarPane::setBeforeChange`.
    void setBeforeChange(std::function<bool()> beforeChange);

    void rename(const std::string& key, const std::string& to);
    void move(const std::string& key, const std::string& folder);
    /// After asking for the folder.
    void move(const std::string& key);
    void trash(const std::string& key);
    /// After asking for its name.
    void makeFolder(const std::string& parent);

Q_SIGNALS:
    // As those of `SideBarPane`.
    void renamed(const QString& from, const QString& to);
    void filterRenamed(const QString& from, const QString& to);
    void notice(const QString& text, bool isFailure, const std::function<void()>& undo);
    /// Something was done to the row that has this key now, or will; empty: it is gone.
    void done(const QString& key);

private:
    bool mayChange() const { return !_beforeChange || _beforeChange(); }
    app::NoteOrganiser::Told told(const std::string& kind);
    app::NoteOrganiser::Told filterTold();
    void tell(const app::OrganisedNotes& what);

    app::SideBarFeed& _feed;
    QWidget* const _pane;
    std::function<bool()> _beforeChange;
    app::NoteOrganiser _organiser;
};

}  // namespace tessaly::desktop
