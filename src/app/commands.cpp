// SPDX-License-Identifier: MIT
#include "app/commands.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "base/localisation.h"

namespace tessaly::app {

namespace {

using base::N_;
using Mark = editor::MarkAction;

using Group = CommandGroup;
using Need = CommandNeed;

constexpr std::array allCommands{
    CommandRow{CommandId::goToday, "goToday", Group::go, Need::nothing, N_("Go to Today"),
               "Ctrl+T Alt+1"},
    CommandRow{CommandId::goWeek, "goWeek", Group::go, Need::nothing, N_("Go to This Week"),
               "Alt+2"},
    CommandRow{CommandId::goPreviousDay, "goPreviousDay", Group::go, Need::nothing,
               N_("Previous Day"), "Alt+PgUp"},
    CommandRow{CommandId::goNextDay, "goNextDay", Group::go, Need::nothing, N_("Next Day"),
               "Alt+PgDown"},
    CommandRow{CommandId::goToDate, "goToDate", Group::go, Need::nothing, N_("Go to Date…"),
               "Ctrl+J"},
    CommandRow{CommandId::goBack, "goBack", Group::go, Need::wayBack, N_("Back"), "Alt+Left Back"},
    CommandRow{CommandId::goForward, "goForward", Group::go, Need::wayForward, N_("Forward"),
               "Alt+Right Forward"},
    CommandRow{CommandId::quickOpen, "quickOpen", Group::go, Need::nothing, N_("Open Quickly…"),
               "Ctrl+O", "", N_("Opens a note or day by some letters of its name")},
    CommandRow{CommandId::search, "search", Group::go, Need::nothing, N_("Search…"), "Ctrl+Shift+F",
               "/", N_("Searches all notes and tasks")},
    CommandRow{CommandId::showInbox, "showInbox", Group::go, Need::nothing, N_("Show Inbox"),
               "Alt+4", "", N_("Lists the open tasks without a day")},
    CommandRow{CommandId::showRecent, "showRecent", Group::go, Need::nothing,
               N_("Show Recent Notes"), "Alt+5"},

    CommandRow{CommandId::newNote, "newNote", Group::note, Need::nothing, N_("New Note…"),
               "Ctrl+N"},
    CommandRow{CommandId::newFolder, "newFolder", Group::note, Need::nothing, N_("New Folder…"),
               "Ctrl+Shift+N"},
    CommandRow{CommandId::renameNote, "renameNote", Group::note, Need::noteFile, N_("Rename…"),
               "F2"},
    CommandRow{CommandId::moveNote, "moveNote", Group::note, Need::noteFile, N_("Move to Folder…"),
               "Ctrl+Shift+M"},
    CommandRow{CommandId::trashNote, "trashNote", Group::note, Need::noteFile, N_("Move to Trash"),
               "Ctrl+Shift+Backspace"},
    CommandRow{CommandId::openFolder, "openFolder", Group::note, Need::noteFile,
               N_("Show in File Manager"), "Alt+O"},
    CommandRow{CommandId::copyNoteLink, "copyNoteLink", Group::note, Need::noteFile,
               N_("Copy Link to Note"), "Ctrl+Shift+L"},
    CommandRow{CommandId::archiveDone, "archiveDone", Group::note, Need::text,
               N_("Archive Done Tasks"), "Alt+A", "",
               N_("Moves the note's done and cancelled tasks out of the way")},

    CommandRow{CommandId::completeTask, "completeTask", Group::task, Need::task, N_("Complete"),
               "Ctrl+Enter Ctrl+Return", "d"},
    CommandRow{CommandId::cancelTask, "cancelTask", Group::task, Need::task, N_("Cancel Task"),
               "Ctrl+Shift+Enter Ctrl+Shift+Return", "-"},
    CommandRow{CommandId::reopenTask, "reopenTask", Group::task, Need::task, N_("Reopen"),
               "Alt+Enter Alt+Return", "r"},
    CommandRow{CommandId::scheduleTask, "scheduleTask", Group::task, Need::task, N_("Schedule…"),
               "Ctrl+D", "s"},
    CommandRow{CommandId::scheduleToday, "scheduleToday", Group::task, Need::task,
               N_("Schedule for Today"), "Ctrl+Shift+D", "t"},
    CommandRow{CommandId::taskLater, "taskLater", Group::task, Need::task, N_("A Day Later"),
               "Alt+] Alt+.", ">"},
    CommandRow{CommandId::taskEarlier, "taskEarlier", Group::task, Need::task, N_("A Day Earlier"),
               "Alt+[ Alt+,", "<"},
    CommandRow{CommandId::taskWeekLater, "taskWeekLater", Group::task, Need::task,
               N_("A Week Later"), "Alt+Shift+] Alt+Shift+."},
    CommandRow{CommandId::taskWeekEarlier, "taskWeekEarlier", Group::task, Need::task,
               N_("A Week Earlier"), "Alt+Shift+[ Alt+Shift+,"},
    CommandRow{CommandId::jumpToSource, "jumpToSource", Group::task, Need::task,
               N_("Go to Source Line"), "Ctrl+Shift+J", "o e",
               N_("Opens the note that the task stands in, at its line")},
    CommandRow{CommandId::undoTask, "undoTask", Group::task, Need::nothing, N_("Undo Task Change"),
               "Alt+Z", "u", N_("Takes back the newest change of tasks, also after a restart")},

    CommandRow{CommandId::undo, "undo", Group::edit, Need::text, N_("Undo"), "Ctrl+Z"},
    CommandRow{CommandId::redo, "redo", Group::edit, Need::text, N_("Redo"), "Ctrl+Shift+Z Ctrl+Y"},
    CommandRow{CommandId::find, "find", Group::edit, Need::nothing, N_("Find…"), "Ctrl+F", "",
               N_("Finds text in the open note")},
    CommandRow{CommandId::findNext, "findNext", Group::edit, Need::nothing, N_("Find Next"),
               "F3 Ctrl+G"},
    CommandRow{CommandId::findPrevious, "findPrevious", Group::edit, Need::nothing,
               N_("Find Previous"), "Shift+F3 Ctrl+Shift+G"},
    CommandRow{CommandId::replace, "replace", Group::edit, Need::text, N_("Replace…"), "Ctrl+H"},
    CommandRow{CommandId::foldLine, "foldLine", Group::edit, Need::text, N_("Fold or Unfold Line"),
               "Alt+F", "", N_("Hides what belongs to a heading or item, or shows it again")},
    CommandRow{CommandId::foldAll, "foldAll", Group::edit, Need::text, N_("Fold or Unfold All"),
               "Alt+Shift+F"},
    CommandRow{CommandId::openLink, "openLink", Group::edit, Need::text, N_("Open Link"),
               "Ctrl+Shift+O", "", N_("Opens the link or picture that the caret is in")},
    CommandRow{CommandId::suggest, "suggest", Group::edit, Need::text, N_("Suggest"), "Ctrl+Space",
               "", N_("Offers tags, mentions, titles or days for the word before the caret")},

    CommandRow{CommandId::markBold, "markBold", Group::format, Need::text, N_("Bold"), "Ctrl+B", "",
               "", Mark::bold},
    CommandRow{CommandId::markItalic, "markItalic", Group::format, Need::text, N_("Italic"),
               "Ctrl+I", "", "", Mark::italic},
    CommandRow{CommandId::markLink, "markLink", Group::format, Need::text, N_("Link"), "Ctrl+K", "",
               "", Mark::link},
    CommandRow{CommandId::markInlineCode, "markInlineCode", Group::format, Need::text, N_("Code"),
               "Ctrl+E", "", "", Mark::inlineCode},
    CommandRow{CommandId::markHeading1, "markHeading1", Group::format, Need::text, N_("Heading 1"),
               "Ctrl+1", "", "", Mark::heading1},
    CommandRow{CommandId::markHeading2, "markHeading2", Group::format, Need::text, N_("Heading 2"),
               "Ctrl+2", "", "", Mark::heading2},
    CommandRow{CommandId::markHeading3, "markHeading3", Group::format, Need::text, N_("Heading 3"),
               "Ctrl+3", "", "", Mark::heading3},
    CommandRow{CommandId::markHeading4, "markHeading4", Group::format, Need::text, N_("Heading 4"),
               "Ctrl+4", "", "", Mark::heading4},
    CommandRow{CommandId::markTodo, "markTodo", Group::format, Need::text, N_("Task"), "Ctrl+5", "",
               "", Mark::todo},
    CommandRow{CommandId::markNumberedTodo, "markNumberedTodo", Group::format, Need::text,
               N_("Numbered Task"), "Ctrl+6", "", "", Mark::numberedTodo},
    CommandRow{CommandId::markUnorderedList, "markUnorderedList", Group::format, Need::text,
               N_("Bullet List"), "Ctrl+7", "", "", Mark::unorderedList},
    CommandRow{CommandId::markOrderedList, "markOrderedList", Group::format, Need::text,
               N_("Numbered List"), "Ctrl+8", "", "", Mark::orderedList},
    CommandRow{CommandId::markQuote, "markQuote", Group::format, Need::text, N_("Quote"), "Ctrl+9",
               "", "", Mark::quote},
    CommandRow{CommandId::markDone, "markDone", Group::format, Need::text, N_("Box: Done"),
               "Ctrl+Shift+X", "", N_("Writes the state alone, without a date"), Mark::markAsDone},
    CommandRow{CommandId::markScheduled, "markScheduled", Group::format, Need::text,
               N_("Box: Scheduled"), "Ctrl+Shift+.", "",
               N_("Writes the state alone, without a day"), Mark::markAsScheduled},
    CommandRow{CommandId::markCanceled, "markCanceled", Group::format, Need::text,
               N_("Box: Cancelled"), "Ctrl+Shift+K", "", "", Mark::markAsCanceled},
    CommandRow{CommandId::markShiftRight, "markShiftRight", Group::format, Need::text,
               N_("Indent More"), "Ctrl+] Alt+Shift+Right", "", "", Mark::shiftRight},
    CommandRow{CommandId::markShiftLeft, "markShiftLeft", Group::format, Need::text,
               N_("Indent Less"), "Ctrl+[ Alt+Shift+Left", "", "", Mark::shiftLeft},
    CommandRow{CommandId::markMoveUp, "markMoveUp", Group::format, Need::text, N_("Move Lines Up"),
               "Alt+Up", "", "", Mark::moveUp},
    CommandRow{CommandId::markMoveDown, "markMoveDown", Group::format, Need::text,
               N_("Move Lines Down"), "Alt+Down", "", "", Mark::moveDown},

    CommandRow{CommandId::toggleSideBar, "toggleSideBar", Group::view, Need::nothing,
               N_("Show or Hide Sidebar"), "F9"},
    CommandRow{CommandId::toggleList, "toggleList", Group::view, Need::nothing,
               N_("Show or Hide List"), "Ctrl+F9"},
    CommandRow{CommandId::toggleRightPane, "toggleRightPane", Group::view, Need::nothing,
               N_("Show or Hide Day Pane"), "Shift+F9"},
    CommandRow{CommandId::nextPane, "nextPane", Group::view, Need::nothing, N_("Next Pane"), "F6"},
    CommandRow{CommandId::previousPane, "previousPane", Group::view, Need::nothing,
               N_("Previous Pane"), "Shift+F6"},
    CommandRow{CommandId::largerText, "largerText", Group::view, Need::nothing, N_("Larger Text"),
               "Ctrl++ Ctrl+="},
    CommandRow{CommandId::smallerText, "smallerText", Group::view, Need::nothing,
               N_("Smaller Text"), "Ctrl+-"},
    CommandRow{CommandId::usualText, "usualText", Group::view, Need::nothing, N_("Usual Text Size"),
               "Ctrl+0"},
    CommandRow{CommandId::toggleSpelling, "toggleSpelling", Group::view, Need::nothing,
               N_("Check Spelling"), "F7", "",
               N_("Underlines words that no dictionary knows, or stops it")},
    CommandRow{CommandId::fullScreen, "fullScreen", Group::view, Need::nothing, N_("Full Screen"),
               "F11"},
    CommandRow{CommandId::saveView, "saveView", Group::view, Need::list, N_("Save Search as View…"),
               "Ctrl+Shift+S"},

    CommandRow{CommandId::palette, "palette", Group::program, Need::nothing, N_("Command Palette…"),
               "Ctrl+Shift+P"},
    CommandRow{CommandId::showShortcuts, "showShortcuts", Group::program, Need::nothing,
               N_("Keyboard Shortcuts"), "Ctrl+? F1", "?"},
    CommandRow{CommandId::closeWindow, "closeWindow", Group::program, Need::nothing,
               N_("Close Window"), "Ctrl+W"},
    CommandRow{CommandId::quit, "quit", Group::program, Need::nothing, N_("Quit"), "Ctrl+Q"},
};

constexpr bool isInOrderOfIds() {
    for (std::size_t i = 0; i < allCommands.size(); ++i) {
        if (allCommands[i].id != static_cast<CommandId>(i)) {
            return false;
        }
    }
    return allCommands.size() == static_cast<std::size_t>(CommandId::quit) + 1;
}
static_assert(isInOrderOfIds(), "commandRow() looks rows up by their place");

constexpr std::array<const char*, commandGroups> groupTexts{
    N_("Go"), N_("Note"), N_("Tasks"), N_("Edit"), N_("Format"), N_("View"), N_("Program")};

constexpr std::array moves{ListMove{"j k", N_("Next or previous row")},
                           ListMove{"x", N_("Mark the row, also with the space bar")}};

/// By need, in its order; the first is always met.
constexpr std::array<bool CommandState::*, 7> needs{nullptr,
                                                    &CommandState::canGoBack,
                                                    &CommandState::canGoForward,
                                                    &CommandState::hasNoteFile,
                                                    &CommandState::hasText,
                                                    &CommandState::hasTask,
                                                    &CommandState::hasList};

/// Whether `word` is one of those that blanks part in `words`.
bool isOneOf(std::string_view words, std::string_view word) {
    while (!words.empty()) {
        const std::size_t blank = std::min(words.find(' '), words.size());
        if (words.substr(0, blank) == word) {
            return true;
        }
        words.remove_prefix(std::min(blank + 1, words.size()));
    }
    return false;
}

}  // namespace

std::span<const CommandRow> commandRows() {
    return allCommands;
}

const CommandRow& commandRow(CommandId id) {
    return allCommands[static_cast<std::size_t>(id)];
}

std::string_view commandName(CommandId id) {
    return commandRow(id).name;
}

std::optional<CommandId> listCommand(std::string_view character) {
    const auto row = std::ranges::find_if(allCommands, [&](const CommandRow& command) {
        return isOneOf(command.listKeys, character);
    });
    return row == allCommands.end() ? std::nullopt : std::optional{row->id};
}

bool isMet(CommandNeed need, const CommandState& state) {
    const auto field = needs[static_cast<std::size_t>(need)];
    return field == nullptr || state.*field;
}

const char* groupText(CommandGroup group) {
    return groupTexts[static_cast<std::size_t>(group)];
}

std::span<const ListMove> listMoves() {
    return moves;
}

}  // namespace tessaly::app
