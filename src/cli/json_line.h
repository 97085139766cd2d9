// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessaly::cli {

/// A JSON object that keeps its fields in the order in which they were added. A value; cheap to
/// move. Text that is not UTF-8 is written with U+FFFD in place of the bad bytes.
class JsonObject {
public:
    JsonObject();
    ~JsonObject();
    JsonObject(JsonObject&&) noexcept;
    JsonObject& operator=(JsonObject&&) noexcept;

    JsonObject& add(std::string_view key, std::string_view text);
    JsonObject& add(std::string_view key, const std::string& text) {
        return add(key, std::string_view{text});
    }
    JsonObject& add(std::string_view key, const char* text) {
        return add(key, std::string_view{text});
    }
    /// Only a real `bool`: a pointer must never end up here.
    JsonObject& add(std::string_view key, std::same_as<bool> auto value) {
        return addBool(key, value);
    }
    JsonObject& add(std::string_view key,
                    std::integral auto value) requires(!std::same_as<decltype(value), bool>) {
        return addNumber(key, static_cast<std::int64_t>(value));
    }
    JsonObject& add(std::string_view key, double value);
    JsonObject& add(std::string_view key, JsonObject object);
    JsonObject& add(std::string_view key, const std::vector<std::string>& texts);
    JsonObject& add(std::string_view key, std::vector<JsonObject> objects);

    /// null where there is no value.
    template <class T>
    JsonObject& add(std::string_view key, std::optional<T> value) {
        return value ? add(key, std::move(*value)) : addNull(key);
    }

    /// The object in one line, without a line break. Unsafe characters (see `isUnsafe`) are
    /// escaped, so that no terminal acts on them.
    std::string text() const;

private:
    struct Value;
    JsonObject& addBool(std::string_view key, bool value);
    JsonObject& addNumber(std::string_view key, std::int64_t value);
    JsonObject& addNull(std::string_view key);

    std::unique_ptr<Value> _value;
};

}  // namespace tessaly::cli
