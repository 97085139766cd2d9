// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/failure.h"
#include "base/sort_type.h"
#include "base/todo_character.h"
#include "base/weekday.h"
#include "ports/user_defaults.h"
#include "settings/run_time_state.h"
#include "settings/setting_values.h"

namespace tessaly::settings {

/// A stored value that its setting cannot hold.
struct UnreadableSetting {
    std::string key;
    std::string allowed;  ///< what it may be, in words for the user
};

/// The user's settings. Each reading asks the store, so that a change from outside is seen at once:
/// a loop takes its copy first. A value that cannot be read counts as the default, and stays in the
/// store until it is set or reset. Any thread, but for `runTime`.
class Globals {
public:
    /// `localeFirstDay` is the day that weeks begin with in the user's region. The stores must
    /// outlive this object.
    Globals(ports::UserDefaults& standard, ports::UserDefaults& group,
            base::DayOfWeek localeFirstDay);

    double fontSize() const;
    double calendarFontSize() const;
    int fontDelta() const;
    std::string fontFamily() const;  ///< "System": the system's font
    double maxTextWidth() const;
    bool isRenderingMarkdown() const;
    base::DayOfWeek firstDayOfWeek() const;
    base::TodoCharacter defaultTodoCharacter() const;
    bool isAsteriskTodo() const;
    bool isDashTodo() const;
    bool isNumbersTodo() const;
    bool isAppendScheduleLinks() const;
    bool isAppendCompletionLinks() const;
    bool isCopyScheduleGeneralNoteTodos() const;
    bool isIndentedTasksInCalendar() const;
    bool isTasksInMonthlyCalendar() const;
    bool isSmartMarkdownLink() const;
    base::SortType sortBy() const;
    std::vector<std::string> expandedSideBarItems() const;
    std::vector<std::string> blackListedCalendarId() const;  ///< stored as "sync_blacklist"
    bool isIconBadge() const;
    bool allowAccessLater() const;
    bool isFirstTimeUndoScheduling() const;
    std::string cloudDriveContainer() const;  ///< empty: none is named
    bool isStartUpIndex() const;
    bool isCheckingSpelling() const;

    /// The value of a setting as the user writes it. Failure `notFound`: there is no such setting;
    /// the description names the one that was probably meant.
    base::Result<std::string> text(std::string_view key) const;

    /// Stores a value as the user writes it. Failures, besides the store's: `notFound`, and
    /// `malformed` for a value that the setting cannot hold; the description says which it can.
    base::Result<base::Done> set(std::string_view key, std::string_view text);

    /// Takes the stored value away, so that the default holds. Failures as with `text`.
    base::Result<base::Done> reset(std::string_view key);

    /// Whether the value that holds is the default, stored or not; so it is for an unknown key.
    bool isDefault(std::string_view key) const;

    /// The stored values that count as defaults because they cannot be read, in the rows' order.
    std::vector<UnreadableSetting> unreadable() const;

    /// Values that other processes of the same group see too.
    ports::UserDefaults& groupDefaults() const { return _group; }

    RunTimeState& runTime() { return _runTime; }

private:
    SettingValue defaultValue(const SettingRow& row) const;
    SettingValue value(const SettingRow& row) const;
    template <class Type>
    Type get(std::string_view key) const;
    template <class Enum>
    Enum getEnum(std::string_view key) const;

    ports::UserDefaults& _standard;
    ports::UserDefaults& _group;
    const base::DayOfWeek _localeFirstDay;
    RunTimeState _runTime;
};

}  // namespace tessaly::settings
