// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "desktop/document_edits.h"

namespace tessaly::desktop {

/// What a user has done to a text, step by step, while others change it, too: a step that is taken
/// back takes none of the others' changes with it. It holds changes, not the text; whoever has that
/// makes them, and tells of each.
class EditHistory {
public:
    /// Changes that take a step back, or make it again; the last is made first.
    using Step = std::vector<DocumentChanges>;

    enum class Source {
        newStep,   ///< the user; there is nothing to be made again from now on
        sameStep,  ///< likewise, as a part of the last step
        undo,      ///< a change of the step that `undo` has given
        redo       ///< of the one that `redo` has given
    };

    void clear();
    /// The text was changed, and `inverse` takes that back.
    void record(DocumentChanges inverse, Source source);
    /// Others have changed the text as it is now.
    void rebase(const DocumentChanges& others);

    bool canUndo() const { return !_done.empty(); }
    bool canRedo() const { return !_undone.empty(); }
    /// Gives the last step away; empty: there is none.
    Step undo();
    Step redo();

private:
    static void rebase(std::vector<Step>& steps, DocumentChanges others);
    static Step take(std::vector<Step>& from, std::vector<Step>& to);

    std::vector<Step> _done;
    std::vector<Step> _undone;
};

}  // namespace tessaly::desktop
