// SPDX-License-Identifier: MIT
#include "settings/setting_rows.h"

#include <array>
#include <cstddef>

#include "base/localisation.h"

namespace tessaly::settings {

namespace {

using base::N_;
using enum SettingType;

constexpr std::array rows{
    SettingRow{"fontSize", number, "15", N_("Font size of the editor"), 4, 200},
    SettingRow{"calendarFontSize", number, "12", N_("Font size of the calendar's days"), 4, 200},
    SettingRow{"fontDelta", integer, "0",
               N_("Steps by which the editor's font is larger or "
                  "smaller than usual"),
               -50, 50},
    SettingRow{"fontFamily", text, "System",
               N_("Font family of the editor; \"System\" is the system's font"), 1, 200},
    SettingRow{"maxTextWidth", number, "720", N_("Widest that the column of text gets, in pixels"),
               100, 10000},
    SettingRow{"isRenderingMarkdown", boolean, "on", N_("Show Markdown styled in the editor")},
    SettingRow{"firstDayOfWeek", dayOfWeek, "", N_("First day of the week in calendars")},
    SettingRow{"defaultTodoCharacter", todoCharacter, "asterisk",
               N_("Marker that new tasks are written with")},
    SettingRow{"isAsteriskTodo", boolean, "on", N_("A line that starts with \"*\" is a task")},
    SettingRow{"isDashTodo", boolean, "off", N_("A line that starts with \"-\" is a task")},
    SettingRow{"isNumbersTodo", boolean, "off", N_("A numbered line is a task")},
    SettingRow{"isAppendScheduleLinks", boolean, "on",
               N_("Scheduling a task adds links between its days; without them the copy is made "
                  "all the same")},
    SettingRow{"isAppendCompletionLinks", boolean, "on",
               N_("Completing a task adds the date and time to it")},
    SettingRow{"isCopyScheduleGeneralNoteTodos", boolean, "on",
               N_("Scheduling a task of a general note copies it to the day")},
    SettingRow{"isIndentedTasksInCalendar", boolean, "on",
               N_("Indented tasks count in the calendar's summaries")},
    SettingRow{"isTasksInMonthlyCalendar", boolean, "on", N_("Show tasks in the month view")},
    SettingRow{"isSmartMarkdownLink", boolean, "on", N_("Smart Markdown links in the editor")},
    SettingRow{"sortBy", sortType, "modified", N_("Order of note lists")},
    SettingRow{"expandedSideBarItems", textList,
               "section:Calendar, section:Notes, section:Views, section:Hashtags, section:Mentions",
               N_("Rows of the sidebar that show what is below them")},
    SettingRow{"sync_blacklist", textList, "",
               N_("Identifiers of the calendars that are not "
                  "shown")},
    SettingRow{"isIconBadge", boolean, "off", N_("Show a count on the program's icon")},
    SettingRow{"allowAccessLater", boolean, "off",
               N_("Access to the system's calendars was put off until later")},
    SettingRow{"isFirstTimeUndoScheduling", boolean, "on",
               N_("Explain the undoing of a scheduling when it is first used")},
    SettingRow{"cloudDriveContainer", folder, "",
               N_("Folder that a sync client keeps in step with other devices; empty for none"), 0,
               4095},
    SettingRow{"isStartUpIndex", boolean, "on",
               N_("Keep an index of all notes in the cache folder, so that the next start is "
                  "quick")},
    SettingRow{"isCheckingSpelling", boolean, "on",
               N_("Underline words of notes that no dictionary knows")},
};

constexpr bool keysDiffer() {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (rows[i].key == rows[j].key) {
                return false;
            }
        }
    }
    return true;
}
static_assert(keysDiffer());

}  // namespace

std::span<const SettingRow> settingRows() {
    return rows;
}

const SettingRow* findSetting(std::string_view key) {
    for (const SettingRow& row : rows) {
        if (row.key == key) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace tessaly::settings
