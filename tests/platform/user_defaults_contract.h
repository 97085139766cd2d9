// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "ports/user_defaults.h"

namespace tessaly::tests {

/// Gives one more view of the same, at first empty, store: as another process would have it.
using MakeUserDefaults = std::function<std::unique_ptr<ports::UserDefaults>()>;

inline void checkStoredForms(const MakeUserDefaults& make) {
    using Texts = std::vector<std::string>;
    struct Row {
        std::string key;
        ports::DefaultsValue value;
    };
    const std::vector<Row> rows{
        {"true", true},
        {"false", false},
        {"whole", std::int64_t{-7}},
        {"largest", std::numeric_limits<std::int64_t>::max()},
        {"smallest", std::numeric_limits<std::int64_t>::min()},
        {"fraction", 0.1},
        {"wholeFraction", 15.0},
        {"tiny", std::numeric_limits<double>::denorm_min()},
        {"empty", std::string()},
        {"text", std::string("\"quoted\"\\ \n\t \u20ac \U0001F600")},
        {"nul", std::string("a\0b", 3)},
        {"noTexts", Texts{}},
        {"texts", Texts{"", "a,b", "\u00e9"}},
        {"key with \"quotes\" \u20ac", true},
        {"", std::string("under the empty key")},
    };
    const auto writer = make();
    for (const Row& row : rows) {
        CAPTURE(row.key);
        REQUIRE(writer->setValue(row.key, row.value));
    }
    const auto reader = make();
    for (const Row& row : rows) {
        CAPTURE(row.key);
        CHECK((writer->valueForKey(row.key) == row.value));
        CHECK((reader->valueForKey(row.key) == row.value));
    }
    CHECK(reader->keys().size() == rows.size());
    CHECK(!reader->problem());
}

inline void checkTakingAway(const MakeUserDefaults& make) {
    const auto store = make();
    CHECK(!store->valueForKey("b"));
    CHECK(store->removeValue("b"));
    for (const char* key : {"c", "a", "b"}) {
        REQUIRE(store->setValue(key, std::int64_t{1}));
    }
    REQUIRE(store->setValue("c", std::string("other form")));
    REQUIRE(store->removeValue("b"));
    CHECK(store->removeValue("b"));
    CHECK(store->keys() == std::vector<std::string>{"a", "c"});
    CHECK(!store->valueForKey("b"));
    CHECK((store->valueForKey("c") == ports::DefaultsValue(std::string("other form"))));
}

/// A value that cannot be kept is refused as a whole.
inline void checkUnstorable(const MakeUserDefaults& make) {
    const auto store = make();
    REQUIRE(store->setValue("a", true));
    CHECK(!store->setValue("a", std::string("\xff")).ok());
    CHECK(!store->setValue("a", std::vector<std::string>{"ok", "\xc3"}).ok());
    CHECK(!store->setValue("a", std::numeric_limits<double>::infinity()).ok());
    CHECK(!store->setValue("a", std::numeric_limits<double>::quiet_NaN()).ok());
    CHECK(!store->setValue("\xff", true).ok());
    CHECK(store->keys() == std::vector<std::string>{"a"});
    CHECK((store->valueForKey("a") == ports::DefaultsValue(true)));
}

/// Two writers in turn, each with what it read before the other wrote: nothing of the other's is
/// lost, and each sees the other's last word at once.
inline void checkTwoWriters(const MakeUserDefaults& make) {
    const auto one = make();
    const auto other = make();
    for (std::int64_t i = 0; i < 3; ++i) {
        const std::string number = std::to_string(i);
        REQUIRE(one->setValue("one" + number, i));
        REQUIRE(other->setValue("other" + number, i));
        CHECK((one->valueForKey("other" + number) == ports::DefaultsValue(i)));
        CHECK((other->valueForKey("one" + number) == ports::DefaultsValue(i)));
    }
}

/// What every store must do. Call it in a test case of its own.
inline void checkUserDefaults(const MakeUserDefaults& make) {
    SUBCASE("every form comes back as it was stored") {
        checkStoredForms(make);
    }
    SUBCASE("a key that is taken away is gone") {
        checkTakingAway(make);
    }
    SUBCASE("what cannot be stored changes nothing") {
        checkUnstorable(make);
    }
    SUBCASE("two writers in turn lose nothing") {
        checkTwoWriters(make);
    }
}

}  // namespace tessaly::tests
