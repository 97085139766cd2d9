// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "base/enum_names.h"

namespace tessaly::store {

/// How a text that the history keeps came to stand in its file, or why it went.
enum class ChangeCause {
    found,       ///< written by another program or device; it stood there before our change
    created,     ///< a new note
    added,       ///< text was added to the note
    deleted,     ///< a range was deleted from the note
    merged,      ///< a stray calendar file was merged into it
    restored,    ///< an earlier text was put back
    trashed,     ///< the file went to the trash, or for good
    unfinished,  ///< lay in a temporary file of a write that did not end
    completed,   ///< a task was done
    cancelled,   ///< a task was cancelled
    reopened,    ///< a task was opened again
    scheduled,   ///< a task was scheduled, copied to its day, or its earlier copy went
    repeated,    ///< a task was copied to later days, or its last repeat was marked
    archived,    ///< tasks went to the note's archive
    undone,      ///< one of these changes was taken back
    resolved,    ///< a version was chosen, or several were joined
    held,        ///< held by a program that watches, before others changed it
    saved,       ///< a filter, new or in the place of another
    typed,       ///< the user typed it into an editor of ours, which saves again and again
    renamed,     ///< the note was given another title
};

}  // namespace tessaly::store

template <>
struct tessaly::base::EnumNames<tessaly::store::ChangeCause> {
    static constexpr std::array<EnumName<store::ChangeCause>, 20> rows{{
        {store::ChangeCause::found, "found"},
        {store::ChangeCause::created, "created"},
        {store::ChangeCause::added, "added"},
        {store::ChangeCause::deleted, "deleted"},
        {store::ChangeCause::merged, "merged"},
        {store::ChangeCause::restored, "restored"},
        {store::ChangeCause::trashed, "trashed"},
        {store::ChangeCause::unfinished, "unfinished"},
        {store::ChangeCause::completed, "completed"},
        {store::ChangeCause::cancelled, "cancelled"},
        {store::ChangeCause::reopened, "reopened"},
        {store::ChangeCause::scheduled, "scheduled"},
        {store::ChangeCause::repeated, "repeated"},
        {store::ChangeCause::archived, "archived"},
        {store::ChangeCause::undone, "undone"},
        {store::ChangeCause::resolved, "resolved"},
        {store::ChangeCause::held, "held"},
        {store::ChangeCause::saved, "saved"},
        {store::ChangeCause::typed, "typed"},
        {store::ChangeCause::renamed, "renamed"},
    }};
};
