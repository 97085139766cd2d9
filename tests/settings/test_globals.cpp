// SPDX-License-Identifier: MIT
#include <cstdint>
#include <functional>
#include <iterator>
#include <string>
#include <type_traits>
#include <vector>

#include <doctest/doctest.h>

#include "base/enum_names.h"
#include "settings/globals.h"
#include "settings/memory_defaults.h"
#include "settings/setting_rows.h"

namespace tessaly::settings {
namespace {

using base::Failure;
using ports::DefaultsValue;
using Texts = std::vector<std::string>;
using namespace std::string_literals;

struct Fixture {
    tests::MemoryDefaults standard;
    tests::MemoryDefaults group;
    Globals globals{standard, group, base::DayOfWeek::saturday};
};

template <class Value>
std::string said(const Value& value) {
    if constexpr (std::is_enum_v<Value>) {
        return std::string(base::rawValue(value));
    } else if constexpr (std::is_same_v<Value, int>) {
        return std::to_string(value);
    } else {
        return textOf(value);
    }
}

template <class Value>
auto by(Value (Globals::*accessor)() const) {
    return [accessor](const Globals& globals) { return said((globals.*accessor)()); };
}

/// A value of each row that is not its default: as it is typed, as it is stored, and as the
/// accessor gives it.
struct RoundTrip {
    std::string key;
    std::string typed;
    DefaultsValue stored;
    std::function<std::string(const Globals&)> accessed;
};

const RoundTrip roundTrips[] = {
    {"fontSize", "17.5", 17.5, by(&Globals::fontSize)},
    {"calendarFontSize", "4", 4.0, by(&Globals::calendarFontSize)},
    {"fontDelta", "-3", std::int64_t{-3}, by(&Globals::fontDelta)},
    {"fontFamily", "Söhne, \"Buch\"", "Söhne, \"Buch\""s, by(&Globals::fontFamily)},
    {"maxTextWidth", "10000", 10000.0, by(&Globals::maxTextWidth)},
    {"isRenderingMarkdown", "off", false, by(&Globals::isRenderingMarkdown)},
    {"firstDayOfWeek", "monday", "monday"s, by(&Globals::firstDayOfWeek)},
    {"defaultTodoCharacter", "number", "number"s, by(&Globals::defaultTodoCharacter)},
    {"isAsteriskTodo", "off", false, by(&Globals::isAsteriskTodo)},
    {"isDashTodo", "on", true, by(&Globals::isDashTodo)},
    {"isNumbersTodo", "on", true, by(&Globals::isNumbersTodo)},
    {"isAppendScheduleLinks", "off", false, by(&Globals::isAppendScheduleLinks)},
    {"isAppendCompletionLinks", "off", false, by(&Globals::isAppendCompletionLinks)},
    {"isCopyScheduleGeneralNoteTodos", "off", false, by(&Globals::isCopyScheduleGeneralNoteTodos)},
    {"isIndentedTasksInCalendar", "off", false, by(&Globals::isIndentedTasksInCalendar)},
    {"isTasksInMonthlyCalendar", "off", false, by(&Globals::isTasksInMonthlyCalendar)},
    {"isSmartMarkdownLink", "off", false, by(&Globals::isSmartMarkdownLink)},
    {"sortBy", "title", "title"s, by(&Globals::sortBy)},
    {"expandedSideBarItems", "section:Notes, folder:Home\\, Garten",
     Texts{"section:Notes", "folder:Home, Garten"}, by(&Globals::expandedSideBarItems)},
    {"sync_blacklist", "work, a\\,b", Texts{"work", "a,b"}, by(&Globals::blackListedCalendarId)},
    {"isIconBadge", "on", true, by(&Globals::isIconBadge)},
    {"allowAccessLater", "on", true, by(&Globals::allowAccessLater)},
    {"isFirstTimeUndoScheduling", "off", false, by(&Globals::isFirstTimeUndoScheduling)},
    {"isStartUpIndex", "off", false, by(&Globals::isStartUpIndex)},
    {"isCheckingSpelling", "off", false, by(&Globals::isCheckingSpelling)},
    {"cloudDriveContainer", "~/Cloud Drive", "~/Cloud Drive"s, by(&Globals::cloudDriveContainer)},
};

TEST_CASE("every setting goes its round: typed, stored, accessed, printed, reset") {
    CHECK(std::size(roundTrips) == settingRows().size());
    for (const RoundTrip& row : roundTrips) {
        CAPTURE(row.key);
        Fixture fixture;
        Globals& globals = fixture.globals;
        const auto standing = globals.text(row.key);
        REQUIRE(standing);
        CHECK(row.accessed(globals) == *standing);
        CHECK(globals.isDefault(row.key));

        REQUIRE(globals.set(row.key, row.typed));
        CHECK(
            (fixture.standard.values == decltype(fixture.standard.values){{row.key, row.stored}}));
        CHECK(row.accessed(globals) == row.typed);
        CHECK(globals.text(row.key).value() == row.typed);
        CHECK(!globals.isDefault(row.key));

        REQUIRE(globals.reset(row.key));
        CHECK(fixture.standard.values.empty());
        CHECK(row.accessed(globals) == *standing);

        // A default that is stored is one all the same.
        REQUIRE(globals.set(row.key, *standing));
        CHECK(globals.isDefault(row.key));
    }
}

TEST_CASE("weeks begin as they do in the user's region until it is said otherwise") {
    Fixture fixture;
    CHECK(fixture.globals.firstDayOfWeek() == base::DayOfWeek::saturday);
    REQUIRE(fixture.globals.set("firstDayOfWeek", "sunday"));
    CHECK(fixture.globals.firstDayOfWeek() == base::DayOfWeek::sunday);
}

TEST_CASE("a stored value that cannot be read counts as the default, is told, and stays") {
    struct Row {
        const char* key;
        DefaultsValue stored;
    };
    const std::string newline = "two\nlines";
    for (const Row& row : std::vector<Row>{
             {"isDashTodo", std::string("true")},
             {"fontDelta", 1.0},
             {"fontDelta", std::int64_t{51}},
             {"fontSize", 3.999},
             {"fontSize", std::int64_t{201}},
             {"fontSize", true},
             {"fontFamily", std::string()},
             {"fontFamily", std::string("\xff")},
             {"fontFamily", newline},
             {"firstDayOfWeek", std::string("Monday")},
             {"firstDayOfWeek", std::int64_t{1}},
             {"sync_blacklist", std::string("work")},
             {"cloudDriveContainer", std::string(4096, 'x')},
         }) {
        CAPTURE(row.key);
        Fixture fixture;
        const auto standing = fixture.globals.text(row.key);
        fixture.standard.values = {{row.key, row.stored}};
        CHECK(fixture.globals.text(row.key).value() == *standing);
        CHECK(fixture.globals.isDefault(row.key));
        const auto unreadable = fixture.globals.unreadable();
        REQUIRE(unreadable.size() == 1);
        CHECK(unreadable[0].key == row.key);
        CHECK(!unreadable[0].allowed.empty());
        CHECK((fixture.standard.values.at(row.key) == row.stored));
    }
}

TEST_CASE("a whole number will do where a fraction may stand") {
    Fixture fixture;
    fixture.standard.values = {{"fontSize", std::int64_t{18}}, {"unknown", true}};
    CHECK(fixture.globals.fontSize() == 18.0);
    CHECK(fixture.globals.text("fontSize").value() == "18");
    CHECK(fixture.globals.unreadable().empty());
}

TEST_CASE("a value of a foreign form is told until it is set or reset") {
    Fixture fixture;
    fixture.standard.foreign = {"fontSize", "sortBy", "unknown"};
    CHECK(fixture.globals.unreadable().size() == 2);
    REQUIRE(fixture.globals.set("fontSize", "15"));
    REQUIRE(fixture.globals.reset("sortBy"));
    CHECK(fixture.globals.unreadable().empty());
}

TEST_CASE("what a setting cannot hold is refused with what it can") {
    struct Row {
        const char* key;
        const char* typed;
        const char* allowed;
    };
    for (const Row& row : std::initializer_list<Row>{
             {"isDashTodo", "ON", "on, off"},
             {"fontDelta", "1.5", "-50 … 50"},
             {"fontDelta", "51", "-50 … 50"},
             {"fontDelta", "99999999999999999999", "-50 … 50"},
             {"fontSize", "3", "4 … 200"},
             {"fontSize", "12pt", "4 … 200"},
             {"fontSize", "nan", "4 … 200"},
             {"fontFamily", "", "not empty"},
             {"cloudDriveContainer", "Sync", "from /"},
             {"sortBy", "Title", "title, modified, created"},
             {"firstDayOfWeek", "mon", "monday"},
             {"sync_blacklist", "a\\", "commas"},
             {"sync_blacklist", "\xff", "commas"},
         }) {
        CAPTURE(row.key);
        CAPTURE(row.typed);
        Fixture fixture;
        const auto done = fixture.globals.set(row.key, row.typed);
        REQUIRE(!done);
        CHECK(done.failure().kind == Failure::Kind::malformed);
        const std::string& words = done.failure().description;
        CHECK(words.starts_with(std::string(row.key) + ": "));
        CHECK(words.find(row.allowed) != std::string::npos);
        CHECK(fixture.standard.values.empty());
    }
}

TEST_CASE("switches may be typed in several ways") {
    for (const char* typed : {"on", "true", "yes", "1"}) {
        Fixture fixture;
        CHECK(fixture.globals.set("isDashTodo", typed));
        CHECK(fixture.globals.isDashTodo());
        CHECK(fixture.globals.text("isDashTodo").value() == "on");
    }
}

TEST_CASE("an unknown key is refused, with the one that was probably meant") {
    struct Row {
        const char* key;
        const char* suggestion;  ///< null: none is near
    };
    for (const Row& row : std::initializer_list<Row>{
             {"fontsize", "fontSize"},
             {"FontFamly", "fontFamily"},
             {"sync-blacklist", "sync_blacklist"},
             {"colour", nullptr},
             {"", nullptr},
         }) {
        CAPTURE(row.key);
        Fixture fixture;
        const auto check = [&](const Failure& failure) {
            CHECK(failure.kind == Failure::Kind::notFound);
            const std::string& words = failure.description;
            CHECK(words.starts_with(std::string(row.key) + ": "));
            CHECK(words.ends_with(row.suggestion != nullptr
                                      ? "the nearest is " + std::string(row.suggestion)
                                      : "there is no such setting"));
        };
        check(fixture.globals.set(row.key, "1").failure());
        check(fixture.globals.reset(row.key).failure());
        check(fixture.globals.text(row.key).failure());
        CHECK(fixture.standard.values.empty());
    }
}

TEST_CASE("a store that refuses is passed on") {
    Fixture fixture;
    fixture.standard.refusal = Failure{Failure::Kind::noSpace, "full"};
    CHECK(fixture.globals.set("fontSize", "18").failure().description == "full");
    CHECK(fixture.globals.reset("fontSize").failure().description == "full");
    CHECK(fixture.globals.fontSize() == 15.0);
}

}  // namespace
}  // namespace tessaly::settings
