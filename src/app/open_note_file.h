// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

#include "app/note_address.h"
#include "app/services.h"
#include "base/failure.h"

namespace tessaly::app {

/// What a note's file was found to hold.
struct FileText {
    std::string text;     ///< as of an `OpenNote`; of a file that is gone, what it held last
    bool exists = false;  ///< no: nothing is there
    std::string root;     ///< the data folder in which it was looked for
};

/// The file of a note that is open: how its text is read, and how what was typed gets into it. The
/// data folder is looked up each time, and so is the name that a general note has by then: see
/// `NoteMoves`. Failures are in words for the user, and not logged. Any thread; blocks for the
/// disk.
class OpenNoteFile {
public:
    /// `services` outlives it. Main thread.
    OpenNoteFile(Services& services, NoteAddress address);

    const NoteAddress& address() const { return _address; }

    /// No file is no failure; one that a sync client has not downloaded is.
    base::Result<FileText> read() const;

    /// Writes `mine`, which was made from `known`. Where the file holds another text by now, the
    /// two are joined; where it is gone or never was, it is made, unless `mine` is empty. Returns
    /// what the file holds then.
    base::Result<FileText> write(const FileText& known, const std::string& mine) const;

    /// Has the cache read the file again. Any thread.
    void tellCache() const;

    /// Writes `text` into a new file outside the data folder; returns its path.
    base::Result<std::string> keepCopy(const std::string& text) const;

private:
    struct Place {
        std::string root;
        std::string path;
    };
    bool canMove() const { return _address.type == base::NoteType::note; }
    /// The name that the note has, and keeps for as long as what is returned lives.
    NoteMoves::Stay stay() const;
    const std::string& nameOf(const NoteMoves::Stay& stays) const {
        return canMove() ? stays.name() : _address.filename;
    }
    base::Result<FileText> edit(const Place& place, const FileText& known,
                                const std::string& mine) const;

    Services& _services;
    const NoteAddress _address;
    const std::size_t _since;  ///< of `NoteMoves`: the note was called so then
};

}  // namespace tessaly::app
