// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/commands.h"
#include "app/line_look.h"
#include "app/note_address.h"
#include "app/open_note.h"
#include "app/services.h"
#include "base/failure.h"
#include "desktop/kept_folds.h"
#include "tasks/task_outcome.h"

class QLabel;
class QStackedWidget;

namespace tessaly::desktop {

class CaretTasks;
class EditorTools;
class FindBar;
class NoteEditor;
class NoteVersions;

/// The open note: its editor, with the bars above and below it, or why there is nothing to edit.
class NotePane : public QWidget {
    Q_OBJECT
public:
    /// `services` outlives it.
    explicit NotePane(app::Services& services, QWidget* parent = nullptr);
    ~NotePane() override;

    /// Opens a note in the place of the one that is shown, which is saved first; a line is the
    /// note's, from 0. False: the one that is shown cannot be saved, and stays; its save state
    /// tells why.
    bool show(const app::NoteAddress& address, std::optional<std::size_t> line = std::nullopt);
    /// The note that is open; nothing: none.
    std::optional<app::NoteAddress> current() const;
    /// The file of the open note has another name now: goes on with it there, and with what was
    /// typed since `saveNow`, which came before the file got it.
    void follow(const app::NoteAddress& address);
    /// Leaves the note without saving: what was not saved is lost, unless `keepCopy` kept it.
    void leave();
    /// What the note is called, in words for the user.
    QString title() const;

    /// Saves and waits for it. Done also when no note is open.
    base::Result<base::Done> saveNow();
    /// As of `app::OpenNote`; `notFound`: no note is open.
    base::Result<std::string> keepCopy();
    /// Somebody else may have written the note, or a version of it.
    void reread();
    /// Settings or fonts have changed.
    void restyle();

    /// Commands on text, find and tasks of the caret's lines; false: it is none of the pane's, or
    /// there is nothing that it could be done to now.
    bool perform(app::CommandId command);

    NoteEditor& editor() { return *_editor; }

Q_SIGNALS:
    /// In words for the user; loud: the text is in no file.
    void saveStateChanged(const QString& text, bool isLoud);
    void titleChanged();
    /// Tasks of this note, which is saved, are to be changed in a way that touches other notes too;
    /// `reread` afterwards.
    void taskGesture(app::CommandId command, const std::vector<tasks::TaskReference>& tasks);
    /// Likewise to be scheduled; `anchor` in global coordinates.
    void scheduleAsked(const std::vector<tasks::TaskReference>& tasks, const QRect& anchor);
    void notice(const QString& text);
    void linkOpened(const tessaly::app::LookSpan& link);
    /// The file of the open note has gone, with nothing unsaved.
    void gone();

private:
    enum class Page { empty, editor, versions };

    void build();
    void connectParts();
    void open(const app::NoteAddress& address);
    void showNote();
    void setGivenText(const std::string& text);
    /// The open note, a version of it, or why it cannot be shown.
    void showOpenPage();
    void showPage(Page page);
    void showProblem(const QString& text);
    std::string currentText();
    void onEdited();
    void onMerged(const std::string& text);
    void onSaveState();
    bool showsMainEditor() const;

    app::Services& _services;
    std::unique_ptr<app::OpenNote> _note;
    std::string _noteText;  ///< whose `shownText` the editor held at `_noteRevision`
    int _noteRevision = -1;
    std::string _givenText;   ///< the editor was given last, by the file or by others
    std::string _givenShown;  ///< its `shownText`
    std::string _savedText;   ///< after the last `saveNow`
    QString _title;           ///< that was told last

    QLabel* _readOnly = nullptr;
    QStackedWidget* _pages = nullptr;
    QLabel* _empty = nullptr;
    NoteEditor* _editor = nullptr;
    NoteVersions* _versions = nullptr;
    CaretTasks* _tasks = nullptr;
    EditorTools* _tools = nullptr;
    KeptFolds _folds;
    FindBar* _findBar = nullptr;
};

}  // namespace tessaly::desktop
