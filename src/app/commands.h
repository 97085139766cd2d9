// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

#include "editor/mark_action.h"

namespace tessaly::app {

/// What the desktop program can be told to do. One table has them all: menus, palette, tooltips and
/// the list of keys are made of it.
enum class CommandId {
    // Go
    goToday,
    goWeek,
    goPreviousDay,
    goNextDay,
    goToDate,
    goBack,
    goForward,
    quickOpen,
    search,
    showInbox,
    showRecent,
    // Note
    newNote,
    newFolder,
    renameNote,
    moveNote,
    trashNote,
    openFolder,    // in the file manager
    copyNoteLink,  // "tessaly://x-callback-url/openNote?…"
    archiveDone,
    // Task, of the editor's line or the list's selection
    completeTask,
    cancelTask,
    reopenTask,
    scheduleTask,  // asks for the day
    scheduleToday,
    taskLater,  // by a day
    taskEarlier,
    taskWeekLater,
    taskWeekEarlier,
    jumpToSource,
    undoTask,  // the newest operation on tasks
    // Edit
    undo,
    redo,
    find,
    findNext,
    findPrevious,
    replace,
    foldLine,  // away what belongs to it, or show that again
    foldAll,
    openLink,  // that the caret is in
    suggest,   // what the word before the caret can become
    // Format: the editor's marks
    markBold,
    markItalic,
    markLink,
    markInlineCode,
    markHeading1,
    markHeading2,
    markHeading3,
    markHeading4,
    markTodo,
    markNumberedTodo,
    markUnorderedList,
    markOrderedList,
    markQuote,
    markDone,
    markScheduled,
    markCanceled,
    markShiftRight,
    markShiftLeft,
    markMoveUp,
    markMoveDown,
    // View
    toggleSideBar,
    toggleList,
    toggleRightPane,
    nextPane,
    previousPane,
    largerText,
    smallerText,
    usualText,
    toggleSpelling,
    fullScreen,
    saveView,  // the list's search as a filter
    // Program
    palette,
    showShortcuts,
    closeWindow,
    quit,
};

enum class CommandGroup { go, note, task, edit, format, view, program };
inline constexpr std::size_t commandGroups = 7;

/// What there must be for a command to mean something.
enum class CommandNeed {
    nothing,
    wayBack,  ///< a place to go back to
    wayForward,
    noteFile,  ///< a note is shown whose file exists
    text,      ///< a note is shown that can be written
    task,      ///< tasks are selected in the list, or the caret stands in a note's text
    list       ///< the list shows something
};

/// Which needs are met at the moment.
struct CommandState {
    bool canGoBack = false;
    bool canGoForward = false;
    bool hasNoteFile = false;
    bool hasText = false;
    bool hasTask = false;
    bool hasList = false;
    bool operator==(const CommandState&) const = default;
};
bool isMet(CommandNeed need, const CommandState& state);

struct CommandRow {
    CommandId id;
    /// The stable name of the command, for settings and scripts.
    const char* name;
    CommandGroup group;
    CommandNeed need;
    /// In menus and palette; English, for `tr`. Ends in "…" where the command asks for more.
    const char* text;
    /// Default keys in the portable form of the desktop's toolkit, "Ctrl+Shift+P"; several parted
    /// by a blank, the one that is shown first; empty: none. No two commands have the same.
    const char* keys;
    /// The characters that do it in a list of tasks, as typed: "d", ">"; several parted by a blank;
    /// empty: none. No two commands have the same, and none has one of `listMoves`.
    const char* listKeys = "";
    /// What it does, where `text` does not say it; English, for `tr`. May be empty.
    const char* help = "";
    /// The mark of the editor that it is; nothing: it is none.
    std::optional<editor::MarkAction> mark = std::nullopt;
};

/// Every command, once, in the order of the menus.
std::span<const CommandRow> commandRows();
const CommandRow& commandRow(CommandId id);
std::string_view commandName(CommandId id);
/// The command that a character does in a list of tasks; nothing: none.
std::optional<CommandId> listCommand(std::string_view character);

/// The heading of a group; English, for `tr`.
const char* groupText(CommandGroup group);

/// A key of lists that is no command: it moves or marks within the list.
struct ListMove {
    const char* keys;  ///< characters as typed, parted by a blank
    const char* text;  ///< English, for `tr`
};
std::span<const ListMove> listMoves();

}  // namespace tessaly::app
