// SPDX-License-Identifier: MIT
#pragma once

#include <QStackedWidget>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/note_address.h"
#include "app/open_conflict.h"
#include "app/services.h"

namespace tessaly::desktop {

class ConflictBarView;
class NoteEditor;
class VersionDifferences;

/// The other versions of the open note where a sync client has left some: a page with the text of
/// one, or with what differs, and the bar above the note that leads there and resolves them.
class NoteVersions : public QStackedWidget {
    Q_OBJECT
public:
    /// What it needs of the note.
    struct Note {
        std::function<bool()> save;  ///< false: it cannot be saved, and nothing is done
        std::function<std::string()> shownText;
        std::function<void()> reread;  ///< its file has another text now
    };
    /// `services` outlives it.
    NoteVersions(app::Services& services, Note note, QWidget* parent);
    ~NoteVersions() override;

    /// Hidden while there is one version only. Belongs to the parent.
    ConflictBarView* bar() { return _bar; }
    /// Of another version; never edited.
    NoteEditor* textView() { return _text; }

    /// Looks after another note, from `check` on.
    void open(const app::NoteAddress& address);
    void check();
    void close();

    /// What is to be seen of the note: itself, or another version here.
    enum class Shown { note, text, differences };
    Shown shown() const;

Q_SIGNALS:
    void shownChanged();
    void notice(const QString& text);

private:
    void connectBar();
    void show(const app::ShownVersion& version);
    void leaveVersions();
    void showPage();
    void resolve(void (app::OpenConflict::*how)());

    app::Services& _services;
    const Note _note;
    ConflictBarView* const _bar;
    NoteEditor* const _text;
    VersionDifferences* const _differences;
    std::unique_ptr<app::OpenConflict> _conflict;
    std::optional<app::ShownVersion> _version;  ///< nothing: the note is not in conflict
};

}  // namespace tessaly::desktop
