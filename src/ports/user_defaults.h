// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/failure.h"

namespace tessaly::ports {

/// A stored setting. Whole numbers and fractions are told apart as they were written: a reader that
/// wants a fraction takes a whole number too.
using DefaultsValue =
    std::variant<bool, std::int64_t, double, std::string, std::vector<std::string>>;

/// A store of values by key that outlives the program. What a key holds in a form that is none of
/// `DefaultsValue` is kept, and reads as nothing.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// The stored value. Nothing: none, or one of a foreign form. Any thread.
    virtual std::optional<DefaultsValue> valueForKey(std::string_view key) = 0;

    /// Stores a value at once, leaving every other key as it is on disk, also those that were
    /// written by others since the last reading. Failure: the store is as it was.
    virtual base::Result<base::Done> setValue(std::string_view key, const DefaultsValue& value) = 0;

    /// Takes a key away; one that is not there is no failure.
    virtual base::Result<base::Done> removeValue(std::string_view key) = 0;

    /// Every key that is stored, in alphabetical order.
    virtual std::vector<std::string> keys() = 0;

    /// What is wrong with the store (unreadable, not in its form), in words for the user with the
    /// place; nothing when it reads well or does not exist.
    virtual std::optional<base::Failure> problem() = 0;
};

}  // namespace tessaly::ports
