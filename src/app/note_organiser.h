// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/change_notes.h"
#include "app/services.h"

namespace tessaly::app {

struct TrashedItem;

/// What became of notes and folders that were to be organised, for the notice that the user sees.
struct OrganisedNotes {
    std::string text;        ///< "Moved “Plans” to “Work”", or why not
    bool isFailure = false;  ///< nothing was changed
    /// The note or folder that has the name `to` now; `to` is empty when it is gone, `from` when it
    /// is new or has come back. Both empty: no name has changed.
    std::string from;
    std::string to;
    /// Takes it back, as another such operation; empty: it cannot be taken back here.
    std::function<void()> undo;
};

/// Renames, moves and trashes notes and folders in the background, one after the other. Whoever has
/// one of the notes open saves it first. Main thread; so are the answers, which are not given any
/// more once this object has gone. Names are relative to the folder of general notes.
class NoteOrganiser {
public:
    using Told = std::function<void(const OrganisedNotes& what)>;

    /// `services` outlives it.
    explicit NoteOrganiser(Services& services);
    /// Waits for the work in hand.
    ~NoteOrganiser();
    NoteOrganiser(const NoteOrganiser&) = delete;
    NoteOrganiser& operator=(const NoteOrganiser&) = delete;

    void renameNote(const std::string& filename, const std::string& title, Told told);
    void moveNote(const std::string& filename, const std::string& folder, Told told);
    /// From now until it is told, `NoteMoves::isGoing`. It can be taken back from the trash, or,
    /// where there is none, from the history, unless something else has its name then.
    void trashNote(const std::string& filename, Told told);
    /// As `app::newNote`; `to` is its file name.
    void newNote(const NoteRequest& request, Told told);
    void newFolder(const std::string& parent, const std::string& name, Told told);
    void renameFolder(const std::string& folder, const std::string& name, Told told);
    void moveFolder(const std::string& folder, const std::string& parent, Told told);
    /// As a note; from the trash alone.
    void trashFolder(const std::string& folder, Told told);
    void renameFilter(const std::string& from, const std::string& to, Told told);
    void trashFilter(const std::string& name, Told told);

private:
    OrganisedNotes withReturn(OrganisedNotes what, const TrashedItem& item, const Told& told);

    struct State;
    std::shared_ptr<State> _state;
};

}  // namespace tessaly::app
